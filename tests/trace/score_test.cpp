// Scores of answers that were worked out by hand.
#include "trace/score.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace gainsmith {
namespace {

using Samples = std::vector<float>;

TEST(Score, ARampIsReadBetweenItsSamples) {
  // 0 to 10 in ten samples of 0.5 ms, then at rest: 10 % lies on sample 1, 90 % on sample 9.
  Samples ramp;
  for (int i = 0; i <= 10; ++i) ramp.push_back(static_cast<float>(i));
  ramp.insert(ramp.end(), 29, 10.0F);
  const StepScore score = ScoreStep(ramp, 0, 10, 0.5);
  EXPECT_DOUBLE_EQ(score.RiseTime.value(), 4);
  EXPECT_DOUBLE_EQ(score.SettlingTime.value(), 5) << "9 is a tenth off, 10 is there";
  EXPECT_DOUBLE_EQ(score.OvershootPercent, 0);
  EXPECT_DOUBLE_EQ(score.SteadyError, 0);
  EXPECT_DOUBLE_EQ(score.Peak, 10);
  // Steps of 4: 1 is crossed a quarter into the first interval, 9 a quarter into the third.
  EXPECT_DOUBLE_EQ(ScoreStep(Samples{0, 4, 8, 12}, 0, 10, 1).RiseTime.value(), 2);
}

TEST(Score, OvershootRingingAndARestOfError) {
  // Up to 14 of 10, down to 9, and in the end at 10.4: 4 % off, within the band from sample 5 on.
  Samples ringing{0, 6, 14, 9, 11, 9.6F, 10.4F};
  ringing.insert(ringing.end(), 33, 10.4F);
  const StepScore score = ScoreStep(ringing, 0, 10, 1);
  EXPECT_NEAR(score.OvershootPercent, 40, 1e-6);
  EXPECT_DOUBLE_EQ(score.SettlingTime.value(), 5);
  EXPECT_NEAR(score.SteadyError, -0.4, 1e-6);
  EXPECT_DOUBLE_EQ(score.Peak, 14);
  EXPECT_NEAR(score.RiseTime.value(), (1 + 3.0 / 8) - 1.0 / 6, 1e-9);
  ringing.back() = 10.6F;
  EXPECT_FALSE(ScoreStep(ringing, 0, 10, 1).SettlingTime) << "it leaves the band at the very end";
}

TEST(Score, AFirstOrderLagRisesInLogOfNineTimeConstants) {
  constexpr double Tau = 20;
  Samples lag;
  for (int i = 0; i < 200; ++i) lag.push_back(static_cast<float>(3 * (1 - std::exp(-i / Tau))));
  const StepScore score = ScoreStep(lag, 0, 3, 0.25);
  EXPECT_NEAR(score.RiseTime.value(), 0.25 * Tau * std::log(9), 0.02);
  EXPECT_DOUBLE_EQ(score.SettlingTime.value(), 0.25 * std::ceil(Tau * std::log(20)));
}

// A step down, or from another place than 0, is the same step.
TEST(Score, TurnedAndMovedStepsScoreAlike) {
  const Samples up{0, 3, 8, 12, 10, 10};
  const StepScore expected = ScoreStep(up, 0, 10, 1);
  for (const double sign : {1.0, -1.0}) {
    Samples moved;
    for (const float value : up) moved.push_back(static_cast<float>(50 + sign * value));
    const StepScore score = ScoreStep(moved, 50, 50 + sign * 10, 1);
    EXPECT_EQ(score.RiseTime, expected.RiseTime);
    EXPECT_EQ(score.SettlingTime, expected.SettlingTime);
    EXPECT_DOUBLE_EQ(score.OvershootPercent, expected.OvershootPercent);
    EXPECT_DOUBLE_EQ(score.SteadyError, sign * expected.SteadyError);
  }
}

TEST(Score, AnAnswerThatNeverArrivesHasNoTimes) {
  const StepScore score = ScoreStep(Samples(20, 4.0F), 0, 10, 1);
  EXPECT_FALSE(score.RiseTime);
  EXPECT_FALSE(score.SettlingTime);
  EXPECT_DOUBLE_EQ(score.SteadyError, 6);
  EXPECT_DOUBLE_EQ(ScoreStep(Samples{-7}, 0, 10, 1).Peak, 7);
}

struct Move {
  // Rests on samples 0 to 2, moves until 6, rests until 11, moves back.
  Samples Reference{0, 0, 0, 5, 15, 25, 30, 30, 30, 30, 30, 30, 25, 15};
  Samples Error{90, 0, 0, 3, 4, -12, 5, 13, -11, 9, -10, 2, 80, 70};
};

TEST(Score, AMoveIsScoredUntilTheNextBegins) {
  const Move move;
  const auto score = ScoreMove(move.Error, move.Reference, 10, 2);
  ASSERT_TRUE(score);
  EXPECT_DOUBLE_EQ(score->PeakError, 13);
  EXPECT_NEAR(score->RmsError, std::sqrt((0 + 9 + 16 + 144) / 4.0), 1e-9);
  EXPECT_DOUBLE_EQ(score->SettlingTime.value(), 6) << "9 on sample 9, 6 being the profile's end";
}

TEST(Score, AMoveWithoutASettledEnd) {
  Move move;
  move.Error[11] = 10.5F;
  EXPECT_FALSE(ScoreMove(move.Error, move.Reference, 10, 1)->SettlingTime);
  EXPECT_DOUBLE_EQ(ScoreMove(move.Error, move.Reference, 90, 1)->SettlingTime.value(), 0);
  // A recording that ends during the move, and one without any.
  EXPECT_FALSE(ScoreMove(Samples(3, 1), Samples{0, 5, 9}, 10, 1)->SettlingTime);
  EXPECT_FALSE(ScoreMove(Samples(3, 1), Samples{7, 7, 7}, 10, 1));
}

}  // namespace
}  // namespace gainsmith
