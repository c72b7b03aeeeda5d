// The motor and its load: winding, torque, friction, inertia, and the spring and play of a
// coupling.
#include "simulator/servo/motor_model.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace gainsmith::sim {

namespace {

// A spring that swings faster than this could not be computed in steps of the current's period.
constexpr double FastestSwingHz = 1500.0;

}  // namespace

MotorModel::MotorModel(const MotorPreset& preset)
    : preset_(preset),
      winding_({.ResistanceOhm = preset.ResistanceOhm, .InductanceH = preset.InductanceH}),
      backEmf_(preset.BackEmfVPerRadPerS),
      torqueConstant_(preset.TorqueConstantNmPerA),
      viscous_(preset.ViscousNmPerRadPerSec),
      coulomb_(preset.CoulombNm),
      stiction_(std::max(preset.StictionNm, preset.CoulombNm)),
      loadTorque_(preset.LoadTorqueNm),
      lowestAngle_(preset.LowestTurns < 0.0 ? preset.LowestTurns * RadPerTurn
                                            : -std::numeric_limits<double>::infinity()) {
  const double rotor = preset.RotorInertiaKgM2;
  const double load = rotor * preset.LoadInertiaRatio;
  const bool soft = preset.ResonanceHz > 0.0 && load > 0.0;
  rotorStep_ = CurrentPeriodS / (soft ? rotor : rotor + load);
  loadStep_ = soft ? CurrentPeriodS / load : 0.0;
  if (!soft) return;
  const double resonance = RadPerTurn * std::min(preset.ResonanceHz, FastestSwingHz);
  const double reduced = rotor * load / (rotor + load);
  stiffness_ = resonance * resonance * reduced;
  damping_ = 2.0 * preset.ResonanceDamping * resonance * reduced;
  halfPlay_ = preset.BacklashTurns * RadPerTurn / 2.0;
}

void MotorModel::UpdateTorqueWaves() {
  torqueFactor_ = 1.0;
  if (preset_.TorqueRipple > 0.0) {
    torqueFactor_ += preset_.TorqueRipple * std::sin(preset_.RipplePerTurn * angle_);
  }
  coggingNm_ = 0.0;
  if (preset_.CoggingNm > 0.0) {
    coggingNm_ = preset_.CoggingNm * std::sin(preset_.CoggingPerTurn * angle_);
  }
}

void MotorModel::StandOnStop() {
  angle_ = lowestAngle_;
  speed_ = 0.0;
}

}  // namespace gainsmith::sim
