// The gains of the velocity and position loops in physical units, and the choice between the two
// sets.
#include "simulator/servo/motion_gains.h"

#include <cmath>

#include "simulator/servo/current_loop.h"
#include "simulator/servo/motor_model.h"

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

MotionGains ReadGains(const RegisterBank& registers, const GainRegisters& set) {
  const double currentPerAcceleration =
      RotorInertiaKgM2(registers) / TorqueConstantNmPerA(registers);
  return {.PositionKp = registers[set.PositionKp] * 0.1,
          .PositionKi = registers[set.PositionKi] * 1.0,
          .PositionKd = registers[set.PositionKd] * 0.001,
          .Kvff = registers[set.Kvff] * 0.001,
          .VelocityKp = registers[set.VelocityKp] / 128.0 / CountsPerAmpere,
          .VelocityKi = registers[set.VelocityKi] / CountsPerAmpere,
          .Kaff = registers[set.Kaff] * 0.001 * currentPerAcceleration};
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
