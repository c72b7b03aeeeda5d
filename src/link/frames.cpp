// Frames: see the header.
#include "link/frames.h"

#include <cassert>
#include <cmath>

#include "platform/number_text.h"

namespace gainsmith {

Crc16 CalcCrc16(std::span<const std::uint8_t> bytes) {
  constexpr std::uint16_t Polynomial = 0xA001;
  std::uint16_t crc = 0xFFFF;
  for (const std::uint8_t byte : bytes) {
    crc = static_cast<std::uint16_t>(crc ^ byte);
    for (int bit = 0; bit < 8; ++bit) {
      const bool out = (crc & 1U) != 0;
      crc = static_cast<std::uint16_t>(crc >> 1U);
      if (out) crc = static_cast<std::uint16_t>(crc ^ Polynomial);
    }
  }
  return {static_cast<std::uint8_t>(crc & 0xFFU), static_cast<std::uint8_t>(crc >> 8U)};
}

std::optional<std::uint16_t> PackWord(float value) {
  const double rounded = RoundHalfToEven(value);
  if (!(rounded >= 0 && rounded <= LargestWord)) return std::nullopt;
  return static_cast<std::uint16_t>(rounded);
}

std::optional<Request> BuildRequest(std::uint8_t address, Function function, Register reg,
                                    float value) {
  const std::optional<std::uint16_t> word = PackWord(value);
  if (!word) return std::nullopt;
  const auto number = static_cast<std::uint16_t>(reg);
  Request frame{address,
                static_cast<std::uint8_t>(function),
                static_cast<std::uint8_t>(number >> 8U),
                static_cast<std::uint8_t>(number & 0xFFU),
                static_cast<std::uint8_t>(*word >> 8U),
                static_cast<std::uint8_t>(*word & 0xFFU),
                0,
                0};
  const Crc16 crc = CalcCrc16(std::span(frame).first<6>());
  frame[6] = crc.Low;
  frame[7] = crc.High;
  return frame;
}

int ReplyLength(Function function, float value) {
  return function == Function::Read ? 2 * static_cast<int>(RoundHalfToEven(value)) + 5 : 8;
}

ReplyFault CheckReply(std::span<const std::uint8_t> reply, std::uint8_t address, Function function,
                      const RequestHeader& request, int count) {
  if (reply.size() < 5 || reply[0] != address || reply[1] != static_cast<std::uint8_t>(function)) {
    return ReplyFault::NotOurs;
  }
  const std::size_t body = reply.size() - 2;
  if (CalcCrc16(reply.first(body)) != Crc16{reply[body], reply[body + 1]}) {
    return ReplyFault::WrongCrc;
  }
  if (function == Function::Read) {
    const auto expected = static_cast<std::size_t>(count) * 2;
    const bool whole = reply[2] == expected && reply.size() == expected + 5;
    return whole ? ReplyFault::None : ReplyFault::WrongCount;
  }
  for (std::size_t i = 2; i < request.size(); ++i) {
    if (i >= body || reply[i] != request[i]) return ReplyFault::WrongEcho;
  }
  return ReplyFault::None;
}

std::uint16_t RawValue(std::span<const std::uint8_t> reply, int index) {
  const auto offset = static_cast<std::size_t>(3 + 2 * index);
  assert(offset + 1 < reply.size());
  return static_cast<std::uint16_t>(reply[offset] << 8U | reply[offset + 1]);
}

std::vector<float> DecodeRegisters(std::span<const std::uint8_t> reply, int count) {
  std::vector<float> values;
  values.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    values.push_back(static_cast<float>(static_cast<std::int16_t>(RawValue(reply, i))));
  }
  return values;
}

}  // namespace gainsmith
