// Frames of the serial line as the drive sees them: requests of eight bytes, replies, checksum.
#include "simulator/wire/modbus_frame.h"

namespace gainsmith::sim {

namespace {

void AppendWord(std::vector<std::uint8_t>& frame, std::uint16_t word) {
  frame.push_back(static_cast<std::uint8_t>(word >> 8));
  frame.push_back(static_cast<std::uint8_t>(word & 0xFF));
}

}  // namespace

std::uint16_t Crc16(std::span<const std::uint8_t> bytes) {
  unsigned crc = 0xFFFF;
  for (const std::uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xA001 : crc >> 1;
  }
  return static_cast<std::uint16_t>(crc);
}

void Seal(std::vector<std::uint8_t>& frame) {
  const std::uint16_t crc = Crc16(frame);
  frame.push_back(static_cast<std::uint8_t>(crc & 0xFF));
  frame.push_back(static_cast<std::uint8_t>(crc >> 8));
}

bool IsSealed(std::span<const std::uint8_t> frame) {
  if (frame.size() < 3) return false;
  const std::uint16_t crc = Crc16(frame.first(frame.size() - 2));
  return frame[frame.size() - 2] == (crc & 0xFF) && frame[frame.size() - 1] == crc >> 8;
}

std::vector<std::uint8_t> RequestFrame(const Request& request) {
  std::vector<std::uint8_t> frame{request.Address, request.Function};
  AppendWord(frame, request.Register);
  AppendWord(frame, request.Value);
  Seal(frame);
  return frame;
}

std::vector<std::uint8_t> ReadReply(const Request& request, std::span<const std::uint16_t> words) {
  std::vector<std::uint8_t> frame{request.Address, request.Function,
                                  static_cast<std::uint8_t>(words.size() * 2)};
  for (const std::uint16_t word : words) AppendWord(frame, word);
  Seal(frame);
  return frame;
}

std::vector<std::uint8_t> WriteReply(const Request& request) { return RequestFrame(request); }

std::vector<std::uint8_t> RefusalReply(const Request& request, Refusal refusal) {
  std::vector<std::uint8_t> frame{request.Address,
                                  static_cast<std::uint8_t>(request.Function | 0x80),
                                  static_cast<std::uint8_t>(refusal)};
  Seal(frame);
  return frame;
}

}  // namespace gainsmith::sim
