// One servo axis: the three loops closed around the motor and its encoder, a tick of 0.5 ms at a
// time.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

#include "simulator/servo/current_loop.h"
#include "simulator/servo/motion_loops.h"
#include "simulator/servo/motor_model.h"
#include "simulator/servo/noise.h"
#include "simulator/servo/overload_guard.h"
#include "simulator/servo/trip.h"

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
  Axis(const MotorPreset& preset, std::uint64_t seed)
      : motor_(preset), noiseA_(preset.ReferenceNoiseA), noise_(seed) {}

  // Takes all parameters; the state of motor and loops stays, so that the motor notices nothing of
  // a value that it had already.
  void Configure(const RegisterBank& registers);
  // The trap filters on or off, whatever their registers say.
  void UseTraps(bool use) { velocityLoop_.UseTraps(use); }
  // A plug that is off loses every pulse until it is on again. Under power it is a trip at once.
  void PlugEncoder(bool on);
  // Forgets what the controllers have integrated: to be called before power comes on.
  void ResetControllers();

  // Runs one tick under power. A trip means that the axis must not be powered any further.
  std::optional<Trip> Tick(const AxisReference& reference);
  // Runs one tick without power.
  void TickUnpowered();

  [[nodiscard]] std::int64_t PositionPulses() const;  // of the encoder
  [[nodiscard]] std::int32_t ErrorPulses() const {
    return errorPulses_;
  }  // at the end of the last tick
  [[nodiscard]] double CurrentA() const { return motor_.CurrentA(); }
  [[nodiscard]] double SpeedRpm() const;
  // Nothing of motor and loops changes any more while the reference stands still.
  [[nodiscard]] bool Still() const {
    return motor_.SpeedRadPerS() == 0.0 && std::abs(slopeA_) < StillA;
  }
  [[nodiscard]] double CountsPerTurn() const { return countsPerTurn_; }

 private:
  static constexpr double StillA = 1e-6;  // a tick

  // The measured speed is what the encoder has moved over so many velocity periods: 2 ms.
  static constexpr std::size_t VelocityWindow = 8;

  [[nodiscard]] double EncoderRad() const;
  [[nodiscard]] double FinePosition() const;
  double MeasureRpm();
  bool StepCurrentLoop(double referenceA, double emfVolts);
  std::optional<Trip> Supervise(const AxisReference& reference);

  MotorModel motor_;
  CurrentLoop currentLoop_;
  VelocityLoop velocityLoop_;
  PositionLoop positionLoop_;
  OverloadGuard guard_;
  double noiseA_;
  Noise noise_;
  MotionGains highSpeedGains_;
  MotionGains lowSpeedGains_;
  double countsPerTurn_ = 0.0;
  double pulsesPerRad_ = 1.0;
  double rpmPerPps_ = 1.0;
  double followingLimitPulses_ = 0.0;
  std::array<double, VelocityWindow> finePositions_{};
  std::size_t finePositionAt_ = 0;
  double emfVoltsPerRpm_ = 0.0;  // as the drive believes
  double lastReferenceA_ = 0.0;
  double slopeA_ = 0.0;   // of the current reference, over the last tick
  double lostRad_ = 0.0;  // while the encoder was off
  double unpluggedAtRad_ = 0.0;
  bool plugged_ = true;
  std::int32_t errorPulses_ = 0;
};

}  // namespace gainsmith::sim
