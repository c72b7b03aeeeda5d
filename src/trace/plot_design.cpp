#include "trace/plot_design.h"

#include <algorithm>
#include <string>

namespace gainsmith {
namespace {

constexpr int LabelHeightTwips = 240;
constexpr int GapTwips = 45;
// Right of the picture a tick mark stands in the gap, and far enough from the label not to be read
// as its sign.
constexpr int RightGapTwips = 135;
constexpr int LeftColumnTwips = 750;
constexpr int AxisDivisions = AxisLabels - 1;

struct Column {
  const char* Name;
  int LeftTwips;
  int WidthTwips;
  TextAlignment Alignment;
};

void AddLabel(Window& window, Control& frame, Label& label, const std::string& name,
              TextAlignment alignment) {
  window.Add(label, name, &frame);
  label.Alignment = alignment;
}

// Eleven labels beside the picture, each centred on its division's line; index 0 is the lowest.
void AddColumn(Window& window, Control& frame, LabelColumn& labels, const PlotPlace& place,
               const Column& column) {
  for (int i = 0; i < AxisLabels; ++i) {
    Label& label = labels[static_cast<std::size_t>(i)];
    AddLabel(window, frame, label, column.Name + ("(" + std::to_string(i) + ")"), column.Alignment);
    label.Squeeze = true;
    const int line = place.TopTwips + place.HeightTwips * (AxisDivisions - i) / AxisDivisions;
    label.Place(column.LeftTwips, line - LabelHeightTwips / 2, column.WidthTwips, LabelHeightTwips);
  }
}

void AddTimeAxis(Window& window, Control& frame, Plot& plot, const PlotPlace& place) {
  const int division = place.WidthTwips / AxisDivisions;
  // Below the lowest labels of the columns, which reach half their height under the picture.
  const int top = place.TopTwips + place.HeightTwips + LabelHeightTwips / 2;
  for (int i = 0; i < AxisLabels; ++i) {
    Label& label = plot.Label4[static_cast<std::size_t>(i)];
    AddLabel(window, frame, label, "Label4(" + std::to_string(i) + ")", TextAlignment::Centre);
    label.Place(place.LeftTwips + place.WidthTwips * i / AxisDivisions - division / 2, top,
                division, LabelHeightTwips);
  }
  AddLabel(window, frame, plot.Label8, "Label8", TextAlignment::Centre);
  plot.Label8.Place(place.LeftTwips, top + LabelHeightTwips, place.WidthTwips, LabelHeightTwips);
}

void AddTickMarks(Window& window, Control& frame, Plot& plot, const PlotPlace& place) {
  constexpr Colour TickColour = Rgb(138, 146, 155);
  constexpr int ThickTwips = 15;
  constexpr int RightTwips = 30;
  constexpr int BelowTwips = 60;
  const auto add = [&](Frame& mark, const char* name, std::size_t index) -> Frame& {
    window.Add(mark, name, index, &frame).Border = false;
    mark.BackColor = TickColour;
    return mark;
  };
  for (std::size_t i = 0; i < AxisLabels; ++i) {
    const int index = static_cast<int>(i);
    const int down = place.HeightTwips * (AxisDivisions - index) / AxisDivisions;
    const int across = place.WidthTwips * index / AxisDivisions;
    add(plot.Line2[i], "Line2", i)
        .Place(place.LeftTwips + place.WidthTwips,
               place.TopTwips + std::min(down, place.HeightTwips - ThickTwips), RightTwips,
               ThickTwips);
    add(plot.Line3[i], "Line3", i)
        .Place(place.LeftTwips + std::min(across, place.WidthTwips - ThickTwips),
               place.TopTwips + place.HeightTwips, ThickTwips, BelowTwips);
  }
}

}  // namespace

void DesignPlot(Window& window, Control& frame, Plot& plot, const PlotPlace& place) {
  window.Add(plot.Picture1, "Picture1", &frame);
  plot.Picture1.Place(place.LeftTwips, place.TopTwips, place.WidthTwips, place.HeightTwips);
  plot.Picture1.BackColor = PlotGround;
  plot.Picture1.AccessibleName = "Plot of the last recording";
  plot.Picture1.ToolTip =
      "Drag to zoom in, click to zoom out.\n"
      "Ctrl+C copies the picture and, for a spreadsheet, the samples with their score.";

  AddTickMarks(window, frame, plot, place);

  const int right = place.LeftTwips + place.WidthTwips;
  const int velocityLeft = right + RightGapTwips;
  const int positionLeft = velocityLeft + place.ColumnTwips + GapTwips;
  AddColumn(window, frame, plot.Label3, place,
            {"Label3", place.LeftTwips - GapTwips - LeftColumnTwips, LeftColumnTwips,
             TextAlignment::Right});
  AddTimeAxis(window, frame, plot, place);
  AddColumn(window, frame, plot.Label6, place,
            {"Label6", velocityLeft, place.ColumnTwips, TextAlignment::Left});

  // Captions stand in one row over the columns, and reach over the picture where they are longer.
  const int captionTop = place.TopTwips - LabelHeightTwips / 2 - LabelHeightTwips;
  constexpr int CaptionTwips = 1500;
  AddLabel(window, frame, plot.Label9, "Label9", TextAlignment::Left);
  plot.Label9.Place(place.LeftTwips - GapTwips - LeftColumnTwips, captionTop, CaptionTwips,
                    LabelHeightTwips);
  AddLabel(window, frame, plot.Label10, "Label10", TextAlignment::Right);
  if (plot.Description.ChannelCount != 3) {
    plot.Label10.Place(velocityLeft + place.ColumnTwips - CaptionTwips, captionTop, CaptionTwips,
                       LabelHeightTwips);
    return;
  }
  AddColumn(window, frame, plot.Label5, place,
            {"Label5", positionLeft, place.ColumnTwips, TextAlignment::Left});
  constexpr int PositionCaptionTwips = 1650;
  const int positionCaptionLeft = positionLeft + place.ColumnTwips - PositionCaptionTwips;
  plot.Label10.Place(positionCaptionLeft - CaptionTwips, captionTop, CaptionTwips,
                     LabelHeightTwips);
  AddLabel(window, frame, plot.Label11, "Label11", TextAlignment::Right);
  plot.Label11.Place(positionCaptionLeft, captionTop, PositionCaptionTwips, LabelHeightTwips);
}

}  // namespace gainsmith
