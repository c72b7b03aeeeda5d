// What the current limits of registers 245 and 246 allow at this moment.
#pragma once

#include <algorithm>

#include "simulator/bank/registers.h"

namespace gainsmith::sim {

// The peak current may flow until the heat it brings above that of the rated current has used up
// three seconds at three times the rated current, (i2 - 1) t = 24 s with i in rated currents; from
// then on the limit is the rated current, until half of that heat is gone.
class OverloadGuard {
 public:
  void Configure(const RegisterBank& registers) {
    peakA_ = std::max<double>(1.0, registers[Reg::PeakCurrent]) / 100.0;
    ratedA_ = std::min(peakA_, std::max<double>(1.0, registers[Reg::RatedCurrent]) / 100.0);
  }
  void Reset() {
    heatS_ = 0.0;
    limitedS_ = 0.0;
    limited_ = false;
  }

  [[nodiscard]] double LimitA() const { return limited_ ? ratedA_ : peakA_; }
  [[nodiscard]] double OverCurrentA() const { return 1.5 * peakA_; }
  // The motor has been held at its rated current for so long that it can't do what it shall.
  [[nodiscard]] bool Overloaded() const { return limitedS_ > OverloadedS; }

  void Pass(double currentA, double durationS) {
    const double load = currentA / ratedA_;
    heatS_ = std::max(0.0, heatS_ + (load * load - 1.0) * durationS);
    limited_ = heatS_ > (limited_ ? HeatS / 2.0 : HeatS);
    limitedS_ = limited_ ? limitedS_ + durationS : 0.0;
  }

 private:
  static constexpr double HeatS = 3.0 * (3.0 * 3.0 - 1.0);
  static constexpr double OverloadedS = 5.0;
  double peakA_ = 1.0;
  double ratedA_ = 1.0;
  double heatS_ = 0.0;
  double limitedS_ = 0.0;
  bool limited_ = false;
};

}  // namespace gainsmith::sim
