// frmWaitingMessage: the small window that shows that a long drive operation is running.
#pragma once

#include <string>

#include "platform/world.h"
#include "shell/shell_state.h"

namespace gainsmith {

// It does not close by itself; closing it by hand stops nothing.
struct frmWaitingMessage : Window {
  frmWaitingMessage(World& world, const ShellState& shell);

  Label lblWwait, lblDots, lblWaitingMessage;
  Timer Timer1;

  void Form_Load() override;
  void Timer1_Timer();

  // Shows the window, modeless, under the title `text`.
  void ShowWaitingMessage(const std::string& text);
  void CloseWaitingMessage();

 private:
  World& world_;
  const ShellState& shell_;
};

}  // namespace gainsmith
