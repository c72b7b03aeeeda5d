// Form5: its design.
#include <string>

#include "trace/capture.h"
#include "trace/plot_design.h"
#include "trace/scope_window.h"

namespace gainsmith {
namespace {

constexpr int RowTopTwips = 240;
constexpr int RowHeightTwips = 345;
constexpr int SpectrumTopTwips = 960;

// A channel's check box, with its swatch before it.
struct ChannelPlace {
  Form5::Channel Index;
  const char* Caption;
  int LeftTwips;
  int WidthTwips;
  std::size_t Swatch;
  int SwatchLeftTwips;
  Colour SwatchColour;
};
constexpr ChannelPlace Channels[] = {
    {Form5::Current, "Current", 960, 1380, 2, 600, 255},
    {Form5::Velocity, "Velocity", 2760, 1860, 0, 2400, 65280},
    {Form5::PositionError, "Position Error", 5040, 2085, 1, 4680, 8388736},
};

}  // namespace

void Form5::BuildDesign() {
  Name = "Form5";
  Caption = "Scope";
  ClientWidthTwips = 12900;
  // Higher than the plot and one row of controls need, so that Check2 is in sight.
  ClientHeightTwips = 8340;

  Add(Frame2, "Frame2").Place(0, 0, 12900, 6960);
  Frame2.Border = false;
  DesignPlot(*this, Frame2, Plot, ScopePlotPlace);

  Add(Frame1, "Frame1").Place(120, 6960, 12735, 1335);
  for (const ChannelPlace& place : Channels) {
    Button& swatch = Add(Command4[place.Swatch], "Command4", place.Swatch, &Frame1);
    swatch.Swatch = true;
    swatch.BackColor = place.SwatchColour;
    swatch.AccessibleName = std::string("Colour of ") + place.Caption;
    swatch.Place(place.SwatchLeftTwips, RowTopTwips, 315, RowHeightTwips);
    CheckBox& check = Add(Check1[place.Index], "Check1", place.Index, &Frame1);
    check.Caption = place.Caption;
    check.Place(place.LeftTwips, RowTopTwips, place.WidthTwips, RowHeightTwips);
  }
  Add(Label2, "Label2", &Frame1).Caption = "TraceTime:";
  Label2.Place(7185, RowTopTwips, 1275, RowHeightTwips);
  Add(Combo1, "Combo1", &Frame1).AccessibleName = "TraceTime:";
  Combo1.ToolTip = "How much time a recording of 200 samples spans.\nSent at Start";
  Combo1.Place(8520, RowTopTwips, 1320, RowHeightTwips);
  Add(Command1, "Command1", &Frame1).Place(10680, RowTopTwips, 1335, 375);
  Add(Check2, "Check2", &Frame1).Caption = "frequency characteristics";
  Check2.Place(4320, SpectrumTopTwips, 3375, 255);

  Timer1.IntervalMs = 50;
  err.IntervalMs = 1000;
  Timers = {&Timer1, &err};
}

void Form5::ResetDesign() {
  for (const ChannelPlace& place : Channels) Check1[place.Index].Ticked = true;
  FillTraceTimes(Combo1);
  Command1.Caption = StartCaption;
  Command1.Enabled = true;
  EnableSetup(true);
  Check2.Ticked = false;
  Check2.Enabled = false;
  Plot.Open();
}

}  // namespace gainsmith
