// The plot: labels, what is drawn in which order and colour, the position axis.
#include "trace/plot.h"

#include <gtest/gtest.h>

#include <tuple>

#include "trace/plot_bench.h"

namespace gainsmith::test {
namespace {

using Colours = std::vector<Colour>;

// Colours of the lines on the picture, each once, in drawing order.
Colours ColoursDrawn(PlotBench& bench) {
  bench.plot.Form_Resize();
  Colours colours;
  for (const PictureLine& line : bench.plot.Picture1.Lines) {
    if (colours.empty() || colours.back() != line.Color) colours.push_back(line.Color);
  }
  return colours;
}

// Tests take the chosen trace time, the scope that of its capture. Without a position series the
// column of the position window is all zeros; the scope keeps its own.
TEST(PlotLabels, BeforeACaptureWithOneAndAfterANewChoice) {
  const struct {
    const PlotDescription& Description;
    const char *Before, *Captured, *Chosen;
  } cases[] = {
      {VelocityPlot, "0: 2.00 2000 400 200, 0 lines", "0: 2.000 2000 400 200, 398 lines",
       "0: 2.000 500 400 200, 398 lines"},
      {PositionPlot, "0: 2.00 2000 400 200, 0 lines", "0: 2.000 2000 400 200, 597 lines",
       "0: 2.000 500 400 0, 597 lines"},
      {ScopePlot, "0: 2.000 2000 400 200, 0 lines", "0: 2.000 2000 400 200, 597 lines",
       "0: 2.000 2000 400 200, 597 lines"},
  };
  for (const auto& c : cases) {
    PlotBench bench(c.Description);
    EXPECT_EQ(bench.View(), c.Before);
    EXPECT_FALSE(bench.plot.Label3[5].Caption.starts_with('-'));
    bench.Capture();
    EXPECT_EQ(bench.View(), c.Captured);
    bench.combo1.Choose(4);
    bench.trace.Show[Signal::PErr] = false;
    bench.plot.SetAxisLabels();
    EXPECT_EQ(bench.View(), c.Chosen);
  }
}

TEST(PlotLabels, ColumnsFromEndToEnd) {
  using Columns = std::vector<std::string>;
  PlotBench bench(PositionPlot);
  const std::string timeMs = "0 200 400 600 800 1000 1200 1400 1600 1800 2000";
  const std::string rpm = "-400 -320 -240 -160 -80 0 80 160 240 320 400";
  const std::string pulses = "-200 -160 -120 -80 -40 0 40 80 120 160 200";
  EXPECT_EQ(bench.Columns(), (Columns{"-2.00 -1.60 -1.20 -0.80 -0.40 0.00 0.40 0.80 1.20 1.60 2.00",
                                      timeMs, rpm, pulses}));
  bench.Capture();
  EXPECT_EQ(bench.Columns(),
            (Columns{"-2.000 -1.600 -1.200 -0.800 -0.400 0 0.400 0.800 1.200 1.600 2.000", timeMs,
                     rpm, pulses}));
  bench.Drag({30, 250, 70, -50});
  EXPECT_EQ(bench.Columns(),
            (Columns{"-0.750 -0.550 -0.350 -0.150 0.050 0.250 0.450 0.650 0.850 1.050 1.250",
                     "300 350 400 450 500 550 600 650 700 750 800",
                     "*-150* *-110* *-70* *-30* *10* *50* *90* *130* *170* *210* *250*",
                     "*-75* *-55* *-35* *-15* *5* *25* *45* *65* *85* *105* *125*"}));
}

TEST(PlotRedraw, DrawsTheShownChannelsInOrderUpToTheLastSample) {
  PlotBench bench(PositionPlot);
  bench.trace.PositionColours[Signal::VBak] = 4711;
  bench.Capture();
  EXPECT_EQ(ColoursDrawn(bench), (Colours{16744700, 4711, 255}));
  const PictureLine& last = bench.plot.Picture1.Lines.back();
  EXPECT_EQ(std::pair(last.X1, last.X2), std::pair(198.F, 199.F));
  EXPECT_EQ(last.Scale, (PictureScale{0, 400, 200.4F, -800}));
  EXPECT_EQ(bench.plot.Picture1.Lines[7].Y1, 180);  // 90 of 200 pulses

  bench.trace.Show[Signal::PRef] = bench.trace.Show[Signal::PBak] = true;
  bench.trace.Show[Signal::IBak] = false;
  EXPECT_EQ(ColoursDrawn(bench), (Colours{16744700, 16711810, 16744580, 4711}));
  EXPECT_EQ(bench.plot.Label5[3].ForeColor, 16744580U);
}

TEST(PlotRedraw, TheVelocityPlotDrawsItsOwnChannelsInItsOwnColours) {
  PlotBench bench(VelocityPlot);
  bench.trace.VelocityColours[Signal::IBak] = 5;
  bench.trace.PositionColours[Signal::IBak] = 6;
  bench.Capture();
  bench.trace.Show[Signal::PErr] = true;
  EXPECT_EQ(ColoursDrawn(bench), (Colours{8454016, 5}));
  // The current column follows the position window's colour.
  EXPECT_EQ(bench.plot.Label3[0].ForeColor, 6U);
}

TEST(PlotRedraw, StaysEmptyWithoutData) {
  for (const PlotDescription* description : {&PositionPlot, &ScopePlot}) {
    PlotBench bench(*description);
    bench.Capture();
    bench.trace.TraceReadFailed = true;
    EXPECT_EQ(ColoursDrawn(bench).empty(), description->FollowsTest) << "no failure of a scope";
    bench.trace.TraceReadFailed = false;
    bench.plot.Open();
    EXPECT_EQ(ColoursDrawn(bench), Colours{});
  }
}

TEST(PositionAxis, TheLargestOfTheShownSeriesSetsItForAll) {
  using enum PositionSeries;
  // Which of error, feedback and reference are shown, and the tops of their axes.
  const struct {
    bool Error, Feedback, Reference;
    float ErrorTop, FeedbackTop, ReferenceTop;
    PositionSeries Source;
    const char *Caption, *Top;
    float Gain;
  } cases[] = {
      {true, false, false, 1, 9, 9, PErr, "P_Err(P)", "1", 3},
      {false, true, true, 9, 5, 5, PBak, "P_Bak(P)", "5", 4},
      {true, false, true, 5, 9, 5, PErr, " P_Err(P)", "5", 3},
      {true, false, true, 4, 9, 5, PRef, "P_Ref(P)", "5", 5},
      {true, true, true, 5, 5, 5, PErr, "P_Err(P)", "5", 3},
      {true, true, true, 4, 6, 5, PBak, "P_Bak(P)", "6", 4},
      {false, false, false, 1, 2, 3, PBak, "before", "0", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.Error) + std::to_string(c.Feedback) +
                 std::to_string(c.Reference));
    PlotBench bench(PositionPlot);
    bench.Capture();
    bench.plot.PositionSource = PBak;
    bench.plot.Label11.Caption = "before";
    std::tie(bench.trace.Show[Signal::PErr], bench.trace.Show[Signal::PBak],
             bench.trace.Show[Signal::PRef]) = std::tuple(c.Error, c.Feedback, c.Reference);
    std::tie(bench.trace.PErrTop[0], bench.trace.PBakTop[0], bench.trace.PRefTop[0]) =
        std::tuple(c.ErrorTop, c.FeedbackTop, c.ReferenceTop);
    std::tie(bench.trace.PErrGain[0], bench.trace.PBakGain[0], bench.trace.PRefGain[0]) =
        std::tuple(3, 4, 5);
    bench.plot.PickPositionSource();
    bench.plot.SetAxisLabels();
    EXPECT_EQ(bench.plot.PositionSource, c.Source);
    EXPECT_EQ(bench.plot.Label11.Caption, c.Caption);
    EXPECT_EQ(bench.plot.Label5[10].Caption, c.Top);
    EXPECT_EQ(bench.trace.Plots[Signal::PErr][7], 90 * c.Gain);
  }
}

}  // namespace
}  // namespace gainsmith::test
