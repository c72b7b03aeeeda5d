// Form9: the brief progress flash while the position window loads.
#pragma once

#include "platform/world.h"
#include "shell/shell_state.h"

namespace gainsmith {

// Runs from 0 to 100 percent as fast as it can be painted and closes itself; it says nothing about
// the progress of the reads.
struct Form9 : Window {
  Form9(World& world, const ShellState& shell);

  gainsmith::ProgressBar ProgressBar1;
  Label Label1;
  Timer Timer1;

  void Form_Load() override;
  void Timer1_Timer();

 private:
  World& world_;
  const ShellState& shell_;
};

}  // namespace gainsmith
