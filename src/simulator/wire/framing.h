// What a receiver makes of characters that were sent at another speed than its own.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace gainsmith::sim {

// A start bit, eight data bits and two stop bits.
inline constexpr int BitsPerCharacter = 11;

// Characters sent without a pause at `fromBaud`
// and read at `toBaud`: at each falling edge a character begins, whose bits are taken in their
// middles, and one that lacks its stop bit is handed on like any other. With equal rates the bytes
// are what they were. Rates are above 0.
std::vector<std::uint8_t> Reframe(std::span<const std::uint8_t> bytes, int fromBaud, int toBaud);

}  // namespace gainsmith::sim
