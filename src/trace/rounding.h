// Rounding of axis values to decimals.
#pragma once

#include <cmath>

#include "platform/number_text.h"

namespace gainsmith {

// `value` rounded to `decimals` (0 to 9), a tie to the even neighbour. Number patterns, which round
// a tie away from zero, are FixedText's.
inline double RoundToDecimals(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  return RoundHalfToEven(value * scale) / scale;
}

}  // namespace gainsmith
