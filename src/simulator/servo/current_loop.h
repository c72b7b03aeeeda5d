// The innermost loop: winding, current controller, and the current step test made of the two.
#pragma once

#include <array>
#include <cstdint>

#include "simulator/bank/registers.h"
#include "simulator/servo/motor_preset.h"
#include "simulator/servo/noise.h"

namespace gainsmith::sim {

constexpr double CurrentPeriodS = 62.5e-6;  // 16 kHz
constexpr double CountsPerAmpere = 1024.0;

struct WindingConstants {
  double ResistanceOhm = 1.0;
  double InductanceH = 1e-3;
};

// A winding stepped by CurrentPeriodS; exact for a voltage that is constant over the step.
class Winding {
 public:
  explicit Winding(const WindingConstants& constants);
  // Applies `volts` (terminal voltage less back EMF) for one period.
  void Step(double volts) { currentA_ = decay_ * currentA_ + gainSiemens_ * volts; }
  [[nodiscard]] double CurrentA() const { return currentA_; }
  void Interrupt() { currentA_ = 0.0; }

 private:
  double decay_;
  double gainSiemens_;
  double currentA_ = 0.0;
};

// PI controller with a limited voltage. The voltage takes effect one period after the measurement
// that it answers, as the drive's processor needs that long. The drive scales its gains to the
// winding that it believes to have:
// Register 0: 6.25 V/A a unit and henry of register 248, which is 0.05 V/A with the factory's 8 mH.
// Register 1: 6.15 V/(A s) a unit and ohm of register 247, which is 16 V/(A s), or 0.001 V/A in
// each period, with the factory's 2.6 ohms.
class CurrentLoop {
 public:
  static constexpr double BusVolts = 310.0;

  void Configure(const RegisterBank& registers);
  void Reset();
  // Takes the measurement, returns the voltage to apply in the coming period. `forwardVolts` is
  // added to what the controller finds.
  double Step(double referenceA, double measuredA, double forwardVolts) {
    const double errorA = referenceA - measuredA;
    const double applied = nextVolts_;
    double volts = proportional_ * errorA + integralVolts_ + forwardVolts;
    const bool limited = volts > BusVolts || volts < -BusVolts;
    // Integrating on into the limit would only have to be unwound again.
    if (!limited || (volts > 0.0) != (errorA > 0.0)) integralVolts_ += integral_ * errorA;
    volts = volts > BusVolts ? BusVolts : volts < -BusVolts ? -BusVolts : volts;
    nextVolts_ = volts;
    return applied;
  }

 private:
  double proportional_ = 0.0;  // V/A
  double integral_ = 0.0;      // V/A in each period
  double integralVolts_ = 0.0;
  double nextVolts_ = 0.0;
};

// The current step test: a step of the reference with the rotor held on its pole, so that nothing
// turns. The current flows on until the test is ended.
class CurrentStepTest {
 public:
  // One sample each CurrentPeriodS from the moment of the step, in counts (1024 an ampere).
  static constexpr int SampleCount = 200;
  using Samples = std::array<std::int16_t, SampleCount>;

  // Of a motor with a current of 0.
  CurrentStepTest(const MotorPreset& preset, const RegisterBank& registers, double referenceA);

  void Configure(const RegisterBank& registers) { loop_.Configure(registers); }
  // The next period; a reference above the limit is held there.
  void Step(double limitA);
  // As many of them as the recording takes.
  Samples Record(double limitA, Noise& noise);

  [[nodiscard]] double CurrentA() const { return winding_.CurrentA(); }
  [[nodiscard]] double PeakA() const { return peakA_; }

 private:
  Winding winding_;
  CurrentLoop loop_;
  double referenceA_;
  double peakA_ = 0.0;
};

}  // namespace gainsmith::sim
