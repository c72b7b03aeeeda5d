// The texts of the label columns beside a plot. Each label is worked out from the printed text of
// its neighbour, so that a column always shows equal divisions. Index 0 is the bottom of a column,
// or the left end of the time axis.
#pragma once

#include <array>
#include <string>

namespace gainsmith {

constexpr int AxisLabels = 11;
using AxisTexts = std::array<std::string, AxisLabels>;

// --- The whole trace.

// From -top to top. `step` is one division. The first label from below whose value is nearer to 0
// than `currentStep`, the division of the current axis in A whatever the column, reads "0".
AxisTexts LadderTexts(double top, double step, int decimals, double currentStep);

// From 0 to `traceTimeMs`.
AxisTexts TimeTexts(double traceTimeMs);

// Eleven labels from `first` upwards in even steps, as a window shows them before any capture.
AxisTexts StartTexts(double first, double step, int decimals);

// --- A zoomed view, `level` 1 to 14.

// Amperes from the top down; `top` and `step` in mA. 3 decimals below level 3, then 5.
AxisTexts ZoomedCurrentTexts(float top, float step, int level);

// Milliseconds in whole numbers, from the time of sample `left`.
AxisTexts ZoomedTimeTexts(float left, float sampleDivider, float timeStepMs);

// Velocity or position from the top down, with level - 1 decimals between asterisks.
AxisTexts ZoomedStarTexts(float top, float step, int level);

}  // namespace gainsmith
