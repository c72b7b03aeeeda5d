// The pulse generator's arithmetic, at its edges.
#include "tuning/pulse_generator.h"

#include <gtest/gtest.h>

namespace gainsmith {
namespace {

TEST(PulseGenerator, ALengthIsSplitAsTyped) {
  const struct {
    double Number;
    float High;
    float Low;
  } cases[] = {
      {40000, 0, 40000},   {65535.4, 0, 65535.4F}, {65535.5, 1, -0.5F},  // a tie, and 65536 is even
      {65535.6, 1, -0.4F}, {65536, 1, 0},          {2147483647, 32767, 65535},
  };
  for (const auto& c : cases) {
    const LengthWords words = SplitLength(c.Number);
    EXPECT_EQ(words.High, c.High) << c.Number;
    EXPECT_FLOAT_EQ(words.Low, c.Low) << c.Number;
  }
}

TEST(PulseGenerator, TestTimes) {
  EXPECT_EQ(VelocityTestTime(2000, 100, 1), 4200);
  EXPECT_EQ(VelocityTestTime(2000, 100, 5), 21000);
  EXPECT_EQ(PositionTestTime(5, 200, 10, 1, 0.1F) * 1000, 4250);
  // Velocity 300, acceleration 10, one revolution: too short to reach the speed, a move of 0.7 s.
  EXPECT_FLOAT_EQ(PositionTestTime(5, 10, 1, 1, 0), 1.4F);
  EXPECT_FLOAT_EQ(PositionTestTime(5, 10, 1, 3, 0.5F), 7.2F);
}

}  // namespace
}  // namespace gainsmith
