// Motions: what gives the axis its reference, one tick of 0.5 ms after the other.
#pragma once

#include <cstdint>

#include "simulator/servo/motion_loops.h"

namespace gainsmith::sim {

// Reference for one tick. Positions count from where the motion began.
struct Setpoint {
  double PositionPulses = 0.0;  // at the tick's end
  double VelocityPps = 0.0;     // over the tick
  bool ClosesPosition = true;   // false: the motion commands velocity alone
};

class Motion {
 public:
  virtual ~Motion() = default;

  // The next tick's reference. `hold` keeps a motion from beginning a move; it finishes the one
  // that it is in.
  virtual Setpoint Tick(bool hold) = 0;
  // No further tick will move anything.
  [[nodiscard]] virtual bool Finished() const = 0;
  // A move out and back is about to begin with the next tick that is not held.
  [[nodiscard]] virtual bool AtStartOfMove() const { return false; }
  // A move out and back is still to begin, now or later.
  [[nodiscard]] virtual bool MoveToCome() const { return false; }
};

// Drives the velocity towards a target at a constant rate and then stays there: a jog, and with the
// target 0 a stop.
class SpeedRamp : public Motion {
 public:
  // Begins at `startPps`. `rate` is in pulses/s2.
  SpeedRamp(double startPps, double targetPps, double rate)
      : velocityPps_(startPps), targetPps_(targetPps), stepPps_(rate * TickS) {}
  Setpoint Tick(bool hold) override;
  [[nodiscard]] bool Finished() const override { return targetPps_ == 0.0 && velocityPps_ == 0.0; }

 private:
  double velocityPps_;
  double targetPps_;
  double stepPps_;
  double positionPulses_ = 0.0;
};

// A velocity that follows a sine for as long as it lives.
class SineMotion : public Motion {
 public:
  SineMotion(double frequencyHz, double amplitudePps)
      : frequencyHz_(frequencyHz), amplitudePps_(amplitudePps) {}
  Setpoint Tick(bool hold) override;
  [[nodiscard]] bool Finished() const override { return false; }

 private:
  double frequencyHz_;
  double amplitudePps_;
  std::int64_t ticks_ = 0;
  double positionPulses_ = 0.0;
};

}  // namespace gainsmith::sim
