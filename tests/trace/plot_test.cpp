// The plot: labels, what is drawn in which order and colour, the position axis.
#include "trace/plot.h"

#include <gtest/gtest.h>

#include <tuple>

#include "trace/plot_bench.h"

namespace gainsmith::test {
namespace {

// Colours of the lines on the picture, each once, in drawing order.
std::vector<Colour> ColoursDrawn(const Plot& plot) {
  std::vector<Colour> colours;
  for (const PictureLine& line : plot.Picture1.Lines) {
    if (colours.empty() || colours.back() != line.Color) colours.push_back(line.Color);
  }
  return colours;
}

TEST(PlotLabels, BeforeAnyCapture) {
  PlotBench position(PositionPlot);
  EXPECT_EQ(position.plot.Label3[0].Caption, "-2.00");
  EXPECT_EQ(position.plot.Label3[5].Caption, "0.00") << "never -0.00";
  EXPECT_EQ(position.plot.Label5[0].Caption, "-200");
  EXPECT_EQ(position.statusBar1.Panels[5], "位置误差:");
  PlotBench scope(ScopePlot);
  EXPECT_EQ(scope.plot.Label3[5].Caption, "0.000");
  EXPECT_TRUE(scope.statusBar1.Panels.empty());
}

TEST(PlotLabels, OfACapture) {
  PlotBench bench(PositionPlot);
  bench.Capture();
  EXPECT_EQ(bench.plot.Label3[10].Caption, "2.000");
  EXPECT_EQ(bench.plot.Label3[5].Caption, "0");
  EXPECT_EQ(bench.plot.Label5[10].Caption, "200");
  EXPECT_EQ(bench.plot.Label6[9].Caption, "320");
  // Without a position series its column is all zeros.
  bench.trace.ShowPErr = false;
  bench.plot.SetAxisLabels();
  EXPECT_EQ(bench.plot.Label5[0].Caption, "0");
  EXPECT_EQ(bench.plot.Label5[10].Caption, "0");
  // The scope keeps its column.
  PlotBench scope(ScopePlot);
  scope.Capture();
  scope.trace.ShowPErr = false;
  scope.plot.SetAxisLabels();
  EXPECT_EQ(scope.plot.Label5[10].Caption, "200");
  // Tests take the chosen trace time, the scope that of its capture.
  for (const auto& [description, text] :
       {std::pair{&VelocityPlot, "500"}, {&PositionPlot, "500"}, {&ScopePlot, "2000"}}) {
    PlotBench one(*description);
    one.Capture();
    one.combo1.Choose(4);
    one.plot.SetAxisLabels();
    EXPECT_EQ(one.plot.Label4[10].Caption, text);
  }
}

TEST(PlotRedraw, DrawsTheShownChannelsInOrderUpToTheLastSample) {
  PlotBench bench(PositionPlot);
  bench.trace.PositionColours[Signal::VBak] = 4711;
  bench.Capture();
  EXPECT_EQ(ColoursDrawn(bench.plot), (std::vector<Colour>{16744700, 4711, 255}));
  ASSERT_EQ(bench.plot.Picture1.Lines.size(), 3U * 199);
  const PictureLine& last = bench.plot.Picture1.Lines.back();
  EXPECT_EQ(last.X1, 198);
  EXPECT_EQ(last.X2, 199);
  EXPECT_EQ(last.Scale, (PictureScale{0, 400, 200.4F, -800}));
  EXPECT_EQ(bench.plot.Picture1.Lines[7].Y1, 180);  // 90 of 200 pulses

  bench.trace.ShowPRef = bench.trace.ShowPBak = true;
  bench.trace.ShowIBak = false;
  bench.plot.Form_Resize();
  EXPECT_EQ(ColoursDrawn(bench.plot), (std::vector<Colour>{16744700, 16711810, 16744580, 4711}));
  EXPECT_EQ(bench.plot.Label5[3].ForeColor, 16744580U);

  bench.trace.ShowPErr = bench.trace.ShowPBak = bench.trace.ShowPRef = bench.trace.ShowVBak = false;
  bench.plot.Form_Resize();
  EXPECT_TRUE(bench.plot.Picture1.Lines.empty());
  EXPECT_EQ(bench.plot.Label6[10].Caption, "400");
}

TEST(PlotRedraw, TheVelocityPlotDrawsItsOwnChannelsInItsOwnColours) {
  PlotBench bench(VelocityPlot);
  bench.trace.VelocityColours[Signal::IBak] = 5;
  bench.trace.PositionColours[Signal::IBak] = 6;
  bench.Capture();
  bench.trace.ShowPErr = true;
  bench.plot.Form_Resize();
  EXPECT_EQ(ColoursDrawn(bench.plot), (std::vector<Colour>{8454016, 5}));
  // The current column follows the position window's colour.
  EXPECT_EQ(bench.plot.Label3[0].ForeColor, 6U);
}

TEST(PlotRedraw, StaysEmptyWithoutData) {
  PlotBench bench(VelocityPlot);
  bench.Capture();
  bench.trace.TraceReadFailed = true;
  bench.plot.Form_Resize();
  EXPECT_TRUE(bench.plot.Picture1.Lines.empty());
  // The scope does not know that failure.
  PlotBench scope(ScopePlot);
  scope.trace.TraceReadFailed = true;
  scope.Capture();
  EXPECT_EQ(scope.plot.Picture1.Lines.size(), 3U * 199);
  scope.plot.Open();
  scope.plot.Form_Resize();
  EXPECT_TRUE(scope.plot.Picture1.Lines.empty());
}

TEST(PositionAxis, TheLargestOfTheShownSeriesSetsIt) {
  const struct {
    bool Error, Feedback, Reference;
    float ErrorTop, FeedbackTop, ReferenceTop;
    PositionSeries Source;
    const char* Caption;
  } cases[] = {
      {true, false, false, 1, 9, 9, PositionSeries::PErr, "P_Err(P)"},
      {false, true, false, 9, 1, 9, PositionSeries::PBak, "P_Bak(P)"},
      {false, false, true, 9, 9, 1, PositionSeries::PRef, "P_Ref(P)"},
      {true, true, false, 5, 5, 9, PositionSeries::PErr, "P_Err(P)"},
      {true, true, false, 4, 5, 9, PositionSeries::PBak, "P_Bak(P)"},
      {false, true, true, 9, 5, 5, PositionSeries::PBak, "P_Bak(P)"},
      {false, true, true, 9, 4, 5, PositionSeries::PRef, "P_Ref(P)"},
      {true, false, true, 5, 9, 5, PositionSeries::PErr, " P_Err(P)"},
      {true, false, true, 4, 9, 5, PositionSeries::PRef, "P_Ref(P)"},
      {true, true, true, 5, 5, 5, PositionSeries::PErr, "P_Err(P)"},
      {true, true, true, 4, 5, 5, PositionSeries::PBak, "P_Bak(P)"},
      {true, true, true, 4, 5, 6, PositionSeries::PRef, "P_Ref(P)"},
      {false, false, false, 1, 2, 3, PositionSeries::PBak, "before"},
  };
  for (const auto& c : cases) {
    PlotBench bench(PositionPlot);
    bench.plot.PositionSource = PositionSeries::PBak;
    bench.plot.Label11.Caption = "before";
    std::tie(bench.trace.ShowPErr, bench.trace.ShowPBak, bench.trace.ShowPRef) =
        std::tuple(c.Error, c.Feedback, c.Reference);
    bench.trace.PErrTop[0] = c.ErrorTop;
    bench.trace.PBakTop[0] = c.FeedbackTop;
    bench.trace.PRefTop[0] = c.ReferenceTop;
    bench.plot.PickPositionSource();
    EXPECT_EQ(bench.plot.PositionSource, c.Source) << c.Error << c.Feedback << c.Reference;
    EXPECT_EQ(bench.plot.Label11.Caption, c.Caption) << c.Error << c.Feedback << c.Reference;
  }
}

TEST(PositionAxis, AllPositionTracesAndTheColumnFollowTheChosenSeries) {
  PlotBench bench(PositionPlot);
  bench.Capture();
  bench.trace.PBakTop[0] = 2000;
  bench.trace.PBakGain[0] = 0.2F;
  bench.trace.ShowPBak = true;
  bench.plot.PickPositionSource();
  bench.plot.SetAxisLabels();
  EXPECT_EQ(bench.trace.PErrPlot[7], 18);
  EXPECT_EQ(bench.plot.Label5[10].Caption, "2000");
}

}  // namespace
}  // namespace gainsmith::test
