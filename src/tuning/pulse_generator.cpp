#include "tuning/pulse_generator.h"

#include <cassert>
#include <cmath>

#include "link/frames.h"
#include "platform/number_text.h"

namespace gainsmith {
namespace {

float Stored(double value) { return static_cast<float>(value); }

}  // namespace

float SpeedWord(double rpm, float counts, double divisor) { return Stored(rpm * counts / divisor); }

float AccelWord(double accel, float counts, double first, double second) {
  return Stored(accel * counts / first / second);
}

double LargestFor(double unitsPerWord, float counts) {
  return std::floor(LargestWord * unitsPerWord / counts);
}

LengthWords SplitLength(double number) {
  constexpr double WordRange = 65536;
  const double whole = RoundHalfToEven(number);
  assert(whole >= 0 && whole <= LargestLength);
  const double high = std::trunc(whole / WordRange);
  return {Stored(high), Stored(number - high * WordRange)};
}

float VelocityTestTime(float runningMs, float intervalMs, float repeats) {
  return Stored(2 * (static_cast<double>(runningMs) + intervalMs) * repeats);
}

float PositionTestTime(float speed, float accel, float length, float repeats, float pause) {
  // Each value is kept in 32 bits before the next one uses it.
  const float ramp = Stored(static_cast<double>(speed) / accel);
  const float cruise = Stored((length - static_cast<double>(ramp) * speed) / speed);
  const float move = Stored(static_cast<double>(ramp) + ramp + cruise);
  return Stored((static_cast<double>(move) + pause) * 2 * repeats);
}

}  // namespace gainsmith
