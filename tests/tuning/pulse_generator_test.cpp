// The pulse generator's arithmetic: the defaults of both windows, and numbers at the words' edges.
#include "tuning/pulse_generator.h"

#include <gtest/gtest.h>

namespace gainsmith {
namespace {

float Speed(double rpm, const GeneratorUnits& units) {
  return SpeedWord(rpm, 4000, units.SpeedDivisor);
}
float Accel(double accel, const GeneratorUnits& units) {
  return AccelWord(accel, 4000, units.AccelFirst, units.AccelSecond);
}

TEST(PulseGenerator, WordsOfBothWindows) {
  EXPECT_EQ(Speed(300, PositionUnits), 1000);
  EXPECT_EQ(Accel(200, PositionUnits), 20);
  EXPECT_EQ(Speed(300, VelocityUnits), 400);
  EXPECT_EQ(Accel(100, VelocityUnits), 1.6F);
  // Where the windows refuse: a speed word above 65535, an acceleration word not above 1.
  EXPECT_EQ(Speed(19660.5, PositionUnits), 65535);
  EXPECT_GT(Speed(19660.6, PositionUnits), 65535);
  EXPECT_EQ(Accel(655350, PositionUnits), 65535);
  EXPECT_EQ(Accel(62, VelocityUnits), 0.992F);
  EXPECT_EQ(Accel(62.5, VelocityUnits), 1);
  EXPECT_EQ(Accel(63, VelocityUnits), 1.008F);
}

TEST(PulseGenerator, ALengthIsSplitAsTyped) {
  const struct {
    double Number;
    float High;
    float Low;
  } cases[] = {
      {0, 0, 0},
      {40000, 0, 40000},
      {65535, 0, 65535},
      {65535.4, 0, 65535.4F},
      {65535.5, 1, -0.5F},  // a tie, and 65536 is even
      {65535.6, 1, -0.4F},
      {65536, 1, 0},
      {131071.5, 2, -0.5F},
      {16777216, 256, 0},
      {2147483647, 32767, 65535},
  };
  for (const auto& c : cases) {
    const LengthWords words = SplitLength(c.Number);
    EXPECT_EQ(words.High, c.High) << c.Number;
    EXPECT_FLOAT_EQ(words.Low, c.Low) << c.Number;
  }
}

TEST(PulseGenerator, TestTimes) {
  EXPECT_EQ(VelocityTestTime(2000, 100, 1), 4200);
  EXPECT_EQ(VelocityTestTime(1000, 100, 1), 2200);
  EXPECT_EQ(VelocityTestTime(2000, 100, 5), 21000);
  EXPECT_EQ(PositionTestTime(5, 200, 10, 1, 0.1F) * 1000, 4250);
  // Velocity 300, acceleration 10, one revolution: too short to reach the speed, a move of 0.7 s.
  EXPECT_FLOAT_EQ(PositionTestTime(5, 10, 1, 1, 0), 1.4F);
  EXPECT_FLOAT_EQ(PositionTestTime(5, 10, 1, 3, 0.5F), 7.2F);
}

}  // namespace
}  // namespace gainsmith
