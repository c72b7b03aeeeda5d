// Frames of the serial line as the drive sees them: requests of eight bytes, replies, checksum.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace gainsmith::sim {

// A request whose checksum was right. Value is the number of registers of a read, or the value of
// a write.
struct Request {
  std::uint8_t Address = 0;
  std::uint8_t Function = 0;
  std::uint16_t Register = 0;
  std::uint16_t Value = 0;
  bool operator==(const Request&) const = default;
};

constexpr std::uint8_t ReadFunction = 3;
constexpr std::uint8_t WriteFunction = 6;
constexpr std::size_t RequestLength = 8;

// Why a request was refused: the second byte of an exception reply.
enum class Refusal : std::uint8_t { IllegalFunction = 1, IllegalRegister = 2, IllegalValue = 3 };

// CRC-16/MODBUS over any number of bytes; on the line its low byte goes first.
std::uint16_t Crc16(std::span<const std::uint8_t> bytes);

// Appends the checksum of the bytes so far.
void Seal(std::vector<std::uint8_t>& frame);

// Whether the last two bytes are the checksum of those before them. False below three bytes.
bool IsSealed(std::span<const std::uint8_t> frame);

// Whole frames, sealed.
std::vector<std::uint8_t> RequestFrame(const Request& request);
std::vector<std::uint8_t> ReadReply(const Request& request, std::span<const std::uint16_t> words);
std::vector<std::uint8_t> WriteReply(const Request& request);
std::vector<std::uint8_t> RefusalReply(const Request& request, Refusal refusal);

}  // namespace gainsmith::sim
