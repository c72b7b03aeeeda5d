// Finds requests in a stream of bytes, fed one at a time: split, merged or wrapped in noise.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "simulator/bank/sim_time.h"
#include "simulator/wire/modbus_frame.h"

namespace gainsmith::sim {

// Every request is eight bytes long, so the feeder looks at the last eight: when their checksum is
// right they are a request, whatever stood before them. Of noise and of frames with a bad checksum
// the beginning is kept for those who ask. Bytes further apart than the gap never belong to one
// request. The gap is far longer than the 3.5 characters of the textbook, as the host sends byte by
// byte and may be held up between two of them.
class FrameFeeder {
 public:
  static constexpr TimeUs DefaultGapUs = 100'000;

  explicit FrameFeeder(TimeUs gapUs = DefaultGapUs) : gapUs_(gapUs) {}

  // Takes one byte that was complete at the time given; times never go back. Gives the request that
  // the byte completed, for any device address.
  std::optional<Request> Feed(std::uint8_t byte, TimeUs at);

  // The bytes that should have been a request and were not, eight at most, each time one was
  // expected: after a request or a gap. Empty when there are none since the last call.
  std::vector<std::uint8_t> TakeSpoilt() { return std::exchange(spoilt_, {}); }

  // Forgets a request begun.
  void Clear() {
    window_.clear();
    expected_ = true;
  }

 private:
  TimeUs gapUs_;
  TimeUs lastAt_ = 0;
  std::vector<std::uint8_t> window_;
  std::vector<std::uint8_t> spoilt_;
  bool expected_ = true;
};

}  // namespace gainsmith::sim
