// Capture: the wait for a recording with its two counters, and the upload block by block.
#include "trace/capture.h"

#include <gtest/gtest.h>

#include <string>

#include "support/virtual_world.h"

namespace gainsmith::test {
namespace {

// A drive that has `Status` to say of its recorder and a sample memory of -1, -2, -3 and so on.
struct CaptureBench {
  CaptureBench() : link(world) {
    world.Devices[1] = &device;
    world.OpenPort(1, "38400,n,8,2");
  }

  std::vector<ScriptedDevice::Reply> Answer(const std::vector<std::uint8_t>& request) {
    if (Silent(sent++)) return {};
    const int reg = request[2] * 256 + request[3];
    const int count = request[4] * 256 + request[5];
    std::vector<std::uint8_t> reply{request[0], request[1], static_cast<std::uint8_t>(2 * count)};
    for (int i = 0; i < count; ++i) {
      const int value = reg == 28 ? Status(polls++) : 255 - reg - i;
      reply.push_back(static_cast<std::uint8_t>(value >> 8));
      reply.push_back(static_cast<std::uint8_t>(value));
    }
    const Crc16 crc = CalcCrc16(reply);
    reply.push_back(crc.Low);
    reply.push_back(crc.High);
    return {{1000, reply}};
  }
  int Frames() const { return static_cast<int>(world.Log.Frames().size()); }

  // Whether request n (from 0) stays unanswered, and the answer to poll n.
  std::function<bool(int)> Silent = [](int) { return false; };
  std::function<int(int)> Status = [](int) { return 0; };
  int sent = 0;
  int polls = 0;
  ScriptedDevice device{
      [this](int, const std::vector<std::uint8_t>& request) { return Answer(request); }};
  VirtualWorld world;
  Link link;
  TraceState trace;
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
  bench.Status = [](int n) { return n < 2 ? 5 : 1; };
  EXPECT_EQ(WaitForRecording(bench.link, TestWait(bench.trace)), WaitResult::Ready);
  EXPECT_EQ(bench.world.Log.Texts(), (std::vector<std::string>{"R 28", "R 28", "R 28"}));
  const auto& frames = bench.world.Log.Frames();
  EXPECT_GE(frames[1].AtMs - frames[0].AtMs, 2000);
  EXPECT_LT(frames[1].AtMs - frames[0].AtMs, 2250);
}

TEST(WaitForRecording, TakesTheSeventeenthAnswerOrAnyAnswer) {
  CaptureBench last;
  last.trace.SetTraceTime(1);
  last.Status = [](int n) { return n == 16 ? 1 : 0; };
  EXPECT_EQ(WaitForRecording(last.link, TestWait(last.trace)), WaitResult::Ready);
  CaptureBench any;
  EXPECT_EQ(WaitForRecording(any.link, AnyAnswerWait()), WaitResult::Ready);
  EXPECT_EQ(any.Frames(), 1);
}

TEST(WaitForRecording, FailuresAddUpOverThePolls) {
  CaptureBench bench;
  bench.trace.SetTraceTime(1);
  bench.Silent = [](int n) { return n != 6; };  // six failures, an answer, six more
  EXPECT_EQ(WaitForRecording(bench.link, TestWait(bench.trace)), WaitResult::LinkFailed);
  EXPECT_EQ(bench.Frames(), 13);
  CaptureBench eleven;
  eleven.trace.SetTraceTime(1);
  eleven.Silent = [](int n) { return n < 11; };
  eleven.Status = [](int) { return 1; };
  EXPECT_EQ(WaitForRecording(eleven.link, TestWait(eleven.trace)), WaitResult::Ready);
}

TEST(WaitForRecording, ABlockReadInsideItsLastWaitDoesNotChangeTheAnswer) {
  CaptureBench bench;
  bench.Status = [](int) { return 1; };
  bench.world.At(130, [&] { bench.link.Read(Register::Samples); });
  EXPECT_EQ(WaitForRecording(bench.link, TestWait(bench.trace)), WaitResult::Ready);
  EXPECT_EQ(bench.world.Log.Texts(), (std::vector<std::string>{"R 28", "R 256"}));
}

TEST(UploadTrace, ReadsBlocksOfFiftyInOrder) {
  for (int channels : {2, 3}) {
    CaptureBench bench;
    ASSERT_EQ(UploadTrace(bench.link, channels, {}), UploadResult::Done);
    std::vector<std::string> texts;
    for (int reg = 256; reg <= 255 + 200 * channels; reg += 50) {
      texts.push_back("R " + std::to_string(reg) + "x50");
    }
    EXPECT_EQ(bench.world.Log.Texts(), texts);
    const auto words = static_cast<std::size_t>(200 * channels);
    ASSERT_EQ(bench.link.ReplyValues.size(), words + 1);
    for (std::size_t i = 0; i < words; ++i) {
      ASSERT_EQ(bench.link.ReplyValues[i], -1 - static_cast<float>(i));
    }
    EXPECT_EQ(bench.link.ReplyValues[words], 0);
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
      return bench.Frames() == 5;
    };
    EXPECT_EQ(UploadTrace(bench.link, 3, closing), UploadResult::Abandoned);
    EXPECT_EQ(bench.Frames(), 5);
    EXPECT_EQ(bench.world.NowMs() - askedMs, 201);
  }
}

}  // namespace
}  // namespace gainsmith::test
