// Capture: the wait for a recording with its two counters, and the upload block by block.
#include "trace/capture.h"

#include "trace/scope_window.h"
#include "tuning/tuning_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;

bool Never(int) { return false; }
bool Always(int) { return true; }

// A drive that echoes writes, knows whether its recorder has finished, and has a sample memory of
// -1, -2, -3 and so on.
struct CaptureBench {
  std::vector<ScriptedDevice::Reply> Answer(int n, const std::vector<std::uint8_t>& request) {
    if (Silent(n)) return {};
    const int reg = request[2] * 256 + request[3];
    const int count = request[4] * 256 + request[5];
    std::vector<std::uint8_t> reply(request.begin(), request.begin() + 6);
    if (request[1] == 3) {
      reply = {request[0], request[1], static_cast<std::uint8_t>(2 * count)};
      for (int i = 0; i < count; ++i) {
        const int value = reg == 28 ? Finished(polls++) : 255 - reg - i;
        reply.push_back(static_cast<std::uint8_t>(value >> 8));
        reply.push_back(static_cast<std::uint8_t>(value));
      }
    }
    const Crc16 crc = CalcCrc16(reply);
    reply.insert(reply.end(), {crc.Low, crc.High});
    return {{1000, reply}};
  }
  int Sent() const { return static_cast<int>(world.Log.Frames().size()); }

  // Whether request n (from 0) stays unanswered, and what poll n says.
  std::function<bool(int)> Silent = Never;
  std::function<bool(int)> Finished = Never;
  int polls = 0;
  ScriptedDevice device{
      [this](int n, const std::vector<std::uint8_t>& request) { return Answer(n, request); }};
  TuningBench bench{device};
  VirtualWorld& world = bench.World;
  Link& link = bench.Link;
  TraceState& trace = bench.Trace;
};

TEST(TraceTimes, FifteenWithTwoSecondsChosen) {
  ComboBox combo;
  FillTraceTimes(combo);
  ASSERT_EQ(combo.Items.size(), 15U);
  EXPECT_EQ(combo.Items[10], (ListItem{"1200ms", 12, ""}));
  EXPECT_EQ(combo.Text, "2000ms");
  EXPECT_EQ(combo.ChosenData(), 20);
}

TEST(WaitForRecording, PollsATraceTimeApartUntilReady) {
  CaptureBench bench;
  bench.trace.SetTraceTime(20);
  bench.Finished = [](int n) { return n == 2; };
  EXPECT_EQ(WaitForRecording(bench.link, TestWait(bench.trace)), WaitResult::Ready);
  EXPECT_EQ(bench.world.Log.Texts(), (Texts{"R 28", "R 28", "R 28"}));
  const auto& frames = bench.world.Log.Frames();
  EXPECT_GE(frames[1].AtMs - frames[0].AtMs, 2000);
  EXPECT_LT(frames[1].AtMs - frames[0].AtMs, 2250);
}

TEST(WaitForRecording, CountsAnswersAndFailuresOverAllPolls) {
  const auto nth = [](int poll) { return [poll](int n) { return n == poll; }; };
  const struct {
    const char* What;
    bool AnyAnswer;
    std::function<bool(int)> Silent, Finished;
    WaitResult Result;
    int Frames;
  } cases[] = {
      {"ready at the seventeenth answer", false, Never, nth(16), WaitResult::Ready, 17},
      {"not ready seventeen times", false, Never, Never, WaitResult::NotReady, 17},
      {"any answer", true, Never, Never, WaitResult::Ready, 1},
      {"six failures, an answer, six more", false, [](int n) { return n != 6; }, Never,
       WaitResult::LinkFailed, 13},
      {"eleven failures", false, [](int n) { return n < 11; }, Always, WaitResult::Ready, 12},
  };
  for (const auto& c : cases) {
    CaptureBench bench;
    bench.trace.SetTraceTime(1);
    bench.Silent = c.Silent;
    bench.Finished = c.Finished;
    const RecordingWait wait = c.AnyAnswer ? AnyAnswerWait() : TestWait(bench.trace);
    EXPECT_EQ(WaitForRecording(bench.link, wait), c.Result) << c.What;
    EXPECT_EQ(bench.Sent(), c.Frames) << c.What;
  }
}

TEST(WaitForRecording, TheScopeGivesUpAtThe802ndAnswer) {
  CaptureBench bench;
  Form5 scope(bench.world, bench.link, bench.bench.Params, bench.bench.Shell, bench.trace);
  bench.world.ShowModal(scope);
  bench.bench.User.Click(scope.Command1);
  bench.bench.TakeFrames();
  bench.world.RunFor(400'000);
  const auto& frames = bench.world.Log.Frames();
  ASSERT_EQ(frames.size(), 1U + 802);
  EXPECT_EQ(frames.back().Text(), "R 28");
  // A poll is eight bytes of 2 ms, two waits of 51 ms and one of 50, each a step longer.
  EXPECT_EQ(frames[802].AtMs - frames[1].AtMs, 801 * (16 + 2 * 52 + 51));
  EXPECT_EQ(bench.bench.TakeMessages(), (Texts{LostLink}));
  EXPECT_FALSE(scope.Loaded);
  EXPECT_TRUE(bench.link.LinkIdle);
}

TEST(WaitForRecording, ABlockReadInsideItsLastWaitDoesNotChangeTheAnswer) {
  CaptureBench bench;
  bench.Finished = Always;
  bench.world.At(130, [&] { bench.link.Read(Register::Samples); });
  EXPECT_EQ(WaitForRecording(bench.link, TestWait(bench.trace)), WaitResult::Ready);
  EXPECT_EQ(bench.world.Log.Texts(), (Texts{"R 28", "R 256"}));
}

TEST(UploadTrace, ReadsBlocksOfFiftyInOrder) {
  for (int channels : {2, 3}) {
    CaptureBench bench;
    ASSERT_EQ(UploadTrace(bench.link, channels, {}), UploadResult::Done);
    const int words = 200 * channels;
    Texts texts;
    for (int at = 0; at < words; at += 50) texts.push_back("R " + std::to_string(256 + at) + "x50");
    EXPECT_EQ(bench.world.Log.Texts(), texts);
    std::vector<float> samples;
    for (int i = 1; i <= words; ++i) samples.push_back(static_cast<float>(-i));
    samples.push_back(0);
    EXPECT_EQ(bench.link.ReplyValues, samples);
  }
}

// Between two blocks, and inside one that gets no answer.
TEST(UploadTrace, IsAbandonedBeforeItsNextFrame) {
  for (const bool silent : {false, true}) {
    CaptureBench bench;
    bench.Silent = [silent](int n) { return silent && n >= 2; };
    std::int64_t askedMs = 0;
    const auto closing = [&] {
      askedMs = bench.world.NowMs();
      return bench.Sent() == 5;
    };
    EXPECT_EQ(UploadTrace(bench.link, 3, closing), UploadResult::Abandoned);
    EXPECT_EQ(bench.Sent(), 5);
    EXPECT_EQ(bench.world.NowMs() - askedMs, 201);
  }
}

}  // namespace
}  // namespace gainsmith::test
