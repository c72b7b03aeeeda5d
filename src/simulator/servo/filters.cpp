// The drive's filters: low passes and the trap that cuts a narrow band out of the current
// reference.
#include "simulator/servo/filters.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gainsmith::sim {

void LowPass::Configure(double cutOffHz, double periodS) {
  share_ = cutOffHz > 0.0 ? 1.0 - std::exp(-2.0 * std::numbers::pi * cutOffHz * periodS) : 1.0;
}

void TrapFilter::Configure(double frequencyHz, double widthHz, double periodS) {
  if (frequencyHz <= 0.0 || widthHz <= 0.0 || frequencyHz * periodS >= 0.5) {
    *this = TrapFilter();
    return;
  }
  // A notch is 12 dB down where its detuning is 0.258 of the half-power bandwidth.
  constexpr double HalfPowerPerWidth = 1.0 / 0.258;
  const double w = 2.0 * std::numbers::pi * frequencyHz * periodS;
  // Held below a quarter of the sampling rate, where the tangent has no more to give.
  const double halfPowerHz = std::min(HalfPowerPerWidth * widthHz, 0.25 / periodS);
  const double alpha = std::tan(std::numbers::pi * halfPowerHz * periodS);
  b0_ = 1.0 / (1.0 + alpha);
  b1_ = -2.0 * std::cos(w) * b0_;
  b2_ = b0_;
  a1_ = b1_;
  a2_ = (1.0 - alpha) * b0_;
}

}  // namespace gainsmith::sim
