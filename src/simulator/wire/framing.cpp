// What a receiver makes of characters that were sent at another speed than its own.
#include "simulator/wire/framing.h"

#include <cmath>

namespace gainsmith::sim {

namespace {

// The line's level at a time in bits of its sender: a start bit is low, a quiet line high.
bool IsHigh(std::span<const std::uint8_t> bytes, double atBits) {
  const auto bit = static_cast<std::size_t>(atBits);
  if (bit >= bytes.size() * BitsPerCharacter) return true;
  const std::size_t place = bit % BitsPerCharacter;
  if (place == 0) return false;
  return place > 8 || ((bytes[bit / BitsPerCharacter] >> (place - 1)) & 1) != 0;
}

}  // namespace

std::vector<std::uint8_t> Reframe(std::span<const std::uint8_t> bytes, int fromBaud, int toBaud) {
  if (fromBaud == toBaud) return {bytes.begin(), bytes.end()};
  std::vector<std::uint8_t> received;
  const double bitLength = static_cast<double>(fromBaud) / toBaud;
  const auto end = static_cast<double>(bytes.size() * BitsPerCharacter);
  double at = 0.0;
  const auto passWhile = [&](bool high) {
    while (at < end && IsHigh(bytes, at) == high) at = std::floor(at) + 1.0;
  };
  for (passWhile(true); at < end; passWhile(true)) {
    std::uint8_t byte = 0;
    for (int i = 0; i < 8; ++i) {
      if (IsHigh(bytes, at + (1.5 + i) * bitLength)) byte |= static_cast<std::uint8_t>(1U << i);
    }
    received.push_back(byte);
    at += 9.5 * bitLength;
    passWhile(false);
  }
  return received;
}

}  // namespace gainsmith::sim
