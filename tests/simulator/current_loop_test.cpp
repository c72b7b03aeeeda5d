// The current step as the drive records it, against its gains.
#include "simulator/current_loop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "simulator/factory_values.h"
#include "simulator/servo.h"

namespace gainsmith::sim {
namespace {

constexpr int ReferenceCounts = 512;  // 0.5 A

class CurrentStepTest : public testing::Test {
 protected:
  std::vector<int> Run(std::uint16_t kp, std::uint16_t ki) {
    Write(Reg::CurrentKp, kp);
    Write(Reg::CurrentKi, ki);
    Write(Reg::TestCurrent, ReferenceCounts);
    Write(Reg::CurrentStep, 1);
    now_ += 50'000;
    servo_.Advance(now_);
    std::vector<int> samples;
    for (int i = 0; i < 200; ++i) samples.push_back(servo_.Sample(i));
    return samples;
  }
  std::vector<int> RunFactory() {
    const RegisterBank factory = FactoryValues();
    return Run(factory[Reg::CurrentKp], factory[Reg::CurrentKi]);
  }
  void Write(Reg reg, std::uint16_t value) {
    registers_[reg] = value;
    servo_.Write(reg, value, now_);
  }

  static int Peak(const std::vector<int>& samples) {
    return *std::max_element(samples.begin(), samples.end());
  }
  static int FirstAbove(const std::vector<int>& samples, int counts) {
    const auto found = std::find_if(samples.begin(), samples.end(),
                                    [counts](int sample) { return sample > counts; });
    return static_cast<int>(found - samples.begin());
  }
  // The first sample from which on all stay within `bandCounts` of the reference.
  static int SettledAt(const std::vector<int>& samples, int bandCounts) {
    int settled = static_cast<int>(samples.size());
    while (settled > 0 && std::abs(samples[static_cast<std::size_t>(settled) - 1] -
                                   ReferenceCounts) <= bandCounts) {
      --settled;
    }
    return settled;
  }

  RegisterBank registers_ = FactoryValues();
  std::vector<DriveError> errors_;
  TimeUs now_ = 0;
  Servo servo_{registers_, [this](DriveError error) { errors_.push_back(error); },
               MotorPresets().front(), 1};
};

TEST_F(CurrentStepTest, FactoryGainsRiseFastOvershootLittleAndSettle) {
  const std::vector<int> samples = RunFactory();
  EXPECT_LE(std::abs(samples[0]), 2);
  EXPECT_LT(FirstAbove(samples, ReferenceCounts * 9 / 10), 30);
  EXPECT_GT(FirstAbove(samples, ReferenceCounts * 9 / 10), 5) << "too steep to be seen";
  EXPECT_LT(Peak(samples), ReferenceCounts * 110 / 100);
  EXPECT_LT(SettledAt(samples, ReferenceCounts * 2 / 100), 60);
  EXPECT_TRUE(errors_.empty());
}

TEST_F(CurrentStepTest, OvershootGrowsWithTheIntegralGain) {
  const RegisterBank factory = FactoryValues();
  const std::uint16_t kp = factory[Reg::CurrentKp];
  const auto ki = factory[Reg::CurrentKi];
  int last = Peak(Run(kp, ki));
  for (const int factor : {2, 4, 8}) {
    const int peak = Peak(Run(kp, static_cast<std::uint16_t>(ki * factor)));
    EXPECT_GT(peak, last + ReferenceCounts / 50) << "Ki x " << factor;
    last = peak;
  }
}

TEST_F(CurrentStepTest, LowProportionalGainIsSlowAndWithoutIntegralFallsShort) {
  const RegisterBank factory = FactoryValues();
  const auto kp = factory[Reg::CurrentKp];
  const int factoryRise = FirstAbove(RunFactory(), ReferenceCounts / 2);
  const std::vector<int> slow = Run(static_cast<std::uint16_t>(kp / 8), 0);
  EXPECT_GT(FirstAbove(slow, Peak(slow) / 2), factoryRise);
  EXPECT_LT(Peak(slow), ReferenceCounts * 8 / 10);
}

TEST_F(CurrentStepTest, ProportionalGainTenTimesTooHighRings) {
  const std::vector<int> samples =
      Run(static_cast<std::uint16_t>(FactoryValues()[Reg::CurrentKp] * 10), 0);
  int crossings = 0;
  for (std::size_t i = 1; i < samples.size(); ++i) {
    if ((samples[i] > ReferenceCounts) != (samples[i - 1] > ReferenceCounts)) ++crossings;
  }
  EXPECT_GT(crossings, 20);
}

TEST_F(CurrentStepTest, CurrentBeyondTheLimitIsAnOverCurrentError) {
  Write(Reg::PeakCurrent, 20);  // 0.2 A
  RunFactory();
  EXPECT_EQ(errors_, std::vector<DriveError>{DriveError::OverCurrent});
  EXPECT_EQ(servo_.CurrentA(), 0.0);
}

TEST_F(CurrentStepTest, HoldsTheCurrentUntilTheTestIsEnded) {
  RunFactory();
  EXPECT_NEAR(servo_.CurrentA(), 0.5, 0.01);
  Write(Reg::CurrentStep, 0);
  EXPECT_EQ(servo_.CurrentA(), 0.0);
  EXPECT_GT(servo_.Sample(199), 0) << "the picture stays in the memory";
}

}  // namespace
}  // namespace gainsmith::sim
