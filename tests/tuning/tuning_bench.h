// A bench for the tuning windows: the virtual world with a connected drive and the state that the
// windows share.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "link/link.h"
#include "params/parameter_store.h"
#include "shell/progress_window.h"
#include "shell/shell_state.h"
#include "support/messages.h"
#include "support/virtual_user.h"
#include "trace/trace_state.h"

namespace gainsmith::test {

// Frames with runs of polls and of block reads put together: "R 28", "upload 12".
inline Texts Summary(const Texts& frames) {
  Texts summary;
  int blocks = 0;
  for (const std::string& frame : frames) {
    if (frame.ends_with("x50")) {
      blocks = frame == "R 256x50" ? 1 : blocks + 1;
      if (blocks > 1) summary.pop_back();
      summary.push_back("upload " + std::to_string(blocks));
    } else if (frame != "R 28" || summary.empty() || summary.back() != frame) {
      summary.push_back(frame);
    }
  }
  return summary;
}

struct TuningBench {
  TuningBench() { Plug(Device); }

  void Plug(SerialDevice& device) {
    World.Devices[1] = &device;
    World.OpenPort(1, "38400,n,8,2");
  }
  // As the main window does it.
  void Open(Window& window) {
    Trace.ClosingPositionWindow = false;
    World.ShowModal(window);
  }
  void ClickAfter(std::int64_t delayMs, Button& button) {
    World.At(delayMs, [this, &button] { User.Click(button); });
  }
  // Frames sent since the last call; of more than `atMost`, the first.
  Texts TakeFrames(std::size_t atMost = SIZE_MAX) {
    Texts frames = World.TakeFrames();
    if (frames.size() > atMost) frames.resize(atMost);
    return frames;
  }
  // Texts of the messages shown since the last call.
  Texts TakeMessages() { return World.TakeMessages(); }

  DriveDevice Device;
  VirtualWorld World;
  VirtualUser User{World};
  gainsmith::Link Link{World};
  ParameterStore Params;
  ShellState Shell;
  TraceState Trace;
  Form9 Progress{World, Shell};
};

}  // namespace gainsmith::test
