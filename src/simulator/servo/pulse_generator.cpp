// The drive's pulse generator: the moves out and back of the position test and of the velocity
// test.
#include "simulator/servo/pulse_generator.h"

#include <algorithm>

namespace gainsmith::sim {

namespace {

constexpr double LongestFloatDistance = 16777216.0;  // 24 bits
constexpr std::int64_t TicksPerMs = 2;

}  // namespace

ProfileWords ReadProfile(const RegisterBank& registers) {
  return {.Acceleration = static_cast<double>(registers[Reg::AccelerationWord]),
          .Speed = static_cast<double>(registers[Reg::SpeedWord]),
          .Length = registers[Reg::LengthHigh] * 65536.0 + registers[Reg::LengthLow],
          .Repeats = registers[Reg::RepeatCount],
          .Pause = registers[Reg::PauseWord]};
}

PositionProfile::PositionProfile(const ProfileWords& words)
    : acceleration_(words.Acceleration),
      speed_(words.Speed),
      distance_(words.Length),
      dwellTicks_(words.Pause),
      movesLeft_(words.Repeats) {}

// In 32 bits a very long move would come to a stand where a tick's way is lost in the rounding.
double PositionProfile::Stored(double pulses) const {
  return distance_ < LongestFloatDistance ? static_cast<float>(pulses) : pulses;
}

Setpoint PositionProfile::Tick(bool hold) {
  if (state_ <= State::Dwell) {
    StepOut(hold || movesLeft_ == 0);
  } else {
    StepBack();
  }
  position_ = Stored(position_ + velocity_ / 100.0);
  return {position_, velocity_ * PositionSpeedUnit};
}

void PositionProfile::StepOut(bool hold) {
  switch (state_) {
    case State::Wait:
      velocity_ = 0.0;
      if (hold) break;
      velocity_ = acceleration_;
      state_ = State::Accelerate;
      break;
    case State::Accelerate:
      if (distance_ / 2.0 <= position_) {
        velocity_ -= acceleration_;
        state_ = State::Brake;
      } else if (velocity_ >= speed_) {
        brakeAt_ = Stored(distance_ - position_);
        velocity_ = speed_;
        state_ = State::Cruise;
      } else {
        velocity_ += acceleration_;
      }
      break;
    case State::Cruise:
      if (position_ >= brakeAt_) state_ = State::Brake;
      break;
    case State::Brake:
      if (position_ < distance_ && velocity_ >= acceleration_) {
        velocity_ -= acceleration_;
      } else {
        velocity_ = 0.0;
        dwell_ = 1;
        state_ = State::Dwell;
      }
      break;
    default:  // Dwell
      velocity_ = 0.0;
      if (++dwell_ > dwellTicks_) state_ = State::TurnRound;
      break;
  }
}

void PositionProfile::StepBack() {
  switch (state_) {
    case State::TurnRound:
      velocity_ -= acceleration_;
      state_ = State::AccelerateBack;
      break;
    case State::AccelerateBack:
      if (distance_ / 2.0 >= position_) {
        velocity_ += acceleration_;
        state_ = State::BrakeBack;
      } else if (velocity_ <= -speed_) {
        brakeAt_ = Stored(distance_ - position_);
        velocity_ = -speed_;
        state_ = State::CruiseBack;
      } else {
        velocity_ -= acceleration_;
      }
      break;
    case State::CruiseBack:
      if (position_ <= brakeAt_) state_ = State::BrakeBack;
      break;
    case State::BrakeBack:
      if (position_ <= 0.0 || velocity_ > -acceleration_) {
        velocity_ = 0.0;
        dwell_ = 1;
        state_ = State::DwellBack;
      } else {
        velocity_ += acceleration_;
      }
      break;
    default:  // DwellBack
      velocity_ = 0.0;
      if (++dwell_ > dwellTicks_) {
        position_ = 0.0;
        state_ = State::Wait;
        --movesLeft_;
      }
      break;
  }
}

VelocityProfile::VelocityProfile(const ProfileWords& words)
    : stepPps_(words.Acceleration * VelocityAccelerationUnit * TickS),
      topPps_(words.Speed * VelocitySpeedUnit),
      runTicks_(static_cast<std::int64_t>(words.Length) * TicksPerMs),
      pauseTicks_(words.Pause * TicksPerMs),
      movesLeft_(words.Repeats) {}

double VelocityProfile::TargetPps() const {
  if (tickInMove_ < runTicks_) return topPps_;
  const std::int64_t tickBack = tickInMove_ - runTicks_ - pauseTicks_;
  return tickBack >= 0 && tickBack < runTicks_ ? -topPps_ : 0.0;
}

Setpoint VelocityProfile::Tick(bool hold) {
  if (!Finished() && !(hold && AtStartOfMove())) {
    velocityPps_ += std::clamp(TargetPps() - velocityPps_, -stepPps_, stepPps_);
    if (++tickInMove_ >= 2 * (runTicks_ + pauseTicks_)) {
      tickInMove_ = 0;
      --movesLeft_;
    }
  }
  return {.PositionPulses = 0.0, .VelocityPps = velocityPps_, .ClosesPosition = false};
}

}  // namespace gainsmith::sim
