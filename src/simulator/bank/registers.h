// The simulated drive's registers: their numbers on the wire and the working values behind them.
#pragma once

#include <array>
#include <cstdint>

namespace gainsmith::sim {

// Register numbers below 256 that the drive answers to. Parameters keep what is written to them
// (scales: see default values); the rest are commands and states.
enum class Reg : std::uint16_t {
  CurrentKp = 0,
  CurrentKi = 1,
  CurrentStep = 2,  // command: 1 runs the current step, 0 ends it
  TestCurrent = 4,  // amperes x 1024
  PositionKp = 6,   // high speed gains
  PositionKi = 7,
  PositionKd = 8,
  PositionCommand = 9,  // command: 0 stop, 1 jog, 5 jog the other way, 2 run the position test
  StoreEeprom = 12,     // command
  Kaff = 13,
  GearNumerator = 14,
  GearDenominator = 15,
  ErrorLog = 16,   // block read of 10: the log; write: erase
  TraceKind = 17,  // 144 two channels, 145 three channels
  FollowingErrorLimit = 18,
  EncoderCounts = 19,  // pulses per motor revolution
  ArmRecorder = 20,    // command: always 200
  AccelerationWord = 21,
  SpeedWord = 22,
  LengthHigh = 23,
  LengthLow = 24,
  RepeatCount = 25,
  SampleDivider = 26,  // 0.5 ms ticks per sample
  PauseWord = 27,
  RecorderStatus = 28,  // 1 when the recording has finished
  VelocityKp = 31,
  VelocityKi = 32,
  Kvff = 33,
  PolePairs = 34,
  VelocityCommand = 35,  // command: 2 run the velocity test, 0 stop
  AnalogMaxVelocity = 39,
  AnalogPeakCurrent = 40,  // amperes x 10
  AnalogOffset = 41,
  LowPositionKp = 42,  // low speed gains
  LowPositionKi = 43,
  LowPositionKd = 44,
  LowKvff = 45,
  LowVelocityKp = 46,
  LowVelocityKi = 47,
  LowKaff = 48,
  InPosition = 49,
  InputSmoothing = 51,
  VelocityFilterHz = 52,
  CurrentReferenceHz = 53,
  VelocityReferenceHz = 54,
  Interpolation = 55,
  DeadBandMv = 56,
  ReverseAnalog = 58,
  WatchPositionHigh = 102,  // watch addresses: 32 bits in two registers each
  WatchPositionLow = 103,   // pulses
  WatchSpeedHigh = 153,
  WatchSpeedLow = 154,  // rpm
  WatchCurrentHigh = 170,
  WatchCurrentLow = 171,  // mA
  WatchPositionErrorHigh = 187,
  WatchPositionErrorLow = 188,  // pulses
  WatchClockHigh = 204,
  WatchClockLow = 205,  // milliseconds since the start
  Trap1WidthHz = 238,
  Trap2WidthHz = 239,
  Trap1Hz = 240,
  Trap2Hz = 241,
  PeakCurrent = 245,     // amperes x 100
  RatedCurrent = 246,    // amperes x 100
  Resistance = 247,      // ohms x 100
  Inductance = 248,      // mH x 100
  BackEmf = 249,         // V/krpm x 100
  TorqueConstant = 250,  // Nm/A x 1000
  Inertia = 251,         // kg cm2 x 100000
  RatedPowerW = 252,
  Identity = 253,
  FilterSwitch = 254,  // read: version; write: 0 trap filters on, 1 off
  Flags = 255,
};

// Working values of the registers 0 to 255. Plain storage: side effects of a write are the drive's.
struct RegisterBank {
  std::array<std::uint16_t, 256> Values{};
  std::uint16_t& operator[](Reg reg) { return Values[static_cast<std::size_t>(reg)]; }
  std::uint16_t operator[](Reg reg) const { return Values[static_cast<std::size_t>(reg)]; }
};

}  // namespace gainsmith::sim
