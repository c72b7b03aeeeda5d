// What settings say in words.
#include "params/setting_text.h"

#include <algorithm>
#include <array>

#include "link/frames.h"
#include "params/drive_flags.h"
#include "params/parameter_table.h"
#include "platform/number_text.h"

namespace gainsmith {
namespace {

struct FlagWords {
  Slot Index;
  const char* Clear;
  const char* Set;
};

// The grid names some of these the other way round.
constexpr std::array<FlagWords, FlagBits.size()> Words{{
    {Slot::PulseEdge, "rising edge", "falling edge"},
    {Slot::DirectionPolarity, "negative", "positive"},
    {Slot::EndLimitPolarity, "active low", "active high"},
    {Slot::EnablePolarity, "active low", "active high"},
    {Slot::AlarmPolarity, "active high", "active low"},
    {Slot::InPositionPolarity, "active low", "active high"},
}};

bool IsSwitch(Slot slot) { return slot == Slot::Interpolation || slot == Slot::AnalogReverse; }

bool IsSet(const ParameterStore& store, Slot slot) {
  const double value = RoundHalfToEven(store[slot]);
  if (slot != Slot::PulseEdge || !store.HoldsFlagsWord) return value != 0;
  return (static_cast<unsigned>(value) & flags::PulseEdge) != 0;
}

std::string ModeText(float mode) {
  if (mode == PositionModeValue) return "position mode";
  if (mode == TorqueModeValue) return "torque mode";
  if (mode == VelocityModeValue) return "velocity mode";
  return PlainText(mode);
}

}  // namespace

std::string SettingText(const ParameterStore& store, Slot slot) {
  if (slot == Slot::Trap2Width) return "not read";
  if (slot == Slot::OperatingMode) return ModeText(store[slot]);
  if (IsSwitch(slot)) return store[slot] == 0 ? "off" : "on";
  for (const FlagWords& words : Words) {
    if (words.Index == slot) return IsSet(store, slot) ? words.Set : words.Clear;
  }
  return PlainText(store[slot]);
}

bool SameSetting(const ParameterStore& left, const ParameterStore& right, Slot slot) {
  if (slot == Slot::Trap2Width) return true;
  if (RowOf(slot).Source == Register::Flags) {
    return SettingText(left, slot) == SettingText(right, slot);
  }
  const auto leftWord = PackWord(ValueToRaw(slot, left[slot]));
  const auto rightWord = PackWord(ValueToRaw(slot, right[slot]));
  return leftWord == rightWord && (leftWord || left[slot] == right[slot]);
}

}  // namespace gainsmith
