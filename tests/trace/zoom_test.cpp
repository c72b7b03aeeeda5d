// The zoom's arithmetic: which step fits, what falls back, what each level's tables hold.
#include "trace/zoom.h"

#include <gtest/gtest.h>

namespace gainsmith {
namespace {

// A captured trace of `sampleDivider` with 2 A, 500 rpm and 200 pulses at the top.
void Capture(TraceState& trace, int sampleDivider) {
  trace.SetTraceTime(sampleDivider);
  trace.ITop[0] = 2000;
  trace.IStep[0] = 400;
  trace.IGain[0] = 0.2F;
  trace.VTop[0] = 500;
  trace.VStep[0] = 100;
  trace.VGain[0] = 0.8F;
  for (Signal signal : {Signal::PErr, Signal::PBak, Signal::PRef}) {
    trace.Axis(signal).Top[0] = 200;
    trace.Axis(signal).Step[0] = 40;
    trace.Axis(signal).Gain[0] = 2;
  }
}

TEST(NiceTimeStep, TakesTheEntryBeforeTheOneThatFits) {
  const struct {
    int Divider;
    float Left, Width;
    float Step, ViewWidth, ViewLeft;
  } cases[] = {
      {20, 10, 40, 50, 50, 10},  // exact equality: still the entry before
      {20, 10, 41, 50, 50, 10},  // between two entries
      {20, 10, 39, 40, 40, 10},   {20, 149, 40, 50, 50, 149},  // ends on sample 199
      {20, 150, 40, 200, 199, 0},  // would end on 200: keeps the time axis below
      {20, 0, 200, 200, 199, 0},   // first entry stands for itself, and runs past the end
      {25, 10, 40, 60, 48, 10},    // 0.8 samples per ms, exact equality
      {3, 10, 40, 6, 40, 10},      // 40 / 6 is less than 6.66667
      {30, 10, 5, 8, 5, 10},      {1, 10, 5, 1, 20, 10},
  };
  for (const auto& c : cases) {
    TraceState trace;
    Capture(trace, c.Divider);
    trace.ZoomLeft[1] = c.Left;
    NiceTimeStep(trace, 1, trace.TimeStep[0], 200, c.Width);
    EXPECT_EQ(trace.TimeStep[1], c.Step) << c.Divider << " " << c.Width;
    EXPECT_EQ(trace.ZoomWidth[1], c.ViewWidth) << c.Divider << " " << c.Width;
    EXPECT_EQ(trace.ZoomLeft[1], c.ViewLeft) << c.Divider << " " << c.Width;
  }
}

TEST(NiceTimeStep, WithoutAFittingEntryTheViewBelowStays) {
  TraceState trace;
  trace.ZoomLeft = {12, 30};
  trace.ZoomWidth = {150, 1};
  NiceTimeStep(trace, 1, 0.1F, 20, 1);
  EXPECT_EQ(trace.TimeStep[1], 0);
  EXPECT_EQ(trace.ZoomWidth[1], 150);
  EXPECT_EQ(trace.ZoomLeft[1], 12);
}

TEST(NiceCurrentStep, TakesTheEntryBeforeTheOneThatFits) {
  TraceState trace;
  Capture(trace, 20);
  EXPECT_EQ(NiceCurrentStep(trace, 1, 400, 800), 250);  // 200 fits exactly
  EXPECT_EQ(NiceCurrentStep(trace, 1, 401, 800), 250);
  EXPECT_EQ(NiceCurrentStep(trace, 1, 600, 800), 400);
  EXPECT_EQ(NiceCurrentStep(trace, 1, 0.2F, 800), 0.2F);  // 4000 times: 0.1 fits
  EXPECT_EQ(NiceCurrentStep(trace, 1, 0.19F, 800), 0);
  trace.IStep[0] = 6000;
  EXPECT_EQ(NiceCurrentStep(trace, 1, 800, 800), 3000);  // the first entry has none before it
}

TEST(ZoomIn, FirstLevelOfThreeChannels) {
  TraceState trace;
  Capture(trace, 20);
  // 40 samples from the right to the left, 300 plot units from 250.5 down.
  ASSERT_TRUE(
      ZoomIn(trace, 3, 1, {.StartX = 70.4F, .StartY = 250.5F, .EndX = 30.4F, .EndY = -49.5F}));
  EXPECT_EQ(trace.ZoomLeft[1], 30);
  EXPECT_EQ(trace.ZoomWidth[1], 50);
  EXPECT_EQ(trace.TimeStep[1], 50);
  EXPECT_EQ(trace.ZoomTop[1], 250);      // a tie goes to even
  EXPECT_EQ(trace.IStep[1], 200);        // 400 / 2.667 is 150
  EXPECT_EQ(trace.ZoomHeight[1], -400);  // 10 divisions of 200 mA
  EXPECT_EQ(trace.ITop[1], 1250);
  EXPECT_EQ(trace.IGain[1], 0.2F);
  EXPECT_FLOAT_EQ(trace.TopRatio[1], 1.6F);
  EXPECT_EQ(trace.VStep[1], 50);
  EXPECT_EQ(trace.VTop[1], 312.5F);  // not rounded
  EXPECT_EQ(trace.VGain[1], 0.8F);
  EXPECT_EQ(trace.PErrStep[1], 20);
  EXPECT_EQ(trace.PRefTop[1], 125);
}

TEST(ZoomIn, TwoChannelsRoundTheVelocityTopToEven) {
  TraceState trace;
  Capture(trace, 20);
  ASSERT_TRUE(ZoomIn(trace, 2, 1, {.StartX = 30, .StartY = 250, .EndX = 70, .EndY = -50}));
  EXPECT_EQ(trace.VTop[1], 312);
  EXPECT_EQ(trace.VGain[1], 0.8012821F);
  EXPECT_EQ(trace.PErrStep[1], 0);  // not a channel of this window
  // A top that rounds to 0 becomes 1 in the table.
  TraceState low;
  Capture(low, 20);
  ASSERT_TRUE(ZoomIn(low, 2, 1, {.StartX = 30, .StartY = 0.4F, .EndX = 70, .EndY = -50}));
  EXPECT_EQ(low.ZoomTop[1], 0);
  EXPECT_EQ(low.ITop[1], 1);
  EXPECT_EQ(low.VTop[1], 1);
  EXPECT_EQ(low.VGain[1], 1);
}

TEST(ZoomIn, SecondLevelAddsNothingToTheWidth) {
  TraceState trace;
  Capture(trace, 20);
  ASSERT_TRUE(ZoomIn(trace, 3, 1, {.StartX = 150, .StartY = 300, .EndX = 190, .EndY = 0}));
  // The view would end past the last sample: the time axis of the level below, the height anew.
  EXPECT_EQ(trace.ZoomWidth[1], 199);
  EXPECT_EQ(trace.ZoomLeft[1], 0);
  EXPECT_EQ(trace.TimeStep[1], 200);
  EXPECT_EQ(trace.ZoomHeight[1], -400);
  ASSERT_TRUE(ZoomIn(trace, 3, 2, {.StartX = 100, .StartY = 300, .EndX = 140, .EndY = 200}));
  // 199 / 200 samples per ms: 40 goes into 40 samples, so 50 is taken.
  EXPECT_EQ(trace.TimeStep[2], 50);
  EXPECT_EQ(trace.ZoomWidth[2], 50);  // 49.75
  EXPECT_EQ(trace.IStep[2], 80);      // 50 fits exactly
  EXPECT_EQ(trace.ZoomHeight[2], -160);
}

}  // namespace
}  // namespace gainsmith
