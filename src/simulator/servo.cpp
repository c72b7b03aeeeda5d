// The motor side of the simulated drive: loops, motor, pulse generator and recorder behind the
// registers.
#include "simulator/servo.h"

#include <algorithm>
#include <utility>

namespace gainsmith::sim {

namespace {

constexpr double kOverCurrentFactor = 1.5;  // of the peak current limit

}  // namespace

Servo::Servo(const RegisterBank& registers, RaiseError raiseError, const MotorPreset&,
             std::uint64_t seed)
    : registers_(registers), raiseError_(std::move(raiseError)), noise_(seed) {}

void Servo::Advance(TimeUs) {}

void Servo::Write(Reg reg, std::uint16_t value, TimeUs now) {
  Advance(now);
  if (reg != Reg::CurrentStep) return;
  if (value == 1) {
    RunCurrentTest();
  } else {
    heldCurrentA_ = 0.0;
  }
}

void Servo::TakeParameters() {}

void Servo::RunCurrentTest() {
  const double referenceA = registers_[Reg::TestCurrent] / CountsPerAmpere;
  const CurrentStepResult step = RunCurrentStep(registers_, referenceA, noise_);
  std::copy(step.Samples.begin(), step.Samples.end(), memory_.begin());
  heldCurrentA_ = referenceA;
  if (step.PeakA > kOverCurrentFactor * registers_[Reg::PeakCurrent] / 100.0) {
    heldCurrentA_ = 0.0;
    raiseError_(DriveError::OverCurrent);
  }
}

std::uint16_t Servo::RecorderStatus() const { return 1; }

std::int16_t Servo::Sample(int index) const { return memory_[static_cast<std::size_t>(index)]; }

void Servo::Stop() { heldCurrentA_ = 0.0; }

void Servo::Reset() {
  Stop();
  TakeParameters();
  memory_.fill(0);
}

bool Servo::Moving() const { return false; }

void Servo::StartBackgroundMotion(const BackgroundMotion&, TimeUs) {}

void Servo::StopBackgroundMotion(TimeUs) {}

std::int64_t Servo::ShaftPositionPulses() const { return 0; }

double Servo::ShaftSpeedRpm() const { return 0.0; }

double Servo::CurrentA() const { return heldCurrentA_; }

std::int32_t Servo::PositionErrorPulses() const { return 0; }

}  // namespace gainsmith::sim
