// Finds requests in a stream of bytes, fed one at a time: split, merged or wrapped in noise.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/bank/sim_time.h"
#include "simulator/wire/modbus_frame.h"

namespace gainsmith::sim {

// Every request is eight bytes long, so the feeder looks at the last eight: when their checksum is
// right they are a request, whatever stood before them. Noise and frames with a bad checksum pass
// without a word. Bytes further apart than the gap never belong to one request. The gap is far
// longer than the 3.5 characters of the textbook, as the host sends byte by byte and may be held up
// between two of them.
class FrameFeeder {
 public:
  static constexpr TimeUs DefaultGapUs = 100'000;

  explicit FrameFeeder(TimeUs gapUs = DefaultGapUs) : gapUs_(gapUs) {}

  // Takes one byte that was complete at the time given; times never go back. Gives the request that
  // the byte completed, for any device address.
  std::optional<Request> Feed(std::uint8_t byte, TimeUs at);

  // Forgets a request begun.
  void Clear() { window_.clear(); }

 private:
  TimeUs gapUs_;
  TimeUs lastAt_ = 0;
  std::vector<std::uint8_t> window_;
};

}  // namespace gainsmith::sim
