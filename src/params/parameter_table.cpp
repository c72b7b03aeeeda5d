// The rows of the parameter table, and what is derived from them when the tool is compiled.
#include "params/parameter_table.h"

#include "platform/number_text.h"

namespace gainsmith {
namespace {

// Names and ranges stand as the system spells them, trailing blanks included.
// clang-format off
constexpr std::array<ParameterRow, ParameterCount> Rows{{
    {Slot::CurrentKp, "0", Register::CurrentKp,
     "Current Loop Proportional Gain", "0~32767", 1, NoPattern,
     SettingGroup::CurrentLoop, "Proportional gain Kp", ""},
    {Slot::CurrentKi, "1", Register::CurrentKi,
     "Current Loop Integral Gain", "0~32767", 1, NoPattern,
     SettingGroup::CurrentLoop, "Integral gain Ki", ""},
    {Slot::VelocityKpHigh, "1F", Register::VelocityKpHigh,
     "Velocity Loop High Speed Proportional Gain", "0~32767", 1, NoPattern,
     SettingGroup::VelocityLoop, "Proportional gain Vp, high speed", ""},
    {Slot::VelocityKiHigh, "20", Register::VelocityKiHigh,
     "Velocity Loop High Speed Integral Gain", "0~32767", 1, NoPattern,
     SettingGroup::VelocityLoop, "Integral gain Vi, high speed", ""},
    {Slot::KaffHigh, "D", Register::KaffHigh,
     "Acceleration High Speed Feed-forward Gain Kaff", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Acceleration feed-forward, high speed", ""},
    {Slot::PositionKpHigh, "6", Register::PositionKpHigh,
     "Position Loop High Speed Proportoinal Gain", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Proportional gain Kp, high speed", ""},
    {Slot::PositionKiHigh, "7", Register::PositionKiHigh,
     "Position Loop High Speed Integral Gain", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Integral gain Ki, high speed", ""},
    {Slot::PositionKdHigh, "8", Register::PositionKdHigh,
     "Position Loop High Speed Derivative Gain", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Derivative gain Kd, high speed", ""},
    {Slot::KvffHigh, "21", Register::KvffHigh,
     "Velocity High Speed Feed-forward Gain Kvff", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Velocity feed-forward, high speed", ""},
    {Slot::GearNumerator, "E", Register::GearNumerator,
     "Electroinc Gear Numerator", "1~32767", 1, NoPattern,
     SettingGroup::Gear, "Denominator", ""},
    {Slot::GearDenominator, "F", Register::GearDenominator,
     "Electroinc Gear Denominator", "1~32767", 1, NoPattern,
     SettingGroup::Gear, "Numerator", ""},
    {Slot::FollowingErrorLimit, "12", Register::FollowingErrorLimit,
     "Position Following Error Limit", "0~32767", 1, NoPattern,
     SettingGroup::Limits, "Position following error limit", "pulses"},
    {Slot::VelocityKpLow, "2E", Register::VelocityKpLow,
     "Velocity Loop Low Speed Proportional Gain", "0~32767", 1, NoPattern,
     SettingGroup::VelocityLoop, "Proportional gain Vp, low speed", ""},
    {Slot::VelocityKiLow, "2F", Register::VelocityKiLow,
     "Velocity Loop Low Speed Integral Gain", "0~32767", 1, NoPattern,
     SettingGroup::VelocityLoop, "Integral gain Vi, low speed", ""},
    {Slot::KaffLow, "30", Register::KaffLow,
     "Acceleration Low Speed Feed-forward Gain Kaff", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Acceleration feed-forward, low speed", ""},
    {Slot::PositionKpLow, "2A", Register::PositionKpLow,
     "Position Loop Low Speed Proportoinal Gain", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Proportional gain Kp, low speed", ""},
    {Slot::PositionKiLow, "2B", Register::PositionKiLow,
     "Position Loop Low Speed Integral Gain", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Integral gain Ki, low speed", ""},
    {Slot::PositionKdLow, "2C", Register::PositionKdLow,
     "Position Loop Low Speed Derivative Gain", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Derivative gain Kd, low speed", ""},
    {Slot::KvffLow, "2D", Register::KvffLow,
     "Velocity Low Speed Feed-forward Gain Kvff", "0~32767", 1, NoPattern,
     SettingGroup::PositionLoop, "Velocity feed-forward, low speed", ""},
    {Slot::InPosition, "31", Register::InPosition,
     "In-Position", "0~1000", 1, NoPattern,
     SettingGroup::Limits, "In-position window", "pulses"},
    {Slot::EncoderCounts, "13", Register::EncoderCounts,
     "Pulses Count Per one motor shaft Revolution", "0~32767", 1, NoPattern,
     SettingGroup::Motor, "Encoder resolution", "pulses/rev"},
    {Slot::PolePairs, "22", Register::PolePairs,
     "Motor Pole Pairs", "1~32767", 1, NoPattern,
     SettingGroup::Motor, "Pole pairs", ""},
    {Slot::PulseEdge, "*", Register::Flags,
     "Pulse Effective Edge", "0~1;0:Up-rising Edge,1:Falling Edge", 1, NoPattern,
     SettingGroup::Flags, "Active pulse edge", ""},
    {Slot::OperatingMode, "*", Register::Flags,
     "Operating Mode", "0~2;0:Position Mode,1:Velocity Mode,2:Torque Mode", 1, NoPattern,
     SettingGroup::Flags, "Operating mode", ""},
    {Slot::EnablePolarity, "*", Register::Flags,
     "Enable Input Polarity", "0~1;0:Low Level,1:High Level", 1, NoPattern,
     SettingGroup::Flags, "Enable signal", ""},
    {Slot::AlarmPolarity, "*", Register::Flags,
     "Alarm Output Polarity", "0~1;1:Low Level,0:High Level", 1, NoPattern,
     SettingGroup::Flags, "Alarm signal", ""},
    {Slot::EndLimitPolarity, "*", Register::Flags,
     "End Limit Input Polarity", "0~1;0:Low Level,1:High Level", 1, NoPattern,
     SettingGroup::Flags, "End limit", ""},
    {Slot::InPositionPolarity, "*", Register::Flags,
     "In-positon Output Polarity", "0~1;0:Low Level,1:High Level", 1, NoPattern,
     SettingGroup::Flags, "In-position signal", ""},
    {Slot::DirectionPolarity, "*", Register::Flags,
     "Direction Input Polarity", "0~1;0:Positive,1:Negative", 1, NoPattern,
     SettingGroup::Flags, "Direction", ""},
    {Slot::RatedPower, "FC", Register::RatedPower,
     "Motor Rated Power", "400W.750W.1000W.1500W", 1, NoPattern,
     SettingGroup::Motor, "Rated power", "W"},
    {Slot::Resistance, "F7", Register::Resistance,
     "Motor Phase Resistance", "0.01~327ohms", 100, 2,
     SettingGroup::Motor, "Phase resistance", "ohm"},
    {Slot::Inductance, "F8", Register::Inductance,
     "Motor Phase Inductance", "0.01~327mH", 100, 2,
     SettingGroup::Motor, "Phase inductance", "mH"},
    {Slot::BackEmf, "F9", Register::BackEmf,
     "Motor Back EMF Constant", "0.01~327V/Krpm", 100, 2,
     SettingGroup::Motor, "Back EMF constant", "V/krpm"},
    {Slot::TorqueConstant, "FA", Register::TorqueConstant,
     "Motor Torque Constant", "0.01~327Nm/A", 1000, 3,
     SettingGroup::Motor, "Torque constant", "Nm/A"},
    {Slot::Inertia, "FB", Register::Inertia,
     "Motor Inertia", "0.00001~0.99999kg-cm2", 100000, 5,
     SettingGroup::Motor, "Inertia", "kg cm²"},
    {Slot::InputSmoothing, "33", Register::InputSmoothing,
     "Input Smoothing ", "0~7", 1, NoPattern,
     SettingGroup::Analog, "Input smoothing", ""},
    {Slot::VelocityFilterHz, "34", Register::VelocityFilterHz,
     "Velocity Sampling Filter Cut-off Frequency", "0~6000", 1, NoPattern,
     SettingGroup::VelocityLoop, "Velocity filter cut-off", "Hz"},
    {Slot::CurrentReferenceHz, "35", Register::CurrentReferenceHz,
     "Current Reference Cut-off Frequency", "0~1500", 1, NoPattern,
     SettingGroup::CurrentLoop, "Current reference cut-off", "Hz"},
    {Slot::VelocityReferenceHz, "36", Register::VelocityReferenceHz,
     "Velocity Reference Cut-off Frequency", "0~600", 1, NoPattern,
     SettingGroup::VelocityLoop, "Velocity reference cut-off", "Hz"},
    {Slot::Trap1Width, "EE", Register::Trap1Width,
     "1st Trap Filter Band Width", "1~20Hz", 1, NoPattern,
     SettingGroup::VelocityLoop, "1st trap filter width", "Hz"},
    {Slot::Trap2Width, "EF", Register::Trap2Width,
     "2nd Trap Filter Band Width", "1~20Hz", 1, NoPattern,
     SettingGroup::VelocityLoop, "2nd trap filter width", "Hz"},
    {Slot::Trap1Frequency, "F0", Register::Trap1Frequency,
     "1st Trap Filter Frequency", "100~1500", 1, NoPattern,
     SettingGroup::VelocityLoop, "1st trap filter frequency", "Hz"},
    {Slot::Trap2Frequency, "F1", Register::Trap2Frequency,
     "2nd Trap Filter Frequency", "100~1500", 1, NoPattern,
     SettingGroup::VelocityLoop, "2nd trap filter frequency", "Hz"},
    {Slot::Interpolation, "37", Register::Interpolation,
     "Enable two axes interpolation", "0~1", 1, NoPattern,
     SettingGroup::Analog, "Two axes interpolation", ""},
    {Slot::AnalogDeadBand, "38", Register::AnalogDeadBand,
     "Dead Band ", "0~5000mV", 1, NoPattern,
     SettingGroup::Analog, "Dead band", "mV"},
    {Slot::AnalogOffset, "29", Register::AnalogOffset,
     "Offset", "0~10V", 1, NoPattern,
     SettingGroup::Analog, "Offset", "mV"},
    {Slot::AnalogPeakCurrent, "28", Register::AnalogPeakCurrent,
     "Peak Current", "0~10A", 10, 1,
     SettingGroup::Analog, "Peak current", "A"},
    {Slot::AnalogMaxVelocity, "27", Register::AnalogMaxVelocity,
     "MAX Velocity ", "0~6000rpm", 1, NoPattern,
     SettingGroup::Analog, "Maximum velocity", "rpm"},
    {Slot::AnalogReverse, "3A", Register::AnalogReverse,
     "Reverse analog input polarity", "0~1", 1, NoPattern,
     SettingGroup::Analog, "Reverse polarity", ""},
    {Slot::PeakCurrentLimit, "MaxCurrent", Register::PeakCurrentLimit,
     "MAX Current ", "1~16A", 100, NoPattern,
     SettingGroup::Limits, "Peak current limit", "A"},
    {Slot::RatedCurrentLimit, "RatedCurrent", Register::RatedCurrentLimit,
     "Rated Current ", "0.35~6A", 100, NoPattern,
     SettingGroup::Limits, "Continuous current limit", "A"},
}};
// clang-format on

constexpr std::array<std::string_view, 8> GroupTitles{
    "Current loop", "Velocity loop",   "Position loop", "Motor",
    "Limits",       "Electronic gear", "Analog input",  "Signals and mode"};

using Order = std::array<Slot, TransferSteps>;

constexpr std::size_t PlaceOf(Slot slot) { return static_cast<std::size_t>(slot); }

// By slot: true where it takes part in the transfers. A slot that is read twice, or a row at
// another slot's place, does not compile.
consteval std::array<bool, ParameterCount> CollectTravellers() {
  for (std::size_t i = 0; i < Rows.size(); ++i) {
    if (PlaceOf(Rows[i].Index) != i) throw "a row stands at another slot's place";
  }
  std::array<bool, ParameterCount> travels{};
  for (const Slot slot : ReadOrder) {
    if (travels.at(PlaceOf(slot))) throw "a slot is read twice";
    travels[PlaceOf(slot)] = true;
  }
  return travels;
}

constexpr std::array<bool, ParameterCount> Travellers = CollectTravellers();

consteval Order InSlotOrder() {
  Order order{};
  std::size_t step = 0;
  for (const ParameterRow& row : Rows) {
    if (Travellers[PlaceOf(row.Index)]) order[step++] = row.Index;
  }
  return order;
}

constexpr Order Writes = InSlotOrder();

consteval std::array<Slot, ParameterCount> CollectByGroup() {
  std::array<Slot, ParameterCount> order{};
  std::size_t place = 0;
  for (std::size_t group = 0; group < GroupTitles.size(); ++group) {
    for (const ParameterRow& row : Rows) {
      if (static_cast<std::size_t>(row.Group) == group) order[place++] = row.Index;
    }
  }
  if (place != ParameterCount) throw "a row belongs to no group";
  return order;
}

constexpr std::array<Slot, ParameterCount> Listed = CollectByGroup();

consteval std::array<std::string_view, ParameterCount> CollectKeys() {
  std::array<std::string_view, ParameterCount> keys;
  for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = Rows[i].Key;
  return keys;
}

}  // namespace

constexpr std::array<std::string_view, ParameterCount> ParameterKeys = CollectKeys();

std::span<const ParameterRow, ParameterCount> ParameterRows() { return Rows; }

const ParameterRow& RowOf(Slot slot) { return Rows[PlaceOf(slot)]; }

std::string_view TitleOf(SettingGroup group) {
  return GroupTitles[static_cast<std::size_t>(group)];
}

std::span<const Slot, ParameterCount> ListOrder() { return Listed; }

std::span<const Slot, TransferSteps> WriteOrder() { return Writes; }

bool Travels(Slot slot) { return Travellers[PlaceOf(slot)]; }

float RawToValue(Slot slot, std::uint16_t raw) {
  const ParameterRow& row = RowOf(slot);
  const double quotient = static_cast<double>(raw) / row.Scale;
  const bool rounded = row.PatternDecimals != NoPattern;
  return static_cast<float>(rounded ? RoundHalfAwayFromZero(quotient, row.PatternDecimals)
                                    : quotient);
}

float ValueToRaw(Slot slot, float value) {
  return static_cast<float>(static_cast<double>(value) * RowOf(slot).Scale);
}

}  // namespace gainsmith
