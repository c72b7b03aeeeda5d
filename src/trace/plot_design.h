// Where a plot's controls lie in its window.
#pragma once

#include "platform/window.h"
#include "trace/plot.h"

namespace gainsmith {

// What the traces are drawn on.
inline constexpr Colour PlotGround = Rgb(16, 21, 27);

struct PlotPlace {
  // The picture, in twips of its frame. Left of it 800 twips are needed, above it 480 (a picture
  // lower than 4000 twips) or 360, and 600 below it.
  int LeftTwips;
  int TopTwips;
  int WidthTwips;
  int HeightTwips;
  // Width of a label column right of the picture.
  int ColumnTwips;
};

inline constexpr PlotPlace VelocityPlotPlace{840, 480, 9015, 3000, 810};
inline constexpr PlotPlace PositionPlotPlace{840, 480, 9015, 3000, 1155};
inline constexpr PlotPlace ScopePlotPlace{1080, 360, 9015, 6000, 1155};

// Adds the picture, its label columns and their captions to `window`, inside `frame`.
void DesignPlot(Window& window, Control& frame, Plot& plot, const PlotPlace& place);

}  // namespace gainsmith
