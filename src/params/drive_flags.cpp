// The flags word taken apart into slots, and put together for a download.
#include "params/drive_flags.h"

#include <optional>

#include "platform/number_text.h"

namespace gainsmith {
namespace {

std::optional<std::uint16_t> ModeBits(double mode) {
  if (mode == PositionModeValue) return flags::PositionMode;
  if (mode == TorqueModeValue) return flags::TorqueMode;
  if (mode == VelocityModeValue) return flags::VelocityMode;
  return std::nullopt;
}

}  // namespace

void TakeDriveFlags(ParameterStore& store, std::uint16_t word) {
  store.DriveFlagsWord = word;
  store.HoldsFlagsWord = false;
  for (const FlagBit& bit : FlagBits) store[bit.Index] = (word & bit.Mask) != 0 ? 1.0F : 0.0F;
  switch (word & flags::ModeMask) {
    case flags::PositionMode:
      store[Slot::OperatingMode] = PositionModeValue;
      break;
    case flags::VelocityMode:
      store[Slot::OperatingMode] = VelocityModeValue;
      break;
    case flags::TorqueMode:
      store[Slot::OperatingMode] = TorqueModeValue;
      break;
    default:
      break;
  }
}

void TakeWholeDriveFlags(ParameterStore& store, std::uint16_t word) {
  TakeDriveFlags(store, word);
  store[Slot::PulseEdge] = word;
  store.HoldsFlagsWord = true;
}

void TakeFileFlags(ParameterStore& store) {
  bool othersClear = store[Slot::OperatingMode] == PositionModeValue;
  for (const FlagBit& bit : FlagBits) {
    if (bit.Index != Slot::PulseEdge) othersClear = othersClear && store[bit.Index] == 0;
  }
  const double first = RoundHalfToEven(store[Slot::PulseEdge]);
  const bool pulseModeAlone =
      first == flags::PulseMode && othersClear && store.DriveFlagsWord == flags::PulseMode;
  store.HoldsFlagsWord = first > 1 || pulseModeAlone;
}

float FlagsToSend(const ParameterStore& store) {
  if (store.HoldsFlagsWord) return store[Slot::PulseEdge];
  auto word = static_cast<std::uint16_t>(store.DriveFlagsWord);
  for (const FlagBit& bit : FlagBits) {
    const bool set = RoundHalfToEven(store[bit.Index]) != 0;
    word = static_cast<std::uint16_t>(set ? word | bit.Mask : word & ~bit.Mask);
  }
  if (const auto mode = ModeBits(RoundHalfToEven(store[Slot::OperatingMode]))) {
    word = static_cast<std::uint16_t>((word & ~flags::ModeMask) | *mode);
  }
  return word;
}

}  // namespace gainsmith
