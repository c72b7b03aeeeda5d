// Commands and faults: what moves the motor, what stops it, and what enters the error log.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "servo_bench.h"

namespace gainsmith::sim {
namespace {

double Position(const ServoBench& bench) {
  return static_cast<double>(bench.Motor.ShaftPositionPulses());
}

// How long the motor moves from now on, to the millisecond.
double MoveMs(ServoBench& bench) {
  double ms = 0;
  for (; bench.Motor.Moving() && ms < 60'000; ++ms) bench.PassMs(1);
  return ms;
}

TEST(ServoCommands, PositionTestGoesOutAndBackAsOftenAsItShould) {
  for (const int repeats : {1, 3}) {
    ServoBench bench;
    bench.Load({.Repeats = repeats});
    bench.Write(Reg::PositionCommand, 2);
    bench.PassMs(2050);
    EXPECT_NEAR(Position(bench), 40000, 15);
    EXPECT_NEAR(MoveMs(bench), repeats * 4250 - 2050, 20);
    EXPECT_NEAR(Position(bench), 0, 2);
  }
  ServoBench none;
  none.Load({.Repeats = 0});
  none.Write(Reg::PositionCommand, 2);
  none.PassMs(10);
  EXPECT_FALSE(none.Motor.Moving());
}

TEST(ServoCommands, ARunCommandSentAgainDoesNotStartTheTestAnew) {
  ServoBench bench;
  bench.Load({});
  bench.Write(Reg::PositionCommand, 2);
  bench.PassMs(1000);
  bench.Write(Reg::PositionCommand, 2);
  EXPECT_NEAR(MoveMs(bench), 3250, 60);

  bench.LoadVelocityTest(300, 125, 500, 100, 1);
  bench.Write(Reg::VelocityCommand, 2);
  bench.PassMs(400);
  bench.Write(Reg::VelocityCommand, 2);
  EXPECT_NEAR(MoveMs(bench), 800, 60);
}

TEST(ServoCommands, StopEndsEveryMotionWithinATenthOfASecond) {
  struct Case {
    Reg Command;
    int Run;
  };
  for (const Case& motion : {Case{Reg::PositionCommand, 2}, Case{Reg::PositionCommand, 1},
                             Case{Reg::PositionCommand, 5}, Case{Reg::VelocityCommand, 2}}) {
    SCOPED_TRACE(testing::Message()
                 << "command " << static_cast<int>(motion.Command) << " := " << motion.Run);
    ServoBench bench;
    bench.Load({.TurnsPerS2 = 300, .Pulses = 4'000'000, .Repeats = 5});
    bench.Write(motion.Command, motion.Run);
    bench.PassMs(500);
    EXPECT_GT(std::abs(bench.Motor.ShaftSpeedRpm()), 250);
    bench.Write(Reg::AccelerationWord, 0);  // not even then does a stop take longer
    bench.Write(motion.Command, 0);
    bench.PassMs(150);
    const double stoppedAt = Position(bench);
    EXPECT_FALSE(bench.Motor.Moving());
    bench.PassMs(10'000);
    EXPECT_NEAR(Position(bench), stoppedAt, 3);
    EXPECT_TRUE(bench.Errors.empty());
  }
}

TEST(ServoCommands, VelocityTestRunsForItsTimeInUnitsOfItsOwn) {
  ServoBench bench;
  bench.LoadVelocityTest(300, 125, 2000, 100, 2);
  bench.Write(Reg::VelocityCommand, 2);
  bench.PassMs(20);
  EXPECT_NEAR(bench.Motor.ShaftSpeedRpm(), 150, 20) << "half way up a ramp of 40 ms";
  bench.PassMs(980);
  EXPECT_NEAR(bench.Motor.ShaftSpeedRpm(), 300, 3);
  bench.PassMs(1080);
  EXPECT_NEAR(bench.Motor.ShaftSpeedRpm(), 0, 3);
  bench.PassMs(1000);
  EXPECT_NEAR(bench.Motor.ShaftSpeedRpm(), -300, 3);
  EXPECT_NEAR(MoveMs(bench), 2 * 4200 - 3080, 30);
}

TEST(ServoCommands, FollowingErrorStopsTheMotorAndTheNextCommandFreesIt) {
  ServoBench bench;
  bench.SetFeedForward(0, 0);
  bench.Write(Reg::FollowingErrorLimit, 200);  // the lag would be 250
  bench.RunPositionTest({}, 10);
  EXPECT_EQ(bench.Errors, std::vector<DriveError>{DriveError::FollowingError});
  bench.PassMs(2000);
  EXPECT_FALSE(bench.Motor.Moving());
  EXPECT_EQ(bench.Motor.CurrentA(), 0);
  EXPECT_LT(Position(bench), 5000);

  bench.Write(Reg::FollowingErrorLimit, 8000);
  bench.Write(Reg::PositionCommand, 2);
  bench.PassMs(1000);
  EXPECT_TRUE(bench.Motor.Moving());
  EXPECT_EQ(bench.Errors.size(), 1u);
}

TEST(ServoCommands, WildCurrentLoopIsAnOverCurrentError) {
  ServoBench bench;
  bench.Write(Reg::CurrentKp, 20000);
  bench.Write(Reg::PeakCurrent, 100);
  bench.RunPositionTest({}, 10);
  ASSERT_FALSE(bench.Errors.empty());
  EXPECT_EQ(bench.Errors.front(), DriveError::OverCurrent);
  bench.PassMs(1000);
  EXPECT_FALSE(bench.Motor.Moving());
}

TEST(ServoCommands, JammedMotorFallsBackToRatedCurrentAndThenFails) {
  MotorPreset jammed = MotorPresets().front();
  jammed.CoulombNm = 50;
  ServoBench bench(jammed);
  bench.Write(Reg::FollowingErrorLimit, 0);
  bench.Load({});
  bench.Write(Reg::PositionCommand, 1);
  bench.PassMs(1000);
  EXPECT_NEAR(bench.Motor.CurrentA(), 8.4, 0.2);
  bench.PassMs(4000);
  EXPECT_NEAR(bench.Motor.CurrentA(), 2.8, 0.1);
  EXPECT_TRUE(bench.Errors.empty());
  bench.PassMs(5000);
  EXPECT_EQ(bench.Errors, std::vector<DriveError>{DriveError::Limit});
  EXPECT_FALSE(bench.Motor.Moving());
}

TEST(ServoCommands, CurrentStepTakesTheMotorOverAndMotionTakesItBack) {
  ServoBench bench;
  bench.Load({});
  bench.Write(Reg::PositionCommand, 1);
  bench.PassMs(500);
  bench.Write(Reg::TestCurrent, 1024);
  bench.Write(Reg::CurrentStep, 1);
  bench.PassMs(2000);
  EXPECT_FALSE(bench.Motor.Moving());
  EXPECT_NEAR(bench.Motor.Sample(199), 1024, 10);
  bench.Write(Reg::CurrentStep, 0);
  bench.Write(Reg::PositionCommand, 5);
  bench.PassMs(500);
  EXPECT_NEAR(bench.Motor.ShaftSpeedRpm(), -300, 5);
}

TEST(ServoCommands, CommandsTakeOverFromTheBackgroundMotionButNotTheOtherWayRound) {
  ServoBench bench;
  bench.Motor.StartBackgroundMotion({}, bench.NowUs);
  bench.Load({});
  bench.PassMs(100);
  bench.Write(Reg::PositionCommand, 1);
  bench.Motor.StartBackgroundMotion({}, bench.NowUs);
  bench.PassMs(1000);
  EXPECT_NEAR(bench.Motor.ShaftSpeedRpm(), 300, 5);
  bench.Write(Reg::PositionCommand, 0);
  bench.PassMs(300);
  bench.Motor.StartBackgroundMotion({}, bench.NowUs);
  bench.PassMs(300);
  bench.Write(Reg::PositionCommand, 0);  // ends commands only
  EXPECT_TRUE(bench.Motor.Moving());
  bench.Motor.StopBackgroundMotion(bench.NowUs);
  bench.PassMs(200);
  EXPECT_FALSE(bench.Motor.Moving());
}

TEST(ServoCommands, RestCostsNothing) {
  ServoBench bench;
  bench.Load({});
  bench.Write(Reg::PositionCommand, 2);
  bench.PassMs(10'000);
  bench.PassMs(1e12);  // thirty years would take days to compute
  bench.Write(Reg::PositionCommand, 1);
  bench.PassMs(500);
  EXPECT_NEAR(bench.Motor.ShaftSpeedRpm(), 300, 5);
}

TEST(ServoCommands, ResetForgetsTheTestAndTheRecording) {
  ServoBench bench;
  bench.RunPositionTest({.Repeats = 2}, 10);
  bench.Arm(30);
  bench.Registers = FactoryValues();
  bench.Motor.Reset();
  EXPECT_EQ(bench.Motor.RecorderStatus(), 1);
  for (int i = 0; i < 600; ++i) EXPECT_EQ(bench.Motor.Sample(i), 0);
  bench.PassMs(1000);
  EXPECT_FALSE(bench.Motor.Moving());
}

// Whatever stands in the registers, the model stays finite and a stop stops it.
TEST(ServoCommands, SurvivesAnyRegisterValues) {
  std::mt19937 random(5);
  const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
  for (const MotorPreset& preset : MotorPresets()) {
    ServoBench bench(preset);
    for (int round = 0; round < 300; ++round) {
      for (int i = 0; i < 10; ++i) {
        const bool extreme = below(4) == 0;
        bench.Write(static_cast<Reg>(below(256)), extreme ? 65535 * below(2) : below(65536));
      }
      bench.Write(Reg::PositionCommand, below(6));
      if (below(3) == 0) bench.Write(Reg::VelocityCommand, 2);
      if (below(3) == 0) bench.Arm(below(31));
      bench.PassMs(below(200));
      ASSERT_TRUE(std::isfinite(bench.Motor.ShaftSpeedRpm())) << "round " << round;
      ASSERT_TRUE(std::isfinite(bench.Motor.CurrentA())) << "round " << round;
    }
    bench.Motor.Stop();
    bench.PassMs(600'000);
    EXPECT_FALSE(bench.Motor.Moving()) << preset.Name;
  }
}

}  // namespace
}  // namespace gainsmith::sim
