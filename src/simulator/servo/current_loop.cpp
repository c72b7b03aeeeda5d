// The innermost loop: winding, current controller, and the current step test made of the two.
#include "simulator/servo/current_loop.h"

#include <algorithm>
#include <cmath>

namespace gainsmith::sim {

namespace {

constexpr double ProportionalUnit = 0.05;  // V/A
constexpr double IntegralUnit = 0.001;     // V/A in each period

double AtLeastOne(std::uint16_t value) { return std::max<double>(1.0, value); }

}  // namespace

WindingConstants ReadWinding(const RegisterBank& registers) {
  return {.ResistanceOhm = AtLeastOne(registers[Reg::Resistance]) / 100.0,
          .InductanceH = AtLeastOne(registers[Reg::Inductance]) / 100.0 / 1000.0};
}

void Winding::Configure(const WindingConstants& constants) {
  decay_ = std::exp(-constants.ResistanceOhm * CurrentPeriodS / constants.InductanceH);
  gainSiemens_ = (1.0 - decay_) / constants.ResistanceOhm;
}

void CurrentLoop::Configure(const RegisterBank& registers) {
  proportional_ = registers[Reg::CurrentKp] * ProportionalUnit;
  integral_ = registers[Reg::CurrentKi] * IntegralUnit;
}

void CurrentLoop::Reset() {
  integralVolts_ = 0.0;
  nextVolts_ = 0.0;
}

CurrentStepResult RunCurrentStep(const RegisterBank& registers, double referenceA, Noise& noise) {
  Winding winding;
  winding.Configure(ReadWinding(registers));
  CurrentLoop loop;
  loop.Configure(registers);

  CurrentStepResult result;
  for (std::int16_t& sample : result.Samples) {
    sample = ToSample(winding.CurrentA() * CountsPerAmpere + noise.Next());
    result.PeakA = std::max(result.PeakA, std::abs(winding.CurrentA()));
    winding.Step(loop.Step(referenceA, winding.CurrentA()));
  }
  return result;
}

}  // namespace gainsmith::sim
