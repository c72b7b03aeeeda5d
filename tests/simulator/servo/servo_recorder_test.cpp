// The recorder: layouts, timing, and that each recording fits the move that it shows.
#include <gtest/gtest.h>

#include "servo_bench.h"
#include "trace/position_reference.h"

namespace gainsmith::sim {
namespace {

// The tool's reference less the recorded error must be where the shaft was, which the velocity
// words add up to from where it stood before.
void ExpectRecordingFitsReference(const ServoBench& bench) {
  TraceState trace;
  trace.ProfileSpeed = bench.Registers[Reg::SpeedWord];
  trace.ProfileAccel = bench.Registers[Reg::AccelerationWord];
  trace.ProfileDistHigh = bench.Registers[Reg::LengthHigh];
  trace.ProfileDistLow = bench.Registers[Reg::LengthLow];
  trace.ProfileDwell = bench.Registers[Reg::PauseWord];
  trace.SampleDivider = bench.Registers[Reg::SampleDivider];
  for (int i = 0; i < 200; ++i) {
    trace.PErrTrace[static_cast<std::size_t>(i)] = bench.Motor.Sample(i);
  }
  RegeneratePositionReference(trace);
  double shaft = trace.PBakTrace[0] - bench.Motor.Sample(200), worst = 0;
  const std::size_t filled = trace.SampleDivider > 1 ? 199 : 200;
  for (std::size_t i = 0; i < filled; ++i) {
    shaft += bench.Motor.Sample(200 + static_cast<int>(i));
    worst = std::max(worst, std::abs(trace.PBakTrace[i] - shaft));
  }
  EXPECT_LE(worst, 3);
}

TEST(ServoRecorder, ErrorPlusFeedbackIsTheReference) {
  const Move moves[] = {
      {.Repeats = 9},
      {.Rpm = 333, .TurnsPerS2 = 70, .Pulses = 12345, .IntervalMs = 37, .Repeats = 9},
      // Too short to reach its speed.
      {.Rpm = 1000, .TurnsPerS2 = 50, .Pulses = 4001, .IntervalMs = 5, .Repeats = 9},
  };
  for (const Move& move : moves) {
    for (const int divider : {1, 2, 20}) {
      SCOPED_TRACE(testing::Message() << move.Pulses << " pulses, divider " << divider);
      ServoBench bench;
      bench.Write(Reg::Kvff, 500);
      bench.Write(Reg::Kaff, 0);
      bench.RunPositionTest(move, divider);
      ExpectRecordingFitsReference(bench);
      EXPECT_TRUE(bench.Trips.empty());
    }
  }
}

// The second move out begins at 4.31 s: armed within half a second of it, it is the one in the
// picture; armed later, or twice for the same move, the recorder waits for the third.
TEST(ServoRecorder, ArmedInMidTestCatchesTheMoveThatHasJustBegunOrTheNext) {
  const struct {
    double ArmedMs, CompleteMs;
    int IntervalMs = 100;
  } cases[] = {{3000, 6310}, {4320, 6250}, {4700, 6250}, {4900, 10560}, {4210, 10200, 10}};
  for (const auto& [armedMs, completeMs, intervalMs] : cases) {
    SCOPED_TRACE(armedMs);
    ServoBench bench;
    bench.RunPositionTest({.IntervalMs = intervalMs, .Repeats = 4}, 20);
    const Samples firstPicture = bench.AllSamples();
    bench.PassMs(armedMs - bench.NowMs() + 70);
    bench.Arm(20);
    bench.PassMs(0.5);
    EXPECT_FALSE(bench.Recorded());
    EXPECT_EQ(bench.AllSamples(), firstPicture) << "the memory keeps the last full recording";
    bench.WaitForRecording();
    EXPECT_NEAR(bench.NowMs() - 70, completeMs, 3);
    EXPECT_NE(bench.AllSamples(), firstPicture);
    ExpectRecordingFitsReference(bench);
    bench.Arm(20);
    bench.WaitForRecording();
    ExpectRecordingFitsReference(bench);
  }
}

TEST(ServoRecorder, WaitsForNoMoveThatDoesNotCome) {
  ServoBench bench;
  bench.RunPositionTest({}, 10);
  bench.Arm(10);
  bench.PassMs(998);
  EXPECT_FALSE(bench.Recorded());
  bench.PassMs(4);
  EXPECT_TRUE(bench.Recorded());
  EXPECT_NEAR(MeanOf(Part(bench.VelocityRpm(), 0, 50)), 300, 2);

  ServoBench stopped;
  stopped.RunPositionTest({.Repeats = 2}, 20);
  stopped.Arm(20);
  stopped.PassMs(100);
  stopped.Command(Reg::PositionCommand, 0, 2200);
  EXPECT_TRUE(stopped.Recorded());
  EXPECT_EQ(stopped.VelocityRpm()[199], 0);
}

TEST(ServoRecorder, RecordsAtOnceAtRestAndAgainForTheTestThatFollows) {
  ServoBench bench;
  bench.Load({});
  bench.Arm(1);
  bench.PassMs(99);
  EXPECT_FALSE(bench.Recorded());
  bench.PassMs(2);
  EXPECT_TRUE(bench.Recorded());
  EXPECT_EQ(PeakOf(bench.VelocityRpm()), 0);

  // A slow line brings the run command only when the short recording is over.
  bench.PassMs(100);
  bench.Write(Reg::PositionCommand, 2);
  EXPECT_FALSE(bench.Recorded());
  bench.WaitForRecording();
  ExpectRecordingFitsReference(bench);
}

TEST(ServoRecorder, ArmingAgainLeavesARecordingAloneUnlessItsSettingsChange) {
  for (const int second : {10, 5}) {
    ServoBench bench;
    bench.Arm(10);
    bench.PassMs(600);
    bench.Arm(second);
    bench.PassMs(401);
    EXPECT_EQ(bench.Recorded(), second == 10);
    bench.PassMs(100);
    EXPECT_TRUE(bench.Recorded());
  }
}

TEST(ServoRecorder, TwoChannelsHoldVelocityThenCurrent) {
  ServoBench bench;
  bench.RunVelocityTest(20);
  EXPECT_EQ(PeakOf(Part(bench.VelocityRpm(), 0, 6)), 0) << "it begins with the move";
  EXPECT_NEAR(MeanOf(Part(bench.VelocityRpm(), 50, 150)), 300, 1);
  const double frictionA = MeanOf(Part(bench.CurrentA(), 50, 150));
  EXPECT_GT(frictionA, 0.01);
  EXPECT_LT(frictionA, 0.1);
  for (int i = 400; i < 600; ++i) EXPECT_EQ(bench.Motor.Sample(i), 0);
}

TEST(ServoRecorder, LazyTimeAndSmallStepsGiveTheSameSamplesForTheSameSeed) {
  const auto record = [](std::uint64_t seed, int steps) {
    ServoBench bench("springy-coupling", seed);
    bench.Load({});
    bench.Arm(10);
    bench.Write(Reg::PositionCommand, 2);
    for (int i = 0; i < steps; ++i) bench.PassMs(1200.0 / steps);
    EXPECT_TRUE(bench.Recorded());
    return bench.AllSamples();
  };
  EXPECT_EQ(record(7, 1), record(7, 12000));
  EXPECT_NE(record(7, 1), record(8, 1)) << "the noise comes from the seed";
}

}  // namespace
}  // namespace gainsmith::sim
