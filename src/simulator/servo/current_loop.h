// The innermost loop: winding, current controller, and the current step test made of the two.
#pragma once

#include <array>
#include <cstdint>

#include "simulator/bank/registers.h"
#include "simulator/servo/noise.h"

namespace gainsmith::sim {

constexpr double CurrentPeriodS = 62.5e-6;  // 16 kHz
constexpr double CountsPerAmpere = 1024.0;

// The winding as the drive knows it from its registers.
struct WindingConstants {
  double ResistanceOhm = 1.0;
  double InductanceH = 1e-3;
};

// Registers 247 and 248; zeros, which no winding has, read as one unit.
WindingConstants ReadWinding(const RegisterBank& registers);

// A winding stepped by CurrentPeriodS; exact for a voltage that is constant over the step.
class Winding {
 public:
  void Configure(const WindingConstants& constants);
  // Applies `volts` (terminal voltage less back EMF) for one period.
  void Step(double volts) { currentA_ = decay_ * currentA_ + gainSiemens_ * volts; }
  double CurrentA() const { return currentA_; }
  void Interrupt() { currentA_ = 0.0; }

 private:
  double decay_ = 0.0;
  double gainSiemens_ = 1.0;
  double currentA_ = 0.0;
};

// PI controller with a limited voltage. The voltage takes effect one period after the measurement
// that it answers, as the drive's processor needs that long.
// Register 0: 0.05 V/A a unit. Register 1: 16 V/(A s) a unit, which is 0.001 V/A in each period.
class CurrentLoop {
 public:
  static constexpr double BusVolts = 310.0;

  void Configure(const RegisterBank& registers);
  void Reset();
  // Takes the measurement, returns the voltage to apply in the coming period.
  double Step(double referenceA, double measuredA) {
    const double errorA = referenceA - measuredA;
    const double applied = nextVolts_;
    double volts = proportional_ * errorA + integralVolts_;
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

// What a current step leaves behind: the current in counts (1024 an ampere), one sample each
// CurrentPeriodS from the moment of the step.
struct CurrentStepResult {
  static constexpr int SampleCount = 200;
  std::array<std::int16_t, SampleCount> Samples{};
  double PeakA = 0.0;
};

// Steps the current reference from 0 to `referenceA` with the rotor held on its pole.
CurrentStepResult RunCurrentStep(const RegisterBank& registers, double referenceA, Noise& noise);

}  // namespace gainsmith::sim
