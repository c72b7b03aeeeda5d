// The motor and its load: winding, torque, friction, inertia, and the spring of a soft coupling.
#pragma once

#include "simulator/bank/registers.h"
#include "simulator/servo/current_loop.h"
#include "simulator/servo/motor_preset.h"

namespace gainsmith::sim {

// A permanent magnet motor seen as its equivalent with one winding, stepped by CurrentPeriodS.
// Constants come from registers 247 to 251, the load from the preset.
class MotorModel {
 public:
  void Configure(const RegisterBank& registers, const MotorPreset& preset);

  // One period with `volts` at the terminals.
  void Step(double volts) {
    winding_.Step(volts - backEmf_ * speed_);
    MoveRotor(winding_.CurrentA() * torqueConstant_);
  }
  // One period with the power stage off: no current, the motor coasts.
  void StepUnpowered() {
    winding_.Interrupt();
    MoveRotor(0.0);
  }

  double CurrentA() const { return winding_.CurrentA(); }
  double AngleRad() const { return angle_; }
  double SpeedRadPerS() const { return speed_; }

 private:
  void MoveRotor(double torqueNm) {
    if (stiffness_ > 0.0) {
      const double springNm = stiffness_ * (angle_ - loadAngle_) + damping_ * (speed_ - loadSpeed_);
      loadSpeed_ += springNm * loadStep_;
      loadAngle_ += loadSpeed_ * CurrentPeriodS;
      torqueNm -= springNm;
    }
    speed_ += (torqueNm - viscous_ * speed_) * rotorStep_;
    // Dry friction brakes towards standstill and never beyond it.
    const double drySpeed = coulomb_ * rotorStep_;
    speed_ = speed_ > drySpeed ? speed_ - drySpeed : speed_ < -drySpeed ? speed_ + drySpeed : 0.0;
    angle_ += speed_ * CurrentPeriodS;
  }

  Winding winding_;
  double backEmf_ = 0.0;         // V s/rad
  double torqueConstant_ = 0.0;  // Nm/A
  double rotorStep_ = 0.0;       // period / inertia on the motor's side, s/(kg m2)
  double loadStep_ = 0.0;        // the same for a load behind a spring
  double viscous_ = 0.0;         // Nm s/rad
  double coulomb_ = 0.0;         // Nm
  double stiffness_ = 0.0;       // Nm/rad; 0 without a spring
  double damping_ = 0.0;         // Nm s/rad
  double speed_ = 0.0;           // rad/s
  double angle_ = 0.0;           // rad
  double loadSpeed_ = 0.0;
  double loadAngle_ = 0.0;
};

// Register 251 in kg m2 and register 250 in Nm/A. Values below what any motor has are raised to it,
// so that the model stays a motor whatever is written.
double RotorInertiaKgM2(const RegisterBank& registers);
double TorqueConstantNmPerA(const RegisterBank& registers);

}  // namespace gainsmith::sim
