#include "trace/zoom.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "platform/number_text.h"
#include "trace/auto_range.h"

namespace gainsmith {
namespace {

constexpr std::array TimeStepsMs{200.0, 190.0, 180.0, 170.0, 160.0, 150.0, 140.0, 130.0, 120.0,
                                 110.0, 100.0, 90.0,  80.0,  70.0,  60.0,  50.0,  40.0,  30.0,
                                 20.0,  10.0,  8.0,   6.0,   5.0,   4.0,   2.0,   1.0,   0.1};

constexpr std::array CurrentStepsMa{
    3000.0, 2800.0, 2500.0, 2400.0, 2200.0, 2000.0, 1800.0, 1500.0, 1400.0, 1200.0, 1000.0,
    800.0,  600.0,  500.0,  400.0,  250.0,  200.0,  100.0,  80.0,   50.0,   40.0,   20.0,
    10.0,   8.0,    5.0,    4.0,    2.0,    1.0,    0.8,    0.5,    0.4,    0.2,    0.1};

// The entry before the first one into which `extent` goes at least `ratio` times, so that the view
// holds the whole rectangle; the first entry has none before it and stands for itself. 0: no entry
// is fine enough.
float StepFor(std::span<const double> steps, double extent, double ratio) {
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (extent / steps[i] >= ratio) return static_cast<float>(steps[i == 0 ? 0 : i - 1]);
  }
  return 0;
}

void ReplaceZero(float& value) {
  if (value == 0) value = 1;
}

// An axis that has no range yet has none at the next level either.
float Quotient(float dividend, float divisor) {
  return divisor == 0 ? 0 : static_cast<float>(static_cast<double>(dividend) / divisor);
}

std::span<const Signal> SignalsBesideCurrent(int channelCount) {
  static constexpr std::array Signals{Signal::VBak, Signal::PErr, Signal::PBak, Signal::PRef};
  return std::span(Signals).first(channelCount == 3 ? 4 : 1);
}

}  // namespace

void NiceTimeStep(TraceState& trace, int level, float previousStep, float previousWidth,
                  float newWidth) {
  const auto at = static_cast<std::size_t>(level);
  const std::size_t below = at - 1;
  const double samplesPerMs = RoundHalfToEven(static_cast<double>(previousWidth) / previousStep, 5);
  const float step = StepFor(TimeStepsMs, newWidth, samplesPerMs);
  if (step != 0) trace.TimeStep[at] = step;
  if (trace.TimeStep[at] == 0 || !std::isfinite(samplesPerMs)) {
    trace.ZoomWidth[at] = trace.ZoomWidth[below];
    trace.ZoomLeft[at] = trace.ZoomLeft[below];
    return;
  }
  trace.ZoomWidth[at] =
      static_cast<float>(RoundHalfAwayFromZero(samplesPerMs * trace.TimeStep[at], 0));
  if (trace.ZoomLeft[at] + trace.ZoomWidth[at] > ChannelSamples - 1) {
    trace.ZoomWidth[at] = trace.ZoomWidth[below];
    trace.ZoomLeft[at] = trace.ZoomLeft[below];
    trace.TimeStep[at] = trace.TimeStep[below];
  }
}

float NiceCurrentStep(const TraceState& trace, int level, float newHeight, float previousHeight) {
  const double ratio = RoundHalfToEven(static_cast<double>(previousHeight) / newHeight, 3);
  return StepFor(CurrentStepsMa, trace.IStep[static_cast<std::size_t>(level) - 1], ratio);
}

bool ZoomAxes(TraceState& trace, int channelCount, int level, float previousHeight, float newHeight,
              float top) {
  const auto at = static_cast<std::size_t>(level);
  const std::size_t below = at - 1;
  for (float* value :
       {&trace.IStep[below], &trace.IStep[at], &trace.IGain[below], &trace.TopRatio[at]}) {
    ReplaceZero(*value);
  }
  const float step = NiceCurrentStep(trace, level, newHeight, previousHeight);
  if (step == 0) return false;
  trace.IStep[at] = step;

  const std::span<const Signal> others = SignalsBesideCurrent(channelCount);
  const double scale = static_cast<double>(trace.IStep[below]) / trace.IStep[at];
  for (Signal signal : others) {
    const AxisTables axis = trace.Axis(signal);
    axis.Step[at] = static_cast<float>(axis.Step[below] / scale);
  }
  // Ten divisions of the new step in plot units: the rectangle's height rounded up.
  trace.ZoomHeight[at] =
      static_cast<float>(-(static_cast<double>(trace.IStep[at]) * 10 * previousHeight) /
                         (static_cast<double>(trace.IStep[below]) * 10));
  trace.ITop[at] = static_cast<float>(static_cast<double>(top) / trace.IGain[below]);
  trace.IGain[at] = PlotGain(top, trace.ITop[at]);
  trace.TopRatio[at] = Quotient(trace.ITop[below], trace.ITop[at]);
  for (Signal signal : others) {
    const AxisTables axis = trace.Axis(signal);
    axis.Top[at] = Quotient(axis.Top[below], trace.TopRatio[at]);
    if (channelCount == 2) axis.Top[at] = static_cast<float>(RoundHalfToEven(axis.Top[at]));
    axis.Gain[at] = PlotGain(top, axis.Top[at]);
  }
  return true;
}

bool ZoomIn(TraceState& trace, int channelCount, int level, const DragEnds& drag) {
  const auto at = static_cast<std::size_t>(level);
  const std::size_t below = at - 1;
  const float width = std::abs(drag.StartX - drag.EndX);
  const float height = std::abs(drag.StartY - drag.EndY);
  const float previousHeight = -trace.ZoomHeight[below];

  ReplaceZero(trace.IStep[below]);
  if (NiceCurrentStep(trace, level, height, previousHeight) == 0) return false;

  trace.ZoomWidth[at] = static_cast<float>(RoundHalfAwayFromZero(width, 0));
  trace.ZoomLeft[at] =
      static_cast<float>(RoundHalfAwayFromZero(std::min(drag.StartX, drag.EndX), 0));
  // The samples are 199 intervals, but the ten divisions of the whole trace stand for 200.
  const float previousWidth = trace.ZoomWidth[below] + (level == 1 ? 1.0F : 0.0F);
  NiceTimeStep(trace, level, trace.TimeStep[below], previousWidth, trace.ZoomWidth[at]);
  trace.ZoomTop[at] = static_cast<float>(RoundHalfToEven(std::max(drag.StartY, drag.EndY)));
  return ZoomAxes(trace, channelCount, level, previousHeight, height, trace.ZoomTop[at]);
}

}  // namespace gainsmith
