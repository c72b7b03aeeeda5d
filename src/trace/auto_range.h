// Ranges of an axis: a bound for a channel's peak, round divisions, and the gain onto the plot.
#pragma once

#include <span>

namespace gainsmith {

// A rounded, always positive bound of the peak of `values` with 10 % head room: the next multiple
// of 5 (one digit) or 50 strictly above 1.1 times the peak. A negative peak of one digit carries
// its sign into the rounding and gives 52 to 68. `values` holds at least one finite number.
float AutoRange(std::span<const float> values);

// A tenth of `x` (0 or more) rounded up to a step of the scale 1, 2, 4, 5, 8 and finer ones above
// 1000; from 30000 on the tenth itself. The step is strictly above the tenth below that.
float NiceDivision(float x);

// Plot units per unit of the signal, with 7 decimals. A 0 in either argument becomes 1 there, in
// the caller's variable.
float PlotGain(float& plotUnits, float& top);

}  // namespace gainsmith
