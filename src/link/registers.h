// Registers: the one table of drive registers that the tool uses.
//
// Every register is one 16-bit word, unsigned unless it says otherwise. R is read, W is written. A
// scale is the factor from engineering value to register value; without one the value is a plain
// integer. Parameters are also rows of the parameter table (params/parameter_table.h).
#pragma once

#include <cstdint>

namespace gainsmith {

enum class Register : std::uint16_t {
  // Parameters, R W.
  CurrentKp = 0x00,
  CurrentKi = 0x01,
  PositionKpHigh = 0x06,
  PositionKiHigh = 0x07,
  PositionKdHigh = 0x08,
  KaffHigh = 0x0D,
  GearNumerator = 0x0E,    // the properties window shows it under "Denominator"
  GearDenominator = 0x0F,  // the properties window shows it under "Numerator"
  FollowingErrorLimit = 0x12,
  EncoderCounts = 0x13,  // pulses per motor revolution
  VelocityKpHigh = 0x1F,
  VelocityKiHigh = 0x20,
  KvffHigh = 0x21,
  PolePairs = 0x22,
  AnalogMaxVelocity = 0x27,  // rpm
  AnalogPeakCurrent = 0x28,  // A x 10
  AnalogOffset = 0x29,
  PositionKpLow = 0x2A,
  PositionKiLow = 0x2B,
  PositionKdLow = 0x2C,
  KvffLow = 0x2D,
  VelocityKpLow = 0x2E,
  VelocityKiLow = 0x2F,
  KaffLow = 0x30,
  InPosition = 0x31,
  InputSmoothing = 0x33,
  VelocityFilterHz = 0x34,
  CurrentReferenceHz = 0x35,
  VelocityReferenceHz = 0x36,
  Interpolation = 0x37,   // 0 or 1
  AnalogDeadBand = 0x38,  // mV
  AnalogReverse = 0x3A,   // 0 or 1
  Trap1Width = 0xEE,
  Trap2Width = 0xEF,  // has a row in the parameter table and is never exchanged
  Trap1Frequency = 0xF0,
  Trap2Frequency = 0xF1,
  PeakCurrentLimit = 0xF5,   // A x 100
  RatedCurrentLimit = 0xF6,  // A x 100
  Resistance = 0xF7,         // ohms x 100
  Inductance = 0xF8,         // mH x 100
  BackEmf = 0xF9,            // V/Krpm x 100
  TorqueConstant = 0xFA,     // Nm/A x 1000
  Inertia = 0xFB,            // x 100000
  RatedPower = 0xFC,         // W: 400, 750, 1000 or 1500
  Flags = 0xFF,              // flags word, see params/drive_flags.h

  // Commands and tests; none is a parameter.
  CurrentStep = 2,        // W: 1 runs the current step, 0 ends the test mode
  TestCurrent = 4,        // W: A x 1024
  PositionCommand = 9,    // W: 0 stop, 1 jog, 5 jog the other way, 2 run the position test
  StoreEeprom = 12,       // W: 1; the reply takes long
  ErrorLog = 16,          // R: 10 registers, the log; W: 0 erases the current error, 1 all
  TraceKind = 17,         // W: 144 two channels, 145 three channels
  ArmRecorder = 20,       // W: always 200, the samples of each channel
  AccelerationWord = 21,  // W: this and the next, see tuning/pulse_generator.h
  SpeedWord = 22,
  LengthHigh = 23,
  LengthLow = 24,
  RepeatCount = 25,
  TraceTime = 26,  // W: 1 to 30, drive ticks of 0.5 ms per sample
  PauseWord = 27,
  RecorderStatus = 28,   // R: 1 when the recording has finished
  VelocityCommand = 35,  // W: 2 run the velocity test, 0 stop
  Watch1 = 0x66,         // R: two registers each; the test console's five watch addresses
  Watch2 = 0x99,
  Watch3 = 0xAA,
  Watch4 = 0xBB,
  Watch5 = 0xCC,
  Identity1 = 253,     // R: read once at connect
  Identity2 = 254,     // R: read once at connect
  FilterSwitch = 254,  // W: the same register: 0 filter on, 1 filter off
  Samples = 256,       // R: the recorder's sample memory begins here; signed, in blocks of 50
};

// Register `offset` places behind `base`.
constexpr Register operator+(Register base, int offset) {
  return static_cast<Register>(static_cast<int>(base) + offset);
}

// The test profile's registers serve no other purpose on writing; read together from ErrorLog on
// they are the log.
constexpr int ErrorLogEntries = 10;

}  // namespace gainsmith
