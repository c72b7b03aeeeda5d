// A host on the other end of the simulated drive's line, in virtual time.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/simulated_drive.h"

namespace gainsmith::sim {

using Bytes = std::vector<std::uint8_t>;

// Sends requests the way the tool does, a byte every two milliseconds, and jumps from one byte of
// the reply to the next.
class DriveHost {
 public:
  explicit DriveHost(SimulatedDrive& drive) : drive_(drive) {}

  TimeUs Now = 0;
  TimeUs SentAt = 0;     // when the last byte of the last request was handed over
  TimeUs RepliedAt = 0;  // when the last byte of the last reply was there

  void Send(const Bytes& bytes) {
    for (const std::uint8_t byte : bytes) {
      Now += 2'000;
      drive_.Receive(byte, Now);
    }
    SentAt = Now;
  }

  // All bytes that come within the time given; empty for silence.
  Bytes Listen(TimeUs forUs = 1'000'000) {
    const TimeUs deadline = Now + forUs;
    Bytes reply;
    while (drive_.NextTransmitAt() && *drive_.NextTransmitAt() <= deadline) {
      RepliedAt = *drive_.NextTransmitAt();
      Now = std::max(Now, RepliedAt);
      for (const std::uint8_t byte : drive_.Transmit(Now)) reply.push_back(byte);
    }
    return reply;
  }

  Bytes Ask(std::uint8_t function, std::uint16_t reg, std::uint16_t value,
            std::uint8_t address = 1) {
    Send(RequestFrame({address, function, reg, value}));
    return Listen();
  }

  // The words of a read; empty when the reply is not a good one.
  std::vector<std::uint16_t> Read(std::uint16_t reg, std::uint16_t count = 1) {
    const Bytes reply = Ask(ReadFunction, reg, count);
    std::vector<std::uint16_t> words;
    if (reply.size() != 5U + 2U * count || !IsSealed(reply)) return words;
    for (std::size_t i = 3; i + 2 < reply.size(); i += 2) {
      words.push_back(static_cast<std::uint16_t>(reply[i] * 256 + reply[i + 1]));
    }
    return words;
  }

  // Whether the write was echoed to the byte.
  bool Write(Reg reg, std::uint16_t value) {
    const Request request{1, WriteFunction, static_cast<std::uint16_t>(reg), value};
    Send(RequestFrame(request));
    return Listen() == RequestFrame(request);
  }

 private:
  SimulatedDrive& drive_;
};

}  // namespace gainsmith::sim
