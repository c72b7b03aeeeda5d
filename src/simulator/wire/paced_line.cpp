// The drive's side of the serial line: when a byte has arrived, and when a reply has left.
#include "simulator/wire/paced_line.h"

#include <algorithm>

#include "simulator/wire/framing.h"

namespace gainsmith::sim {

std::size_t PacedLine::CharactersIn(TimeUs duration) const {
  return static_cast<std::size_t>(duration * baud_ / (BitsPerCharacter * 1'000'000));
}

TimeUs PacedLine::CharactersUs(std::size_t count) const {
  if (!paced_) return 0;
  const TimeUs bitsUs = static_cast<TimeUs>(count) * BitsPerCharacter * 1'000'000;
  return (bitsUs + baud_ - 1) / baud_;
}

std::optional<TimeUs> PacedLine::Arrival(TimeUs now) {
  if (paced_ && inFreeAt_ - now >= CharactersUs(MostWaiting)) return std::nullopt;
  inFreeAt_ = std::max(now, inFreeAt_) + CharactersUs(1);
  return inFreeAt_;
}

void PacedLine::Send(std::span<const std::uint8_t> bytes, TimeUs earliest) {
  const TimeUs start = std::max(earliest, outFreeAt_);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    queue_.push_back({bytes[i], start + CharactersUs(i + 1)});
  }
  outFreeAt_ = start + CharactersUs(bytes.size());
}

std::vector<std::uint8_t> PacedLine::Take(TimeUs now) {
  std::vector<std::uint8_t> bytes;
  while (!queue_.empty() && queue_.front().LeftAt <= now) {
    bytes.push_back(queue_.front().Byte);
    queue_.pop_front();
  }
  return bytes;
}

std::optional<TimeUs> PacedLine::NextAt() const {
  if (queue_.empty()) return std::nullopt;
  return queue_.front().LeftAt;
}

void PacedLine::Clear() {
  queue_.clear();
  inFreeAt_ = 0;
  outFreeAt_ = 0;
}

}  // namespace gainsmith::sim
