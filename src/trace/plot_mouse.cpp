// Plot: the mouse on the picture. Rubber band, zoom and read-outs.
#include <cmath>

#include "platform/number_text.h"
#include "trace/plot.h"
#include "trace/zoom.h"

namespace gainsmith {
namespace {

constexpr Colour BandColour = Rgb(255, 255, 255);

float Clamped(float value, float low, float high) {
  if (value >= high) return high;
  return value <= low ? low : value;
}

}  // namespace

bool Plot::TakesMouse() const {
  return linkIdle_ && (Description.FollowsTest ? CaptureHaveData : !FrequencyMode);
}

void Plot::Picture1_MouseDown(int button, float x, float y) {
  if (button != LeftButton || !TakesMouse()) return;
  DragStartX = x;
  DragStartY = y;
  if (!Description.RedrawsOnPress) return;
  Picture1.Scale.Top = trace_.ZoomTop[static_cast<std::size_t>(ZoomLevel)];
  Picture1.Scale.Height = trace_.ZoomHeight[static_cast<std::size_t>(ZoomLevel)];
  Form_Resize();
}

void Plot::Picture1_MouseMove(int button, float x, float y) {
  if (!TakesMouse()) return;
  if (button == LeftButton) {
    DragEndX = x;
    DragEndY = y;
    LayBandOnDrag();
  } else if (button == NoButton) {
    if (Description.Pointer == ReadOut::Velocity) ShowVelocityReadOut(x, y);
    if (Description.Pointer == ReadOut::Position) ShowPositionReadOut(x, y);
  }
}

void Plot::Picture1_MouseUp(int button, float x, float y) {
  constexpr double LeastSamples = 5;
  constexpr double LeastUnits = 0.005;
  if (button != LeftButton || !TakesMouse()) return;
  const auto level = static_cast<std::size_t>(ZoomLevel);
  // The right edge is that of the data, without the margin of the whole trace.
  const float left = trace_.ZoomLeft[level];
  const float top = trace_.ZoomTop[level];
  DragEndX = Clamped(x, left, left + trace_.ZoomWidth[level]);
  DragEndY = Clamped(y, top + trace_.ZoomHeight[level], top);

  const bool rectangle = std::abs(DragStartX - DragEndX) >= LeastSamples &&
                         std::abs(DragStartY - DragEndY) >= LeastUnits;
  if (!rectangle) {
    if (ZoomLevel > 0) --ZoomLevel;
  } else if (ZoomLevel < ZoomLevels - 1 && ZoomIn(trace_, Description.ChannelCount, ZoomLevel + 1,
                                                  {DragStartX, DragStartY, DragEndX, DragEndY})) {
    ++ZoomLevel;
  }
  ScaleTracesAt(trace_, Description.ChannelCount, PositionSource, ZoomLevel);
  ShowLabels();
  Form_Resize();
}

void Plot::LayBandOnFrame() {
  const PictureScale& scale = Picture1.Scale;
  const float right = scale.Left + scale.Width;
  const float bottom = scale.Top + scale.Height;
  Line1[0] = {scale.Left, bottom, scale.Left, scale.Top, BandColour, 1, false, scale};
  Line1[1] = {scale.Left, scale.Top, right, scale.Top, BandColour, 1, false, scale};
  Line1[2] = {right, scale.Top, right, bottom, BandColour, 1, false, scale};
  Line1[3] = {scale.Left, bottom, right, bottom, BandColour, 1, false, scale};
  // On the frame the band shows nothing, and the scale is about to change under it.
  Picture1.Overlay.clear();
}

void Plot::LayBandOnDrag() {
  const PictureScale& scale = Picture1.Scale;
  Line1[0] = {DragStartX, DragStartY, DragEndX, DragStartY, BandColour, 1, false, scale};
  Line1[1] = {DragEndX, DragEndY, DragStartX, DragEndY, BandColour, 1, false, scale};
  Line1[2] = {DragStartX, DragStartY, DragStartX, DragEndY, BandColour, 1, false, scale};
  Line1[3] = {DragEndX, DragStartY, DragEndX, DragEndY, BandColour, 1, false, scale};
  Picture1.Overlay.assign(Line1.begin(), Line1.end());
}

void Plot::ShowVelocityReadOut(float x, float y) {
  const auto level = static_cast<std::size_t>(ZoomLevel);
  const auto inUnits = [y](float gain) { return gain == 0 ? 0 : static_cast<double>(y) / gain; };
  statusBar1_->Panels[1] = "I_Bak:" + FixedText(inUnits(trace_.IGain[level]), 4);
  statusBar1_->Panels[3] = "V_Bak:" + FixedText(inUnits(trace_.VGain[level]), 2);
  statusBar1_->Panels[5] = "Time:" + FixedText(x * 0.5 * trace_.SampleDivider, 1);
}

void Plot::ShowPositionReadOut(float x, float y) {
  static constexpr std::array Captions{"P_Err:", "P_Bak:", "P_Ref:"};
  const auto level = static_cast<std::size_t>(ZoomLevel);
  float& positionGain = PositionAxis().Gain[level];
  for (float* gain : {&trace_.IGain[level], &trace_.VGain[level], &positionGain}) {
    if (*gain == 0) *gain = 1;
  }
  const double amperes = RoundHalfToEven(y / (trace_.IGain[level] * 1000.0), 3);
  const double rpm = static_cast<double>(y) / trace_.VGain[level];
  const double pulses = static_cast<double>(y) / positionGain;
  statusBar1_->Panels[1] = "Current:" + FixedText(amperes, 4);
  statusBar1_->Panels[3] = "Velocity:" + FixedText(rpm, 3);
  statusBar1_->Panels[5] =
      Captions[static_cast<std::size_t>(PositionSource)] + FixedText(pulses, 3);
  statusBar1_->Panels[7] = "Time:" + FixedText(x * 0.5 * trace_.SampleDivider, 1);
}

}  // namespace gainsmith
