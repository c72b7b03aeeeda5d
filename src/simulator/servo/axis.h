// One servo axis: the three loops closed around the motor and its encoder, a tick of 0.5 ms at a
// time.
#pragma once

#include <cstdint>
#include <optional>

#include "simulator/bank/error_log.h"
#include "simulator/servo/current_loop.h"
#include "simulator/servo/motion_loops.h"
#include "simulator/servo/motor_model.h"
#include "simulator/servo/overload_guard.h"

namespace gainsmith::sim {

// What the axis shall do during one tick.
struct AxisReference {
  double PositionPulses = 0.0;    // at the tick's end
  double VelocityPps = 0.0;       // over the tick
  double AccelerationPps2 = 0.0;  // over the tick
  bool ClosesPosition = true;     // false: velocity loop only, the position is not looked at
};

class Axis {
 public:
  explicit Axis(const MotorPreset& preset) : preset_(preset) {}

  // Takes all parameters; the state of motor and loops stays, so that the motor notices nothing of
  // a value that it had already.
  void Configure(const RegisterBank& registers);
  // Forgets what the controllers have integrated: to be called before power comes on.
  void ResetControllers();

  // Runs one tick under power. An error means that the axis must not be powered any further.
  std::optional<DriveError> Tick(const AxisReference& reference);
  // Runs one tick without power.
  void TickUnpowered();

  std::int64_t PositionPulses() const;                       // of the encoder
  std::int32_t ErrorPulses() const { return errorPulses_; }  // at the end of the last tick
  double CurrentA() const { return motor_.CurrentA(); }
  double SpeedRpm() const;
  double CountsPerTurn() const { return countsPerTurn_; }

 private:
  double MeasureRpm();
  bool StepCurrentLoop(double referenceA);

  MotorPreset preset_;
  MotorModel motor_;
  CurrentLoop currentLoop_;
  VelocityLoop velocityLoop_;
  PositionLoop positionLoop_;
  OverloadGuard guard_;
  MotionGains highSpeedGains_;
  MotionGains lowSpeedGains_;
  double countsPerTurn_ = 0.0;
  double pulsesPerRad_ = 1.0;
  double rpmPerPps_ = 1.0;
  double followingLimitPulses_ = 0.0;
  double lastFinePosition_ = 0.0;
  std::int32_t errorPulses_ = 0;
};

}  // namespace gainsmith::sim
