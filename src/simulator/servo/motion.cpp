// Motions: what gives the axis its reference, one tick of 0.5 ms after the other.
#include "simulator/servo/motion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gainsmith::sim {

Setpoint SpeedRamp::Tick(bool) {
  velocityPps_ += std::clamp(targetPps_ - velocityPps_, -stepPps_, stepPps_);
  positionPulses_ += velocityPps_ * TickS;
  return {positionPulses_, velocityPps_};
}

Setpoint SineMotion::Tick(bool) {
  // The position is the sine's integral, so that no error adds up however long it runs.
  ++ticks_;
  const double turns = std::fmod(frequencyHz_ * TickS * static_cast<double>(ticks_), 1.0);
  const double angle = 2.0 * std::numbers::pi * turns;
  const double last = positionPulses_;
  positionPulses_ =
      amplitudePps_ * (1.0 - std::cos(angle)) / (2.0 * std::numbers::pi * frequencyHz_);
  return {positionPulses_, (positionPulses_ - last) / TickS};
}

}  // namespace gainsmith::sim
