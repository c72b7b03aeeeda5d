#include "trace/capture.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/number_text.h"

namespace gainsmith {
namespace {

// One frame, no resend and no settling wait: the waits for a recording count frames themselves.
const ExchangeOptions OneFrame{.MostFrames = 1, .ClosingWait = false};

}  // namespace

void FillTraceTimes(ComboBox& combo) {
  constexpr int At2000Ms = 12;
  combo.Items.clear();
  for (int divider : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12, 15, 20, 25, 30}) {
    combo.Items.push_back({std::to_string(divider) + "00ms", divider, {}});
  }
  combo.Choose(At2000Ms);
}

RecordingWait TestWait(const TraceState& trace) {
  return {.NotReadyLimit = 17,
          .PauseMs = static_cast<int>(RoundHalfToEven(trace.SampleDivider * 100.0))};
}

RecordingWait AnyAnswerWait() { return {.AnyAnswer = true}; }

RecordingWait ScopeWait(const std::function<bool()>& stop) {
  return {.NotReadyLimit = 802, .StopBefore = stop, .StopAfter = stop};
}

WaitResult WaitForRecording(Link& link, const Errand& errand, const RecordingWait& wait) {
  constexpr int MostFailures = ExchangeOptions::Standard;
  constexpr float Finished = 1;
  int failures = 0;
  int notReady = 0;
  for (;;) {
    if (wait.StopBefore && wait.StopBefore()) return WaitResult::Stopped;
    const Sent sent = link.Read(errand, Register::RecorderStatus, OneFrame);
    if (sent == Sent::Off) return WaitResult::Off;
    if (sent == Sent::Lost) {
      if (++failures == MostFailures) return WaitResult::LinkFailed;
      continue;
    }
    // Taken before the settling wait, in which another handler may read something else.
    const bool ready = wait.AnyAnswer || link.ReplyValues[0] == Finished;
    link.WaitMs(link.ReplyWaitMs());
    if (wait.StopAfter && wait.StopAfter()) return WaitResult::Stopped;
    if (ready) return WaitResult::Ready;
    if (++notReady == wait.NotReadyLimit) return WaitResult::NotReady;
    if (wait.PauseMs > 0) link.WaitMs(wait.PauseMs);
  }
}

Sent ReadTraceBlock(Link& link, const Errand& errand, int offset, int lastOffset,
                    std::span<float> TraceRaw, const std::function<bool()>& abandon) {
  const int count = lastOffset + 1;
  const Sent sent =
      link.Exchange(errand, Function::Read, Register::Samples + offset, static_cast<float>(count),
                    {.ClosingWait = false, .Withdrawn = [&](int) { return abandon && abandon(); }});
  if (sent == Sent::Taken) {
    std::copy_n(link.ReplyValues.begin(), count, TraceRaw.begin() + offset);
  }
  return sent;
}

UploadResult UploadTrace(Link& link, const Errand& errand, int channelCount,
                         const std::function<bool()>& abandon) {
  constexpr int LastOffset = 49;
  constexpr int AbandonMs = 200;
  const int words = ChannelSamples * channelCount;
  // Not shared: another upload may run inside the waits of this one.
  std::vector<float> TraceRaw(static_cast<std::size_t>(words) + 1);
  for (int offset = 0; offset < words; offset += LastOffset + 1) {
    link.LinkErrorCount = 0;
    const Sent sent = ReadTraceBlock(link, errand, offset, LastOffset, TraceRaw, abandon);
    if (sent == Sent::Lost) return UploadResult::Failed;
    if (sent == Sent::Taken) continue;
    link.WaitMs(AbandonMs);
    return UploadResult::Abandoned;
  }
  link.ReplyValues = std::move(TraceRaw);
  return UploadResult::Done;
}

}  // namespace gainsmith
