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

// What the user sees of a long drive operation: the hourglass on the screen and the waiting window
// under the title `text`. Whoever starts the operation owns it; what is left of it goes with it.
class BusyScreen {
 public:
  BusyScreen(World& world, frmWaitingMessage& waiting, const std::string& text)
      : world_(world), waiting_(waiting) {
    world_.SetScreenPointer(MousePointer::Hourglass);
    waiting_.ShowWaitingMessage(text);
  }
  BusyScreen(const BusyScreen&) = delete;
  BusyScreen& operator=(const BusyScreen&) = delete;
  ~BusyScreen() { End(); }

  // Before a store and before any message. The hourglass stays.
  void CloseWaitingMessage() { waiting_.CloseWaitingMessage(); }
  void End() {
    waiting_.CloseWaitingMessage();
    world_.SetScreenPointer(MousePointer::Default);
  }

 private:
  World& world_;
  frmWaitingMessage& waiting_;
};

}  // namespace gainsmith
