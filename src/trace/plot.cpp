// Plot: labels and drawing. The mouse is in plot_mouse.cpp.
#include "trace/plot.h"

#include <algorithm>
#include <string>

#include "platform/number_text.h"
#include "trace/spectrum_view.h"

namespace gainsmith {
namespace {

constexpr PictureScale WholeTrace{.Left = 0, .Top = 400, .Width = 200.4F, .Height = -800};
constexpr Colour Green = 32768;

// The signals that a drive records, and what is worked out of them.
const char* NameOf(Signal signal) {
  switch (signal) {
    case Signal::PErr:
      return "Position error";
    case Signal::PBak:
      return "Position feedback";
    case Signal::PRef:
      return "Position reference";
    case Signal::VBak:
      return "Velocity";
    case Signal::IBak:
      return "Current";
    default:
      return "";
  }
}

void SetCaptions(LabelColumn& column, const AxisTexts& texts) {
  for (std::size_t i = 0; i < column.size(); ++i) column[i].Caption = texts[i];
}

void SetColour(LabelColumn& column, Colour colour) {
  for (Label& label : column) label.ForeColor = colour;
}

void SetVisible(LabelColumn& column, bool visible) {
  for (Label& label : column) label.Visible = visible;
}

}  // namespace

Plot::Plot(const PlotDescription& description, TraceState& trace, const bool& linkIdle,
           const ComboBox& combo1, StatusBar* statusBar1)
    : Description(description),
      trace_(trace),
      linkIdle_(linkIdle),
      combo1_(combo1),
      statusBar1_(statusBar1) {
  Picture1.OnMouseDown = [this](int button, float x, float y) { Picture1_MouseDown(button, x, y); };
  Picture1.OnMouseMove = [this](int button, float x, float y) { Picture1_MouseMove(button, x, y); };
  Picture1.OnMouseUp = [this](int button, float x, float y) { Picture1_MouseUp(button, x, y); };
  Picture1.OnCopy = [this] {
    if (Picture1.Lines.empty()) return std::string();
    return RecordingText(trace_, Description.ChannelCount, Description.FollowsTest,
                         Notes ? Notes() : RunNotes{});
  };
  Open();
}

void Plot::Open() {
  ZoomLevel = 0;
  CaptureHaveData = false;
  FrequencyMode = false;
  SpectrumTop = 0;
  PositionSource = PositionSeries::PErr;
  DragStartX = DragStartY = DragEndX = DragEndY = 0;
  Picture1.Scale = WholeTrace;
  Picture1.Cls();
  LayBandOnFrame();

  SetCaptions(Label3, StartTexts(-2, 0.4, Description.StartDecimals));
  SetCaptions(Label4, StartTexts(0, 200, 0));
  SetCaptions(Label5, StartTexts(-200, 40, 0));
  SetCaptions(Label6, StartTexts(-400, 80, 0));
  Label8.Caption = Description.TimeCaption;
  Label9.Caption = Description.CurrentCaption;
  Label10.Caption = Description.VelocityCaption;
  Label11.Caption = "Position Error (p)";
  const PlotColours& colours = trace_.*Description.Colours;
  SetColour(Label3, (trace_.*Description.CurrentColumnColours)[Signal::IBak]);
  SetColour(Label5, colours[Signal::PErr]);
  SetColour(Label6, Green);
  SetRightColumnsVisible(true);
  if (statusBar1_ != nullptr) {
    statusBar1_->Panels.assign(Description.Panels.begin(), Description.Panels.end());
  }
}

void Plot::SetAxisLabels() {
  ShowWholeTraceLabels();
  ZoomLevel = 0;
  trace_.ZoomLeft[0] = 0;
  trace_.ZoomWidth[0] = static_cast<float>(trace_.TraceSamples - 1);
  trace_.ZoomTop[0] = WholeTrace.Top;
  trace_.ZoomHeight[0] = WholeTrace.Height;
}

void Plot::ShowLabels() {
  if (ZoomLevel == 0) {
    ShowWholeTraceLabels();
  } else {
    ShowZoomedLabels();
  }
}

void Plot::ShowWholeTraceLabels() {
  const double currentTop = trace_.ITop[0];
  const double currentStep = 2 * currentTop / 10000;
  SetCaptions(Label3, LadderTexts(currentTop / MaPerAmpere, currentStep, 3, currentStep));

  const double traceTimeMs =
      Description.FollowsTest ? LeadingNumber(combo1_.Text) : trace_.SampleDivider * 100.0;
  SetCaptions(Label4, TimeTexts(traceTimeMs));

  const double velocityTop = trace_.VTop[0];
  SetCaptions(Label6, LadderTexts(velocityTop, 2 * velocityTop / 10, 0, currentStep));

  if (Description.ChannelCount != 3) return;
  const BySignal<bool>& show = trace_.Show;
  if (Description.ChoosesPosition && !show[Signal::PErr] && !show[Signal::PBak] &&
      !show[Signal::PRef]) {
    for (Label& label : Label5) label.Caption = "0";
    return;
  }
  const double positionTop = PositionAxis().Top[0];
  SetCaptions(Label5, LadderTexts(positionTop, 2 * positionTop / 10, 0, currentStep));
}

void Plot::ShowZoomedLabels() {
  const auto level = static_cast<std::size_t>(ZoomLevel);
  SetCaptions(Label3, ZoomedCurrentTexts(trace_.ITop[level], trace_.IStep[level], ZoomLevel));
  SetCaptions(Label4, ZoomedTimeTexts(trace_.ZoomLeft[level], trace_.SampleDivider,
                                      trace_.TimeStep[level]));
  SetCaptions(Label6, ZoomedStarTexts(trace_.VTop[level], trace_.VStep[level], ZoomLevel));
  if (Description.ChannelCount != 3) return;
  const AxisTables position = PositionAxis();
  SetCaptions(Label5, ZoomedStarTexts(position.Top[level], position.Step[level], ZoomLevel));
}

AxisTables Plot::PositionAxis() {
  return trace_.Axis(Description.ChoosesPosition ? SignalOf(PositionSource) : Signal::PErr);
}

void Plot::Form_Resize() {
  Picture1.Cls();
  LayBandOnFrame();
  if (!CaptureHaveData || (Description.FollowsTest && trace_.TraceReadFailed)) return;
  if (FrequencyMode) {
    ShowSpectrum();
    return;
  }
  if (!Description.FollowsTest) {
    Label9.Caption = "Current(A)";
    Label8.Caption = "Time(ms)";
  }
  DrawTraces();
  if (Description.FollowsTest) ColourColumns();
}

void Plot::DrawTraces() {
  const auto level = static_cast<std::size_t>(ZoomLevel);
  constexpr float RightMargin = 1.4F;
  Picture1.Scale.Left = trace_.ZoomLeft[level];
  Picture1.Scale.Width = trace_.ZoomWidth[level] + (ZoomLevel == 0 ? RightMargin : 0);
  for (Signal signal : Description.Channels) {
    if (!trace_.Show[signal]) continue;
    Picture1.Scale.Top = trace_.ZoomTop[level];
    Picture1.Scale.Height = trace_.ZoomHeight[level];
    DrawTrace(signal);
  }
}

void Plot::DrawTrace(Signal signal) {
  const auto level = static_cast<std::size_t>(ZoomLevel);
  const PlotArray& plot = trace_.Plots[signal];
  const Colour colour = (trace_.*Description.Colours)[signal];
  const int first = static_cast<int>(RoundHalfToEven(trace_.ZoomLeft[level]));
  const int end = first + static_cast<int>(RoundHalfToEven(trace_.ZoomWidth[level]));
  // A press at the very edge may lie outside the data.
  for (int i = std::max(first, 0); i < std::min(end, ChannelSamples - 1); ++i) {
    const auto at = static_cast<std::size_t>(i);
    const auto x = static_cast<float>(i);
    Picture1.Line(x, plot[at], x + 1, plot[at + 1], colour);
  }
  const int last = std::clamp(end, 0, ChannelSamples - 1);
  Picture1.Write(PictureText::Place::TraceEnd, static_cast<float>(last),
                 plot[static_cast<std::size_t>(last)], NameOf(signal), colour);
}

void Plot::ShowSpectrum() {
  Label9.Caption = "Energy(J)";
  Label8.Caption = "Frequency(Hz)";
  const SpectrumAxes axes = SpectrumAxesOf(trace_.Spectrum, trace_.SampleDivider);
  SetCaptions(Label4, axes.Frequency);
  SetCaptions(Label3, axes.Energy);
  SpectrumTop = axes.SpectrumTop;
  DrawSpectrum(Picture1, trace_.Spectrum, SpectrumTop);
}

void Plot::ColourColumns() {
  SetColour(Label3, (trace_.*Description.CurrentColumnColours)[Signal::IBak]);
  SetColour(Label6, Green);
  if (!Description.ChoosesPosition) return;
  for (Signal signal : {Signal::PErr, Signal::PBak, Signal::PRef}) {
    if (trace_.Show[signal]) SetColour(Label5, (trace_.*Description.Colours)[signal]);
  }
}

void Plot::PickPositionSource() {
  static constexpr std::array Captions{"P_Err(P)", "P_Bak(P)", "P_Ref(P)"};
  static constexpr std::array Series{PositionSeries::PErr, PositionSeries::PBak,
                                     PositionSeries::PRef};
  bool found = false;
  for (PositionSeries series : Series) {
    if (!trace_.Show[SignalOf(series)]) continue;
    // The largest sets the axis; of equal ones the first.
    if (!found || trace_.Axis(SignalOf(series)).Top[0] > PositionAxis().Top[0]) {
      PositionSource = series;
    }
    found = true;
  }
  if (!found) return;
  const BySignal<bool>& show = trace_.Show;
  const bool errorAndReference = show[Signal::PErr] && !show[Signal::PBak] && show[Signal::PRef];
  Label11.Caption = errorAndReference && PositionSource == PositionSeries::PErr
                        ? " P_Err(P)"
                        : Captions[static_cast<std::size_t>(PositionSource)];
  ScaleTracesAt(trace_, 3, PositionSource, 0);
}

void Plot::SetRightColumnsVisible(bool visible) {
  Label10.Visible = Label11.Visible = visible;
  SetVisible(Label5, visible);
  SetVisible(Label6, visible);
}

}  // namespace gainsmith
