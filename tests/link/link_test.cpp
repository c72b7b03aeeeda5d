// The exchange engine against a scripted line, in virtual time.
//
// A wait of n ms takes n + 1 here: the clock has whole milliseconds, and a wait lasts one step
// more. At 38400 baud a one-register exchange is thus 8 x 2 ms of sending, 52 ms before the first
// poll, 51 ms after the bytes are taken and 52 ms of settling.
#include "link/link.h"

#include <gtest/gtest.h>

#include <string>

#include "support/virtual_world.h"

namespace gainsmith::test {
namespace {

using sim::Fault;
using sim::Hits;
using Texts = std::vector<std::string>;

constexpr int SendMs = 16;
constexpr int ReplyWait = 52;
// The reply to a write has one byte more: 80 / 38 is 2.
constexpr int WriteReplyWait = 53;
constexpr int PollWait = 51;

class LinkTest : public testing::Test {
 protected:
  void SetUp() override {
    world.Devices[1] = &device;
    ASSERT_TRUE(world.OpenPort(1, link.SerialSettings));
    start = world.NowMs();
  }
  std::int64_t Elapsed() { return world.NowMs() - start; }

  VirtualWorld world;
  DriveDevice device;
  Link link{world};
  std::int64_t start = 0;
};

TEST_F(LinkTest, WaitLastsItsMillisecondsAndOneClockStep) {
  std::vector<std::int64_t> ran;
  for (const int delay : {0, 10, 11}) world.At(delay, [&] { ran.push_back(Elapsed()); });
  link.WaitMs(10);
  EXPECT_EQ(Elapsed(), 11);
  EXPECT_EQ(ran, (std::vector<std::int64_t>{0, 10}));
  // Past its deadline from the start: no event runs, though one is queued.
  link.WaitMs(-1);
  EXPECT_EQ(ran.size(), 2U);
  EXPECT_EQ(Elapsed(), 11);
}

TEST_F(LinkTest, APromptReplyCostsTheFixedWaits) {
  const struct {
    int Baud;
    std::int16_t BitsPerMs;
    int Count;
    ExchangeOptions Options;
    int Ms;
    // ReplyWaitMs is 10 x bytes / BitsPerMs + 50, the wait of a poll bytes / BitsPerMs + 50.
  } cases[] = {
      {38400, 38, 1, {}, 16 + 52 + 51 + 52},
      {9600, 9, 1, {}, 16 + 58 + 51 + 58},
      {9600, 9, 50, {}, 16 + 167 + 62 + 167},
      {38400, 38, 50, {.DriveMs = 30}, 16 + 58 + 53 + 58},
      {38400, 38, 50, {.ClosingWait = false}, 16 + 78 + 53},
  };
  for (const auto& c : cases) {
    device.Drive.SetBaud(c.Baud);
    link.BitsPerMs = c.BitsPerMs;
    start = world.NowMs();
    const auto count = static_cast<float>(c.Count);
    EXPECT_TRUE(link.Exchange(Function::Read, Register::Samples, count, c.Options));
    EXPECT_EQ(Elapsed(), c.Ms) << c.Baud << " baud, " << c.Count << " registers";
    EXPECT_EQ(link.ReplyValues.size(), static_cast<std::size_t>(c.Count));
  }
}

TEST_F(LinkTest, ASilentDriveIsPolledTwelveTimesForEachFrame) {
  constexpr Register Kp = Register::CurrentKp;
  const ExchangeOptions limited{.RetryLimit = ShortRetryLimit};
  const struct {
    const char* What;
    int Frames;
    int WaitMs;
    std::function<void()> Do;
  } cases[] = {
      {"usual limit", 12, ReplyWait, [&] { EXPECT_FALSE(link.Read(Kp)); }},
      {"short limit", 5, WriteReplyWait, [&] { EXPECT_FALSE(link.Write(Kp, 1, limited)); }},
      {"read form", 4, ReplyWait, [&] { link.ReadRegistersRetry(1, Kp, 1); }},
      {"write form", 4, WriteReplyWait, [&] { link.WriteRegisterRetry(1, Kp, 1); }},
  };
  device.Drive.Inject(Fault::Silent);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    world.Log.Clear();
    start = world.NowMs();
    c.Do();
    EXPECT_EQ(world.Log.Frames().size(), static_cast<std::size_t>(c.Frames));
    EXPECT_EQ(Elapsed(), (SendMs + c.WaitMs + 11 * PollWait) * c.Frames);
    EXPECT_EQ(link.LinkErrorCount, 12) << "one for each poll";
  }
  EXPECT_TRUE(link.WriteFailed);
  EXPECT_FALSE(link.LinkIdle);
  EXPECT_TRUE(link.RxBuffer.empty());

  device.Drive.ClearFaults();
  link.ReadRegistersRetry(1, Kp, 1);
  EXPECT_TRUE(link.LinkIdle);
  EXPECT_TRUE(link.ReadFailed) << "only who reports a failure clears it";
}

TEST_F(LinkTest, AnAttemptIsSpoiltByEachFaultOfAReplyAndMadeAgain) {
  const struct {
    Fault Kind;
    bool Write;
    // From the first look for the reply to the end of the spoilt attempt.
    int SpoiltMs;
    bool BytesTaken;
  } cases[] = {
      {Fault::LateReply, false, 2 * PollWait, true}, {Fault::ExtraByte, false, 0, false},
      {Fault::BadCrc, false, PollWait, true},        {Fault::WrongAddress, false, PollWait, true},
      {Fault::WrongCount, false, PollWait, true},    {Fault::WrongEcho, true, PollWait, true},
      {Fault::DropNth, false, 11 * PollWait, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(sim::NameOf(c.Kind));
    const int wait = c.Write ? WriteReplyWait : ReplyWait;
    const auto lookBetween = [&] {
      EXPECT_EQ(Elapsed(), SendMs + wait + c.SpoiltMs);
      EXPECT_EQ(link.LinkErrorCount, c.Kind == Fault::DropNth ? 12 : 1);
      EXPECT_EQ(link.CountMismatch, c.Kind == Fault::WrongCount);
      EXPECT_EQ(!link.RxBuffer.empty(), c.BytesTaken);
      EXPECT_EQ(!link.ReplyValues.empty(), c.Kind == Fault::LateReply)
          << "decoded only if all checks hold";
      return false;
    };
    device.Drive.ClearFaults();
    device.Drive.Inject(c.Kind, Hits::Next(1));
    world.Log.Clear();
    link.RxBuffer.clear();
    link.ReplyValues.clear();
    start = world.NowMs();
    const Function function = c.Write ? Function::Write : Function::Read;
    EXPECT_TRUE(link.Exchange(function, Register::EncoderCounts, 1, {.Abandon = lookBetween}));
    EXPECT_EQ(world.Log.Frames().size(), 2U);
    EXPECT_EQ(Elapsed(), SendMs + wait + c.SpoiltMs + SendMs + wait + PollWait + wait);
  }
}

TEST_F(LinkTest, AValueThatCannotBePackedIsRefusedBeforeTheLine) {
  EXPECT_FALSE(link.Write(Register::CurrentKp, 65536));
  EXPECT_TRUE(link.ValueRefused);
  link.WriteRegisterRetry(1, Register::CurrentKp, -1);
  EXPECT_TRUE(link.WriteFailed);
  EXPECT_TRUE(world.Log.Frames().empty());
  EXPECT_EQ(Elapsed(), 0);
}

TEST_F(LinkTest, AnExchangeInsideAnotherDoesNotTouchItsResult) {
  const Texts again{"R 19", "R 34", "R 19"};
  const struct {
    const char* When;
    int DelayMs;
    Texts Frames;
    // Frames that another one broke off.
    int Fragments;
  } cases[] = {
      {"between two bytes", 5, {"R 34", "R 19"}, 1},
      {"before the reply is looked for", SendMs + 10, again, 0},
      {"after the reply was taken", SendMs + ReplyWait + 10, again, 0},
      {"in the closing wait", SendMs + ReplyWait + PollWait + 10, {"R 19", "R 34"}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.When);
    world.Log.Clear();
    world.At(c.DelayMs, [&] {
      EXPECT_TRUE(link.Read(Register::PolePairs));
      EXPECT_EQ(link.Raw(), 4);
      EXPECT_FALSE(link.Write(Register::CurrentKp, -1));
    });
    EXPECT_TRUE(link.Read(Register::EncoderCounts));
    EXPECT_EQ(link.LinkErrorCount, 0);
    EXPECT_FALSE(link.ValueRefused);
    EXPECT_EQ(link.Raw(), 4000);
    EXPECT_EQ(link.ReplyValues, std::vector<float>{4000});
    EXPECT_EQ(world.Log.Texts(), c.Frames);
    EXPECT_EQ(world.Log.Fragments(), c.Fragments);
  }
}

TEST_F(LinkTest, TheReplyToAnotherFrameIsNeverTakenForTheCallers) {
  // A frame whose sender does not wait for its reply, inside an exchange.
  world.At(SendMs + 2, [&] { link.SendFrame(1, Function::Read, Register::PolePairs, 1); });
  EXPECT_TRUE(link.Read(Register::EncoderCounts));
  EXPECT_EQ(link.Raw(), 4000);
  EXPECT_EQ(world.Log.Texts(), (Texts{"R 19", "R 34", "R 19"}));
}

// A handler that uses every wait of an exchange for a read of its own: the exchange still counts
// its frames and comes to its end.
TEST_F(LinkTest, AnExchangeEndsThoughOthersRunInAllItsWaits) {
  Timer timer;
  timer.IntervalMs = 50;
  timer.OnTimer = [&] { EXPECT_TRUE(link.Read(Register::PolePairs)); };
  Window window;
  window.Timers.push_back(&timer);
  world.Show(window);
  timer.Start();
  EXPECT_FALSE(link.Read(Register::EncoderCounts));
  EXPECT_GE(world.Log.Frames().size(), 12U);
  EXPECT_LE(world.Log.Frames().size(), 48U);
}

}  // namespace
}  // namespace gainsmith::test
