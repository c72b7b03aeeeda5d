// The zoom: from a rectangle on the plot to a view of whole divisions, one level above the last.
#pragma once

#include "trace/trace_state.h"

namespace gainsmith {

// The two ends of a drag in plot coordinates: samples and plot units.
struct DragEnds {
  float StartX = 0;
  float StartY = 0;
  float EndX = 0;
  float EndY = 0;
};

// Fills TimeStep, ZoomWidth and ZoomLeft at `level` (1 to 14). On entry ZoomLeft holds the left end
// of the rectangle; `previousStep` (ms, not 0) and `previousWidth` (samples) are those of the view
// that was zoomed, `newWidth` the rectangle's. The view becomes 10 divisions of a step from a fixed
// list; one that would run past the last sample keeps the time axis of the level below.
void NiceTimeStep(TraceState& trace, int level, float previousStep, float previousWidth,
                  float newWidth);

// The division in mA for a rectangle of `newHeight` in a view of `previousHeight` (both above 0,
// in plot units), from a fixed list; 0 when the list has none fine enough.
float NiceCurrentStep(const TraceState& trace, int level, float newHeight, float previousHeight);

// Fills the axis tables of all signals (two channels: current and velocity) and ZoomHeight at
// `level`. `top` is the new view's top in plot units. False when no current step fits: the tables
// of the level stay.
bool ZoomAxes(TraceState& trace, int channelCount, int level, float previousHeight, float newHeight,
              float top);

// Makes `level` (1 to 14) the view of a rectangle drawn in the view of the level below. False when
// no current step fits: the tables stay.
bool ZoomIn(TraceState& trace, int channelCount, int level, const DragEnds& drag);

}  // namespace gainsmith
