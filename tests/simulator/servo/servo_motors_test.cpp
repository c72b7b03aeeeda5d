// The motors and their loads: what each is there to teach.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "servo_bench.h"

namespace gainsmith::sim {
namespace {

void WriteBoth(ServoBench& bench, Reg high, Reg low, int value) {
  bench.Write(high, value);
  bench.Write(low, value);
}

// The windows' default moves as the windows show them, and in milliseconds: there the current rings
// as far as it is away from its neighbours of five samples before and after.
TEST(ServoMotors, EveryStepOfVpShowsInTheDefaultMoves) {
  const auto run = [](double vpFactor, bool velocityWindow, int divider) {
    ServoBench bench;
    WriteBoth(bench, Reg::VelocityKp, Reg::LowVelocityKp, static_cast<int>(600 * vpFactor));
    if (velocityWindow) {
      bench.RunVelocityTest(divider);
    } else {
      bench.RunPositionTest({}, divider);
    }
    return std::pair{bench.VelocityRpm(), bench.CurrentA()};
  };
  for (const bool velocityWindow : {false, true}) {
    const auto overshootPercent = [&](double factor) {
      return PeakOf(run(factor, velocityWindow, 20).first) / 3 - 100;
    };
    const double factory = overshootPercent(1);
    EXPECT_NEAR(factory, 4.75, 1);
    EXPECT_GT(overshootPercent(0.5), 1.6 * factory);
    EXPECT_LT(overshootPercent(2), factory - 1);
    EXPECT_GT(PeakOf(run(1, velocityWindow, 20).second), 0.2 * 2) << "of an axis of 2 A";
  }
  const auto ringA = [&](double factor) {
    const Samples current = run(factor, false, 2).second;
    double most = 0;
    for (std::size_t i = 50; i < 90; ++i) {
      most = std::max(most, std::abs(current[i] - (current[i - 5] + current[i + 5]) / 2));
    }
    return most;
  };
  EXPECT_GT(ringA(4), 5 * ringA(1));
  EXPECT_GT(ringA(5), 10 * ringA(4)) << "howls";
}

// The highest line of the velocity's spectrum in mid jog, the mean of eight recordings, and its
// bin: k is k x 15.6 Hz.
std::pair<double, int> HighestLine(int vp, int trapHz, bool usesTraps) {
  ServoBench bench("springy-coupling");
  bench.Write(Reg::VelocityKp, vp);
  bench.Write(Reg::Trap2Hz, trapHz);
  bench.Write(Reg::Trap2WidthHz, 20);
  bench.Motor.UseTraps(usesTraps);
  bench.Load({});
  bench.Command(Reg::PositionCommand, 1, 1000);
  std::array<double, 65> sum{};
  for (int recording = 0; recording < 8; ++recording) {
    bench.Arm(1);
    bench.WaitForRecording();
    const Samples rpm = bench.VelocityRpm();
    for (std::size_t k = 6; k < sum.size(); ++k) {
      std::complex<double> part = 0;
      for (std::size_t i = 0; i < 128; ++i) {
        part += rpm[70 + i] * std::polar(1.0, -std::numbers::pi * static_cast<double>(i * k) / 64);
      }
      sum[k] += std::abs(part) / 8;
    }
  }
  const auto highest = std::ranges::max_element(sum);
  return {*highest, static_cast<int>(highest - sum.begin())};
}

TEST(ServoMotors, TheRingOfASpringGrowsWithVpWhereItWillHowlAndATrapThereCalmsIt) {
  double before = HighestLine(450, 0, true).first;
  for (const auto& [vp, growth] : {std::pair{750, 1.3}, {900, 1.2}, {1800, 20.0}}) {
    const auto [peak, bin] = HighestLine(vp, 0, true);
    EXPECT_GT(peak, growth * before) << vp;
    EXPECT_NEAR(bin, 17, 1) << vp;
    before = peak;
  }
  const double ring = HighestLine(900, 0, true).first;
  EXPECT_LT(HighestLine(900, 266, true).first, 0.6 * ring);
  EXPECT_NEAR(HighestLine(900, 266, false).first, ring, 0.1 * ring) << "by register 254";
}

TEST(ServoMotors, AWeightSinksWithoutPowerDownToItsStop) {
  ServoBench bench("vertical-axis");
  bench.PassMs(1000);
  EXPECT_NEAR(bench.Position(), 0, 40) << "held";
  EXPECT_NEAR(bench.Motor.CurrentA(), 0.4 / 0.5, 0.1);
  bench.Motor.Stop();
  bench.PassMs(300);
  EXPECT_LT(bench.Rpm(), -30);
  bench.PassMs(20'000);
  EXPECT_EQ(bench.Position(), -20 * 4000);
  EXPECT_FALSE(bench.Motor.Busy());
}

TEST(ServoMotors, KiHuntsOnSlidesThatStick) {
  const auto wandersPulses = [](std::string_view motor, int ki) {
    ServoBench bench(motor);
    WriteBoth(bench, Reg::PositionKi, Reg::LowPositionKi, ki);
    bench.Load({});
    bench.Command(Reg::PositionCommand, 2, 6000);
    Samples errors;
    for (; bench.NowUs < 11'000'000; bench.PassMs(1)) {
      errors.push_back(bench.Motor.PositionErrorPulses());
    }
    return SpreadOf(errors);
  };
  EXPECT_GE(wandersPulses("sticky-slide", 800), 3);
  EXPECT_LE(wandersPulses("sticky-slide", 0), 1);
  EXPECT_LE(wandersPulses("screw-table", 800), 2);
}

}  // namespace
}  // namespace gainsmith::sim
