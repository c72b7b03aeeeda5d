// The motor and its load: winding, torque, friction, inertia, and the spring of a soft coupling.
#include "simulator/servo/motor_model.h"

#include <algorithm>
#include <numbers>

namespace gainsmith::sim {

namespace {

constexpr double LeastInertiaKgM2 = 1e-6;
constexpr double RadPerSPerKrpm = 1000.0 * 2.0 * std::numbers::pi / 60.0;

}  // namespace

double RotorInertiaKgM2(const RegisterBank& registers) {
  return std::max(LeastInertiaKgM2, registers[Reg::Inertia] / 100000.0 / 10000.0);
}

double TorqueConstantNmPerA(const RegisterBank& registers) {
  return std::max<double>(1.0, registers[Reg::TorqueConstant]) / 1000.0;
}

void MotorModel::Configure(const RegisterBank& registers, const MotorPreset& preset) {
  winding_.Configure(ReadWinding(registers));
  backEmf_ = registers[Reg::BackEmf] / 100.0 / RadPerSPerKrpm;
  torqueConstant_ = TorqueConstantNmPerA(registers);
  viscous_ = preset.ViscousNmPerRadPerSec;
  coulomb_ = preset.CoulombNm;

  const double rotor = RotorInertiaKgM2(registers);
  const double load = rotor * preset.LoadInertiaRatio;
  const bool soft = preset.ResonanceHz > 0.0 && load > 0.0;
  rotorStep_ = CurrentPeriodS / (soft ? rotor : rotor + load);
  loadStep_ = soft ? CurrentPeriodS / load : 0.0;
  const double resonance = 2.0 * std::numbers::pi * preset.ResonanceHz;
  const double reduced = soft ? rotor * load / (rotor + load) : 0.0;
  stiffness_ = resonance * resonance * reduced;
  damping_ = 2.0 * preset.ResonanceDamping * resonance * reduced;
}

}  // namespace gainsmith::sim
