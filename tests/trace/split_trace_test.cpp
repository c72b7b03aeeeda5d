// Ranges, the regenerated reference, and the way from a recording's words to the plots.
#include "trace/split_trace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

#include "support/moves_by_hand.h"
#include "trace/auto_range.h"
#include "trace/plot_bench.h"
#include "trace/position_reference.h"

namespace gainsmith::test {
namespace {

TEST(AutoRange, GoesUpToTheNextStepAboveThePeakAndTenPercent) {
  // A small negative peak carries its sign into the rounding: "0" (not "-0"), "-1", "-5", "-9".
  const std::pair<float, float> cases[] = {
      {0, 5},       {4, 5},           {5, 10},      {9, 50},       {42.7F, 50}, {136.4F, 200},
      {1363, 1500}, {1400, 1550},     {1820, 2050}, {-1000, 1150}, {-44, 50},   {-45, 100},
      {-0.3F, 5},   {1e7F, 11000050}, {-0.9F, 52},  {-4.6F, 60},   {-8.2F, 68}};
  for (const auto& [peak, bound] : cases) {
    // A channel that swings between its peak and 0.
    const float values[] = {0, peak, 0};
    EXPECT_EQ(AutoRange(values), bound) << peak;
  }
  // The larger side decides, and a tie goes up.
  const float even[] = {-4.6F, 4.6F};
  const float down[] = {-146, 100};
  EXPECT_EQ(AutoRange(even), 10);
  EXPECT_EQ(AutoRange(down), 200);
}

TEST(NiceDivision, TakesTheStepAboveATenth) {
  // From the first number on, up to the next line's.
  const std::pair<float, float> cases[] = {
      {0, 0.1F},     {1, 0.2F},     {2, 0.5F},     {5, 1},        {10, 2},       {20, 5},
      {50, 10},      {100, 20},     {200, 40},     {400, 50},     {500, 80},     {800, 100},
      {1000, 200},   {2000, 250},   {2500, 400},   {4000, 500},   {5000, 600},   {6000, 800},
      {8000, 1000},  {10000, 1200}, {12000, 1400}, {14000, 1500}, {15000, 1800}, {18000, 2000},
      {20000, 2200}, {22000, 2400}, {24000, 2500}, {25000, 2800}, {28000, 3000},
  };
  float before = 0.1F;
  for (const auto& [x, step] : cases) {
    EXPECT_EQ(NiceDivision(std::nextafter(x, 0.F)), before) << "below " << x;
    EXPECT_EQ(NiceDivision(x), step) << x;
    before = step;
  }
  EXPECT_EQ(NiceDivision(30050), 3005);
}

TEST(PlotGain, CarriesSevenDecimalsAndReplacesZerosAtTheCaller) {
  float units = 400;
  float top = 2800;
  EXPECT_EQ(PlotGain(units, top), 0.1428571F);
  units = top = 0;
  EXPECT_EQ(PlotGain(units, top), 1);
  EXPECT_EQ(std::pair(units, top), std::pair(1.F, 1.F));
}

// The motion begins after the sixth sample; a sample is the end of its last tick. With one tick a
// sample the table reaches the last of the 200.
TEST(PositionReference, MovesAsWorkedOutByHand) {
  for (const MoveByHand& move : MovesByHand()) {
    for (const int ticksPerSample : {1, 2}) {
      TraceState trace;
      trace.ProfileAccel = static_cast<float>(move.Words.Acceleration);
      trace.ProfileSpeed = static_cast<float>(move.Words.Speed);
      trace.ProfileDistLow = static_cast<float>(move.Words.Length);
      trace.ProfileDwell = static_cast<float>(move.Words.Pause);
      trace.SampleDivider = static_cast<float>(ticksPerSample);
      RegeneratePositionReference(trace);
      for (const auto& [tick, position] : move.Positions) {
        if (tick % ticksPerSample != 0) continue;
        EXPECT_EQ(trace.PRefTrace[static_cast<std::size_t>(5 + tick / ticksPerSample)], position)
            << move.Name << ", tick " << tick << ", " << ticksPerSample << " a sample";
      }
    }
  }
}

// Values of the same profile run outside this program, sample by sample: real moves, whose
// roundings to 32 bits add up.
TEST(PositionReference, FollowsTheGenerator) {
  const struct {
    const char* Name;
    // Acceleration, speed, both words of the distance, pause; and the ticks of a sample.
    std::tuple<float, float, float, float, float, float> Profile;
    std::vector<std::pair<std::size_t, float>> Samples;
  } cases[] = {
      {"default", {20, 1000, 0, 40000, 200, 20}, {{6, 41.9999962F}, {8, 355}, {198, 38355}}},
      {"the way back", {20, 1000, 0, 40000, 200, 30}, {{150, 39245}, {187, 28145}, {198, 24845}}},
      {"modulo 2^24", {20, 60000, 256, 1000, 10, 5}, {{60, 3.79999089F}, {198, 844.200012F}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Name);
    TraceState trace;
    std::tie(trace.ProfileAccel, trace.ProfileSpeed, trace.ProfileDistHigh, trace.ProfileDistLow,
             trace.ProfileDwell, trace.SampleDivider) = c.Profile;
    trace.PErrTrace.fill(8);
    trace.PRefTrace.fill(99);
    RegeneratePositionReference(trace);
    EXPECT_EQ(trace.PRefTrace[5], 0);
    for (const auto& [sample, value] : c.Samples)
      EXPECT_EQ(trace.PRefTrace[sample], value) << sample;
    EXPECT_EQ(trace.PBakTrace[10], trace.PRefTrace[10] - 8);
    // Above one tick a sample the last entry is never reached.
    EXPECT_EQ(std::pair(trace.PRefTrace[199], trace.PBakTrace[199]), std::pair(0.F, 0.F));
  }
}

// Division, top and gain of the whole trace.
std::tuple<float, float, float> Axis(TraceState& trace, Signal signal) {
  const AxisTables axis = trace.Axis(signal);
  return {axis.Step[0], axis.Top[0], axis.Gain[0]};
}

TEST(SplitTrace, ThreeChannelsInUnitsAndOnOneScale) {
  TraceState trace;
  trace.SetTraceTime(20);
  trace.ShowRecordedChannels(3);
  EXPECT_EQ(SplitTrace(trace, Recording({8, 200, 2048}), 3), 1);
  EXPECT_EQ(trace.PErrTrace[7], 8);
  EXPECT_EQ(trace.VBakTrace[7], 300);  // 200 pulses in 10 ms at 4000 per turn
  EXPECT_EQ(trace.IBakTrace[7], 2000);
  EXPECT_EQ(Axis(trace, Signal::PErr), std::tuple(4, 20, 20));         // 8.8 gives 10
  EXPECT_EQ(Axis(trace, Signal::VBak), std::tuple(80, 400, 1));        // 330 gives 350
  EXPECT_EQ(Axis(trace, Signal::IBak), std::tuple(500, 2500, 0.16F));  // 2200 gives 2250
  EXPECT_EQ(trace.Plots[Signal::PErr][7], 160);
  EXPECT_EQ(trace.Plots[Signal::IBak][7], 320);
  // No profile: the reference is 0 and the feedback its own opposite, on the error's scale.
  EXPECT_EQ(trace.Plots[Signal::PBak][7], -160);
  EXPECT_EQ(trace.PBakTop[0], 100);
  EXPECT_EQ(trace.PRefTop[0], 10);
}

TEST(SplitTrace, FromTheFirstSampleToTheLast) {
  TraceState trace;
  trace.SetTraceTime(20);
  trace.ShowRecordedChannels(3);
  std::vector<float> words = Recording({8, 200, 2048});
  for (std::size_t i = 0; i < 3; ++i) {
    words[i * ChannelSamples] = words[i * ChannelSamples + 7] / 2;
    words[i * ChannelSamples + ChannelSamples - 1] = -words[i * ChannelSamples + 7] / 4;
  }
  SplitTrace(trace, words, 3);
  using Ends = std::pair<float, float>;
  const auto ends = [](const auto& values) { return Ends(values[0], values[ChannelSamples - 1]); };
  EXPECT_EQ(ends(trace.PErrTrace), Ends(4, -2));
  EXPECT_EQ(ends(trace.VBakTrace), Ends(150, -75));
  EXPECT_EQ(ends(trace.IBakTrace), Ends(1000, -500));
  EXPECT_EQ(ends(trace.Plots[Signal::PErr]), Ends(80, -40));
  EXPECT_EQ(ends(trace.Plots[Signal::VBak]), Ends(150, -75));
  EXPECT_EQ(ends(trace.Plots[Signal::IBak]), Ends(160, -80));
  // The last of reference and feedback is never worked out at more than a tick per sample.
  EXPECT_EQ(ends(trace.Plots[Signal::PBak]), Ends(-80, 0));
}

TEST(SplitTrace, TwoChannelsHaveNoPosition) {
  TraceState trace;
  trace.SetTraceTime(20);
  trace.PErrTrace.fill(5);
  trace.Plots[Signal::PErr].fill(6);
  trace.ShowRecordedChannels(2);
  EXPECT_EQ(SplitTrace(trace, Recording({200, 1395}), 2), 1);
  EXPECT_EQ(trace.VBakTrace[7], 300);
  EXPECT_EQ(trace.IBakTrace[7], 1362.3046875F);
  // 1500 is still the fixed range of 2 A.
  EXPECT_EQ(trace.RangeTop, 1500);
  EXPECT_EQ(Axis(trace, Signal::IBak), std::tuple(400, 2000, 0.2F));
  EXPECT_EQ(trace.PErrTop[0], 0);
  EXPECT_EQ(trace.Plots[Signal::PErr][7], 0);
  EXPECT_EQ(trace.PErrTrace[7], 5);
}

TEST(SplitTrace, AMotorAtRestAndADriveWithoutEncoderCounts) {
  TraceState trace;
  trace.EncoderCounts = 0;
  trace.ShowRecordedChannels(3);
  SplitTrace(trace, Recording({0, 30000, 0}), 3);
  EXPECT_EQ(Axis(trace, Signal::VBak), std::tuple(2, 10, 40));
}

}  // namespace
}  // namespace gainsmith::test
