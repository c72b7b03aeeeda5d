// The gains of the velocity and position loops in physical units, and the choice between the two
// sets.
#include "simulator/servo/motion_gains.h"

#include <algorithm>
#include <cmath>

#include "simulator/servo/current_loop.h"

namespace gainsmith::sim {

namespace {

struct GainRegisters {
  Reg PositionKp, PositionKi, PositionKd, Kvff, VelocityKp, VelocityKi, Kaff;
};

constexpr GainRegisters HighSpeedRegisters{Reg::PositionKp, Reg::PositionKi, Reg::PositionKd,
                                           Reg::Kvff,       Reg::VelocityKp, Reg::VelocityKi,
                                           Reg::Kaff};
constexpr GainRegisters LowSpeedRegisters{
    Reg::LowPositionKp, Reg::LowPositionKi, Reg::LowPositionKd, Reg::LowKvff,
    Reg::LowVelocityKp, Reg::LowVelocityKi, Reg::LowKaff};

// What the drive believes of rotor and motor. Values below what any motor has are raised to it.
double CurrentPerAcceleration(const RegisterBank& registers) {
  constexpr double LeastInertiaKgM2 = 1e-6;
  const double inertia = std::max(LeastInertiaKgM2, registers[Reg::Inertia] / 100000.0 / 10000.0);
  return inertia / (std::max<double>(1.0, registers[Reg::TorqueConstant]) / 1000.0);
}

MotionGains ReadGains(const RegisterBank& registers, const GainRegisters& set) {
  return {.PositionKp = registers[set.PositionKp] * 0.1,
          .PositionKi = registers[set.PositionKi] * 1.0,
          .PositionKd = registers[set.PositionKd] * 0.001,
          .Kvff = registers[set.Kvff] * 0.001,
          .VelocityKp = registers[set.VelocityKp] / 32.0 / CountsPerAmpere,
          .VelocityKi = registers[set.VelocityKi] * 2.0 / CountsPerAmpere,
          .Kaff = registers[set.Kaff] * 0.001 * CurrentPerAcceleration(registers)};
}

}  // namespace

MotionGains ReadHighSpeedGains(const RegisterBank& registers) {
  return ReadGains(registers, HighSpeedRegisters);
}

MotionGains ReadLowSpeedGains(const RegisterBank& registers) {
  return ReadGains(registers, LowSpeedRegisters);
}

MotionGains GainsAt(double commandedRpm, const MotionGains& low, const MotionGains& high) {
  const double speed = std::abs(commandedRpm);
  if (speed >= HighSpeedRpm) return high;
  if (speed <= LowSpeedRpm) return low;
  const double share = (speed - LowSpeedRpm) / (HighSpeedRpm - LowSpeedRpm);
  const auto between = [share](double from, double to) { return from + share * (to - from); };
  return {.PositionKp = between(low.PositionKp, high.PositionKp),
          .PositionKi = between(low.PositionKi, high.PositionKi),
          .PositionKd = between(low.PositionKd, high.PositionKd),
          .Kvff = between(low.Kvff, high.Kvff),
          .VelocityKp = between(low.VelocityKp, high.VelocityKp),
          .VelocityKi = between(low.VelocityKi, high.VelocityKi),
          .Kaff = between(low.Kaff, high.Kaff)};
}

}  // namespace gainsmith::sim
