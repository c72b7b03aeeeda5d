// The drive's side of the serial line: when a byte has arrived, and when a reply has left.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "simulator/bank/sim_time.h"

namespace gainsmith::sim {

// Both directions at once, each with its own time. A character has 11 bits: start, eight data bits,
// two stop bits. A line that is not paced takes no time at all.
class PacedLine {
 public:
  PacedLine(int baud, bool paced) : baud_(baud), paced_(paced) {}

  // Holds for bytes handed over from now on. The rate must be above 0.
  void SetBaud(int baud) { baud_ = baud; }

  // How many characters fill a time; on a line that is not paced, as many as at its rate.
  [[nodiscard]] std::size_t CharactersIn(TimeUs duration) const;

  // When a byte handed to the line now has arrived with its last bit. A pseudo-terminal takes bytes
  // faster than any line: while MostWaiting characters wait for their turn, the byte is lost, as it
  // would be in a full buffer, and nothing is given.
  static constexpr std::size_t MostWaiting = 64;
  std::optional<TimeUs> Arrival(TimeUs now);

  // Queues bytes. The first starts at the earliest time given, or when the bytes before it have
  // left.
  void Send(std::span<const std::uint8_t> bytes, TimeUs earliest);

  // The bytes whose last bit has left by now, in order; they are gone from the queue.
  std::vector<std::uint8_t> Take(TimeUs now);

  // When the next byte will have left, or nothing when none is queued.
  [[nodiscard]] std::optional<TimeUs> NextAt() const;
  // When all that is queued will have left. Only while something is queued.
  [[nodiscard]] TimeUs AllAt() const { return queue_.back().LeftAt; }

  // Drops what is queued and forgets what is under way.
  void Clear();

 private:
  struct Outgoing {
    std::uint8_t Byte;
    TimeUs LeftAt;
  };

  // Time of a number of characters, rounded up to whole microseconds once for all of them.
  [[nodiscard]] TimeUs CharactersUs(std::size_t count) const;

  int baud_;
  bool paced_;
  TimeUs inFreeAt_ = 0;
  TimeUs outFreeAt_ = 0;
  std::deque<Outgoing> queue_;
};

}  // namespace gainsmith::sim
