// From the words of a recording to the channels, their ranges and their plots.
#pragma once

#include <span>

#include "trace/trace_state.h"

namespace gainsmith {

// The position series that sets the scale of all position traces.
enum class PositionSeries { PErr, PBak, PRef };

// The signal of a series.
constexpr Signal SignalOf(PositionSeries series) {
  switch (series) {
    case PositionSeries::PBak:
      return Signal::PBak;
    case PositionSeries::PRef:
      return Signal::PRef;
    case PositionSeries::PErr:
      break;
  }
  return Signal::PErr;
}

// Splits a recording of `channelCount` (2 or 3) channels of 200 words: position error first where
// there are three, then velocity, then current. Fills the traces in engineering units, with three
// channels the regenerated reference and feedback too, level 0 of the axis tables and, scaled by
// the position error's gain, the plots. The Show flags of the recorded channels are set before
// (ShowRecordedChannels). `buffer` holds all the words. Without encoder counts the velocity is 0.
// Returns the channels that were not taken off: the current is not counted, so usually 1.
int SplitTrace(TraceState& trace, std::span<const float> buffer, int channelCount);

// Fills the plots of current, velocity and, with three channels, of the position traces; these
// share the gain of `positionSource`. All plots not filled become 0.
void ScaleTraces(TraceState& trace, int channelCount, PositionSeries positionSource, float iGain,
                 float vGain, float pErrGain, float pBakGain, float pRefGain);

// ScaleTraces with the gains that the tables hold at `level`.
void ScaleTracesAt(TraceState& trace, int channelCount, PositionSeries positionSource, int level);

}  // namespace gainsmith
