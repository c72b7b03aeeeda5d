// Form1: its design.
#include <string>

#include "trace/plot_design.h"
#include "tuning/current_loop_window.h"

namespace gainsmith {
namespace {

constexpr int LineTwips = 345;
constexpr int FieldRowTopTwips = 5070;
constexpr int ReadOutTopTwips = 4530;

}  // namespace

void Form1::BuildDesign() {
  Name = "Form1";
  Caption = "Current Loop";
  ClientWidthTwips = 10080;
  ClientHeightTwips = 5760;

  Add(Picture1, "Picture1").Place(240, 240, 9600, 4200);
  Picture1.BackColor = PlotGround;
  Picture1.AccessibleName = "Current step response";
  Picture1.ToolTip =
      "Drag to zoom in, click to zoom out, right click to see all of it.\n"
      "Ctrl+C copies the picture and, for a spreadsheet, the samples with their score.";

  struct ReadOutPlace {
    ReadOut Index;
    const char* Caption;
    int LeftTwips;
    int WidthTwips;
  };
  constexpr ReadOutPlace ReadOuts[] = {
      {HeightCaption, "value(A):", 240, 1200},
      {Height, "", 1470, 1200},
      {WidthCaption, "TimeValue(sample):", 6480, 2280},
      {Width, "", 8790, 1050},
  };
  for (const ReadOutPlace& place : ReadOuts) {
    Label& label = Add(Label3[place.Index], "Label3", place.Index);
    label.Caption = place.Caption;
    label.Place(place.LeftTwips, ReadOutTopTwips, place.WidthTwips, LineTwips);
  }

  struct FieldPlace {
    Field Index;
    const char* Caption;
    int LabelLeftTwips;
    int LabelWidthTwips;
    int FieldLeftTwips;
  };
  constexpr FieldPlace Fields[] = {
      {Kp, "Kp", 240, 450, 720},
      {Ki, "Ki", 2280, 450, 2760},
      {TestCurrent, "Test Current", 4320, 1560, 5910},
  };
  for (const FieldPlace& place : Fields) {
    Label& label = Add(Label1[place.Index], "Label1", place.Index);
    label.Caption = place.Caption;
    label.Place(place.LabelLeftTwips, FieldRowTopTwips, place.LabelWidthTwips, LineTwips);
    TextBox& text = Add(Text1[place.Index], "Text1", place.Index);
    text.AccessibleName = place.Caption;
    text.Place(place.FieldLeftTwips, FieldRowTopTwips, 1260, LineTwips);
  }
  constexpr const char* WhenSent = ".\nTest sends it; Download to Drive stores it";
  Text1[Kp].ToolTip = std::string("Above 0, up to 65535") + WhenSent;
  Text1[Ki].ToolTip = std::string("0 to 32767") + WhenSent;
  Text1[TestCurrent].ToolTip = "Amperes, above 0, up to 5.\nTest sends it";

  Add(cmdTest, "cmdTest").Caption = "Test";
  cmdTest.Place(8400, FieldRowTopTwips - 75, 1440, 495);

  DataSource.IntervalMs = 100;
  Timers.push_back(&DataSource);
}

}  // namespace gainsmith
