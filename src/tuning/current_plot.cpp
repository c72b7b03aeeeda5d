#include "tuning/current_plot.h"

#include <algorithm>
#include <cmath>

#include "platform/number_text.h"

namespace gainsmith {
namespace {

constexpr Colour TraceColour = Rgb(28, 249, 105);
constexpr Colour BandColour = Rgb(23, 32, 3);
constexpr Colour ZeroLineColour = Rgb(255, 20, 255);
constexpr Colour TestCurrentColour = Rgb(243, 81, 33);
// The band's own colour all but vanishes on a dark ground; this one goes over it.
constexpr Colour BandOverlayColour = Rgb(255, 255, 255);

constexpr Colour AxisColour = Rgb(154, 165, 177);

constexpr int TracePenPixels = 2;
constexpr float SmallestSpanSamples = 5;
constexpr float SmallestSpanA = 0.005F;

std::int16_t WholeSamples(float value) {
  return static_cast<std::int16_t>(RoundHalfToEven(static_cast<double>(value)));
}

}  // namespace

void CurrentPlot::Reset(PictureBox& picture) {
  const CurrentPlot fresh;
  *this = fresh;
  picture.Cls();
  picture.Overlay.clear();
  picture.DrawWidth = TracePenPixels;
  picture.DrawDotted = false;
}

void CurrentPlot::ShowTrace(const std::array<float, CurrentSamples>& counts, float testCurrent,
                            PictureBox& picture) {
  TestCurrent = testCurrent;
  float range = TestCurrent * 3;
  if (range == 0) range = 0.2F;
  ZoomLevel = 0;
  ZoomLeft[0] = 0;
  ZoomWidth[0] = CurrentSamples - 1;
  ZoomTop[0] = range;
  ZoomHeight[0] = range * -2;
  picture.Scale = View();
  std::transform(counts.begin(), counts.end(), MeasuredCurrent.begin(), [](float raw) {
    const auto milliamperes = static_cast<float>(static_cast<double>(raw) / 1.024);
    return milliamperes / 1000;
  });
  ++trace_;
}

PictureScale CurrentPlot::View() const {
  const auto level = static_cast<std::size_t>(ZoomLevel);
  return {static_cast<float>(ZoomLeft[level]), ZoomTop[level], static_cast<float>(ZoomWidth[level]),
          ZoomHeight[level]};
}

void CurrentPlot::MouseDown(int button, float x, float y) {
  if (button == LeftButton) {
    DragStartX = x;
    DragStartY = y;
  } else if (button == RightButton) {
    ZoomLevel = 0;
  }
}

void CurrentPlot::MouseMove(int button, float x, float y) {
  if (button == NoButton) Dragging = false;
  if (button != LeftButton || !HasTrace()) return;
  Dragging = true;
  DragEndX = x;
  DragEndY = y;
}

void CurrentPlot::MouseUp(int button, float x, float y) {
  if (button != LeftButton || !HasTrace()) return;
  const PictureScale view = View();
  DragEndX = std::clamp(x, view.Left, view.Left + view.Width);
  DragEndY = std::clamp(y, view.Top + view.Height, view.Top);
  const float spanX = std::abs(DragEndX - DragStartX);
  const float spanY = std::abs(DragEndY - DragStartY);
  if (spanX >= SmallestSpanSamples && spanY >= SmallestSpanA) {
    ZoomIn(spanX, spanY);
  } else if (ZoomLevel > 0) {
    --ZoomLevel;
  }
}

void CurrentPlot::ZoomIn(float spanX, float spanY) {
  if (ZoomLevel == CurrentZoomLevels - 1) return;
  ++ZoomLevel;
  const auto level = static_cast<std::size_t>(ZoomLevel);
  ZoomWidth[level] = WholeSamples(spanX);
  ZoomLeft[level] = WholeSamples(std::min(DragStartX, DragEndX));
  ZoomHeight[level] = -spanY;
  ZoomTop[level] = std::max(DragStartY, DragEndY);
}

void CurrentPlot::Redraw(PictureBox& picture) {
  const Drawing wanted{trace_, ZoomLevel, Dragging, {DragStartX, DragStartY, DragEndX, DragEndY}};
  if (!HasTrace() || drawn_ == wanted) return;
  drawn_ = wanted;

  picture.Cls();
  picture.Scale = View();
  DrawTrace(picture);

  picture.DrawWidth = 1;
  picture.DrawDotted = true;
  DrawRubberBand(picture);
  picture.DrawDotted = false;

  const float left = picture.Scale.Left;
  const float right = left + picture.Scale.Width;
  picture.Line(left, 0, right, 0, ZeroLineColour);
  picture.Line(left, TestCurrent, right, TestCurrent, TestCurrentColour);
  picture.DrawWidth = TracePenPixels;
  WriteAxes(picture);
  picture.Write(PictureText::Place::TraceEnd, right, TestCurrent, "Test current",
                TestCurrentColour);
}

// At the lines between the ten divisions.
void CurrentPlot::WriteAxes(PictureBox& picture) const {
  constexpr int Divisions = 10;
  const PictureScale view = picture.Scale;
  const int decimals = -view.Height >= 1 ? 2 : -view.Height >= 0.1F ? 3 : 5;
  for (int i = 1; i < Divisions; ++i) {
    const float part = static_cast<float>(i) / Divisions;
    const float amperes = view.Top + view.Height * part;
    const float sample = view.Left + view.Width * part;
    picture.Write(PictureText::Place::RightEdge, view.Left, amperes,
                  FixedText(static_cast<double>(amperes), decimals) + (i == 1 ? " A" : ""),
                  AxisColour);
    if (i % 2 != 0) continue;
    picture.Write(
        PictureText::Place::LowerEdge, sample, view.Top,
        FixedText(static_cast<double>(sample), 1) + (i + 2 == Divisions ? " samples" : ""),
        AxisColour);
  }
}

void CurrentPlot::DrawTrace(PictureBox& picture) const {
  const auto level = static_cast<std::size_t>(ZoomLevel);
  // Rounding both edges of a narrow view can carry it one sample past the last.
  const int first = std::max<int>(ZoomLeft[level], 0);
  const int last = std::min<int>(ZoomLeft[level] + ZoomWidth[level], CurrentSamples - 1);
  for (int i = first; i < last; ++i) {
    const auto at = static_cast<std::size_t>(i);
    picture.Line(static_cast<float>(i), MeasuredCurrent[at], static_cast<float>(i + 1),
                 MeasuredCurrent[at + 1], TraceColour);
  }
}

void CurrentPlot::DrawRubberBand(PictureBox& picture) const {
  picture.Overlay.clear();
  if (!Dragging) return;
  const std::array<float, 4> corners{DragStartX, DragStartY, DragEndX, DragEndY};
  const auto [x1, y1, x2, y2] = corners;
  picture.Line(x1, y1, x2, y1, BandColour);
  picture.Line(x2, y1, x2, y2, BandColour);
  picture.Line(x2, y2, x1, y2, BandColour);
  picture.Line(x1, y2, x1, y1, BandColour);
  picture.Overlay.assign(picture.Lines.end() - 4, picture.Lines.end());
  for (PictureLine& line : picture.Overlay) line.Color = BandOverlayColour;
}

}  // namespace gainsmith
