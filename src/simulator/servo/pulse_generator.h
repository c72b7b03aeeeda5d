// The drive's pulse generator: the moves out and back of the position test and of the velocity
// test.
#pragma once

#include <cstdint>

#include "simulator/bank/registers.h"
#include "simulator/servo/motion.h"

namespace gainsmith::sim {

// Units of the profile words. In the position test and the jog the speed word counts 20 pulses/s
// and the acceleration word 40000 pulses/s2; in the velocity test 50 pulses/s and 250000 pulses/s2.
constexpr double PositionSpeedUnit = 20.0;
constexpr double PositionAccelerationUnit = 40000.0;
constexpr double VelocitySpeedUnit = 50.0;
constexpr double VelocityAccelerationUnit = 250000.0;

// The profile registers 21 to 27 as they stand when a command takes them.
struct ProfileWords {
  double Acceleration = 0.0;  // 21
  double Speed = 0.0;         // 22
  double Length = 0.0;        // 23 and 24: pulses, or milliseconds in the velocity test
  int Repeats = 0;            // 25
  int Pause = 0;              // 27: ticks, or milliseconds in the velocity test
};
ProfileWords ReadProfile(const RegisterBank& registers);

// Position test: out by the length, pause, back, pause, as often as it repeats. Positions are
// 32-bit floats after each step, as the generator computes them, while the length fits into 24
// bits.
class PositionProfile : public Motion {
 public:
  explicit PositionProfile(const ProfileWords& words);
  Setpoint Tick(bool hold) override;
  [[nodiscard]] bool Finished() const override { return movesLeft_ == 0; }
  [[nodiscard]] bool AtStartOfMove() const override {
    return state_ == State::Wait && movesLeft_ > 0;
  }
  [[nodiscard]] bool MoveToCome() const override { return AtStartOfMove() || movesLeft_ > 1; }

 private:
  enum class State {
    Wait,
    Accelerate,
    Cruise,
    Brake,
    Dwell,
    TurnRound,
    AccelerateBack,
    CruiseBack,
    BrakeBack,
    DwellBack,
  };
  void StepOut(bool hold);
  void StepBack();
  [[nodiscard]] double Stored(double pulses) const;

  // Velocities are in hundredths of a pulse in each tick, the speed word's own unit.
  double acceleration_;
  double speed_;
  double distance_;
  int dwellTicks_;
  int movesLeft_;
  State state_ = State::Wait;
  double position_ = 0.0;
  double velocity_ = 0.0;
  double brakeAt_ = 0.0;
  int dwell_ = 0;
};

// Velocity test: the top speed for the running time, standstill for the pause, the same the other
// way, as often as it repeats. Ramps are part of the running time and of the pause.
class VelocityProfile : public Motion {
 public:
  explicit VelocityProfile(const ProfileWords& words);
  Setpoint Tick(bool hold) override;
  [[nodiscard]] bool Finished() const override { return movesLeft_ == 0; }
  [[nodiscard]] bool AtStartOfMove() const override { return tickInMove_ == 0 && movesLeft_ > 0; }
  [[nodiscard]] bool MoveToCome() const override { return AtStartOfMove() || movesLeft_ > 1; }

 private:
  [[nodiscard]] double TargetPps() const;

  double stepPps_;
  double topPps_;
  std::int64_t runTicks_;
  std::int64_t pauseTicks_;
  int movesLeft_;
  std::int64_t tickInMove_ = 0;
  double velocityPps_ = 0.0;
};

}  // namespace gainsmith::sim
