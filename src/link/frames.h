// Frames: the byte layouts of requests and replies, their checksum and their checks.
//
// Modbus RTU with two functions. A request has 8 bytes: address, function, register (high byte
// first), value (high byte first), CRC (low byte first). A reply to a read has 5 + 2 x count bytes:
// address, function, byte count, the registers (high byte first), CRC. A reply to a write echoes
// the request. Pure functions: no port, no clock.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "link/registers.h"

namespace gainsmith {

enum class Function : std::uint8_t { Read = 3, Write = 6 };

struct Crc16 {
  std::uint8_t Low = 0;
  std::uint8_t High = 0;
  bool operator==(const Crc16&) const = default;
};

using Request = std::array<std::uint8_t, 8>;
using RequestHeader = std::array<std::uint8_t, 6>;

// CRC-16/MODBUS: reflected polynomial A001 hexadecimal, initial value FFFF hexadecimal.
Crc16 CalcCrc16(std::span<const std::uint8_t> bytes);

constexpr double LargestWord = 65535;

// The whole number that `value` packs as (nearest, ties to even); nothing when that is below 0 or
// above LargestWord, or `value` is not a number.
std::optional<std::uint16_t> PackWord(float value);

// The request frame. For a read `value` is the count of registers. Nothing when the value cannot
// be packed.
std::optional<Request> BuildRequest(std::uint8_t address, Function function, Register reg,
                                    float value);

// Bytes of the reply to a request that could be built: 5 + 2 x value, or 8.
int ReplyLength(Function function, float value);

enum class ReplyFault { None, NotOurs, WrongCrc, WrongCount, WrongEcho };

// The checks of a reply, in the order of ReplyFault; the first that fails is the result. `request`
// is the header of the request; `count` matters for a read only. A reply too short to hold what is
// looked at is not ours.
ReplyFault CheckReply(std::span<const std::uint8_t> reply, std::uint8_t address, Function function,
                      const RequestHeader& request, int count);

// Register `index` of a read reply that passed its checks, 0 to 65535.
std::uint16_t RawValue(std::span<const std::uint8_t> reply, int index = 0);

// The `count` registers of a read reply that passed its checks, as signed values.
std::vector<float> DecodeRegisters(std::span<const std::uint8_t> reply, int count);

}  // namespace gainsmith
