// The drive's flags word, register Flags: its bits, and the slots that they fill.
#pragma once

#include <array>
#include <cstdint>

#include "params/parameter_store.h"

namespace gainsmith {

namespace flags {
constexpr std::uint16_t PulseMode = 0x0001;  // has no slot
constexpr std::uint16_t PulseEdge = 0x0002;
constexpr std::uint16_t Direction = 0x0004;
constexpr std::uint16_t EndLimit = 0x0008;
constexpr std::uint16_t ModeMask = 0x0030;
constexpr std::uint16_t PositionMode = 0x0000;
constexpr std::uint16_t VelocityMode = 0x0010;  // by the name of the properties window
constexpr std::uint16_t TorqueMode = 0x0020;
constexpr std::uint16_t Enable = 0x0040;
constexpr std::uint16_t Alarm = 0x0080;
constexpr std::uint16_t InPosition = 0x0100;
}  // namespace flags

// Slot::OperatingMode as the table holds it.
constexpr float PositionModeValue = 0;
constexpr float TorqueModeValue = 1;
constexpr float VelocityModeValue = 2;

struct FlagBit {
  std::uint16_t Mask;
  Slot Index;
};

// The bits that are a slot of their own: 1 when set, 0 when clear.
inline constexpr std::array<FlagBit, 6> FlagBits{{
    {flags::PulseEdge, Slot::PulseEdge},
    {flags::Direction, Slot::DirectionPolarity},
    {flags::EndLimit, Slot::EndLimitPolarity},
    {flags::Enable, Slot::EnablePolarity},
    {flags::Alarm, Slot::AlarmPolarity},
    {flags::InPosition, Slot::InPositionPolarity},
}};

// The three ways in which slot PulseEdge is filled; each says whether it holds the word or the bit.

// Keeps the word as DriveFlagsWord and expands it into the slots from PulseEdge to
// DirectionPolarity. Both mode bits set leave OperatingMode as it was.
void TakeDriveFlags(ParameterStore& store, std::uint16_t word);

// The same as the properties window leaves it: PulseEdge holds the whole word.
void TakeWholeDriveFlags(ParameterStore& store, std::uint16_t word);

// A file has filled the slots, perhaps the first of them only. It does not say what its PulseEdge
// is: above 1 it is the whole word; 1 is the whole word where the other flags are 0 and the last
// DriveFlagsWord was 1 too.
void TakeFileFlags(ParameterStore& store);

// What a download sends for the slots from PulseEdge to DirectionPolarity, all of which can be
// packed. A whole flags word is sent as it is. Otherwise it is DriveFlagsWord with the bits of the
// slots put in (0 clears, anything else sets); bits without a slot are kept, and so are the mode
// bits where OperatingMode is not 0, 1 or 2.
float FlagsToSend(const ParameterStore& store);

}  // namespace gainsmith
