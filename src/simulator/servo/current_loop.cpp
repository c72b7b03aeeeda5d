// The innermost loop: winding, current controller, and the current step test made of the two.
#include "simulator/servo/current_loop.h"

#include <algorithm>
#include <cmath>

namespace gainsmith::sim {

namespace {

constexpr double ProportionalUnit = 0.05;  // V/A
constexpr double IntegralUnit = 0.001;     // V/A in each period
// The winding with which a unit is that.
constexpr double UnitInductance = 800.0;  // mH x 100
constexpr double UnitResistance = 260.0;  // ohms x 100

// Zeros, which no winding has, read as one unit.
double AtLeastOne(std::uint16_t value) { return std::max<double>(1.0, value); }

}  // namespace

Winding::Winding(const WindingConstants& constants)
    : decay_(std::exp(-constants.ResistanceOhm * CurrentPeriodS / constants.InductanceH)),
      gainSiemens_((1.0 - decay_) / constants.ResistanceOhm) {}

void CurrentLoop::Configure(const RegisterBank& registers) {
  proportional_ = registers[Reg::CurrentKp] * ProportionalUnit *
                  (AtLeastOne(registers[Reg::Inductance]) / UnitInductance);
  integral_ = registers[Reg::CurrentKi] * IntegralUnit *
              (AtLeastOne(registers[Reg::Resistance]) / UnitResistance);
}

void CurrentLoop::Reset() {
  integralVolts_ = 0.0;
  nextVolts_ = 0.0;
}

CurrentStepTest::CurrentStepTest(const MotorPreset& preset, const RegisterBank& registers,
                                 double referenceA)
    : winding_({.ResistanceOhm = preset.ResistanceOhm, .InductanceH = preset.InductanceH}),
      referenceA_(referenceA) {
  Configure(registers);
}

void CurrentStepTest::Step(double limitA) {
  winding_.Step(loop_.Step(std::min(referenceA_, limitA), winding_.CurrentA(), 0.0));
  peakA_ = std::max(peakA_, std::abs(winding_.CurrentA()));
}

CurrentStepTest::Samples CurrentStepTest::Record(double limitA, Noise& noise) {
  Samples samples{};
  for (std::int16_t& sample : samples) {
    sample = ToSample(winding_.CurrentA() * CountsPerAmpere + noise.Next());
    Step(limitA);
  }
  return samples;
}

}  // namespace gainsmith::sim
