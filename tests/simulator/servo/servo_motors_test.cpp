// The motors and their loads: what each is there to teach.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "servo_bench.h"

namespace gainsmith::sim {
namespace {

struct Picture {
  double OvershootPercent, SettledMs, CurrentA;
};
// The windows' default moves as the windows show them: 200 samples in two seconds.
Picture DefaultMove(double vpFactor, bool velocityWindow) {
  ServoBench bench;
  for (const Reg reg : {Reg::VelocityKp, Reg::LowVelocityKp}) {
    bench.Write(reg, static_cast<int>(600 * vpFactor));
  }
  if (velocityWindow) {
    bench.RunVelocityTest(20);
  } else {
    bench.RunPositionTest({}, 20);
  }
  const Samples rpm = bench.VelocityRpm();
  std::size_t settled = 190;
  while (settled > 6 && std::abs(rpm[settled] - 300) < 6) --settled;
  return {PeakOf(rpm) / 3 - 100, (static_cast<double>(settled) - 5) * 10, PeakOf(bench.CurrentA())};
}

TEST(ServoMotors, EveryStepOfVpShowsInTheDefaultMoves) {
  for (const bool velocityWindow : {false, true}) {
    SCOPED_TRACE(velocityWindow);
    const Picture factory = DefaultMove(1, velocityWindow);
    EXPECT_NEAR(factory.OvershootPercent, 4.75, 1);
    EXPECT_GT(factory.CurrentA, 0.2 * 2) << "of an axis of 2 A";
    const Picture half = DefaultMove(0.5, velocityWindow);
    EXPECT_GT(half.OvershootPercent, 1.6 * factory.OvershootPercent);
    if (!velocityWindow) {
      EXPECT_GT(half.SettledMs, 1.5 * factory.SettledMs) << "slow";
    }
    EXPECT_LT(DefaultMove(2, velocityWindow).OvershootPercent, factory.OvershootPercent - 1);
  }
}

// Current in the millisecond picture of the way up and after it: how much of it swings there and
// back from one sample to the next.
double RingA(double vpFactor) {
  ServoBench bench;
  for (const Reg reg : {Reg::VelocityKp, Reg::LowVelocityKp}) {
    bench.Write(reg, static_cast<int>(600 * vpFactor));
  }
  bench.RunPositionTest({}, 2);
  Samples swing;
  const Samples current = bench.CurrentA();
  for (std::size_t i = 50; i < 90; ++i) {
    swing.push_back(current[i] - (current[i - 5] + current[i + 5]) / 2);
  }
  return SpreadOf(swing);
}

TEST(ServoMotors, FourTimesVpRingsAndFiveTimesIsTooMuch) {
  const double factory = RingA(1);
  EXPECT_GT(RingA(4), 5 * factory);
  EXPECT_GT(RingA(4), 0.3);
  EXPECT_GT(RingA(5), 5);
}

// Magnitudes of the velocity's spectrum in mid jog, bin k at k x 15.6 Hz, mean of eight recordings.
Samples Spectrum(ServoBench& bench) {
  bench.Load({});
  bench.Command(Reg::PositionCommand, 1, 1000);
  Samples sum(65, 0.0);
  for (int recording = 0; recording < 8; ++recording) {
    bench.Arm(1);
    bench.WaitForRecording();
    const Samples rpm = Part(bench.VelocityRpm(), 70, 198);
    for (std::size_t k = 6; k < sum.size(); ++k) {
      std::complex<double> part = 0;
      for (std::size_t i = 0; i < rpm.size(); ++i) {
        part += rpm[i] * std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(i * k) / 128);
      }
      sum[k] += std::abs(part) / 8;
    }
  }
  return sum;
}
std::size_t HighestBin(const Samples& spectrum) {
  return static_cast<std::size_t>(std::ranges::max_element(spectrum) - spectrum.begin());
}

TEST(ServoMotors, TheRingOfASpringGrowsWithVpWhereItWillHowlAndATrapThereCalmsIt) {
  Samples peaks;
  std::size_t bin = 0;
  for (const int vp : {450, 750, 900, 1800}) {
    ServoBench bench("springy-coupling");
    bench.Write(Reg::VelocityKp, vp);
    const Samples spectrum = Spectrum(bench);
    if (vp == 900) bin = HighestBin(spectrum);
    if (vp > 450) {
      EXPECT_NEAR(static_cast<double>(HighestBin(spectrum)), 17, 1) << vp;
    }
    peaks.push_back(PeakOf(spectrum));
  }
  EXPECT_GT(peaks[1], 1.3 * peaks[0]);
  EXPECT_GT(peaks[2], 1.2 * peaks[1]);
  EXPECT_GT(peaks[3], 20 * peaks[2]) << "howls";

  // Switched off by register 254 the traps are as good as not there.
  for (const bool used : {true, false}) {
    ServoBench bench("springy-coupling");
    bench.Write(Reg::VelocityKp, 900);
    bench.Write(Reg::Trap2Hz, static_cast<int>(std::lround(static_cast<double>(bin) * 15.625)));
    bench.Write(Reg::Trap2WidthHz, 20);
    bench.Motor.UseTraps(used);
    const double left = PeakOf(Spectrum(bench));
    if (used) {
      EXPECT_LT(left, 0.6 * peaks[2]);
    } else {
      EXPECT_NEAR(left, peaks[2], 0.2 * peaks[2]);
    }
  }
}

TEST(ServoMotors, CoggingShakesAsOftenAsTheShaftPassesTeeth) {
  MotorPreset cogging = MotorPresets().front();
  ASSERT_TRUE(SetMotorField(cogging, "cogging=1"));
  ASSERT_TRUE(SetMotorField(cogging, "cogging-waves=50"));
  ServoBench bench(cogging);
  EXPECT_EQ(HighestBin(Spectrum(bench)), 16u) << "five turns a second are 250 Hz";
}

TEST(ServoMotors, AWeightSinksWithoutPowerDownToItsStop) {
  ServoBench bench("vertical-axis");
  bench.PassMs(1000);
  EXPECT_NEAR(bench.Position(), 0, 40) << "held";
  EXPECT_NEAR(bench.Motor.CurrentA(), 0.4 / 0.5, 0.1);
  bench.Load({});
  bench.Command(Reg::PositionCommand, 1, 1000);
  EXPECT_NEAR(bench.Rpm(), 300, 5);
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
    for (const Reg reg : {Reg::PositionKi, Reg::LowPositionKi}) bench.Write(reg, ki);
    bench.Load({});
    bench.Command(Reg::PositionCommand, 2, 6000);
    Samples errors;
    for (int i = 0; i < 5000; ++i) {
      bench.PassMs(1);
      errors.push_back(bench.Motor.PositionErrorPulses());
    }
    return SpreadOf(errors);
  };
  EXPECT_GE(wandersPulses("sticky-slide", 800), 3);
  EXPECT_LE(wandersPulses("sticky-slide", 0), 1);
  EXPECT_LE(wandersPulses("screw-table", 800), 2);
}

TEST(ServoMotors, ConstantsTakeNoNonsense) {
  MotorPreset preset;
  for (const char* bad : {"", "inertia", "inertia=0", "noise=-1", "noise=nan", "noise=1x", "mass=1",
                          "inertia (kg m2)=1"}) {
    EXPECT_FALSE(SetMotorField(preset, bad)) << bad;
  }
}

}  // namespace
}  // namespace gainsmith::sim
