// A bench for the scope: its window before a drive whose motor something else turns.
#pragma once

#include "trace/scope_window.h"
#include "tuning/tuning_bench.h"

namespace gainsmith::test {

// Entries of the list of trace times.
enum TraceTimeEntry { At100Ms, At500Ms = 4, At800Ms = 7, At1000Ms = 9, At1200Ms, At2000Ms = 12 };

struct ScopeTest : ::testing::Test {
  using Texts = TuningBench::Texts;

  TuningBench Bench;
  TappedDrive& Device = Bench.Device;
  Form5 Window{Bench.World, Bench.Link, Bench.Params, Bench.Shell, Bench.Trace};

  void Open() { Bench.World.ShowModal(Window); }
  void OpenQuietly() {
    Open();
    Bench.TakeFrames();
  }
  void TurnMotor(double hz = 2, double rpm = 100) {
    Device.Drive.StartMotion(Bench.World.NowMs() * 1000, {hz, rpm});
  }
  void Choose(TraceTimeEntry entry) { Bench.User.Choose(Window.Combo1, entry); }
  // Start, or Stop.
  void Click() { Bench.User.Click(Window.Command1); }
  void ClickAfter(std::int64_t delayMs) {
    Bench.World.At(delayMs, [this] { Click(); });
  }
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
    return Bench.World.RunUntil(
        [&] { return Window.Plot.Picture1.Revision != before && Bench.Link.LinkIdle; }, 10'000);
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
    Bench.World.RunFor(3000);
    Bench.TakeFrames();
    Bench.World.RunFor(5000);
    EXPECT_EQ(Bench.TakeFrames(), Texts{});
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
    EXPECT_TRUE(Bench.Link.LinkIdle);
    EXPECT_FALSE(Window.Timer1.Enabled());
    EXPECT_TRUE(Window.Check2.Enabled);
    ExpectSetupEnabled(true);
  }
  void ExpectClosed() {
    EXPECT_FALSE(Window.Loaded);
    EXPECT_TRUE(Bench.Link.LinkIdle);
    EXPECT_FALSE(Bench.Shell.ChildWindowOpen);
    EXPECT_FALSE(Bench.Shell[OpenMark::Scope]);
    EXPECT_FALSE(Window.Timer1.Enabled());
    EXPECT_FALSE(Window.err.Enabled());
  }
};

}  // namespace gainsmith::test
