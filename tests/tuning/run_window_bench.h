// The velocity and the position window on a bench, with one face: what tests of their common
// run-button scheme need.
#pragma once

#include "tuning/position_window.h"
#include "tuning/tuning_bench.h"
#include "tuning/velocity_window.h"

namespace gainsmith::test {

struct VelocityBench : TuningBench {
  static constexpr int CommandRegister = 35;
  // The one of a Start that carries the run command, from 1.
  static constexpr int RunRequest = 11;
  // Until then a test with the fields as they come may be left by closing.
  static constexpr int ClosableMs = 1990;
  static constexpr OpenMark Mark = OpenMark::VelocityLoop;
  velocityModeTune Window{World, Link, Params, Shell, Trace};
  Button& RunButton = Window.Command1;

  void ChangeAGain(const char* text) { Window.Text1[velocityModeTune::Vi].Text = text; }
  // Opens the window for short runs in short recordings, long enough for several of them.
  void OpenShortTest() {
    Open(Window);
    Window.Text1[velocityModeTune::RunningTime].Text = "150";
    Window.Text1[velocityModeTune::Interval].Text = "50";
    Window.Text1[velocityModeTune::RepeatTimes].Text = "20";
    Window.Combo1.Choose(1);
    World.Log.Clear();
  }
};

struct PositionBench : TuningBench {
  static constexpr int CommandRegister = 9;
  static constexpr int RunRequest = 12;
  static constexpr int ClosableMs = 150;
  static constexpr OpenMark Mark = OpenMark::PositionLoop;
  Form3 Window{World, Link, Params, Shell, Trace, Progress};
  Button& RunButton = Window.Command1[Form3::MainStart];

  void ChangeAGain(const char* text) { Window.Text1[Form3::VelocityKi].Text = text; }
  void OpenShortTest() {
    Open(Window);
    Window.Text1[Form3::Distance].Text = "2000";
    Window.Text1[Form3::RepeatTimes].Text = "20";
    Window.Combo1.Choose(1);
    World.Log.Clear();
  }
};

// What every stopped test leaves behind.
template <typename WindowBench>
void ExpectStopped(WindowBench& on) {
  sim::SimulatedDrive& drive = on.Device.Drive;
  drive.Advance(on.World.NowMs() * 1000);
  EXPECT_FALSE(drive.Moving());
  EXPECT_EQ(drive.Registers().Values[WindowBench::CommandRegister], 0);
  EXPECT_EQ(on.RunButton.Caption, "Start");
  EXPECT_TRUE(on.Link.LinkIdle);
  EXPECT_FALSE(on.Window.DataSource.Enabled());
  EXPECT_EQ(on.Window.Pointer, MousePointer::Default);
  EXPECT_EQ(on.TakeMessages(), Texts{});
}

}  // namespace gainsmith::test
