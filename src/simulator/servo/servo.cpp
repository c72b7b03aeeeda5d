// The motor side of the simulated drive: loops, motor, pulse generator and recorder behind the
// registers.
#include "simulator/servo/servo.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulator/servo/pulse_generator.h"

namespace gainsmith::sim {

namespace {

constexpr TimeUs TickUs = 500;
constexpr int CurrentPeriodsPerTick = 8;
constexpr std::uint16_t CommandStop = 0;
constexpr std::uint16_t CommandJog = 1;
constexpr std::uint16_t CommandRunTest = 2;
constexpr std::uint16_t CommandJogOtherWay = 5;

// A stop takes at most this long, however small the acceleration word is.
constexpr double LongestStopS = 0.1;

// The encoder has to stand still, and on its reference, for so long that the motor counts as
// resting: an integral gain that works against a motor that sticks needs its time to move it.
constexpr int TicksToRest = 100;
constexpr int TicksToRestWithSlope = 4000;
constexpr std::int32_t RestErrorPulses = 1;
constexpr double RestRpm = 1.0;

constexpr double LeastBackgroundHz = 0.001;

}  // namespace

Servo::Servo(const RegisterBank& registers, OnTrip onTrip, const MotorPreset& preset,
             std::uint64_t seed)
    : registers_(registers),
      onTrip_(std::move(onTrip)),
      preset_(preset),
      axis_(preset, seed + 2),
      stepNoise_(seed),
      recorder_(seed + 1) {
  axis_.Configure(registers_);
}

void Servo::Advance(TimeUs now) {
  for (; nextTickUs_ <= now; nextTickUs_ += TickUs) {
    const bool nothingHappens = !Busy() && recorder_.Idle();
    if (nothingHappens) {
      nextTickUs_ += (now - nextTickUs_) / TickUs * TickUs;
      recorder_.Rested();
      continue;
    }
    Tick();
  }
}

void Servo::Tick() {
  if (motion_ && motion_->AtStartOfMove()) recorder_.MoveBegins();
  const bool frozen = !Busy();
  if (!frozen) {
    if (step_) {
      TickStepTest();
    } else if (powered_) {
      TickPowered();
    } else {
      axis_.TickUnpowered();
    }
    WatchForRest();
  }
  recorder_.Tick({.PositionPulses = axis_.PositionPulses(),
                  .ErrorPulses = static_cast<double>(axis_.ErrorPulses()),
                  .CurrentCounts = CurrentA() * CountsPerAmpere,
                  .ReferenceMoves = commandedPps_ != 0.0});
  if (motion_ && motion_->Finished()) EndMotion();
}

void Servo::TickPowered() {
  Setpoint setpoint{.PositionPulses = 0.0, .VelocityPps = 0.0, .ClosesPosition = true};
  if (motion_) setpoint = motion_->Tick(recorder_.Leading());
  commandedPulses_ = setpoint.ClosesPosition ? originPulses_ + setpoint.PositionPulses
                                             : static_cast<double>(axis_.PositionPulses());
  const double accelerationPps2 = (setpoint.VelocityPps - commandedPps_) / TickS;
  commandedPps_ = setpoint.VelocityPps;
  const std::optional<Trip> trip = axis_.Tick({.PositionPulses = commandedPulses_,
                                               .VelocityPps = commandedPps_,
                                               .AccelerationPps2 = accelerationPps2,
                                               .ClosesPosition = setpoint.ClosesPosition});
  if (trip) TripOut(*trip);
}

void Servo::TickStepTest() {
  for (int i = 0; i < CurrentPeriodsPerTick; ++i) step_->Step(stepGuard_.LimitA());
  stepGuard_.Pass(step_->CurrentA(), TickS);
  if (stepGuard_.Overloaded()) TripOut(Trip::Overload);
}

void Servo::TripOut(Trip trip) {
  Stop();
  trip_ = trip;
  onTrip_(trip);
}

void Servo::PlugEncoder(bool on, TimeUs now) {
  Advance(now);
  axis_.PlugEncoder(on);
  resting_ = false;
  stillTicks_ = 0;
}

void Servo::WatchForRest() {
  const std::int64_t position = axis_.PositionPulses();
  const bool still =
      !motion_ && position == lastPosition_ && std::abs(axis_.ErrorPulses()) <= RestErrorPulses;
  lastPosition_ = position;
  stillTicks_ = still ? stillTicks_ + 1 : 0;
  resting_ = stillTicks_ >= (axis_.Still() ? TicksToRest : TicksToRestWithSlope);
}

void Servo::Begin(std::unique_ptr<Motion> motion, MotionKind kind) {
  step_.reset();
  if (!powered_) {
    axis_.ResetControllers();
    commandedPulses_ = static_cast<double>(axis_.PositionPulses());
    commandedPps_ = 0.0;
    powered_ = true;
  }
  originPulses_ = commandedPulses_;
  motion_ = std::move(motion);
  motionKind_ = kind;
  resting_ = false;
  stillTicks_ = 0;
}

void Servo::EndMotion() {
  originPulses_ = commandedPulses_;
  motion_.reset();
  motionKind_ = MotionKind::None;
  recorder_.MotionEnded();
}

void Servo::BeginTest(std::unique_ptr<Motion> test, MotionKind kind) {
  recorder_.TestBegins();
  Begin(std::move(test), kind);
}

void Servo::BeginStop() {
  const bool commanded = motionKind_ != MotionKind::None && motionKind_ != MotionKind::Stop;
  if (!commanded) return;
  const double rate = registers_[Reg::AccelerationWord] * PositionAccelerationUnit;
  const double startPps = commandedPps_;
  EndMotion();
  Begin(
      std::make_unique<SpeedRamp>(startPps, 0.0, std::max(rate, std::abs(startPps) / LongestStopS)),
      MotionKind::Stop);
}

void Servo::Jog(double direction) {
  const ProfileWords words = ReadProfile(registers_);
  const double startPps = commandedPps_;
  Begin(std::make_unique<SpeedRamp>(startPps, direction * words.Speed * PositionSpeedUnit,
                                    words.Acceleration * PositionAccelerationUnit),
        MotionKind::Jog);
  recorder_.MotionEnded();
}

void Servo::Write(Reg reg, std::uint16_t value, TimeUs now) {
  Advance(now);
  switch (reg) {
    case Reg::CurrentStep:
      if (value == 1) {
        RunCurrentTest();
      } else {
        step_.reset();
      }
      break;
    case Reg::PositionCommand:
      CommandPosition(value);
      break;
    case Reg::VelocityCommand:
      CommandVelocity(value);
      break;
    case Reg::ArmRecorder:
      recorder_.Arm(registers_, motion_ && motion_->MoveToCome());
      break;
    default:
      TakeParameters();
      break;
  }
}

void Servo::CommandPosition(std::uint16_t command) {
  if (command == CommandStop && motionKind_ != MotionKind::Background) BeginStop();
  if (trip_) return;
  if (command == CommandJog) Jog(1.0);
  if (command == CommandJogOtherWay) Jog(-1.0);
  // A host that missed the reply sends its command again; the test must not begin anew for that.
  if (command == CommandRunTest && motionKind_ != MotionKind::PositionTest) {
    BeginTest(std::make_unique<PositionProfile>(ReadProfile(registers_)), MotionKind::PositionTest);
  }
}

void Servo::CommandVelocity(std::uint16_t command) {
  if (command == CommandStop && motionKind_ != MotionKind::Background) BeginStop();
  if (trip_) return;
  if (command == CommandRunTest && motionKind_ != MotionKind::VelocityTest) {
    BeginTest(std::make_unique<VelocityProfile>(ReadProfile(registers_)), MotionKind::VelocityTest);
  }
}

void Servo::TakeParameters() {
  const double countsBefore = axis_.CountsPerTurn();
  axis_.Configure(registers_);
  if (step_) step_->Configure(registers_);
  resting_ = false;
  stillTicks_ = 0;
  if (axis_.CountsPerTurn() == countsBefore) return;
  // The same shaft angle is another position now.
  recorder_.Rested();
  if (motion_) EndMotion();
  commandedPulses_ = originPulses_ = static_cast<double>(axis_.PositionPulses());
  commandedPps_ = 0.0;
}

void Servo::RunCurrentTest() {
  Stop();
  if (trip_) return;
  step_.emplace(preset_, registers_, registers_[Reg::TestCurrent] / CountsPerAmpere);
  stepGuard_.Configure(registers_);
  stepGuard_.Reset();
  recorder_.Store(step_->Record(stepGuard_.LimitA(), stepNoise_));
  if (step_->PeakA() > stepGuard_.OverCurrentA()) TripOut(Trip::OverCurrent);
}

std::uint16_t Servo::RecorderStatus() const { return recorder_.Idle() ? 1 : 0; }

std::int16_t Servo::Sample(int index) const { return recorder_.Sample(index); }

void Servo::Stop() {
  EndMotion();
  powered_ = false;
  step_.reset();
  commandedPps_ = 0.0;
  resting_ = false;
  stillTicks_ = 0;
}

void Servo::Reset() {
  Stop();
  TakeParameters();
  ClearTrip();
  UseTraps(true);
  recorder_.Reset();
}

bool Servo::Moving() const {
  // What is left of the speed at rest stands still with the rest.
  return motion_ || (!resting_ && std::abs(axis_.SpeedRpm()) > RestRpm);
}

void Servo::StartBackgroundMotion(const BackgroundMotion& motion, TimeUs now) {
  Advance(now);
  if (trip_ || (motion_ && motionKind_ != MotionKind::Background)) return;
  const double amplitudePps = motion.AmplitudeRpm / 60.0 * axis_.CountsPerTurn();
  Begin(std::make_unique<SineMotion>(std::max(motion.FrequencyHz, LeastBackgroundHz), amplitudePps),
        MotionKind::Background);
}

void Servo::StopBackgroundMotion(TimeUs now) {
  Advance(now);
  if (motionKind_ == MotionKind::Background) BeginStop();
}

std::int64_t Servo::ShaftPositionPulses() const { return axis_.PositionPulses(); }

double Servo::ShaftSpeedRpm() const { return axis_.SpeedRpm(); }

double Servo::CurrentA() const {
  if (step_) return step_->CurrentA();
  return powered_ ? axis_.CurrentA() : 0.0;
}

std::int32_t Servo::PositionErrorPulses() const { return axis_.ErrorPulses(); }

}  // namespace gainsmith::sim
