// Commands and faults: what moves the motor, what stops it, and what enters the error log.
#include <gtest/gtest.h>

#include <random>

#include "servo_bench.h"

namespace gainsmith::sim {
namespace {

using Trips = std::vector<Trip>;

// How long the motor moves from now on, to the millisecond.
double MoveMs(ServoBench& bench) {
  double ms = 0;
  for (; bench.Motor.Moving() && ms < 60'000; ++ms) bench.PassMs(1);
  return ms;
}

// Run commands are sent twice, as by a host that missed the reply: the test must not begin anew.
TEST(ServoCommands, PositionTestGoesOutAndBackAsOftenAsItShould) {
  for (const int repeats : {0, 1, 3}) {
    ServoBench bench;
    bench.Load({.Repeats = repeats});
    bench.Command(Reg::PositionCommand, 2, 1000);
    bench.Command(Reg::PositionCommand, 2, 1050);
    EXPECT_NEAR(bench.Position(), repeats > 0 ? 40000 : 0, 15);
    EXPECT_NEAR(MoveMs(bench), repeats > 0 ? repeats * 4250 - 2050 : 0, 20);
    bench.PassMs(1e12);  // thirty years at rest would take days to compute
    EXPECT_NEAR(bench.Position(), 0, 2);
    EXPECT_LE(std::abs(bench.Motor.PositionErrorPulses()), 1);
  }
}

TEST(ServoCommands, VelocityTestRunsForItsTimeInUnitsOfItsOwn) {
  ServoBench bench;
  bench.LoadVelocityTest(300, 125, 2000, 2);
  bench.Command(Reg::VelocityCommand, 2, 20);
  EXPECT_NEAR(bench.Rpm(), 150, 20) << "half way up a ramp of 40 ms";
  bench.PassMs(980);
  EXPECT_NEAR(bench.Rpm(), 300, 3);
  bench.Command(Reg::VelocityCommand, 2, 1080);
  EXPECT_NEAR(bench.Rpm(), 0, 3);
  bench.PassMs(1000);
  EXPECT_NEAR(bench.Rpm(), -300, 3);
  EXPECT_NEAR(MoveMs(bench), 2 * 4200 - 3080, 30);
}

TEST(ServoCommands, StopEndsEveryMotionWithinATenthOfASecond) {
  const std::pair<Reg, int> motions[] = {{Reg::PositionCommand, 2},
                                         {Reg::PositionCommand, 1},
                                         {Reg::PositionCommand, 5},
                                         {Reg::VelocityCommand, 2}};
  for (const auto& [command, run] : motions) {
    SCOPED_TRACE(testing::Message() << "command " << static_cast<int>(command) << " := " << run);
    ServoBench bench;
    bench.Load({.TurnsPerS2 = 300, .Pulses = 4'000'000, .Repeats = 5});
    bench.Command(command, run, 500);
    EXPECT_GT(bench.Rpm() * (run == 5 ? -1 : 1), 250);
    bench.Write(Reg::AccelerationWord, 0);  // not even then does a stop take longer
    bench.Command(command, 0, 100);
    EXPECT_NEAR(bench.Rpm(), 0, 20);
    bench.PassMs(100);
    const double stoppedAt = bench.Position();
    EXPECT_FALSE(bench.Motor.Moving());
    bench.PassMs(10'000);
    EXPECT_NEAR(bench.Position(), stoppedAt, 5);
    EXPECT_TRUE(bench.Trips.empty());
  }
}

// What takes the power away, and that it stays away until the trip is cleared, whatever is
// commanded.
TEST(ServoCommands, ATripStopsTheMotorAndLatches) {
  const struct {
    Trip Expected;
    std::vector<std::pair<Reg, int>> Changed;
    double Rpm = 300;
    void (*AtHalfTime)(ServoBench&) = [](ServoBench&) {};
  } cases[] = {
      {Trip::FollowingError, {{Reg::Kvff, 0}, {Reg::FollowingErrorLimit, 200}}},  // it lags 250
      {Trip::OverCurrent, {{Reg::CurrentKp, 20000}, {Reg::PeakCurrent, 100}}},
      {Trip::OverSpeed, {{Reg::FollowingErrorLimit, 0}}, 5800},
      {Trip::EncoderLoss,
       {},
       300,
       [](ServoBench& bench) { bench.Motor.PlugEncoder(false, bench.NowUs); }},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(NameOf(test.Expected));
    ServoBench bench;
    for (const auto& [reg, value] : test.Changed) bench.Write(reg, value);
    bench.Load({.Rpm = test.Rpm, .TurnsPerS2 = 400, .Pulses = 400'000});
    bench.Command(Reg::PositionCommand, 2, 200);
    test.AtHalfTime(bench);
    bench.PassMs(3000);
    EXPECT_EQ(bench.Trips, Trips{test.Expected});
    EXPECT_FALSE(bench.Motor.Moving());
    EXPECT_EQ(bench.Motor.CurrentA(), 0);

    bench.Motor.PlugEncoder(true, bench.NowUs);
    bench.Registers = FactoryValues();
    bench.Load({});
    const double restsAt = bench.Position();
    for (const auto& [command, word] : {std::pair{Reg::PositionCommand, 2},
                                        {Reg::PositionCommand, 5},
                                        {Reg::VelocityCommand, 2},
                                        {Reg::CurrentStep, 1}}) {
      bench.Command(command, word, 100);
      EXPECT_EQ(bench.Motor.CurrentA(), 0) << "the trip stands";
    }
    EXPECT_EQ(bench.Position(), restsAt);
    bench.Motor.ClearTrip();
    bench.Command(Reg::PositionCommand, 2, 1000);
    EXPECT_TRUE(bench.Motor.Moving());
    EXPECT_EQ(bench.Trips.size(), 1u);
  }
}

// Each parameter rewritten with the value that it has, in full motion, against a twin that is left
// alone.
TEST(ServoCommands, AWriteThatChangesNothingMovesNothing) {
  ServoBench bench, twin;
  for (ServoBench* one : {&bench, &twin}) {
    one->Load({.Rpm = 3000});
    one->Write(Reg::Trap1WidthHz, 50);
    one->Command(Reg::PositionCommand, 1, 1000);
  }
  for (const FactoryValue& parameter : FactoryParameters()) {
    bench.PassMs(0.75);
    twin.PassMs(0.75);
    bench.Write(parameter.Register, bench.Registers[parameter.Register]);
    EXPECT_EQ(bench.Rpm(), twin.Rpm()) << static_cast<int>(parameter.Register);
    EXPECT_EQ(bench.Motor.CurrentA(), twin.Motor.CurrentA());
  }
}

// 5 A are 2.19 times the heat of 2.8 A too much: 24 s of it last 11 s, then the rated current stays
// for five.
TEST(ServoCommands, ATestCurrentThatIsHeldOverloadsTheMotor) {
  ServoBench bench;
  bench.Write(Reg::TestCurrent, 5 * 1024);
  bench.Command(Reg::CurrentStep, 1, 10'900);
  EXPECT_NEAR(bench.Motor.CurrentA(), 5, 0.01);
  bench.PassMs(200);
  EXPECT_NEAR(bench.Motor.CurrentA(), 2.8, 0.01);
  EXPECT_TRUE(bench.Trips.empty());
  bench.PassMs(5000);
  EXPECT_EQ(bench.Trips, Trips{Trip::Overload});
  EXPECT_EQ(bench.Motor.CurrentA(), 0);
}

TEST(ServoCommands, CurrentStepTakesTheMotorOverAndMotionTakesItBack) {
  ServoBench bench;
  bench.Load({});
  bench.Command(Reg::PositionCommand, 1, 500);
  bench.Write(Reg::TestCurrent, 512);
  bench.Command(Reg::CurrentStep, 1, 2000);
  EXPECT_FALSE(bench.Motor.Moving());
  EXPECT_NEAR(bench.Motor.CurrentA(), 0.5, 0.01);
  bench.Command(Reg::PositionCommand, 5, 500);
  EXPECT_NEAR(bench.Rpm(), -300, 5);
  EXPECT_NEAR(bench.Motor.CurrentA(), 0, 0.1);
  EXPECT_NEAR(bench.StepA().back(), 0.5, 0.01) << "the picture stays in the memory";

  bench.Write(Reg::CurrentKp, 50);
  bench.Write(Reg::CurrentKi, 0);
  bench.Command(Reg::CurrentStep, 1, 50);
  // 2.5 V/A drive through 2.6 ohms what they can.
  EXPECT_NEAR(bench.Motor.CurrentA(), 0.5 * 2.5 / (2.5 + 2.6), 0.001);
  bench.Command(Reg::CurrentStep, 0, 0);
  EXPECT_EQ(bench.Motor.CurrentA(), 0);
  bench.Write(Reg::PeakCurrent, 20);  // 0.2 A
  bench.Write(Reg::CurrentKp, 20000);
  bench.Command(Reg::CurrentStep, 1, 50);
  EXPECT_EQ(bench.Motor.CurrentA(), 0);
  EXPECT_EQ(bench.Trips, Trips{Trip::OverCurrent});
}

TEST(ServoCommands, CommandsTakeOverFromTheBackgroundMotionButNotTheOtherWayRound) {
  ServoBench bench;
  bench.Load({});
  const auto startBackground = [&bench](double passMs) {
    bench.Motor.StartBackgroundMotion({}, bench.NowUs);
    bench.PassMs(passMs);
  };
  startBackground(100);
  bench.Write(Reg::PositionCommand, 1);
  startBackground(1000);
  EXPECT_NEAR(bench.Rpm(), 300, 5);
  bench.Command(Reg::PositionCommand, 0, 300);
  startBackground(300);
  bench.Command(Reg::PositionCommand, 0, 200);  // ends commands only
  EXPECT_TRUE(bench.Motor.Moving());
  bench.Motor.StopBackgroundMotion(bench.NowUs);
  bench.PassMs(200);
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
      ASSERT_TRUE(std::isfinite(bench.Rpm() + bench.Motor.CurrentA())) << "round " << round;
    }
    bench.Motor.Stop();
    bench.PassMs(600'000);
    EXPECT_FALSE(bench.Motor.Moving()) << preset.Name;
  }
}

}  // namespace
}  // namespace gainsmith::sim
