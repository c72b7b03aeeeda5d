// A simulated drive and the host on the other end of its line, in virtual time.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/simulated_drive.h"

namespace gainsmith::sim {

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;

inline Bytes Sealed(Bytes frame) {
  Seal(frame);
  return frame;
}

// Sends requests the way the tool does, a byte every two milliseconds, and jumps from one byte of
// the reply to the next.
class DriveHost {
 public:
  explicit DriveHost(DriveOptions options = {}) : Drive(std::move(options)) {}

  SimulatedDrive Drive;
  TimeUs Now = 0;
  TimeUs SentAt = 0;     // when the last byte of the last request was handed over
  TimeUs RepliedAt = 0;  // when the last byte of the last reply was there

  void Send(const Bytes& bytes, TimeUs apartUs = 2'000) {
    for (const std::uint8_t byte : bytes) {
      Now += apartUs;
      Drive.Receive(byte, Now);
    }
    SentAt = Now;
  }

  // All bytes that come within a second; empty for silence.
  Bytes Listen() {
    const TimeUs deadline = Now + 1'000'000;
    Bytes reply;
    while (Drive.NextTransmitAt() && *Drive.NextTransmitAt() <= deadline) {
      RepliedAt = *Drive.NextTransmitAt();
      Now = std::max(Now, RepliedAt);
      for (const std::uint8_t byte : Drive.Transmit(Now)) reply.push_back(byte);
    }
    return reply;
  }

  Bytes Ask(const Request& request) {
    Send(RequestFrame(request));
    return Listen();
  }

  // The words of a read; empty when the reply is not a good one.
  Words Read(std::uint16_t reg, std::uint16_t count = 1) {
    const Bytes reply = Ask({1, ReadFunction, reg, count});
    Words words;
    if (reply.size() != 5U + 2U * count || !IsSealed(reply)) return words;
    for (std::size_t i = 3; i + 2 < reply.size(); i += 2) {
      words.push_back(static_cast<std::uint16_t>(reply[i] * 256 + reply[i + 1]));
    }
    return words;
  }

  // Whether the write was echoed to the byte.
  bool Write(Reg reg, std::uint16_t value) {
    const Request request{1, WriteFunction, static_cast<std::uint16_t>(reg), value};
    return Ask(request) == RequestFrame(request);
  }

  void Pass(TimeUs durationUs) {
    Now += durationUs;
    Drive.Advance(Now);
  }
};

}  // namespace gainsmith::sim
