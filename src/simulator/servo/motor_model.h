// The motor and its load: winding, torque, friction, inertia, and the spring and play of a
// coupling.
#pragma once

#include <numbers>

#include "simulator/servo/current_loop.h"
#include "simulator/servo/motor_preset.h"

namespace gainsmith::sim {

inline constexpr double RadPerTurn = 2.0 * std::numbers::pi;

// A permanent magnet motor seen as its equivalent with one winding, stepped by CurrentPeriodS, as
// its preset says:
//   L di/dt = u - R i - Ke w        Jr dw/dt = Kt (1 + ripple) i + cogging - friction - spring
// The load hangs on the spring, or with no spring adds to the rotor's inertia.
class MotorModel {
 public:
  explicit MotorModel(const MotorPreset& preset);

  // One period with `volts` at the terminals.
  void Step(double volts) {
    winding_.Step(volts - backEmf_ * speed_);
    Move(winding_.CurrentA() * torqueConstant_ * torqueFactor_);
  }
  // One period with the power stage off: no current, the motor coasts.
  void StepUnpowered() {
    winding_.Interrupt();
    Move(0.0);
  }
  // Takes cogging and ripple of where the shaft stands. They vary far more slowly than a period.
  void UpdateTorqueWaves();

  [[nodiscard]] double CurrentA() const { return winding_.CurrentA(); }
  [[nodiscard]] double AngleRad() const { return angle_; }
  [[nodiscard]] double SpeedRadPerS() const { return speed_; }

 private:
  void Move(double motorNm) {
    double rotorNm = motorNm + coggingNm_;
    if (stiffness_ > 0.0) {
      const double springNm = SpringNm();
      loadSpeed_ += (springNm - loadTorque_) * loadStep_;
      loadAngle_ += loadSpeed_ * CurrentPeriodS;
      rotorNm -= springNm;
    } else {
      rotorNm -= loadTorque_;
    }
    if (speed_ == 0.0 && rotorNm <= stiction_ && rotorNm >= -stiction_) return;
    speed_ += (rotorNm - viscous_ * speed_) * rotorStep_;
    // Dry friction brakes towards standstill and never beyond it.
    const double drySpeed = coulomb_ * rotorStep_;
    speed_ = speed_ > drySpeed ? speed_ - drySpeed : speed_ < -drySpeed ? speed_ + drySpeed : 0.0;
    angle_ += speed_ * CurrentPeriodS;
    if (angle_ < lowestAngle_) StandOnStop();
  }
  // What the load takes from the rotor. Between the flanks of its play the coupling carries
  // nothing.
  [[nodiscard]] double SpringNm() const {
    const double twist = angle_ - loadAngle_;
    const double bent = twist > halfPlay_    ? twist - halfPlay_
                        : twist < -halfPlay_ ? twist + halfPlay_
                                             : 0.0;
    if (bent == 0.0 && halfPlay_ > 0.0) return 0.0;
    return stiffness_ * bent + damping_ * (speed_ - loadSpeed_);
  }
  void StandOnStop();

  MotorPreset preset_;
  Winding winding_;
  double backEmf_;          // V s/rad
  double torqueConstant_;   // Nm/A
  double rotorStep_;        // period / inertia on the motor's side, s/(kg m2)
  double loadStep_;         // the same for a load behind a spring
  double viscous_;          // Nm s/rad
  double coulomb_;          // Nm
  double stiction_;         // Nm
  double loadTorque_;       // Nm
  double lowestAngle_;      // rad
  double stiffness_ = 0.0;  // Nm/rad; 0 without a spring
  double damping_ = 0.0;    // Nm s/rad
  double halfPlay_ = 0.0;   // rad
  double torqueFactor_ = 1.0;
  double coggingNm_ = 0.0;
  double speed_ = 0.0;  // rad/s
  double angle_ = 0.0;  // rad
  double loadSpeed_ = 0.0;
  double loadAngle_ = 0.0;
};

}  // namespace gainsmith::sim
