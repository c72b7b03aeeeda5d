// ParameterStore: the drive's settings as the tool knows them, in engineering units.
#pragma once

#include <array>
#include <cstddef>

namespace gainsmith {

// Slots of ParameterValues. Units and scales: params/parameter_table.h.
enum class Slot : std::size_t {
  CurrentKp = 0,
  CurrentKi = 1,
  VelocityKpHigh = 2,
  VelocityKiHigh = 3,
  KaffHigh = 4,
  PositionKpHigh = 5,
  PositionKiHigh = 6,
  PositionKdHigh = 7,
  KvffHigh = 8,
  GearNumerator = 9,
  GearDenominator = 10,
  FollowingErrorLimit = 11,
  VelocityKpLow = 12,
  VelocityKiLow = 13,
  KaffLow = 14,
  PositionKpLow = 15,
  PositionKiLow = 16,
  PositionKdLow = 17,
  KvffLow = 18,
  InPosition = 19,
  EncoderCounts = 20,
  PolePairs = 21,
  PulseEdge = 22,  // or the whole flags word: HoldsFlagsWord
  OperatingMode = 23,
  EnablePolarity = 24,
  AlarmPolarity = 25,
  EndLimitPolarity = 26,
  InPositionPolarity = 27,
  DirectionPolarity = 28,
  RatedPower = 29,
  Resistance = 30,
  Inductance = 31,
  BackEmf = 32,
  TorqueConstant = 33,
  Inertia = 34,
  InputSmoothing = 35,
  VelocityFilterHz = 36,
  CurrentReferenceHz = 37,
  VelocityReferenceHz = 38,
  Trap1Width = 39,
  Trap2Width = 40,  // never exchanged; 0 after every read
  Trap1Frequency = 41,
  Trap2Frequency = 42,
  Interpolation = 43,
  AnalogDeadBand = 44,
  AnalogOffset = 45,
  AnalogPeakCurrent = 46,
  AnalogMaxVelocity = 47,
  AnalogReverse = 48,
  PeakCurrentLimit = 49,
  RatedCurrentLimit = 50,
};

// Rows of the parameter table; one more slot exists and is never used.
constexpr std::size_t ParameterCount = 51;

// One instance for the whole tool, zero at start. Any window may read and write any slot; nothing
// marks a slot as valid, and a disconnect clears nothing.
struct ParameterStore {
  std::array<float, ParameterCount + 1> ParameterValues{};
  // The last raw value of the flags register.
  float DriveFlagsWord = 0;
  // Slot PulseEdge holds the whole flags word, not only the bit of the pulse edge. Kept by whoever
  // fills that slot (params/drive_flags.h).
  bool HoldsFlagsWord = false;

  bool operator==(const ParameterStore&) const = default;
  float& operator[](Slot slot) { return ParameterValues[static_cast<std::size_t>(slot)]; }
  float operator[](Slot slot) const { return ParameterValues[static_cast<std::size_t>(slot)]; }
};

}  // namespace gainsmith
