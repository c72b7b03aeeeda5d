// The gains of the velocity and position loops in physical units, and the choice between the two
// sets.
#pragma once

#include "simulator/bank/registers.h"

namespace gainsmith::sim {

// One gain set. Registers of the high and the low speed set, and what a unit of each is:
struct MotionGains {
  double PositionKp = 0.0;  // 6, 42: 0.1 1/s
  double PositionKi = 0.0;  // 7, 43: 1 1/s2
  double PositionKd = 0.0;  // 8, 44: 0.001
  double Kvff = 0.0;        // 33, 45: 0.001, so that 1000 feeds the whole speed forward
  double VelocityKp = 0.0;  // 31, 46, in A/rpm: 1/16 count a rpm, with 1024 counts an ampere
  double VelocityKi = 0.0;  // 32, 47, in A/(rpm s): 8 counts
  // 13, 48, in A s2/rad: 1000 feeds forward the current that accelerates the rotor alone, as
  // registers 250 and 251 describe it. A load needs more in proportion.
  double Kaff = 0.0;
};

MotionGains ReadHighSpeedGains(const RegisterBank& registers);
MotionGains ReadLowSpeedGains(const RegisterBank& registers);

// The low set up to LowSpeedRpm of commanded speed, the high set from HighSpeedRpm on, and in
// between a straight line from one to the other, so that no gain ever jumps.
constexpr double LowSpeedRpm = 15.0;
constexpr double HighSpeedRpm = 45.0;
MotionGains GainsAt(double commandedRpm, const MotionGains& low, const MotionGains& high);

}  // namespace gainsmith::sim
