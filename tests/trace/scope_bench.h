// A bench for the scope: its window before a drive whose motor something else turns.
#pragma once

#include "trace/scope_window.h"
#include "tuning/tuning_bench.h"

namespace gainsmith::test {

// Entries of the list of trace times.
enum TraceTimeEntry { At100Ms, At500Ms = 4, At800Ms = 7, At1000Ms = 9, At1200Ms, At2000Ms = 12 };

struct ScopeTest : ::testing::Test, TuningBench {
  Form5 Window{World, Link, Params, Shell, Trace};

  void Open() { World.ShowModal(Window); }
  void OpenQuietly() {
    Open();
    TakeFrames();
  }
  void TurnMotor(double hz = 2, double rpm = 100) {
    Device.Drive.StartMotion(World.NowMs() * 1000, {hz, rpm});
  }
  void Choose(TraceTimeEntry entry) { User.Choose(Window.Combo1, entry); }
  // Start, or Stop.
  void Click() { User.Click(Window.Command1); }
  void ClickAfter(std::int64_t delayMs) { TuningBench::ClickAfter(delayMs, Window.Command1); }
  // Runs `action` when request `number` from now (0: the next) is about to reach the drive.
  void AtRequest(int number, const std::function<void()>& action) {
    const int at = Device.Requests + number;
    Device.BeforeRequest = [at, action](int request) {
      if (request == at) action();
    };
  }
  // Until the recording after the next one, or the one under way, is on the picture.
  bool RunToRecording() {
    const auto before = Window.Plot.Picture1.Revision;
    return World.RunUntil([&] { return Window.Plot.Picture1.Revision != before && Link.LinkIdle; },
                          10'000);
  }
  // One recording of `entry`, then Stop.
  void Record(TraceTimeEntry entry) {
    Choose(entry);
    Click();
    ASSERT_TRUE(RunToRecording());
    Click();
  }

  // Nothing goes out any more.
  void ExpectQuiet() {
    World.RunFor(3000);
    TakeFrames();
    World.RunFor(5000);
    EXPECT_EQ(TakeFrames(), Texts{});
  }
  // What chooses channels and trace time.
  void ExpectSetupEnabled(bool enabled) {
    for (const Control* control :
         std::initializer_list<Control*>{&Window.Check1[1], &Window.Check1[2], &Window.Check1[3],
                                         &Window.Combo1, &Window.Label2}) {
      EXPECT_EQ(control->Enabled, enabled) << control->Name;
    }
  }
  void ExpectStopped() {
    EXPECT_EQ(Window.Command1.Caption, "Start");
    EXPECT_TRUE(Link.LinkIdle);
    EXPECT_FALSE(Window.Timer1.Enabled());
    EXPECT_TRUE(Window.Check2.Enabled);
    ExpectSetupEnabled(true);
  }
  void ExpectClosed() {
    EXPECT_FALSE(Window.Loaded);
    EXPECT_TRUE(Link.LinkIdle);
    EXPECT_FALSE(Shell.ChildWindowOpen || Shell[OpenMark::Scope]);
    EXPECT_FALSE(Window.Timer1.Enabled() || Window.err.Enabled());
  }
};

}  // namespace gainsmith::test
