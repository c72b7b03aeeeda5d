// The recorder: layouts, timing, and that each recording fits the move that it shows.
#include <gtest/gtest.h>

#include <cmath>

#include "servo_bench.h"
#include "trace/position_reference.h"

namespace gainsmith::sim {
namespace {

// The tool's reference less the recorded error must be where the shaft was, which the velocity
// words add up to.
void ExpectRecordingFitsReference(const ServoBench& bench) {
  TraceState trace;
  trace.ProfileSpeed = bench.Registers[Reg::SpeedWord];
  trace.ProfileAccel = bench.Registers[Reg::AccelerationWord];
  trace.ProfileDistHigh = bench.Registers[Reg::LengthHigh];
  trace.ProfileDistLow = bench.Registers[Reg::LengthLow];
  trace.ProfileDwell = bench.Registers[Reg::PauseWord];
  trace.SampleDivider = bench.Registers[Reg::SampleDivider];
  for (int i = 0; i < 200; ++i)
    trace.PErrTrace[static_cast<std::size_t>(i)] = bench.Motor.Sample(i);
  RegeneratePositionReference(trace);
  double shaft = 0;
  double worst = 0;
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
      {.Rpm = 3000, .TurnsPerS2 = 1000, .Pulses = 200'000, .IntervalMs = 0, .Repeats = 9},
      // Too short to reach its speed.
      {.Rpm = 1000, .TurnsPerS2 = 50, .Pulses = 4001, .IntervalMs = 5, .Repeats = 9},
  };
  for (const Move& move : moves) {
    for (const int divider : {1, 2, 10, 20, 30}) {
      SCOPED_TRACE(testing::Message() << move.Pulses << " pulses, divider " << divider);
      ServoBench bench;
      bench.SetFeedForward(500, 0);
      bench.RunPositionTest(move, divider);
      ExpectRecordingFitsReference(bench);
      EXPECT_TRUE(bench.Errors.empty());
    }
  }
}

TEST(ServoRecorder, ArmedInMidTestCatchesTheNextMove) {
  ServoBench bench;
  bench.RunPositionTest({.Repeats = 3}, 20);
  const int firstPicture = bench.Motor.Sample(250);
  bench.Arm(20);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 0);
  bench.PassMs(1500);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 0) << "the way back is not what it waits for";
  EXPECT_EQ(bench.Motor.Sample(250), firstPicture) << "the memory keeps the last full recording";
  ASSERT_TRUE(bench.WaitForRecording());
  ExpectRecordingFitsReference(bench);
}

TEST(ServoRecorder, ArmedInTheLastMoveBeginsAtOnce) {
  ServoBench bench;
  bench.RunPositionTest({.Repeats = 1}, 10);
  bench.Arm(10);
  bench.PassMs(1001);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 1);
  EXPECT_NEAR(MeanOf(bench.Read().Rpm, 0, 50), 300, 2);
}

TEST(ServoRecorder, DoesNotWaitForANextMoveThatIsTooFarAway) {
  ServoBench bench;
  bench.RunPositionTest({.Pulses = 4'000'000, .Repeats = 2}, 1);  // minutes
  bench.Arm(1);
  bench.PassMs(14 * 100 + 1200 - 1);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 0);
  bench.PassMs(102);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 1);
  EXPECT_NEAR(MeanOf(bench.Read().Rpm, 0, 200), 300, 2);
}

TEST(ServoRecorder, RecordsAtOnceAtRestAndAgainForTheTestThatFollows) {
  ServoBench bench;
  EXPECT_EQ(bench.Motor.RecorderStatus(), 1) << "never armed";
  for (int i = 0; i < 600; ++i) EXPECT_EQ(bench.Motor.Sample(i), 0);

  bench.Load({});
  bench.Arm(1);
  bench.PassMs(99);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 0);
  bench.PassMs(2);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 1);
  EXPECT_EQ(PeakOf(bench.Read().Rpm), 0);

  // A slow line brings the run command only when the short recording is over.
  bench.PassMs(100);
  bench.Write(Reg::PositionCommand, 2);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 0);
  ASSERT_TRUE(bench.WaitForRecording());
  ExpectRecordingFitsReference(bench);
}

TEST(ServoRecorder, ArmingAgainLeavesARecordingAloneUnlessItsSettingsChange) {
  ServoBench bench;
  bench.Arm(10);
  bench.PassMs(600);
  bench.Arm(10);
  bench.PassMs(401);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 1);

  bench.Arm(10);
  bench.PassMs(600);
  bench.Arm(5);
  bench.PassMs(401);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 0);
  bench.PassMs(100);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 1);
}

TEST(ServoRecorder, StopWhileWaitingRecordsTheRest) {
  ServoBench bench;
  bench.RunPositionTest({.Repeats = 2}, 20);
  bench.Arm(20);
  bench.PassMs(100);
  bench.Write(Reg::PositionCommand, 0);
  bench.PassMs(2200);
  EXPECT_EQ(bench.Motor.RecorderStatus(), 1);
  EXPECT_EQ(bench.Read().Rpm[199], 0);
}

TEST(ServoRecorder, TwoChannelsHoldVelocityThenCurrent) {
  ServoBench bench;
  const Recording recording = bench.RunVelocityTest(20);
  EXPECT_EQ(PeakOf(recording.Rpm, 0, 6), 0) << "it begins with the move";
  EXPECT_NEAR(MeanOf(recording.Rpm, 50, 150), 300, 1);
  const double frictionA = MeanOf(recording.CurrentA, 50, 150);
  EXPECT_GT(frictionA, 0.01);
  EXPECT_LT(frictionA, 0.1);
  for (int i = 400; i < 600; ++i) EXPECT_EQ(bench.Motor.Sample(i), 0);
}

TEST(ServoRecorder, PositionErrorIsHeldAtTheEndsOfAWord) {
  ServoBench bench;
  bench.SetFeedForward(0, 0);
  bench.Write(Reg::FollowingErrorLimit, 0);
  bench.WriteBoth(Reg::PositionKp, Reg::LowPositionKp, 5);
  const Recording recording = bench.RunPositionTest({.Rpm = 3000, .Pulses = 400'000}, 10);
  EXPECT_EQ(PeakOf(recording.ErrorPulses), 32767);
}

TEST(ServoRecorder, LazyTimeAndSmallStepsGiveTheSameSamples) {
  ServoBench lazy("springy-coupling", 7);
  ServoBench busy("springy-coupling", 7);
  for (ServoBench* bench : {&lazy, &busy}) {
    bench->Load({});
    bench->Arm(10);
    bench->Write(Reg::PositionCommand, 2);
  }
  lazy.PassMs(1200);
  for (int i = 0; i < 12000; ++i) busy.PassMs(0.1);
  int different = 0;
  for (int i = 0; i < 600; ++i) different += lazy.Motor.Sample(i) != busy.Motor.Sample(i);
  EXPECT_EQ(different, 0);
  EXPECT_EQ(lazy.Motor.RecorderStatus(), 1);

  ServoBench otherSeed("springy-coupling", 8);
  otherSeed.RunPositionTest({}, 10);
  for (int i = 0; i < 600; ++i) different += lazy.Motor.Sample(i) != otherSeed.Motor.Sample(i);
  EXPECT_GT(different, 50) << "the noise comes from the seed";
}

}  // namespace
}  // namespace gainsmith::sim
