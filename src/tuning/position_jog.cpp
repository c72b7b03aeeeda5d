// Form3: jog, the motor turning while a button is held.
#include "platform/common_texts.h"
#include "platform/number_text.h"
#include "tuning/position_window.h"
#include "tuning/pulse_generator.h"

namespace gainsmith {
namespace {

constexpr float JogWords[] = {1, 5};

bool PassesJogKey(int key) { return key == KeyBackspace || (key >= '0' && key <= '9'); }

}  // namespace

bool Form3::Text2_KeyPress(int key) {
  const Commit commit(Text2);
  if (key == KeyEnter && !commit.Repeats()) SetJogVelocity(Errand(link_, *this));
  return PassesJogKey(key);
}

bool Form3::Text3_KeyPress(int key) {
  const Commit commit(Text3);
  if (key == KeyEnter && !commit.Repeats()) SetJogAcceleration(Errand(link_, *this));
  return PassesJogKey(key);
}

void Form3::SetJogVelocity(const Errand& errand) {
  trace_.ProfileSpeed =
      SpeedWord(LeadingNumber(Text2.Text), trace_.EncoderCounts, PositionUnits.SpeedDivisor);
  const bool good = trace_.ProfileSpeed > 0 && trace_.ProfileSpeed <= LargestWord;
  SendJogWord(errand, Text2, Register::SpeedWord, trace_.ProfileSpeed, good, "1");
}

void Form3::SetJogAcceleration(const Errand& errand) {
  trace_.ProfileAccel = AccelWord(LeadingNumber(Text3.Text), trace_.EncoderCounts,
                                  PositionUnits.AccelFirst, PositionUnits.AccelSecond);
  const bool good = trace_.ProfileAccel > 1 && trace_.ProfileAccel <= LargestWord;
  SendJogWord(errand, Text3, Register::AccelerationWord, trace_.ProfileAccel, good, "10");
}

void Form3::SendJogWord(const Errand& errand, TextBox& field, Register reg, float word, bool good,
                        const char* fallback) {
  if (good) {
    Run.Write(errand, reg, word);
    return;
  }
  field.Text = fallback;
  world_.ShowMessage(
      {"Please input a value of 0-65535", MainTitle, MessageButtons::Ok, MessageIcon::Critical});
}

bool Form3::JogInForce() const {
  const auto command = link_.Known().Commands.find(Register::PositionCommand);
  if (command == link_.Known().Commands.end()) return false;
  const float word = command->second.Word;
  return word == JogWords[Clockwise] || word == JogWords[CounterClockwise];
}

// The release that comes while this waits sends nothing: it leaves word in JogState, and the stop
// goes out from here, behind the jog command. A bad field does not keep the motor from turning,
// with what its register last held.
void Form3::PressJog(JogButton button) {
  const RunScheme::MotorErrand motor(Run);
  const Errand& errand = motor.Own();
  const std::uint64_t press = ++jogPresses_;
  const auto followed = [&] { return jogPresses_ != press; };
  jogOwner_ = button;
  jogHeld_[button] = true;
  JogState[button] = JogPressed;
  SetJogVelocity(errand);
  if (!errand.Over() && !followed()) SetJogAcceleration(errand);
  if (followed()) return;
  if (errand.Over()) {
    // The release, this one's or the other button's, may have left the stop to this press.
    if (!JogHeld() && JogInForce()) WriteJogStop(errand);
    JogState[button] = JogSettled;
    return;
  }

  // Not sent again once the button was released: it must not follow a stop.
  const auto released = [&](int frames) { return frames > 0 && JogState[button] == JogReleased; };
  const Sent sent =
      link_.Write(errand, Register::PositionCommand, JogWords[button], {.Withdrawn = released});
  if (followed()) return;
  if (errand.Over() || JogState[button] == JogReleased) {
    WriteJogStop(errand);
  } else if (sent == Sent::Lost) {
    Run.ReportLinkFailure(errand);
  } else if (JogState[button] == JogPressed) {
    JogState[button] = JogSettled;
  }
}

void Form3::ReleaseJog(JogButton button) {
  jogHeld_[button] = false;
  if (JogState[button] == JogPressed) {
    JogState[button] = JogReleased;
    // Otherwise the press is at work, and stops the motor by itself; below a message it would have
    // to wait for the answer.
    if (!world_.AwaitsAnswer() || !JogInForce()) return;
  }
  // The motor is the other button's by now.
  if (jogOwner_ != button && JogHeld()) return;
  const RunScheme::MotorErrand motor(Run);
  WriteJogStop(motor.Own());
}

void Form3::WriteJogStop(const Errand& errand) {
  if (link_.Write(errand, Register::PositionCommand, RunScheme::StopWord) == Sent::Lost) {
    Run.ReportLinkFailure(errand);
  }
}

}  // namespace gainsmith
