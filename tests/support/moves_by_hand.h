// Moves of the position test, worked out by hand: what both who run the profile are held against,
// the drive's pulse generator and the tool's reference.
#pragma once

#include <utility>
#include <vector>

namespace gainsmith::test {

struct MoveByHand {
  const char* Name;
  struct {
    int Acceleration, Speed, Length, Pause;
  } Words;
  // Pairs of a tick, counted from 1 for the first that moves, and the position at its end.
  std::vector<std::pair<int, float>> Positions;
};

// With a = acceleration word / 100 and v = speed word / 100, in pulses a tick, D the length and W
// the pause:
//   ramp up    x(n) = a n (n + 1) / 2, until n = m, the first with m a >= v
//   plateau    x(n) = x(m) + v (n - m); its last tick is the first that begins at D - x(m) or
//              beyond
//   ramp down  each tick goes a less than the one before, while x < D and that one went at least
//              a; the next tick stands and is the first of the pause
//   too short  for v: the ramp up ends with the first tick that ends at D / 2 or beyond, and the
//              ramp down follows at once
//   pause      W + 1 ticks
// The way back is the same the other way, towards 0 and with D - x. With the last tick of its pause
// the position is 0, wherever it stood, and the next move begins.
inline const std::vector<MoveByHand>& MovesByHand() {
  static const std::vector<MoveByHand> moves{
      // a = 2, v = 10: m = 5, x(m) = 2 x 5 x 6 / 2 = 30; the plateau comes to 300 - 30 with tick 29
      // and goes on for one more; then 8 + 6 + 4 + 2.
      {"comes to its speed, and back to its start",
       {200, 1000, 300, 10},
       {{1, 2},    {2, 6},    {3, 12},   {4, 20},    {5, 30},   {6, 40},   {17, 150},
        {29, 270}, {30, 280}, {31, 288}, {32, 294},  {33, 298}, {34, 300}, {35, 300},
        {45, 300}, {46, 298}, {47, 294}, {48, 288},  {49, 280}, {50, 270}, {51, 260},
        {63, 140}, {74, 30},  {75, 20},  {76, 12},   {77, 6},   {78, 2},   {79, 0},
        {90, 0},   {91, 2},   {95, 30},  {124, 300}, {194, 120}}},
      // a = 3, v = 10: m = 4, x(m) = 3 x 4 x 5 / 2 = 30, its last tick at 12; the plateau is past
      // 205 - 30 with tick 19; then 7 + 4 + 1: 3 short of D, and 10 short of 0.
      {"has a speed that is no multiple of its acceleration",
       {300, 1000, 205, 4},
       {{1, 3},    {2, 9},    {3, 18},   {4, 30},   {5, 40},   {18, 170}, {19, 180}, {20, 190},
        {21, 197}, {22, 201}, {23, 202}, {24, 202}, {28, 202}, {29, 199}, {30, 193}, {31, 184},
        {32, 172}, {33, 162}, {45, 42},  {46, 32},  {47, 22},  {48, 15},  {49, 11},  {50, 10},
        {51, 10},  {54, 10},  {55, 0},   {56, 3},   {59, 30},  {78, 202}}},
      // a = 2: 2 + 4 + 6 is past 20 / 2; then 4 + 2 + 0: 2 short of D.
      {"is too short for its speed",
       {200, 1000, 20, 3},
       {{1, 2},   {2, 6},   {3, 12},  {4, 16}, {5, 18},  {6, 18}, {7, 18},
        {10, 18}, {11, 16}, {12, 12}, {13, 6}, {14, 2},  {15, 0}, {16, 0},
        {18, 0},  {19, 0},  {20, 2},  {21, 6}, {22, 12}, {24, 18}}},
  };
  return moves;
}

}  // namespace gainsmith::test
