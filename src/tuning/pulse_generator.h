// The drive's pulse generator: from what a user types to the words of its registers, and how long
// a test will take. All lengths are motor pulses; the electronic gear plays no part.
#pragma once

namespace gainsmith {

// Units in which a window's words count. Speed: rpm * counts / SpeedDivisor. Acceleration, in
// r/s/s: accel * counts / AccelFirst / AccelSecond.
struct GeneratorUnits {
  double SpeedDivisor;
  double AccelFirst;
  double AccelSecond;
};
// The speed word counts 20 pulses per second, the acceleration word 40000 pulses per second
// squared.
constexpr GeneratorUnits PositionUnits{1200, 2000, 20};
// 50 pulses per second, and 250000 pulses per second squared.
constexpr GeneratorUnits VelocityUnits{3000, 5000, 50};

// `counts` are the pulses per motor revolution. Nothing is checked: what the wire takes is a word
// of 0 to 65535, rounded when it is packed.
float SpeedWord(double rpm, float counts, double divisor);
float AccelWord(double accel, float counts, double first, double second);

// The largest whole speed or acceleration whose word fits the wire, with `unitsPerWord` for one
// count a revolution.
double LargestFor(double unitsPerWord, float counts);

// The largest length (pulses or ms) that the two words of the tests take, and the largest interval
// or number of repeats.
constexpr double LargestLength = 2147483647;
constexpr double LargestCount = 32767;

struct LengthWords {
  float High;
  float Low;
};

// The two words of a length from 0 to LargestLength. The high word comes from the whole number
// nearest to it, the low word from the number as it is: 65535.6 gives 1 and -0.4.
LengthWords SplitLength(double number);

// How long a velocity test takes, in ms: two runs for each repeat, each followed by the interval.
float VelocityTestTime(float runningMs, float intervalMs, float repeats);

// How long a position test takes, in seconds: two moves for each repeat, each followed by the
// pause. Speed in r/s and acceleration in r/s/s, both above 0; length in revolutions, pause in s.
// A move too short to reach its speed comes out shorter than it is.
float PositionTestTime(float speed, float accel, float length, float repeats, float pause);

}  // namespace gainsmith
