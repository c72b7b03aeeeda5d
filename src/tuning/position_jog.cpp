// Form3: jog, the motor turning while a button is held.
#include "platform/number_text.h"
#include "tuning/position_window.h"
#include "tuning/pulse_generator.h"

namespace gainsmith {
namespace {

constexpr float JogWords[] = {1, 5};
constexpr float StopWord = 0;
constexpr float LargestWord = 65535;

bool PassesJogKey(int key) { return key == KeyBackspace || (key >= '0' && key <= '9'); }

}  // namespace

bool Form3::Text2_KeyPress(int key) {
  if (key == KeyEnter) SetJogVelocity(Stay(*this));
  return PassesJogKey(key);
}

bool Form3::Text3_KeyPress(int key) {
  if (key == KeyEnter) SetJogAcceleration(Stay(*this));
  return PassesJogKey(key);
}

void Form3::SetJogVelocity(const Stay& stay) {
  trace_.ProfileSpeed =
      SpeedWord(LeadingNumber(Text2.Text), trace_.EncoderCounts, PositionUnits.SpeedDivisor);
  const bool good = trace_.ProfileSpeed > 0 && trace_.ProfileSpeed <= LargestWord;
  SendJogWord(stay, Text2, Register::SpeedWord, trace_.ProfileSpeed, good, "1");
}

void Form3::SetJogAcceleration(const Stay& stay) {
  trace_.ProfileAccel = AccelWord(LeadingNumber(Text3.Text), trace_.EncoderCounts,
                                  PositionUnits.AccelFirst, PositionUnits.AccelSecond);
  const bool good = trace_.ProfileAccel > 1 && trace_.ProfileAccel <= LargestWord;
  SendJogWord(stay, Text3, Register::AccelerationWord, trace_.ProfileAccel, good, "10");
}

void Form3::SendJogWord(const Stay& stay, TextBox& field, Register reg, float word, bool good,
                        const char* fallback) {
  if (good) {
    Run.Write(stay, reg, word);
    return;
  }
  field.Text = fallback;
  world_.ShowMessage(
      {"Please input a value of 0-65535", MainTitle, MessageButtons::Ok, MessageIcon::Critical});
}

// The release that comes while this waits sends nothing: it leaves word in JogState, and the stop
// goes out from here, behind the jog command. A bad field does not keep the motor from turning,
// with what its register last held.
void Form3::Jog_MouseDown(JogButton button) {
  const Stay stay(*this);
  const std::uint64_t press = ++jogPresses_[button];
  const auto followed = [&] { return jogPresses_[button] != press; };
  JogState[button] = JogPressed;
  SetJogVelocity(stay);
  if (stay.Over() || followed()) return;
  SetJogAcceleration(stay);
  if (stay.Over() || followed()) return;

  // Not sent again once the button was released: it must not follow a stop.
  const auto unwanted = [&] {
    return stay.Over() || followed() || JogState[button] == JogReleased;
  };
  const bool turning = Run.Send(Register::PositionCommand, JogWords[button], {.Abandon = unwanted});
  if (followed()) return;
  if (stay.Over() || JogState[button] == JogReleased) {
    WriteJogStop(stay, button);
  } else if (!turning) {
    Run.ReportLinkFailure(stay);
  } else if (JogState[button] == JogPressed) {
    JogState[button] = JogSettled;
  }
}

void Form3::Jog_MouseUp(JogButton button) {
  if (JogState[button] == JogPressed) {
    JogState[button] = JogReleased;
    return;
  }
  WriteJogStop(Stay(*this), button);
}

void Form3::WriteJogStop(const Stay& stay, JogButton button) {
  // A press that came meanwhile has a release of its own: the stop must not follow its command.
  const std::uint64_t press = jogPresses_[button];
  const auto followed = [&] { return jogPresses_[button] != press; };
  const bool stopped = Run.Send(Register::PositionCommand, StopWord, {.Abandon = followed});
  if (!stopped && !followed()) Run.ReportLinkFailure(stay);
}

}  // namespace gainsmith
