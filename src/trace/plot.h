// Plot: the picture of a capture with its label columns, its zoom and its read-outs, as the
// velocity window, the position window and the scope have it.
//
// All channels share one vertical scale of plot units, -400 to 400; a column of labels per signal
// says what it means for that signal. Horizontally the scale is the sample number. The window owns
// its plot, adds the controls to itself (DesignPlot) and calls the operations; the mouse handlers
// are bound from the start.
#pragma once

#include <array>
#include <functional>

#include "platform/control.h"
#include "trace/axis_labels.h"
#include "trace/copy_text.h"
#include "trace/plot_description.h"
#include "trace/split_trace.h"
#include "trace/trace_state.h"

namespace gainsmith {

// A label column; index 0 is the bottom, or the left end of the time axis.
using LabelColumn = std::array<Label, AxisLabels>;

struct Plot {
  // All arguments outlive the plot. `linkIdle` shuts the mouse out while it is false; `combo1` is
  // the window's list of trace times; a plot with read-outs needs its window's status bar.
  Plot(const PlotDescription& description, TraceState& trace, const bool& linkIdle,
       const ComboBox& combo1, StatusBar* statusBar1 = nullptr);
  Plot(const Plot&) = delete;
  Plot& operator=(const Plot&) = delete;
  ~Plot() = default;

  const PlotDescription& Description;

  PictureBox Picture1;
  LabelColumn Label3;  // current, A
  LabelColumn Label4;  // time, ms
  LabelColumn Label5;  // position, pulses; three channels only
  LabelColumn Label6;  // velocity, rpm
  Label Label8;        // caption of the time axis
  Label Label9;        // caption of the current column
  Label Label10;       // caption of the velocity column
  Label Label11;       // caption of the position column
  // Tick marks at the divisions: right of the picture, and below it. Nothing changes them.
  std::array<Frame, AxisLabels> Line2;
  std::array<Frame, AxisLabels> Line3;
  // The rubber band: four sides, in the scale in force when they were laid.
  std::array<PictureLine, 4> Line1{};

  // 0 to 14.
  int ZoomLevel = 0;
  // There is, or will soon be, something to show: the picture stays empty until then.
  bool CaptureHaveData = false;
  // The spectrum is shown instead of the traces; the scope only.
  bool FrequencyMode = false;
  float SpectrumTop = 0;
  // The position series that sets the position axis.
  PositionSeries PositionSource = PositionSeries::PErr;
  // The drag under way, or the last one, in plot coordinates.
  float DragStartX = 0;
  float DragStartY = 0;
  float DragEndX = 0;
  float DragEndY = 0;

  // What the window knows of the run that is shown, asked when the picture is copied.
  std::function<RunNotes()> Notes;

  // Everything as a window shows it before its first capture. For Form_Load.
  void Open();

  // Writes the labels of the whole trace and resets the zoom.
  void SetAxisLabels();

  // Redraws: call it after any change of data, scale, selection or colour.
  void Form_Resize();

  // The whole trace with its labels: the two above.
  void ShowWhole() {
    SetAxisLabels();
    Form_Resize();
  }

  // Chooses, from the position series shown, the one that sets the axis, and scales the traces by
  // it; nothing without one. The axis labels and the redraw are the caller's next step.
  void PickPositionSource();

  // The captions and columns right of the picture, which mean nothing beside a spectrum.
  void SetRightColumnsVisible(bool visible);

  void Picture1_MouseDown(int button, float x, float y);
  void Picture1_MouseMove(int button, float x, float y);
  void Picture1_MouseUp(int button, float x, float y);

 private:
  [[nodiscard]] bool TakesMouse() const;
  // The labels of the present zoom level.
  void ShowLabels();
  void ShowWholeTraceLabels();
  void ShowZoomedLabels();
  void LayBandOnFrame();
  void LayBandOnDrag();
  void DrawTraces();
  void DrawTrace(Signal signal);
  void ShowSpectrum();
  void ColourColumns();
  void ShowVelocityReadOut(float x, float y);
  void ShowPositionReadOut(float x, float y);
  AxisTables PositionAxis();

  TraceState& trace_;
  const bool& linkIdle_;
  const ComboBox& combo1_;
  StatusBar* statusBar1_;
};

}  // namespace gainsmith
