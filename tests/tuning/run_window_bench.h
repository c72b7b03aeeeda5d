// The velocity and the position window on a bench, with one face: what tests of their common
// run-button scheme need.
#pragma once

#include "tuning/position_window.h"
#include "tuning/tuning_bench.h"
#include "tuning/velocity_window.h"

namespace gainsmith::test {

struct VelocityBench {
  explicit VelocityBench(SerialDevice& device) : Bench(device) {}

  static constexpr int CommandRegister = 35;
  static constexpr int LoadRequests = 4;
  TuningBench Bench;
  velocityModeTune Window{Bench.World, Bench.Link, Bench.Params, Bench.Shell, Bench.Trace};
  Button& RunButton = Window.Command1;

  OpenMark Mark() const { return OpenMark::VelocityLoop; }
  void ChangeAGain(const char* text) { Window.Text1[velocityModeTune::Vi].Text = text; }
  // Short runs in short recordings, long enough for several of them.
  void EnterShortTest() {
    Window.Text1[velocityModeTune::RunningTime].Text = "150";
    Window.Text1[velocityModeTune::Interval].Text = "50";
    Window.Text1[velocityModeTune::RepeatTimes].Text = "20";
    Window.Combo1.Choose(1);
  }
};

struct PositionBench {
  explicit PositionBench(SerialDevice& device) : Bench(device) {}

  static constexpr int CommandRegister = 9;
  static constexpr int LoadRequests = 15;
  TuningBench Bench;
  Form3 Window{Bench.World, Bench.Link, Bench.Params, Bench.Shell, Bench.Trace, Bench.Progress};
  Button& RunButton = Window.Command1[Form3::MainStart];

  OpenMark Mark() const { return OpenMark::PositionLoop; }
  void ChangeAGain(const char* text) { Window.Text1[Form3::VelocityKi].Text = text; }
  void EnterShortTest() {
    Window.Text1[Form3::Distance].Text = "2000";
    Window.Text1[Form3::RepeatTimes].Text = "20";
    Window.Combo1.Choose(1);
  }
};

// Opens the window as the main window does.
template <typename WindowBench>
void Open(WindowBench& on) {
  on.Bench.Trace.ClosingPositionWindow = false;
  on.Bench.World.ShowModal(on.Window);
}

}  // namespace gainsmith::test
