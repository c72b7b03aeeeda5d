// The zoom's arithmetic: which step fits, what falls back, what each level's tables hold.
#include "trace/zoom.h"

#include <gtest/gtest.h>

#include <tuple>

#include "trace/plot_bench.h"

namespace gainsmith::test {
namespace {

using Triple = std::tuple<float, float, float>;

// A captured trace with 2 A, 500 rpm, 200 pulses of error and feedback and 10 of reference at the
// top.
struct Captured : TraceState {
  explicit Captured(int sampleDivider = 20) {
    SetTraceTime(20);
    ShowRecordedChannels(3);
    SplitTrace(*this, Recording({90, 260, 1024}), 3);
    SetTraceTime(sampleDivider);
  }
  // Left edge, width and division.
  Triple TimeAxis(std::size_t level) const {
    return {ZoomLeft[level], ZoomWidth[level], TimeStep[level]};
  }
  // Division, top and gain.
  Triple AxisOf(Signal signal, std::size_t level) {
    const AxisTables axis = Axis(signal);
    return {axis.Step[level], axis.Top[level], axis.Gain[level]};
  }
};

TEST(NiceTimeStep, TakesTheEntryBeforeTheOneThatFits) {
  const struct {
    int Divider;
    float Left, Width;
    Triple View;
  } cases[] = {
      {20, 149, 40, {149, 50, 50}},  // exact equality: the entry before; ends on sample 199
      {20, 150, 40, {0, 199, 200}},  // would end on 200: keeps the time axis below
      {20, 0, 200, {0, 199, 200}},   // first entry stands for itself, and runs past the end
      {25, 10, 40, {10, 48, 60}},    // 0.8 samples per ms, exact equality
      {3, 10, 40, {10, 40, 6}},      // 40 / 6 is less than 6.66667
      {1, 10, 5, {10, 20, 1}},
  };
  for (const auto& c : cases) {
    Captured trace(c.Divider);
    trace.ZoomLeft[1] = c.Left;
    NiceTimeStep(trace, 1, trace.TimeStep[0], 200, c.Width);
    EXPECT_EQ(trace.TimeAxis(1), c.View) << c.Divider << " " << c.Width;
  }
  // Without a fitting entry the view below stays.
  Captured trace;
  trace.ZoomLeft = {12, 30};
  trace.ZoomWidth = {150, 1};
  NiceTimeStep(trace, 1, 0.1F, 20, 1);
  EXPECT_EQ(trace.TimeAxis(1), Triple(12, 150, 0));
}

TEST(NiceCurrentStep, TakesTheEntryBeforeTheOneThatFits) {
  Captured trace;
  EXPECT_EQ(NiceCurrentStep(trace, 1, 400, 800), 250);  // 200 fits exactly
  EXPECT_EQ(NiceCurrentStep(trace, 1, 600, 800), 400);
  EXPECT_EQ(NiceCurrentStep(trace, 1, 0.2F, 800), 0.2F);  // 4000 times: 0.1 fits
  EXPECT_EQ(NiceCurrentStep(trace, 1, 0.19F, 800), 0);
  EXPECT_FALSE(ZoomIn(trace, 3, 1, {.StartX = 40, .StartY = 0.19F, .EndX = 80, .EndY = 0}));
  EXPECT_EQ(trace.TimeAxis(1), Triple(0, 0, 0)) << "the tables stay";
  trace.IStep[0] = 6000;
  EXPECT_EQ(NiceCurrentStep(trace, 1, 800, 800), 3000);  // the first entry has none before it
}

// Extents that shrink by a tenth of a percent find every entry.
TEST(ZoomSteps, AreThoseOfTheTwoLists) {
  std::vector<float> timeSteps;
  std::vector<float> currentSteps;
  Captured trace;
  const auto note = [](std::vector<float>& steps, float step) {
    if (step != 0 && (steps.empty() || steps.back() != step)) steps.push_back(step);
  };
  for (float extent = 4000; extent > 0.05F; extent *= 0.999F) {
    trace.TimeStep[1] = 0;
    // Half a sample a ms: the longest view of all fits.
    NiceTimeStep(trace, 1, 200, 100, extent / 2);
    trace.ZoomLeft[1] = 0;
    note(timeSteps, trace.TimeStep[1]);
    trace.IStep[0] = extent;
    note(currentSteps, NiceCurrentStep(trace, 1, 100, 100));
  }
  EXPECT_EQ(timeSteps,
            (std::vector<float>{200, 190, 180, 170, 160, 150, 140, 130, 120, 110, 100, 90, 80,
                                70,  60,  50,  40,  30,  20,  10,  8,   6,   5,   4,   2,  1}));
  EXPECT_EQ(currentSteps,
            (std::vector<float>{3000, 2800, 2500, 2400, 2200, 2000, 1800, 1500, 1400, 1200, 1000,
                                800,  600,  500,  400,  250,  200,  100,  80,   50,   40,   20,
                                10,   8,    5,    4,    2,    1,    0.8F, 0.5F, 0.4F, 0.2F}));
  // The last entry is only the limit of the one before it.
  for (const auto& [width, step] : {std::pair(0.1F, 1.F), {0.095F, 0.F}}) {
    trace.TimeStep[1] = 0;
    NiceTimeStep(trace, 1, 100, 100, width);
    EXPECT_EQ(trace.TimeStep[1], step) << width;
  }
}

TEST(ZoomIn, FirstLevelOfThreeChannels) {
  Captured trace;
  // 100 samples from the right to the left, 300 plot units from 250.5 down.
  ASSERT_TRUE(
      ZoomIn(trace, 3, 1, {.StartX = 130.4F, .StartY = 250.5F, .EndX = 30.4F, .EndY = -49.5F}));
  EXPECT_EQ(trace.TimeAxis(1), Triple(30, 110, 110));
  EXPECT_EQ(trace.ZoomTop[1], 250);      // a tie goes to even
  EXPECT_EQ(trace.ZoomHeight[1], -400);  // 10 divisions of 200 mA: 400 / 2.667 is 150
  EXPECT_EQ(trace.AxisOf(Signal::IBak, 1), Triple(200, 1250, 0.2F));
  EXPECT_FLOAT_EQ(trace.TopRatio[1], 1.6F);
  EXPECT_EQ(trace.AxisOf(Signal::VBak, 1), Triple(50, 312.5F, 0.8F));  // not rounded
  EXPECT_EQ(trace.AxisOf(Signal::PErr, 1), Triple(20, 125, 2));
  EXPECT_EQ(trace.AxisOf(Signal::PRef, 1), Triple(1, 6.25F, 40));
}

TEST(ZoomIn, TwoChannelsRoundTheVelocityTopToEven) {
  Captured trace;
  ASSERT_TRUE(ZoomIn(trace, 2, 1, {.StartX = 30, .StartY = 250, .EndX = 70, .EndY = -50}));
  EXPECT_EQ(trace.AxisOf(Signal::VBak, 1), Triple(50, 312, 0.8012821F));
  EXPECT_EQ(trace.PErrStep[1], 0);  // not a channel of this window
  // A top that rounds to 0 becomes 1 in the table.
  Captured low;
  ASSERT_TRUE(ZoomIn(low, 2, 1, {.StartX = 30, .StartY = 0.4F, .EndX = 70, .EndY = -50}));
  EXPECT_EQ(low.ZoomTop[1], 0);
  EXPECT_EQ(low.ITop[1], 1);
  EXPECT_EQ(std::pair(low.VTop[1], low.VGain[1]), std::pair(1.F, 1.F));
}

TEST(ZoomIn, AnAxisWithoutARangeHasNoneAtTheNextLevel) {
  Captured trace;
  trace.ITop[0] = 0;
  ASSERT_TRUE(ZoomIn(trace, 3, 1, {.StartX = 30, .StartY = 250, .EndX = 70, .EndY = -50}));
  EXPECT_EQ(trace.TopRatio[1], 0);
  EXPECT_EQ(trace.AxisOf(Signal::VBak, 1), Triple(50, 1, 250));
}

TEST(ZoomIn, SecondLevelAddsNothingToTheWidth) {
  Captured trace;
  // The view would end past the last sample: the time axis of the level below, the height anew.
  ASSERT_TRUE(ZoomIn(trace, 3, 1, {.StartX = 150, .StartY = 300, .EndX = 190, .EndY = 0}));
  EXPECT_EQ(trace.TimeAxis(1), Triple(0, 199, 200));
  EXPECT_EQ(trace.ZoomHeight[1], -400);
  // 199 / 200 samples per ms: 100 goes into 100 samples, so 110 is taken, which are 109.45 samples.
  ASSERT_TRUE(ZoomIn(trace, 3, 2, {.StartX = 50, .StartY = 300, .EndX = 150, .EndY = 200}));
  EXPECT_EQ(trace.TimeAxis(2), Triple(50, 109, 110));
  EXPECT_EQ(trace.IStep[2], 80);  // 50 fits exactly
  EXPECT_EQ(trace.ZoomHeight[2], -160);
}

}  // namespace
}  // namespace gainsmith::test
