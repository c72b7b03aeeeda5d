// Capture: the wait for a recording with its two counters, and the upload block by block.
#include "trace/capture.h"

#include "trace/scope_window.h"
#include "tuning/tuning_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;
using Bytes = std::vector<std::uint8_t>;

bool Never(int) { return false; }
bool Always(int) { return true; }
std::function<bool(int)> Only(int k) {
  return [k](int n) { return n == k; };
}
std::function<bool(int)> AllBut(int k) {
  return [k](int n) { return n != k; };
}

// A drive that echoes writes, knows whether its recorder has finished, and has a sample memory of
// -1, -2, -3 and so on.
struct RecordingDrive : ScriptedDevice {
  RecordingDrive()
      : ScriptedDevice([this](int n, const Bytes& request) { return Answer(n, request); }) {}
  std::vector<Reply> Answer(int n, const Bytes& request) {
    if (Silent(n)) return {};
    const int reg = request[2] * 256 + request[3];
    const int count = request[4] * 256 + request[5];
    Bytes reply(request.begin(), request.begin() + 6);
    if (request[1] == 3) {
      reply = {request[0], request[1], static_cast<std::uint8_t>(2 * count)};
      for (int i = 0; i < count; ++i) {
        const int value = reg == 28 ? Finished(Polls++) : 255 - reg - i;
        reply.push_back(static_cast<std::uint8_t>(value >> 8));
        reply.push_back(static_cast<std::uint8_t>(value));
      }
    }
    const Crc16 crc = CalcCrc16(reply);
    reply.insert(reply.end(), {crc.Low, crc.High});
    return {{1000, reply}};
  }

  // Whether request n (from 0) stays unanswered, and what poll n says.
  std::function<bool(int)> Silent = Never;
  std::function<bool(int)> Finished = Never;
  int Polls = 0;
};

struct CaptureBench : RecordingDrive, TuningBench {
  CaptureBench() { Plug(*this); }
  int Sent() const { return static_cast<int>(World.Log.Frames().size()); }
};

// A poll is eight bytes of 2 ms, two waits of 51 ms and one of 50, each a step longer. One without
// an answer looks for it twelve times.
constexpr int PollMs = 16 + 2 * 52 + 51;
constexpr int UnansweredMs = 629;

TEST(WaitForRecording, PollsATraceTimeApartAndCountsAnswersAndFailures) {
  const struct {
    const char* What;
    bool AnyAnswer;
    std::function<bool(int)> Silent, Finished;
    WaitResult Result;
    std::size_t Frames;
    std::int64_t GapMs;
  } cases[] = {
      {"ready at the last answer", false, Never, Only(16), WaitResult::Ready, 17, PollMs + 2001},
      {"never ready", false, Never, Never, WaitResult::NotReady, 17, PollMs + 2001},
      {"any answer", true, Only(0), Never, WaitResult::Ready, 2, UnansweredMs},
      {"six failures, an answer, six more", false, AllBut(6), Never, WaitResult::LinkFailed, 13,
       UnansweredMs},
      {"eleven failures", false, AllBut(11), Always, WaitResult::Ready, 12, UnansweredMs},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    CaptureBench bench;
    bench.Trace.SetTraceTime(20);
    bench.Silent = c.Silent;
    bench.Finished = c.Finished;
    const RecordingWait wait = c.AnyAnswer ? AnyAnswerWait() : TestWait(bench.Trace);
    EXPECT_EQ(WaitForRecording(bench.Link, wait), c.Result);
    const auto& frames = bench.World.Log.Frames();
    EXPECT_EQ(bench.World.Log.Texts(), Texts(c.Frames, "R 28"));
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
  EXPECT_EQ(bench.TakeMessages(), (Texts{LostLink}));
  EXPECT_FALSE(scope.Loaded);
  EXPECT_TRUE(bench.Link.LinkIdle);
}

TEST(WaitForRecording, ABlockReadInsideItsLastWaitDoesNotChangeTheAnswer) {
  CaptureBench bench;
  bench.Finished = Always;
  bench.World.At(130, [&] { bench.Link.Read(Register::Samples); });
  EXPECT_EQ(WaitForRecording(bench.Link, TestWait(bench.Trace)), WaitResult::Ready);
  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"R 28", "R 256"}));
}

TEST(UploadTrace, ReadsBlocksOfFiftyInOrder) {
  for (int channels : {2, 3}) {
    CaptureBench bench;
    ASSERT_EQ(UploadTrace(bench.Link, channels, {}), UploadResult::Done);
    const int words = 200 * channels;
    Texts texts;
    for (int at = 0; at < words; at += 50) texts.push_back("R " + std::to_string(256 + at) + "x50");
    EXPECT_EQ(bench.World.Log.Texts(), texts);
    std::vector<float> samples;
    for (int i = 1; i <= words; ++i) samples.push_back(static_cast<float>(-i));
    samples.push_back(0);
    EXPECT_EQ(bench.Link.ReplyValues, samples);
    const auto& frames = bench.World.Log.Frames();
    EXPECT_EQ(frames[1].AtMs - frames[0].AtMs, 147) << "no wait behind a block's reply";
  }
}

// Between two blocks, and inside one that gets no answer.
TEST(UploadTrace, IsAbandonedBeforeItsNextFrame) {
  for (const bool silent : {false, true}) {
    CaptureBench bench;
    bench.Silent = [silent](int n) { return silent && n >= 2; };
    std::int64_t askedMs = 0;
    const auto closing = [&] {
      askedMs = bench.World.NowMs();
      return bench.Sent() == 5;
    };
    EXPECT_EQ(UploadTrace(bench.Link, 3, closing), UploadResult::Abandoned);
    EXPECT_EQ(bench.Sent(), 5);
    EXPECT_EQ(bench.World.NowMs() - askedMs, 201);
  }
}

}  // namespace
}  // namespace gainsmith::test
