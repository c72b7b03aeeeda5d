// Form4: the reading of the log, the blink pass, and the erase buttons.
#include "diagnostics/error_log_window.h"

namespace gainsmith {
namespace {

constexpr int LampDarkMs = 200;
constexpr const char* NewestTip = "The newest entry";

}  // namespace

Form4::Form4(World& world, Link& link, ShellState& shell)
    : world_(world), link_(link), shell_(shell) {
  Design();
  Timer1.OnTimer = [this] { Timer1_Timer(); };
  for (const CommandIndex index : {EraseCurrentError, EraseAllErrors}) {
    Command1[index].OnClick = [this, index] { Command1_Click(index); };
  }
}

void Form4::Form_Load() {
  const Errand errand(link_, *this);
  LeftTwips = 3000;
  TopTwips = 2000;
  if (blink_ == Blink::Over) blink_ = Blink::Due;
  const Sent sent =
      link_.Exchange(errand, Function::Read, Register::ErrorLog, ErrorLogEntries, ShortExchange);
  if (sent == Sent::Off || errand.Over()) return;
  if (sent == Sent::Lost) {
    link_.TellFailure(errand);
    Timer1.Stop();
    return;
  }
  for (int entry = 0; entry < ErrorLogEntries; ++entry) {
    ShowEntry(entry, RawValue(link_.RxBuffer, entry));
  }
  Timer1.Start();
}

void Form4::ShowEntry(int entry, std::uint16_t word) {
  for (int bit = 0; bit < ErrorKinds; ++bit) {
    const bool present = (word >> bit & 1) != 0;
    Lamp& lamp = Shape1[static_cast<std::size_t>(entry * BitsPerEntry + bit)];
    lamp.BackColor = present ? ErrorPresent : ErrorAbsent;
    lamp.Marked = present;
    lamp.State = present ? "error" : "no error";
    lamp.ToolTip = present ? lamp.AccessibleName : entry == 0 ? NewestTip : "";
  }
}

void Form4::Timer1_Timer() {
  blink_ = blink_ == Blink::DueToClose ? Blink::PassToClose : Blink::Pass;
  for (std::size_t bit = 0; bit < BitsPerEntry; ++bit) {
    if (Shape1[bit].BackColor == ErrorPresent) {
      Shape1[bit].Visible = false;
      link_.WaitMs(LampDarkMs);
      Shape1[bit].Visible = true;
    }
    if (blink_ == Blink::PassToClose) {
      CloseAfterPass();
      return;
    }
  }
  blink_ = Blink::Over;
}

void Form4::CloseAfterPass() {
  blink_ = Blink::Over;
  Timer1.Stop();
  world_.Unload(*this);
}

bool Form4::Form_Unload() {
  if (blink_ == Blink::Pass || blink_ == Blink::PassToClose) {
    blink_ = Blink::PassToClose;
    return false;
  }
  if (blink_ == Blink::Due && Timer1.Enabled()) {
    blink_ = Blink::DueToClose;
    return false;
  }
  Timer1.Stop();
  blink_ = Blink::Over;
  shell_.ChildWindowOpen = false;
  // The next visit knows nothing before it has read, whatever drive it may find.
  for (Lamp& lamp : Shape1) {
    lamp.BackColor = DefaultColour;
    lamp.Marked = false;
    lamp.State = NotRead;
    lamp.ToolTip.clear();
  }
  return true;
}

void Form4::Command1_Click(CommandIndex index) {
  const Errand errand(link_, *this);
  // An erase inside an erase would make the outer one send again, and erase once too often.
  SetErasing(true);
  const Sent erased =
      link_.Write(errand, Register::ErrorLog, index == EraseAllErrors ? 1 : 0, ShortExchange);
  if (erased == Sent::Lost) link_.TellFailure(errand);
  if (!errand.Over()) {
    if (erased == Sent::Taken) {
      Form_Load();
    } else {
      Timer1.Stop();
      world_.Unload(*this);
    }
  }
  SetErasing(false);
}

void Form4::SetErasing(bool erasing) {
  for (Button& button : Command1) button.Enabled = !erasing;
  Pointer = erasing ? MousePointer::Hourglass : MousePointer::Default;
}

}  // namespace gainsmith
