// The pulse generator's profile for itself, without an axis that follows it.
#include "simulator/servo/pulse_generator.h"

#include <gtest/gtest.h>

#include "support/moves_by_hand.h"

namespace gainsmith::sim {
namespace {

TEST(PositionProfile, MovesAsWorkedOutByHand) {
  for (const test::MoveByHand& move : test::MovesByHand()) {
    PositionProfile profile({.Acceleration = static_cast<double>(move.Words.Acceleration),
                             .Speed = static_cast<double>(move.Words.Speed),
                             .Length = static_cast<double>(move.Words.Length),
                             .Repeats = 3,
                             .Pause = move.Words.Pause});
    int tick = 0;
    double position = 0;
    for (const auto& [atTick, expected] : move.Positions) {
      for (; tick < atTick; ++tick) position = profile.Tick(false).PositionPulses;
      EXPECT_EQ(position, expected) << move.Name << ", tick " << tick;
    }
  }
}

}  // namespace
}  // namespace gainsmith::sim
