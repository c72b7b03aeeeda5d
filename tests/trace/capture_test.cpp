// Capture: the wait for a recording with its two counters, and the upload block by block.
#include "trace/capture.h"

#include <algorithm>
#include <string>

#include "simulator/wire/modbus_frame.h"
#include "trace/scope_window.h"
#include "tuning/tuning_bench.h"

namespace gainsmith::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A drive that echoes writes, and has a sample memory of -1, -2, -3 and so on.
struct RecordingDrive : ScriptedDevice {
  RecordingDrive()
      : ScriptedDevice([this](int n, const Bytes& request) { return Answer(n, request); }) {}
  std::vector<Reply> Answer(int n, const Bytes& request) {
    const char says = Says[std::min(static_cast<std::size_t>(n), Says.size() - 1)];
    if (says == '-') return {};
    const int reg = request[2] * 256 + request[3];
    const sim::Request parts{request[0], request[1], static_cast<std::uint16_t>(reg), request[5]};
    if (parts.Function == sim::WriteFunction) return {{1000, sim::WriteReply(parts)}};
    std::vector<std::uint16_t> words;
    for (int i = 0; i < parts.Value; ++i) {
      const int value = reg == 28 ? says - '0' : 255 - reg - i;
      words.push_back(static_cast<std::uint16_t>(value));
    }
    return {{1000, sim::ReadReply(parts, words)}};
  }

  // What comes of each request, the last again and again: a poll finds the recorder at work (0) or
  // finished (1), or nothing is answered (-).
  std::string Says = "0";
};

struct CaptureBench : RecordingDrive, TuningBench {
  CaptureBench() { Plug(*this); }
};

// A poll is eight bytes of 2 ms, two waits of 51 ms and one of 50, each a step longer. One without
// an answer looks for it twelve times.
constexpr int PollMs = 16 + 2 * 52 + 51;
constexpr int UnansweredMs = 629;

TEST(WaitForRecording, PollsATraceTimeApartAndCountsAnswersAndFailures) {
  const struct {
    const char* What;
    bool AnyAnswer;
    const char* Says;
    WaitResult Result;
    std::size_t Frames;
    std::int64_t GapMs;
  } cases[] = {
      {"ready at the last answer", false, "00000000000000001", WaitResult::Ready, 17,
       PollMs + 2001},
      {"never ready", false, "0", WaitResult::NotReady, 17, PollMs + 2001},
      {"any answer", true, "-0", WaitResult::Ready, 2, UnansweredMs},
      {"failures add up", false, "------0-", WaitResult::LinkFailed, 13, UnansweredMs},
      {"eleven failures", false, "-----------1", WaitResult::Ready, 12, UnansweredMs},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    CaptureBench bench;
    bench.Trace.SetTraceTime(20);
    bench.Says = c.Says;
    const RecordingWait wait = c.AnyAnswer ? AnyAnswerWait() : TestWait(bench.Trace);
    EXPECT_EQ(WaitForRecording(bench.Link, Errand(bench.Link), wait), c.Result);
    const auto& frames = bench.World.Log.Frames();
    ASSERT_EQ(bench.World.Log.Texts(), Texts(c.Frames, "R 28"));
    EXPECT_EQ(frames[1].AtMs - frames[0].AtMs, c.GapMs);
  }
}

TEST(WaitForRecording, TheScopeGivesUpAtThe802ndAnswer) {
  CaptureBench bench;
  Form5 scope(bench.World, bench.Link, bench.Params, bench.Shell, bench.Trace);
  bench.World.ShowModal(scope);
  bench.User.Click(scope.Command1);
  bench.TakeFrames();
  bench.World.RunFor(400'000);
  const auto& frames = bench.World.Log.Frames();
  ASSERT_EQ(frames.size(), 1U + 802);
  EXPECT_EQ(frames.back().Text(), "R 28");
  EXPECT_EQ(frames[802].AtMs - frames[1].AtMs, 801 * PollMs);
  EXPECT_EQ(bench.TakeMessages(), (Texts{LostLinkText}));
  EXPECT_FALSE(scope.Loaded);
}

TEST(UploadTrace, ReadsBlocksOfFiftyInOrder) {
  CaptureBench bench;
  ASSERT_EQ(UploadTrace(bench.Link, Errand(bench.Link), 2), UploadResult::Done);
  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"R 256x50", "R 306x50", "R 356x50", "R 406x50",
                                            "R 456x50", "R 506x50", "R 556x50", "R 606x50"}));
  std::vector<float> samples(401);
  for (std::size_t i = 0; i < 400; ++i) samples[i] = -1 - static_cast<float>(i);
  EXPECT_EQ(bench.Link.ReplyValues, samples);
  const auto& frames = bench.World.Log.Frames();
  EXPECT_EQ(frames[1].AtMs - frames[0].AtMs, 147) << "no wait behind a block's reply";
}

// Between two blocks, and inside one that gets no answer.
TEST(UploadTrace, IsAbandonedBeforeItsNextFrame) {
  for (const bool silent : {false, true}) {
    CaptureBench bench;
    bench.Says = silent ? "00-" : "0";
    std::int64_t askedMs = 0;
    const auto closing = [&] {
      askedMs = bench.World.NowMs();
      return bench.World.Log.Frames().size() == 5;
    };
    EXPECT_EQ(UploadTrace(bench.Link, Errand(bench.Link), 3, closing), UploadResult::Abandoned);
    EXPECT_EQ(bench.World.Log.Frames().size(), 5U);
    EXPECT_EQ(bench.World.NowMs() - askedMs, 201);
  }
}

}  // namespace
}  // namespace gainsmith::test
