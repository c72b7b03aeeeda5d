// The parameter table: what each slot of ParameterValues is, and how it travels.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "link/registers.h"
#include "params/parameter_store.h"

namespace gainsmith {

// The quotient of RawToValue goes straight into the float.
constexpr int NoPattern = -1;

// The slots of the bulk read in its order: by register, with exceptions. The flags word is read in
// the row of the pulse edge. The bulk download writes the same slots.
inline constexpr std::array ReadOrder{
    Slot::CurrentKp,
    Slot::CurrentKi,
    Slot::PositionKpHigh,
    Slot::PositionKiHigh,
    Slot::PositionKdHigh,
    Slot::KaffHigh,
    Slot::GearNumerator,
    Slot::GearDenominator,
    Slot::FollowingErrorLimit,
    Slot::EncoderCounts,
    Slot::VelocityKpHigh,
    Slot::VelocityKiHigh,
    Slot::KvffHigh,
    Slot::PolePairs,
    Slot::PositionKpLow,
    Slot::PositionKiLow,
    Slot::PositionKdLow,
    Slot::KvffLow,
    Slot::VelocityKpLow,
    Slot::VelocityKiLow,
    Slot::KaffLow,
    Slot::Trap1Frequency,
    Slot::Trap2Frequency,
    Slot::Resistance,
    Slot::Inductance,
    Slot::BackEmf,
    Slot::TorqueConstant,
    Slot::Inertia,
    Slot::RatedPower,
    Slot::PulseEdge,
    Slot::InPosition,
    Slot::InputSmoothing,
    Slot::VelocityFilterHz,
    Slot::CurrentReferenceHz,
    Slot::VelocityReferenceHz,
    Slot::Trap1Width,
    Slot::Interpolation,
    Slot::AnalogDeadBand,
    Slot::AnalogOffset,
    Slot::AnalogPeakCurrent,
    Slot::AnalogMaxVelocity,
    Slot::AnalogReverse,
    Slot::PeakCurrentLimit,
    Slot::RatedCurrentLimit,
};

// Exchanges of a bulk read, and writes of a bulk download.
constexpr int TransferSteps = static_cast<int>(ReadOrder.size());

// What a setting belongs to, in the order in which settings are listed for a reader.
enum class SettingGroup {
  CurrentLoop,
  VelocityLoop,
  PositionLoop,
  Motor,
  Limits,
  Gear,
  Analog,
  Flags
};
// As a heading: "Velocity loop".
std::string_view TitleOf(SettingGroup group);

// One row for each slot, in slot order. Readers and writers derive from it.
struct ParameterRow {
  Slot Index;
  // First field of the slot's line in a configuration file.
  std::string_view Key;
  Register Source;
  // Name and setting range as the grid shows them. The range is for the eye: no code tests it.
  std::string_view Name;
  std::string_view Range;
  // Engineering value x Scale = register value.
  int Scale;
  // Digits behind the point of the pattern that rounds a value read; NoPattern: none.
  int PatternDecimals;
  // For a reader: group, name inside it, and unit of the engineering value, which may be empty.
  // Where the grid and the properties window name a register differently these follow the latter.
  SettingGroup Group;
  std::string_view PlainName;
  std::string_view Unit;
};

std::span<const ParameterRow, ParameterCount> ParameterRows();
const ParameterRow& RowOf(Slot slot);

// All slots in the order in which they are listed for a reader: by group.
std::span<const Slot, ParameterCount> ListOrder();

// The slots of the bulk download, in slot order.
std::span<const Slot, TransferSteps> WriteOrder();

// The slot takes part in the bulk read and in the bulk download.
bool Travels(Slot slot);

// The keys of a configuration file, in slot order.
extern const std::array<std::string_view, ParameterCount> ParameterKeys;

// Engineering value of a register's raw value: raw / Scale, by way of the text of the row's
// pattern where it has one, so that ValueToRaw of it packs as `raw` again.
float RawToValue(Slot slot, std::uint16_t raw);

// What goes to the link for the engineering value of a slot: value x Scale in 64 bits, stored in
// 32. It is rounded only when it is packed, and may lie outside what can be packed.
float ValueToRaw(Slot slot, float value);

}  // namespace gainsmith
