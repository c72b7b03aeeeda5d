// Finds requests in a stream of bytes, fed one at a time: split, merged or wrapped in noise.
#include "simulator/wire/frame_feeder.h"

namespace gainsmith::sim {

std::optional<Request> FrameFeeder::Feed(std::uint8_t byte, TimeUs at) {
  if (at - lastAt_ > gapUs_) {
    if (expected_) spoilt_ = window_;
    Clear();
  }
  lastAt_ = at;
  if (window_.size() == RequestLength) window_.erase(window_.begin());
  window_.push_back(byte);
  if (window_.size() < RequestLength) return std::nullopt;
  if (!IsSealed(window_)) {
    if (std::exchange(expected_, false)) spoilt_ = window_;
    return std::nullopt;
  }

  const auto word = [this](std::size_t offset) {
    return static_cast<std::uint16_t>(window_[offset] * 256 + window_[offset + 1]);
  };
  const Request request{window_[0], window_[1], word(2), word(4)};
  Clear();
  return request;
}

}  // namespace gainsmith::sim
