// The mouse on the plot: zoom stack, clamping, rubber band, read-outs, and when it is shut out.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "trace/plot_bench.h"

namespace gainsmith::test {
namespace {

constexpr const char* WholeTrace = "0: 2.000 2000 400 200, 597 lines";
constexpr const char* FirstView = "1: 1.250 800 *250* *125*, 150 lines";

TEST(PlotZoom, GestureByGesture) {
  const struct {
    const char* Gesture;
    DragEnds Drag;
    const char* View;
  } gestures[] = {
      {"zoom in", {30, 250, 70, -50}, FirstView},
      {"further", {40, 200, 50, 100}, "2: 1.000 600 *200.0* *100.0*, 60 lines"},
      {"a click", {45, 150, 45, 150}, FirstView},
      {"another", {45, 150, 45, 150}, WholeTrace},
      {"one too many", {45, 150, 45, 150}, WholeTrace},
      {"again", {30, 250, 70, -50}, FirstView},
      {"beyond two sides", {60, 100, 500, -1000}, "2: 0.500 900 *100.0* *50.0*, 90 lines"},
      {"back", {65, 0, 65, 0}, FirstView},
      {"higher than a click, finer than any current step", {40, 100, 50, 99.99F}, FirstView},
      {"just wide enough", {40, 100, 45, -50}, "2: 0.500 460 *100.0* *50.0*, 18 lines"},
      {"too narrow", {40, 100, 44.9F, -50}, FirstView},
      {"too low", {30, 250, 70, 249.996F}, WholeTrace},
      {"beyond the others", {100, 0, -30, 900}, "1: 2.000 1100 *400* *200*, 330 lines"},
      {"out", {0, 0, 0, 0}, WholeTrace},
      {"begins outside", {200.3F, 420, 150, 0}, "1: 2.100 2000 *420* *210*, 597 lines"},
  };
  // The end of a drag is clamped to the view, its start is not.
  PlotBench bench(PositionPlot);
  bench.Capture();
  for (const auto& g : gestures) {
    bench.Drag(g.Drag);
    EXPECT_EQ(bench.View(), g.View) << g.Gesture;
    const auto level = static_cast<std::size_t>(bench.plot.ZoomLevel);
    EXPECT_EQ(bench.plot.Picture1.Scale.Left, bench.trace.ZoomLeft[level]) << g.Gesture;
  }
}

TEST(PlotZoom, FifteenLevelsAndANewCaptureBeginsAtTheFirst) {
  PlotBench bench(VelocityPlot);
  bench.Capture();
  for (int level = 1; level <= 14; ++level) {
    bench.Drag({0, 400, 199, -400});
    EXPECT_EQ(bench.plot.ZoomLevel, level);
  }
  bench.Drag({0, 400, 199, -400});
  EXPECT_EQ(bench.plot.ZoomLevel, 14);
  EXPECT_EQ(bench.plot.Label6[10].Caption, "*400.0000000000000*");
  bench.Capture();
  EXPECT_EQ(bench.View(), "0: 2.000 2000 400 200, 398 lines");
}

TEST(PlotMouse, ShutOutWhileTheLinkIsBusyOrNothingWasStarted) {
  for (const PlotDescription* description : {&VelocityPlot, &PositionPlot, &ScopePlot}) {
    PlotBench bench(*description);
    const std::vector<std::string> panels = bench.statusBar1.Panels;
    bench.Drag({30, 250, 70, -50});
    bench.Hover(10, 10);
    EXPECT_EQ(bench.plot.ZoomLevel, description->FollowsTest ? 0 : 1) << "a scope needs no capture";
    bench.Capture();
    bench.Drag({30, 250, 70, -50});
    bench.Click(50, 50, RightButton);
    bench.linkIdle = false;
    bench.Drag({40, 200, 50, 100});
    bench.Hover(10, 10);
    EXPECT_EQ(bench.plot.ZoomLevel, 1);
    EXPECT_EQ(bench.statusBar1.Panels, panels);
    EXPECT_TRUE(bench.plot.Picture1.Overlay.empty());
  }
}

// Gestures of all kinds, before a capture and after one, from inside and outside the view.
TEST(PlotZoom, NoGestureSpoilsTheAxes) {
  std::mt19937 random(20240817);
  const auto upTo = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  for (const PlotDescription* description : {&VelocityPlot, &PositionPlot, &ScopePlot}) {
    PlotBench bench(*description);
    bench.trace.ITop = bench.trace.VTop = bench.trace.PErrTop = {};
    bench.plot.CaptureHaveData = true;
    for (int i = 0; i < 3000; ++i) {
      const PictureScale view = bench.plot.Picture1.Scale;
      const auto part = [&upTo] { return static_cast<float>(upTo(130) - 15) / 100; };
      const auto x = [&] { return view.Left + view.Width * part(); };
      const auto y = [&] { return view.Top + view.Height * part(); };
      if (upTo(5) == 0) {
        bench.Click(x(), y());
      } else {
        bench.Drag({x(), y(), x(), y()});
      }
      bench.Hover(x(), y());
      if (upTo(100) == 0) bench.Capture();
      for (const LabelColumn* column :
           {&bench.plot.Label3, &bench.plot.Label4, &bench.plot.Label5, &bench.plot.Label6}) {
        const std::string ends = column->front().Caption + column->back().Caption;
        ASSERT_EQ(ends.find_first_not_of("0123456789.-*"), std::string::npos) << ends;
      }
    }
  }
}

TEST(PlotMouse, APressRedrawsTheVelocityPlotOnly) {
  for (const PlotDescription* description : {&VelocityPlot, &PositionPlot, &ScopePlot}) {
    PlotBench bench(*description);
    bench.Capture();
    bench.trace.ZoomTop[0] = 300;
    bench.trace.ZoomHeight[0] = -500;
    const bool redraws = description == &VelocityPlot;
    const auto before = bench.plot.Picture1.Revision;
    bench.plot.Picture1.OnMouseDown(LeftButton, 30, 250);
    EXPECT_EQ(bench.plot.Picture1.Revision != before, redraws);
    EXPECT_EQ(bench.plot.Picture1.Scale,
              (PictureScale{0, redraws ? 300.F : 400.F, 200.4F, redraws ? -500.F : -800.F}));
  }
}

TEST(PlotMouse, TheRubberBandFollowsTheDragAndGoesWithTheRedraw) {
  PlotBench bench(PositionPlot);
  bench.Capture();
  bench.plot.Picture1.OnMouseDown(LeftButton, 30, 250);
  bench.plot.Picture1.OnMouseMove(LeftButton, 70, -50);
  const PictureScale& scale = bench.plot.Picture1.Scale;
  constexpr Colour white = Rgb(255, 255, 255);
  const std::vector<PictureLine> sides{{30, 250, 70, 250, white, 1, false, scale},
                                       {70, -50, 30, -50, white, 1, false, scale},
                                       {30, 250, 30, -50, white, 1, false, scale},
                                       {70, 250, 70, -50, white, 1, false, scale}};
  EXPECT_EQ(bench.plot.Picture1.Overlay, sides);
  bench.plot.Picture1.OnMouseUp(LeftButton, 500, -1000);
  EXPECT_TRUE(bench.plot.Picture1.Overlay.empty());
  EXPECT_EQ(bench.plot.Picture1.Scale, (PictureScale{0, 250, 199, -800}));
}

// What the status bar says of a point, panel by panel.
std::string ReadOut(PlotBench& bench, float x, float y) {
  bench.Hover(x, y);
  std::string text;
  for (const std::string& panel : bench.statusBar1.Panels) text += panel + "|";
  return text;
}

TEST(PlotMouse, ReadOutsOfTheVelocityPlot) {
  PlotBench bench(VelocityPlot);
  bench.Capture();
  EXPECT_EQ(ReadOut(bench, 12.34F, 100), "|I_Bak:500.0000|mA|V_Bak:100.00|r/min|Time:123.4|ms|");
  bench.Drag({30, 251, 70, -50});
  bench.trace.IGain[1] = 0.5F;  // that of the zoom level
  EXPECT_EQ(ReadOut(bench, 40, 100), "|I_Bak:200.0000|mA|V_Bak:100.00|r/min|Time:400.0|ms|");
}

TEST(PlotMouse, ReadOutsOfThePositionPlot) {
  PlotBench bench(PositionPlot);
  bench.Capture();
  EXPECT_EQ(ReadOut(bench, 12.34F, -101.2F),
            "|Current:-0.5060| A|Velocity:-101.200|r/min|P_Err:-50.600|p|Time:123.4|ms|");
  bench.plot.PositionSource = PositionSeries::PRef;
  bench.trace.PRefGain[0] = bench.trace.IGain[0] = 0;
  bench.trace.VGain[0] = 2;
  EXPECT_EQ(ReadOut(bench, 0, 100),
            "|Current:0.1000| A|Velocity:50.000|r/min|P_Ref:100.000|p|Time:0.0|ms|");
}

}  // namespace
}  // namespace gainsmith::test
