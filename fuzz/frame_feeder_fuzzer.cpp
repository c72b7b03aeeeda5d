// Noise, requests and pauses on the drive's line, in any order.
#include <deque>
#include <vector>

#include "fuzzer.h"
#include "simulator/wire/frame_feeder.h"

namespace gainsmith::fuzz {
namespace {

constexpr std::size_t WholeRequest = sim::RequestLength;

// Feeds a feeder, and remembers what may still belong to a request.
class Line {
 public:
  // Puts one byte on the line and checks what the feeder makes of it.
  void Put(std::uint8_t byte) {
    if (nowUs_ - lastUs_ > sim::FrameFeeder::DefaultGapUs) recent_.clear();
    lastUs_ = nowUs_;
    recent_.push_back(byte);
    if (recent_.size() > WholeRequest) recent_.pop_front();
    const std::optional<sim::Request> request = feeder_.Feed(byte, nowUs_);
    const std::vector<std::uint8_t> bytes(recent_.begin(), recent_.end());
    const bool whole = bytes.size() == WholeRequest && sim::IsSealed(bytes);
    Require(request.has_value() == whole, "the last eight bytes are a request, or none is told");
    if (!request) return;
    Require(sim::RequestFrame(*request) == bytes, "the request is the bytes");
    recent_.clear();
  }
  void Pause(sim::TimeUs forUs) { nowUs_ += forUs; }
  void Clear() {
    feeder_.Clear();
    recent_.clear();
  }

 private:
  sim::FrameFeeder feeder_;
  sim::TimeUs nowUs_ = 0;
  sim::TimeUs lastUs_ = 0;
  std::deque<std::uint8_t> recent_;
};

void PutRequest(Line& line, FuzzedDataProvider& input) {
  const sim::Request request{
      input.ConsumeIntegral<std::uint8_t>(), input.ConsumeIntegral<std::uint8_t>(),
      input.ConsumeIntegral<std::uint16_t>(), input.ConsumeIntegral<std::uint16_t>()};
  for (const std::uint8_t byte : sim::RequestFrame(request)) line.Put(byte);
}

void CheckLine(FuzzedDataProvider& input) {
  enum Action { Noise, WholeFrame, ShortPause, LongPause, Cleared, Last = Cleared };
  Line line;
  while (input.remaining_bytes() > 0) {
    switch (input.ConsumeIntegralInRange<int>(0, Last)) {
      case WholeFrame:
        PutRequest(line, input);
        break;
      case ShortPause:
        line.Pause(input.ConsumeIntegralInRange<int>(0, 30'000));
        break;
      case LongPause:
        line.Pause(sim::FrameFeeder::DefaultGapUs + 1);
        break;
      case Cleared:
        line.Clear();
        break;
      default:
        line.Put(input.ConsumeIntegral<std::uint8_t>());
    }
  }
}

}  // namespace
}  // namespace gainsmith::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  FuzzedDataProvider input(bytes, count);
  gainsmith::fuzz::CheckLine(input);
  return 0;
}
