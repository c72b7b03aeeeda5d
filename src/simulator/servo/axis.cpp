// One servo axis: the three loops closed around the motor and its encoder, a tick of 0.5 ms at a
// time.
#include "simulator/servo/axis.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gainsmith::sim {

namespace {

constexpr int VelocityStepsPerTick = 2;
constexpr int CurrentStepsPerVelocityStep = 4;
constexpr int CurrentStepsPerTick = VelocityStepsPerTick * CurrentStepsPerVelocityStep;

// The drive times the encoder's edges and so knows the position to a sixteenth of a pulse, which it
// uses for the velocity only.
constexpr double EdgeTimingSteps = 16.0;

// A motor of absurd parameters outruns any counter, which then stays at its end.
constexpr double FarthestPulses = 1e15;

}  // namespace

void Axis::Configure(const RegisterBank& registers) {
  currentLoop_.Configure(registers);
  velocityLoop_.Configure(registers);
  positionLoop_.Configure(registers);
  guard_.Configure(registers);
  highSpeedGains_ = ReadHighSpeedGains(registers);
  lowSpeedGains_ = ReadLowSpeedGains(registers);
  followingLimitPulses_ = registers[Reg::FollowingErrorLimit];
  emfVoltsPerRpm_ = registers[Reg::BackEmf] / 100.0 / 1000.0;
  const double countsPerTurn = std::max<double>(1.0, registers[Reg::EncoderCounts]);
  // The last position stays unless the pulse itself becomes another: what the shaft has moved since
  // then would be lost, and look like a jolt.
  if (countsPerTurn == countsPerTurn_) return;
  countsPerTurn_ = countsPerTurn;
  pulsesPerRad_ = countsPerTurn_ / RadPerTurn;
  rpmPerPps_ = 60.0 / countsPerTurn_;
  finePositions_.fill(FinePosition());
}

void Axis::PlugEncoder(bool on) {
  if (on == plugged_) return;
  if (on) lostRad_ += motor_.AngleRad() - unpluggedAtRad_;
  unpluggedAtRad_ = motor_.AngleRad();
  plugged_ = on;
}

double Axis::EncoderRad() const {
  return (plugged_ ? motor_.AngleRad() : unpluggedAtRad_) - lostRad_;
}

void Axis::ResetControllers() {
  currentLoop_.Reset();
  velocityLoop_.Reset();
  positionLoop_.Reset(0.0);
  guard_.Reset();
}

std::int64_t Axis::PositionPulses() const {
  const double pulses = std::floor(EncoderRad() * pulsesPerRad_);
  return static_cast<std::int64_t>(std::clamp(pulses, -FarthestPulses, FarthestPulses));
}

double Axis::SpeedRpm() const { return motor_.SpeedRadPerS() / RadPerTurn * 60.0; }

double Axis::FinePosition() const {
  return std::floor(EncoderRad() * pulsesPerRad_ * EdgeTimingSteps);
}

double Axis::MeasureRpm() {
  double& oldest = finePositions_[finePositionAt_];
  finePositionAt_ = (finePositionAt_ + 1) % finePositions_.size();
  const double finePosition = FinePosition();
  const double moved = finePosition - oldest;
  oldest = finePosition;
  constexpr double WindowS = VelocityPeriodS * static_cast<double>(VelocityWindow);
  return moved / EdgeTimingSteps / WindowS * rpmPerPps_;
}

bool Axis::StepCurrentLoop(double referenceA, double emfVolts) {
  for (int i = 0; i < CurrentStepsPerVelocityStep; ++i) {
    motor_.Step(currentLoop_.Step(referenceA, motor_.CurrentA(), emfVolts));
    if (std::abs(motor_.CurrentA()) > guard_.OverCurrentA()) return false;
  }
  return true;
}

std::optional<Trip> Axis::Tick(const AxisReference& reference) {
  if (!plugged_) return Trip::EncoderLoss;
  const MotionGains gains =
      GainsAt(reference.VelocityPps * rpmPerPps_, lowSpeedGains_, highSpeedGains_);
  const double limitPps = MaxSpeedRpm / rpmPerPps_;
  double velocityPps = std::clamp(reference.VelocityPps, -limitPps, limitPps);
  if (reference.ClosesPosition) {
    const double startPulses = reference.PositionPulses - reference.VelocityPps * TickS;
    const double errorPulses = startPulses - static_cast<double>(PositionPulses());
    velocityPps = positionLoop_.Step(errorPulses, reference.VelocityPps, limitPps, gains);
  } else {
    positionLoop_.Reset(velocityPps);
  }

  const double feedForwardA = gains.Kaff * reference.AccelerationPps2 / pulsesPerRad_;
  for (int i = 0; i < VelocityStepsPerTick; ++i) {
    motor_.UpdateTorqueWaves();
    const double measuredRpm = MeasureRpm();
    double referenceA = velocityLoop_.Step(velocityPps * rpmPerPps_, measuredRpm, feedForwardA,
                                           guard_.LimitA(), gains);
    slopeA_ = referenceA - lastReferenceA_;
    lastReferenceA_ = referenceA;
    if (noiseA_ > 0.0) referenceA += noiseA_ * noise_.Next();
    if (!StepCurrentLoop(referenceA, emfVoltsPerRpm_ * measuredRpm)) return Trip::OverCurrent;
  }
  return Supervise(reference);
}

std::optional<Trip> Axis::Supervise(const AxisReference& reference) {
  guard_.Pass(motor_.CurrentA(), TickS);
  errorPulses_ = 0;
  if (guard_.Overloaded()) return Trip::Overload;
  if (std::abs(SpeedRpm()) > OverSpeedRpm) return Trip::OverSpeed;
  if (!reference.ClosesPosition) return std::nullopt;
  const double errorPulses = reference.PositionPulses - static_cast<double>(PositionPulses());
  errorPulses_ = static_cast<std::int32_t>(std::lround(std::clamp(errorPulses, -1e9, 1e9)));
  // A limit of 0 switches the supervision off.
  const bool lost = followingLimitPulses_ > 0.0 && std::abs(errorPulses) > followingLimitPulses_;
  return lost ? std::optional(Trip::FollowingError) : std::nullopt;
}

void Axis::TickUnpowered() {
  motor_.UpdateTorqueWaves();
  for (int i = 0; i < CurrentStepsPerTick; ++i) motor_.StepUnpowered();
  for (int i = 0; i < VelocityStepsPerTick; ++i) MeasureRpm();
  errorPulses_ = 0;
  slopeA_ = 0.0;
}

}  // namespace gainsmith::sim
