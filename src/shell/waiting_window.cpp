// frmWaitingMessage: its labels and its row of dots.
#include "shell/waiting_window.h"

namespace gainsmith {

frmWaitingMessage::frmWaitingMessage(World& world, const ShellState& shell)
    : world_(world), shell_(shell) {
  Name = "frmWaitingMessage";
  Caption = "Process in Progress";
  ClientWidthTwips = 8700;
  ClientHeightTwips = 1650;
  Add(lblWwait, "lblWwait").Caption = "Plase Wait";
  lblWwait.Place(300, 300, 1200, 300);
  Add(lblDots, "lblDots").Place(1500, 300, 3000, 300);
  Add(lblWaitingMessage, "lblWaitingMessage").Caption =
      "This window will disappear automatically. Close it manually may cause malfunction.";
  lblWaitingMessage.Place(300, 900, 8100, 300);
  Timers = {&Timer1};
  Timer1.IntervalMs = 500;
  Timer1.OnTimer = [this] { Timer1_Timer(); };
}

void frmWaitingMessage::Form_Load() {
  LeftTwips = static_cast<int>(shell_.QuarterScreenWidth);
  TopTwips = 2000;
  lblDots.Caption.clear();
  Timer1.Start();
}

void frmWaitingMessage::Timer1_Timer() {
  constexpr std::size_t LongestRow = 10;
  if (lblDots.Caption.size() == LongestRow) {
    lblDots.Caption.clear();
  } else {
    lblDots.Caption += '.';
  }
}

void frmWaitingMessage::ShowWaitingMessage(const std::string& text) {
  Caption = text;
  world_.Show(*this);
}

void frmWaitingMessage::CloseWaitingMessage() { world_.Unload(*this); }

}  // namespace gainsmith
