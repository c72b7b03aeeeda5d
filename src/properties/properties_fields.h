// The fields of sysConfigFrm as tables: which slot each one shows, and what it may hold. Register
// and scale of a slot are in the parameter table.
#pragma once

#include <array>

#include "params/drive_flags.h"
#include "properties/properties_window.h"

namespace gainsmith {

// Fields that commit on Enter within a range, in the order of their reading.
struct MotorField {
  TextBox sysConfigFrm::*Field;
  Slot Kept;
  int ShownDecimals;
  // A value must lie below it, and not below 0.
  double Limit;
  const char* LimitText;
  int WrittenDecimals;
};
inline constexpr std::array<MotorField, 5> MotorFields{{
    {&sysConfigFrm::Text3, Slot::Resistance, 2, 327.67, " value should be 0-327.67", 2},
    {&sysConfigFrm::Text4, Slot::Inductance, 2, 327.67, " value should be 0-327.67", 2},
    {&sysConfigFrm::Text7, Slot::BackEmf, 2, 327.67, " value should be 0-327.67", 2},
    {&sysConfigFrm::Text5, Slot::TorqueConstant, 3, 32.767, " value should be 0-32.767", 3},
    {&sysConfigFrm::Text6, Slot::Inertia, 6, 0.32767, " value should be 0-0.32767", 5},
}};

// Text1(0) to Text1(3), in the order of reading, checking and writing.
struct PlainField {
  sysConfigFrm::TextIndex Index;
  Slot Kept;
  double Least;
  bool LeastFits;
  double Most;
  const char* Message;
};
inline constexpr std::array<PlainField, 4> PlainFields{{
    {sysConfigFrm::Denominator, Slot::GearNumerator, 0, false, 255,
     "Denominator should be an integer value of 1-255"},
    {sysConfigFrm::Numerator, Slot::GearDenominator, 0, false, 255,
     "Nominator should be an integer value of 1-255"},
    {sysConfigFrm::FollowingErrorLimit, Slot::FollowingErrorLimit, 0, true, 65535,
     "Position Following Error Limit value should be an integer value of 0-65,535"},
    {sysConfigFrm::EncoderResolution, Slot::EncoderCounts, 400, true, 60000,
     "Encoder Resolution value should be an integer value of 400-60,000"},
}};

// The current limits. One that the drive reports as 0 is hidden, and neither checked nor written.
struct LimitField {
  TextBox sysConfigFrm::*Field;
  Label sysConfigFrm::*Caption;
  Slot Kept;
  double Least;
  double Most;
  const char* Message;
};
inline constexpr std::array<LimitField, 2> LimitFields{{
    {&sysConfigFrm::txtMaxCurrent, &sysConfigFrm::Label16, Slot::PeakCurrentLimit, 1, 16,
     "Peak Current Limit value should be 1-16A"},
    {&sysConfigFrm::txtRatedCurrent, &sysConfigFrm::Label18, Slot::RatedCurrentLimit, 0.35, 6,
     "The Continuous Current value should be 0.35-6A"},
}};

// Fields of the analog group that commit on Enter, in the order of their reading.
struct AnalogField {
  TextBox sysConfigFrm::*Field;
  Slot Kept;
  // Digits behind the point, shown and written; a field without is not rounded when it is written.
  int Decimals;
};
inline constexpr std::array<AnalogField, 3> AnalogFields{{
    {&sysConfigFrm::Text10, Slot::AnalogPeakCurrent, 1},
    {&sysConfigFrm::Text9, Slot::AnalogOffset, 0},
    {&sysConfigFrm::Text11, Slot::AnalogMaxVelocity, 0},
}};

// The option that shows each state of a bit of the flags word. Those marked so reach the drive
// with OK.
struct FlagOption {
  std::uint16_t Mask;
  sysConfigFrm::OptionIndex WhenClear;
  sysConfigFrm::OptionIndex WhenSet;
  bool Applied;
};
inline constexpr std::array<FlagOption, 7> FlagOptions{{
    {flags::PulseEdge, sysConfigFrm::UpRisingEdge, sysConfigFrm::FallingEdge, true},
    {flags::PulseMode, sysConfigFrm::PulseAndDirection, sysConfigFrm::NoOption, false},
    {flags::Direction, sysConfigFrm::DirectionNegative, sysConfigFrm::DirectionPositive, true},
    {flags::EndLimit, sysConfigFrm::EndLimitLow, sysConfigFrm::EndLimitHigh, false},
    {flags::Alarm, sysConfigFrm::AlarmActiveHigh, sysConfigFrm::AlarmActiveLow, true},
    {flags::InPosition, sysConfigFrm::InPositionLow, sysConfigFrm::InPositionHigh, false},
    {flags::Enable, sysConfigFrm::EnableLow, sysConfigFrm::EnableHigh, true},
}};

}  // namespace gainsmith
