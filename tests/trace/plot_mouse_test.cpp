// The mouse on the plot: zoom stack, clamping, rubber band, read-outs, and when it is shut out.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "trace/plot_bench.h"

namespace gainsmith::test {
namespace {

TEST(PlotZoom, InAndOutOfTwoLevels) {
  PlotBench bench(PositionPlot);
  bench.Capture();
  bench.Drag(30, 250, 70, -50);
  EXPECT_EQ(bench.plot.ZoomLevel, 1);
  EXPECT_EQ(bench.plot.Picture1.Scale, (PictureScale{30, 250, 50, -400}));
  EXPECT_EQ(bench.plot.Label3[10].Caption, "1.250");
  EXPECT_EQ(bench.plot.Label4[10].Caption, "800");
  EXPECT_EQ(bench.plot.Label6[10].Caption, "*250*");
  EXPECT_EQ(bench.plot.Label5[10].Caption, "*125*");
  ASSERT_EQ(bench.plot.Picture1.Lines.size(), 3U * 50);
  EXPECT_EQ(bench.plot.Picture1.Lines.front().X1, 30);

  bench.Drag(40, 200, 50, 100);
  EXPECT_EQ(bench.plot.ZoomLevel, 2);
  EXPECT_EQ(bench.plot.Label5[10].Caption, "*100.0*");
  bench.Click(45, 150);
  EXPECT_EQ(bench.plot.ZoomLevel, 1);
  EXPECT_EQ(bench.plot.Label6[10].Caption, "*250*");
  bench.Click(45, 150);
  EXPECT_EQ(bench.plot.ZoomLevel, 0);
  EXPECT_EQ(bench.plot.Label6[10].Caption, "400");
  EXPECT_EQ(bench.plot.Picture1.Scale, (PictureScale{0, 400, 200.4F, -800}));
  bench.Click(45, 150);
  EXPECT_EQ(bench.plot.ZoomLevel, 0);
}

TEST(PlotZoom, ASmallDragIsAClick) {
  PlotBench bench(ScopePlot);
  bench.Capture();
  bench.Drag(30, 250, 70, -50);
  bench.Drag(40, 100, 44.9F, -50);
  EXPECT_EQ(bench.plot.ZoomLevel, 0);
  bench.Drag(30, 250, 70, 249.996F);
  EXPECT_EQ(bench.plot.ZoomLevel, 0);
  // Above the least height, yet finer than any current step: ignored, not a click.
  bench.Drag(30, 250, 70, -50);
  const ZoomTable widths = bench.trace.ZoomWidth;
  bench.Drag(40, 100, 50, 99.99F);
  EXPECT_EQ(bench.plot.ZoomLevel, 1);
  EXPECT_EQ(bench.trace.ZoomWidth, widths);
}

TEST(PlotZoom, TheEndOfADragIsClampedToTheDataAndItsStartIsNot) {
  PlotBench bench(PositionPlot);
  bench.Capture();
  bench.Drag(150, 100, 500, -1000);
  EXPECT_EQ(bench.plot.DragEndX, 199);
  EXPECT_EQ(bench.plot.DragEndY, -400);
  EXPECT_EQ(bench.plot.ZoomLevel, 1);
  bench.Click(0, 0);
  bench.Drag(200.3F, 420, 150, 0);
  EXPECT_EQ(bench.plot.DragStartX, 200.3F);
  EXPECT_EQ(bench.trace.ZoomTop[1], 420);
  bench.Click(0, 0);
  bench.Drag(100, 0, -30, 900);
  EXPECT_EQ(bench.plot.DragEndX, 0);
  EXPECT_EQ(bench.plot.DragEndY, 400);
  bench.Click(0, 0);
  bench.Drag(-7, 100, 40, 0);
  EXPECT_EQ(bench.plot.Picture1.Lines.front().X1, 0);
}

TEST(PlotZoom, FifteenLevelsAndANewCaptureBeginsAtTheFirst) {
  PlotBench bench(VelocityPlot);
  bench.Capture();
  for (int level = 1; level <= 14; ++level) {
    bench.Drag(0, 400, 199, -400);
    EXPECT_EQ(bench.plot.ZoomLevel, level);
  }
  EXPECT_EQ(bench.plot.Label6[10].Caption, "*400.0000000000000*");
  const ZoomTable heights = bench.trace.ZoomHeight;
  bench.Drag(0, 400, 199, -400);
  EXPECT_EQ(bench.plot.ZoomLevel, 14);
  EXPECT_EQ(bench.trace.ZoomHeight, heights);
  bench.Capture();
  EXPECT_EQ(bench.plot.ZoomLevel, 0);
  EXPECT_EQ(bench.plot.Label6[10].Caption, "400");
}

TEST(PlotZoom, TheVelocityPlotTakesItsScaleOnThePress) {
  PlotBench bench(VelocityPlot);
  bench.Capture();
  bench.trace.ShowVBak = bench.trace.ShowIBak = false;
  bench.plot.Picture1.Scale.Top = 7;
  bench.plot.Picture1.OnMouseDown(LeftButton, 10, 10);
  EXPECT_EQ(bench.plot.Picture1.Scale.Top, 400);
}

TEST(PlotMouse, ShutOutWhileTheLinkIsBusyOrNothingWasStarted) {
  for (const PlotDescription* description : {&VelocityPlot, &PositionPlot, &ScopePlot}) {
    PlotBench bench(*description);
    const std::vector<std::string> panels = bench.statusBar1.Panels;
    bench.plot.Picture1.OnMouseMove(NoButton, 10, 10);
    bench.Capture();
    bench.linkIdle = false;
    bench.Drag(30, 250, 70, -50);
    bench.plot.Picture1.OnMouseMove(NoButton, 10, 10);
    EXPECT_EQ(bench.plot.ZoomLevel, 0);
    EXPECT_EQ(bench.statusBar1.Panels, panels);
    EXPECT_TRUE(bench.plot.Picture1.Overlay.empty());
  }
  PlotBench test(PositionPlot);
  test.Drag(30, 250, 70, -50);
  EXPECT_EQ(test.plot.ZoomLevel, 0);
  // The scope asks for no capture, and other buttons do nothing anywhere.
  PlotBench scope(ScopePlot);
  scope.Drag(30, 250, 70, -50);
  EXPECT_EQ(scope.plot.ZoomLevel, 1);
  scope.plot.Picture1.OnMouseDown(RightButton, 5, 5);
  scope.plot.Picture1.OnMouseUp(RightButton, 5, 5);
  EXPECT_EQ(scope.plot.ZoomLevel, 1);
}

// Gestures of all kinds, before a capture and after one, from inside and outside the view.
TEST(PlotZoom, NoGestureSpoilsTheAxes) {
  std::mt19937 random(20240817);
  const auto upTo = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  for (const PlotDescription* description : {&VelocityPlot, &PositionPlot, &ScopePlot}) {
    PlotBench bench(*description);
    for (ZoomTable* table : {&bench.trace.ITop, &bench.trace.VTop, &bench.trace.PErrTop}) {
      table->fill(0);
    }
    bench.plot.CaptureHaveData = true;
    for (int i = 0; i < 3000; ++i) {
      const PictureScale view = bench.plot.Picture1.Scale;
      const auto x = [&] {
        return view.Left + view.Width * static_cast<float>(upTo(130) - 15) / 100;
      };
      const auto y = [&] {
        return view.Top + view.Height * static_cast<float>(upTo(130) - 15) / 100;
      };
      if (upTo(5) == 0) {
        bench.Click(x(), y());
      } else {
        bench.Drag(x(), y(), x(), y());
      }
      bench.plot.Picture1.OnMouseMove(NoButton, x(), y());
      if (upTo(100) == 0) bench.Capture();
      ASSERT_GE(bench.plot.ZoomLevel, 0);
      ASSERT_LE(bench.plot.ZoomLevel, 14);
      for (const LabelColumn* column :
           {&bench.plot.Label3, &bench.plot.Label4, &bench.plot.Label5, &bench.plot.Label6}) {
        for (const Label& label : *column) {
          ASSERT_EQ(label.Caption.find_first_not_of("0123456789.-*"), std::string::npos)
              << label.Caption;
        }
      }
    }
  }
}

TEST(RubberBand, FollowsTheDragAndGoesWithTheRedraw) {
  PlotBench bench(PositionPlot);
  bench.Capture();
  bench.plot.Picture1.OnMouseDown(LeftButton, 30, 250);
  bench.plot.Picture1.OnMouseMove(LeftButton, 70, -50);
  ASSERT_EQ(bench.plot.Picture1.Overlay.size(), 4U);
  const PictureLine& side = bench.plot.Picture1.Overlay[1];
  EXPECT_EQ(std::tuple(side.X1, side.X2, side.Y1, side.Y2), std::tuple(70, 30, -50, -50));
  EXPECT_EQ(side.Color, Rgb(255, 255, 255));
  bench.plot.Picture1.OnMouseUp(LeftButton, 70, -50);
  EXPECT_TRUE(bench.plot.Picture1.Overlay.empty());
  // Laid before the scale changed: on the frame of the view that was zoomed.
  EXPECT_EQ(bench.plot.Line1[2].X1, 200.4F);
  EXPECT_EQ(bench.plot.Line1[3].Y1, -400);
}

TEST(ReadOutPanels, OfTheVelocityPlot) {
  PlotBench bench(VelocityPlot);
  bench.Capture();
  bench.plot.Picture1.OnMouseMove(NoButton, 12.34F, 100);
  EXPECT_EQ(bench.statusBar1.Panels,
            (std::vector<std::string>{"", "I_Bak:500.0000", "mA", "V_Bak:100.00", "r/min",
                                      "Time:123.4", "ms"}));
  bench.trace.IGain[0] = bench.trace.VGain[0] = 0;
  bench.plot.Picture1.OnMouseMove(NoButton, 12.34F, 100);
  EXPECT_EQ(bench.statusBar1.Panels[1], "I_Bak:0.0000");
  EXPECT_EQ(bench.statusBar1.Panels[3], "V_Bak:0.00");
  EXPECT_EQ(bench.trace.IGain[0], 0);
  bench.Capture();
  bench.Drag(30, 251, 70, -50);
  bench.trace.IGain[1] = 0.5F;
  bench.plot.Picture1.OnMouseMove(NoButton, 40, 100);
  EXPECT_EQ(bench.statusBar1.Panels[1], "I_Bak:200.0000") << "the gain of the zoom level";
}

TEST(ReadOutPanels, OfThePositionPlot) {
  PlotBench bench(PositionPlot);
  bench.Capture();
  bench.plot.Picture1.OnMouseMove(NoButton, 12.34F, -101.2F);
  EXPECT_EQ(bench.statusBar1.Panels,
            (std::vector<std::string>{"", "Current:-0.5060", " A", "Velocity:-101.200", "r/min",
                                      "P_Err:-50.600", "p", "Time:123.4", "ms"}));
  bench.plot.PositionSource = PositionSeries::PRef;
  bench.trace.PRefGain[0] = 0;
  bench.trace.IGain[0] = 0;
  bench.plot.Picture1.OnMouseMove(NoButton, 0, 100);
  EXPECT_EQ(bench.statusBar1.Panels[5], "P_Ref:100.000");
  EXPECT_EQ(bench.statusBar1.Panels[1], "Current:0.1000");
  EXPECT_EQ(bench.trace.PRefGain[0], 1);
  EXPECT_EQ(bench.trace.IGain[0], 1);
}

}  // namespace
}  // namespace gainsmith::test
