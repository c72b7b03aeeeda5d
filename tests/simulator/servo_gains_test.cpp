// What the gains and filters do to the motion, seen through the drive's own recordings.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "servo_bench.h"

namespace gainsmith::sim {
namespace {

// With a sample every 10 ms the default move cruises over these samples of its way out.
constexpr int CruiseDivider = 20;
constexpr std::size_t CruiseFrom = 100;
constexpr std::size_t CruiseTo = 190;
// With a sample every millisecond the ramp takes samples 6 to 31, and the move cruises afterwards.
constexpr int RampDivider = 2;
constexpr std::size_t RampFrom = 6;
constexpr std::size_t RampTo = 31;

double CruiseLagPulses(int positionKp, int kvff) {
  ServoBench bench;
  bench.SetFeedForward(kvff, 0);
  bench.WriteBoth(Reg::PositionKp, Reg::LowPositionKp, positionKp);
  return MeanOf(bench.RunPositionTest({}, CruiseDivider).ErrorPulses, CruiseFrom, CruiseTo);
}

double RampErrorPulses(std::string_view preset, int kaff) {
  ServoBench bench(preset);
  bench.SetFeedForward(1000, kaff);
  return PeakOf(bench.RunPositionTest({}, RampDivider).ErrorPulses, RampFrom, RampTo);
}

TEST(ServoGains, FactoryGainsFollowTheDefaultMoveAndSettle) {
  ServoBench bench;
  const Recording recording = bench.RunPositionTest({}, 30);
  EXPECT_LT(PeakOf(recording.ErrorPulses), 25);
  // The way out ends with sample 141, the way back begins with sample 147.
  EXPECT_LE(PeakOf(recording.ErrorPulses, 144, 147), 2);
  EXPECT_NEAR(MeanOf(recording.Rpm, 20, 130), 300, 1);
  bench.PassMs(5000);
  EXPECT_FALSE(bench.Motor.Moving());
  EXPECT_LE(std::abs(bench.Motor.PositionErrorPulses()), 1);
  EXPECT_NEAR(static_cast<double>(bench.Motor.ShaftPositionPulses()), 0, 2);
  EXPECT_TRUE(bench.Errors.empty());
}

TEST(ServoGains, LagIsSpeedOverPositionGain) {
  const int kp = FactoryValues()[Reg::PositionKp];
  const double lag = CruiseLagPulses(kp, 0);
  EXPECT_NEAR(lag, 20000.0 / (kp * 0.1), lag * 0.05);
  EXPECT_NEAR(CruiseLagPulses(kp / 2, 0), 2 * lag, lag * 0.1);
  EXPECT_NEAR(CruiseLagPulses(kp * 2, 0), lag / 2, lag * 0.1);
}

TEST(ServoGains, VelocityFeedForwardRemovesTheLagInProportion) {
  const int kp = FactoryValues()[Reg::PositionKp];
  const double lag = CruiseLagPulses(kp, 0);
  EXPECT_NEAR(CruiseLagPulses(kp, 500), lag / 2, lag * 0.05);
  EXPECT_NEAR(CruiseLagPulses(kp, 1000), 0, lag * 0.02);
  EXPECT_NEAR(CruiseLagPulses(kp, 1200), -lag * 0.2, lag * 0.05) << "too much leads";
}

TEST(ServoGains, AccelerationFeedForwardTakesTheErrorOutOfTheRamps) {
  EXPECT_LT(RampErrorPulses("bare-shaft", 1000), 0.6 * RampErrorPulses("bare-shaft", 0));
  // Six times the inertia needs six times the feed-forward.
  const double without = RampErrorPulses("heavy-load", 0);
  EXPECT_GT(RampErrorPulses("heavy-load", 1000), 0.7 * without);
  EXPECT_LT(RampErrorPulses("heavy-load", 6000), 0.3 * without);
  EXPECT_GT(RampErrorPulses("heavy-load", 20000), without) << "too much is worse than none";
}

TEST(ServoGains, PositionIntegralRemovesTheLagAndDerivativeShrinksTheRampError) {
  ServoBench integral;
  integral.SetFeedForward(0, 0);
  integral.WriteBoth(Reg::PositionKi, Reg::LowPositionKi, 800);
  EXPECT_LT(PeakOf(integral.RunPositionTest({}, CruiseDivider).ErrorPulses, CruiseFrom, CruiseTo),
            5);

  ServoBench derivative;
  derivative.SetFeedForward(0, 0);
  derivative.WriteBoth(Reg::PositionKd, Reg::LowPositionKd, 500);
  const double lag = CruiseLagPulses(FactoryValues()[Reg::PositionKp], 0);
  const std::vector<double> error = derivative.RunPositionTest({}, RampDivider).ErrorPulses;
  EXPECT_LT(error[40], 0.8 * lag) << "the derivative helps while the lag grows";
}

TEST(ServoGains, VelocityGainTenTimesTooHighRings) {
  const auto ripple = [](int percent) {
    ServoBench bench;
    const int kp = FactoryValues()[Reg::VelocityKp] * percent / 100;
    bench.WriteBoth(Reg::VelocityKp, Reg::LowVelocityKp, kp);
    return RippleOf(bench.RunVelocityTest(RampDivider).CurrentA, 120, 200);
  };
  const double factory = ripple(100);
  EXPECT_LT(factory, 0.02);
  EXPECT_LT(ripple(200), 5 * factory) << "twice the gain still works";
  EXPECT_GT(ripple(1000), 50 * factory);
}

// The overshoot over a step of the commanded velocity to 100 rpm, with one register changed.
double StepOvershootRpm(Reg high, Reg low, int value) {
  ServoBench bench;
  bench.SetFeedForward(0, 0);
  bench.WriteBoth(high, low, value);
  bench.LoadVelocityTest(100, 10000, 2000, 100, 1);
  bench.Write(Reg::VelocityCommand, 2);
  double peakRpm = 0;
  for (int i = 0; i < 1000; ++i) {
    bench.PassMs(0.5);
    peakRpm = std::max(peakRpm, bench.Motor.ShaftSpeedRpm());
  }
  return peakRpm - 100;
}

TEST(ServoGains, VelocityLoopOvershootsWithTooMuchIntegralAndTooLittleProportional) {
  const RegisterBank factory = FactoryValues();
  const int kp = factory[Reg::VelocityKp];
  const int ki = factory[Reg::VelocityKi];
  const double usual = StepOvershootRpm(Reg::VelocityKi, Reg::LowVelocityKi, ki);
  EXPECT_LT(usual, 25);
  EXPECT_LT(StepOvershootRpm(Reg::VelocityKi, Reg::LowVelocityKi, 0), usual / 2);
  EXPECT_GT(StepOvershootRpm(Reg::VelocityKi, Reg::LowVelocityKi, 4 * ki), usual + 10);
  EXPECT_GT(StepOvershootRpm(Reg::VelocityKp, Reg::LowVelocityKp, kp / 4), usual + 10);
}

TEST(ServoGains, LowSpeedSetRulesSlowMovesOnly) {
  const auto lag = [](double rpm, Reg changed) {
    ServoBench bench;
    const int kp = bench.Registers[Reg::PositionKp];
    bench.SetFeedForward(0, 0);
    bench.Write(changed, bench.Registers[changed] / 2);
    bench.Load({.Rpm = rpm, .Pulses = 400'000});
    bench.Write(Reg::PositionCommand, 1);
    bench.PassMs(1000);
    return bench.Motor.PositionErrorPulses() / (rpm * 4000 / 60 / (kp * 0.1));
  };
  EXPECT_NEAR(lag(12, Reg::LowPositionKp), 2, 0.2);
  EXPECT_NEAR(lag(12, Reg::PositionKp), 1, 0.2);
  EXPECT_NEAR(lag(300, Reg::LowPositionKp), 1, 0.1);
  EXPECT_NEAR(lag(300, Reg::PositionKp), 2, 0.1);
}

TEST(ServoGains, SlowFiltersDelayTheLoops) {
  for (const Reg filter : {Reg::VelocityFilterHz, Reg::CurrentReferenceHz}) {
    SCOPED_TRACE(testing::Message() << "register " << static_cast<int>(filter));
    const double usual = StepOvershootRpm(filter, filter, FactoryValues()[filter]);
    EXPECT_GT(StepOvershootRpm(filter, filter, 50), usual + 10);
    EXPECT_LT(StepOvershootRpm(filter, filter, 0), usual + 5) << "0 switches it off";
  }

  // The filter behind the position loop delays the velocity that it commands.
  const auto rampError = [](int cutOffHz) {
    ServoBench bench;
    bench.Write(Reg::VelocityReferenceHz, cutOffHz);
    return PeakOf(bench.RunPositionTest({}, RampDivider).ErrorPulses);
  };
  EXPECT_GT(rampError(20), 2 * rampError(600));
}

TEST(ServoGains, TrapFilterDampsTheSpringyCoupling) {
  const auto rippleA = [](Reg frequency, Reg width, int hz) {
    ServoBench bench("springy-coupling");
    // Gains that suit the heavier load bring out the resonance.
    bench.WriteBoth(Reg::VelocityKp, Reg::LowVelocityKp, 1500);
    bench.Write(frequency, hz);
    bench.Write(width, 20);
    return RippleOf(bench.RunPositionTest({}, RampDivider).CurrentA, 120, 200);
  };
  const double untreated = rippleA(Reg::Trap1Hz, Reg::Trap1WidthHz, 1500);
  EXPECT_GT(untreated, 1.0) << "it howls";
  EXPECT_LT(rippleA(Reg::Trap1Hz, Reg::Trap1WidthHz, 600), untreated / 20);
  EXPECT_LT(rippleA(Reg::Trap2Hz, Reg::Trap2WidthHz, 600), untreated / 20);
  EXPECT_GT(rippleA(Reg::Trap1Hz, Reg::Trap1WidthHz, 300), untreated / 2) << "the wrong place";
}

}  // namespace
}  // namespace gainsmith::sim
