// The exchange engine against a scripted line, in virtual time.
//
// A wait of n ms takes n + 1 here: the clock has whole milliseconds, and a wait lasts one step
// more. At 38400 baud a one-register exchange is thus 8 x 2 ms of sending, 52 ms before the first
// poll, 51 ms after the bytes are taken and 52 ms of settling.
#include "link/link.h"

#include <gtest/gtest.h>

#include <cmath>
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

class PollCountingWorld : public VirtualWorld {
 public:
  int BytesAvailable() override {
    ++Polls;
    return VirtualWorld::BytesAvailable();
  }
  int Polls = 0;
};

class LinkTest : public testing::Test {
 protected:
  void SetUp() override {
    world.Devices[1] = &device;
    ASSERT_TRUE(world.OpenPort(1, link.SerialSettings));
    start = world.NowMs();
  }
  std::int64_t Elapsed() { return world.NowMs() - start; }

  PollCountingWorld world;
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
  struct Case {
    int Baud;
    std::int16_t BitsPerMs;
    int Count;
    int Ms;
  };
  // ReplyWaitMs is 10 x bytes / BitsPerMs + 50, the wait of a poll bytes / BitsPerMs + 50.
  const Case cases[] = {
      {38400, 38, 1, 16 + 52 + 51 + 52},  {19200, 19, 1, 16 + 54 + 51 + 54},
      {9600, 9, 1, 16 + 58 + 51 + 58},    {38400, 38, 50, 16 + 78 + 53 + 78},
      {9600, 9, 50, 16 + 167 + 62 + 167},
  };
  for (const Case& c : cases) {
    device.Drive.SetBaud(c.Baud);
    link.BitsPerMs = c.BitsPerMs;
    start = world.NowMs();
    EXPECT_TRUE(link.Exchange(Function::Read, Register::Samples, static_cast<float>(c.Count)));
    EXPECT_EQ(Elapsed(), c.Ms) << c.Baud << " baud, " << c.Count << " registers";
    EXPECT_EQ(link.ReplyValues.size(), static_cast<std::size_t>(c.Count));
  }
  EXPECT_EQ(world.Log.Frames().size(), std::size(cases));
}

TEST_F(LinkTest, TheLoadWaitsOfAWindowTakeAnotherDriveShareAndNoClosing) {
  ASSERT_TRUE(link.Read(Register::CurrentKp, {.DriveMs = 30}));
  EXPECT_EQ(Elapsed(), SendMs + 32 + PollWait + 32);
  start = world.NowMs();
  ASSERT_TRUE(link.Read(Register::CurrentKp, {.ClosingWait = false}));
  EXPECT_EQ(Elapsed(), SendMs + ReplyWait + PollWait);
}

TEST_F(LinkTest, ASilentDriveIsPolledTwelveTimesForEachFrame) {
  struct Case {
    const char* What;
    int Frames;
    int WaitMs;
    std::function<bool()> Do;
  };
  const Case cases[] = {
      {"usual limit", 12, ReplyWait, [this] { return link.Read(Register::CurrentKp); }},
      {"short limit", 5, WriteReplyWait,
       [this] { return link.Write(Register::CurrentKp, 1, {.RetryLimit = ShortRetryLimit}); }},
      {"read form", 4, ReplyWait,
       [this] {
         link.ReadRegistersRetry(1, Register::CurrentKp, 1);
         return !link.ReadFailed;
       }},
      {"write form", 4, WriteReplyWait,
       [this] {
         link.WriteRegisterRetry(1, Register::CurrentKp, 1);
         return !link.WriteFailed;
       }},
  };
  device.Drive.Inject(Fault::Silent);
  for (const Case& c : cases) {
    world.Log.Clear();
    world.Polls = 0;
    start = world.NowMs();
    EXPECT_FALSE(c.Do()) << c.What;
    EXPECT_EQ(world.Log.Frames().size(), static_cast<std::size_t>(c.Frames)) << c.What;
    EXPECT_EQ(world.Polls, 12 * c.Frames) << c.What;
    EXPECT_EQ(Elapsed(), (SendMs + c.WaitMs + 11 * PollWait) * c.Frames) << c.What;
    EXPECT_EQ(link.LinkErrorCount, 12) << c.What;
  }
  EXPECT_TRUE(link.RxBuffer.empty());
}

TEST_F(LinkTest, AnAttemptIsSpoiltByEachFaultOfAReply) {
  struct Case {
    Fault Kind;
    bool Write;
    // From the first look for the reply to the end of the spoilt attempt.
    int SpoiltMs;
    bool BytesTaken;
  };
  const Case cases[] = {
      {Fault::LateReply, false, 2 * PollWait, true}, {Fault::SplitReply, false, 2 * PollWait, true},
      {Fault::ExtraByte, false, 0, false},           {Fault::ExtraByte, true, 0, false},
      {Fault::BadCrc, false, PollWait, true},        {Fault::BadCrc, true, PollWait, true},
      {Fault::WrongAddress, false, PollWait, true},  {Fault::WrongCount, false, PollWait, true},
      {Fault::WrongEcho, true, PollWait, true},      {Fault::Garbage, false, PollWait, true},
      {Fault::DropNth, false, 11 * PollWait, false},
  };
  for (const Case& c : cases) {
    const Function function = c.Write ? Function::Write : Function::Read;
    device.Drive.ClearFaults();
    link.RxBuffer.clear();
    link.ReplyValues.clear();

    // One attempt by itself, then the whole exchange: it sends again and succeeds.
    device.Drive.Inject(c.Kind, Hits::Next(1));
    link.SendFrame(1, function, Register::EncoderCounts, 1);
    link.WaitMs(link.ReplyWaitMs());
    link.ReceiveReply(1, function);
    const auto name = sim::NameOf(c.Kind);
    EXPECT_EQ(link.LinkErrorCount, c.Kind == Fault::DropNth ? 12 : 1) << name;
    EXPECT_EQ(link.CountMismatch, c.Kind == Fault::WrongCount) << name;
    EXPECT_EQ(!link.RxBuffer.empty(), c.BytesTaken) << name;
    const bool complete = c.Kind == Fault::LateReply || c.Kind == Fault::SplitReply;
    EXPECT_EQ(!link.ReplyValues.empty(), complete) << name << ": decoded only if all checks hold";

    device.Drive.Inject(c.Kind, Hits::Next(1));
    world.Log.Clear();
    start = world.NowMs();
    EXPECT_TRUE(link.Exchange(function, Register::EncoderCounts, 1)) << name;
    EXPECT_EQ(world.Log.Frames().size(), 2U) << name;
    const int wait = c.Write ? WriteReplyWait : ReplyWait;
    EXPECT_EQ(Elapsed(), SendMs + wait + c.SpoiltMs + SendMs + wait + PollWait + wait) << name;
  }
}

TEST_F(LinkTest, TheShortFormKeepsItsFlagsThroughAResend) {
  device.Drive.Inject(Fault::BadCrc, Hits::Next(1));
  link.ReadFailed = true;
  link.ReadRegistersRetry(1, Register::Flags, 1);
  EXPECT_TRUE(link.ReadFailed) << "only who reports a failure clears it";
  EXPECT_TRUE(link.LinkIdle);
  EXPECT_EQ(link.Raw(), 0x0184);

  device.Drive.Inject(Fault::BadCrc, Hits::Next(4));
  link.ReadFailed = false;
  link.ReadRegistersRetry(1, Register::Flags, 1);
  EXPECT_TRUE(link.ReadFailed);
  EXPECT_FALSE(link.LinkIdle);
  EXPECT_EQ(link.LinkErrorCount, 1);
}

TEST_F(LinkTest, AValueThatCannotBePackedIsRefusedBeforeTheLine) {
  for (const float value : {65536.0F, -1.0F, NAN}) {
    EXPECT_FALSE(link.Write(Register::CurrentKp, value));
    EXPECT_TRUE(link.ValueRefused);
    link.WriteFailed = false;
    link.WriteRegisterRetry(1, Register::CurrentKp, value);
    EXPECT_TRUE(link.WriteFailed);
  }
  EXPECT_TRUE(world.Log.Frames().empty());
  EXPECT_EQ(Elapsed(), 0);
  EXPECT_NE(LinkFailureMessage(link).Title, "Cmmunication Error");
  EXPECT_TRUE(link.Read(Register::CurrentKp));
  EXPECT_EQ(LinkFailureMessage(link).Title, "Cmmunication Error");
}

TEST_F(LinkTest, AnExchangeInsideAnotherSpoilsItAndIsSentAgain) {
  struct Case {
    const char* When;
    int DelayMs;
    // Whole ones, and those that another one broke off.
    std::size_t Frames;
    int Fragments;
  };
  const Case cases[] = {
      {"between two bytes", 5, 2, 1},
      {"before the reply is looked for", SendMs + 10, 3, 0},
      {"after the reply was taken", SendMs + ReplyWait + 10, 3, 0},
  };
  for (const Case& c : cases) {
    world.Log.Clear();
    int inner = -1;
    world.At(c.DelayMs, [&] { inner = link.Read(Register::PolePairs) ? link.Raw() : -1; });
    EXPECT_TRUE(link.Read(Register::EncoderCounts));
    EXPECT_EQ(inner, 4) << c.When;
    EXPECT_EQ(link.Raw(), 4000) << c.When;
    EXPECT_EQ(world.Log.Texts().back(), "R 19") << c.When;
    EXPECT_EQ(world.Log.Frames().size(), c.Frames) << c.When;
    EXPECT_EQ(world.Log.Fragments(), c.Fragments) << c.When;
  }
}

TEST_F(LinkTest, TheReplyToAnotherFrameIsNeverTakenForTheCallers) {
  // A frame whose sender does not wait for its reply, inside an exchange.
  world.At(SendMs + 2, [&] { link.SendFrame(1, Function::Read, Register::PolePairs, 1); });
  EXPECT_TRUE(link.Read(Register::EncoderCounts));
  EXPECT_EQ(link.Raw(), 4000);
  EXPECT_EQ(world.Log.Texts(), (Texts{"R 19", "R 34", "R 19"}));

  // A whole exchange inside ReceiveReply, which has taken its bytes already.
  link.SendFrame(1, Function::Read, Register::EncoderCounts, 1);
  link.WaitMs(link.ReplyWaitMs());
  world.At(10, [&] { EXPECT_TRUE(link.Read(Register::PolePairs)); });
  link.ReceiveReply(1, Function::Read);
  EXPECT_NE(link.LinkErrorCount, 0);
}

// A handler that uses every wait of an exchange for a read of its own: the exchange still counts
// its frames and comes to its end.
TEST_F(LinkTest, AnExchangeEndsThoughOthersRunInAllItsWaits) {
  int reads = 0;
  Window window;
  Timer timer;
  timer.IntervalMs = 50;
  timer.OnTimer = [&] {
    ++reads;
    EXPECT_TRUE(link.Read(Register::PolePairs));
  };
  window.Timers.push_back(&timer);
  world.Show(window);
  timer.Start();
  EXPECT_FALSE(link.Read(Register::EncoderCounts));
  EXPECT_GE(reads, 12);
  EXPECT_LE(reads, 24);
}

TEST_F(LinkTest, AReplyIsTheCallersThoughAnotherExchangeRanInTheClosingWait) {
  world.At(SendMs + ReplyWait + PollWait + 10, [&] {
    device.Drive.Inject(Fault::Silent);
    EXPECT_FALSE(link.Read(Register::PolePairs, {.RetryLimit = 0}));
    device.Drive.ClearFaults();
    EXPECT_TRUE(link.Read(Register::PolePairs));
    EXPECT_FALSE(link.Write(Register::CurrentKp, -1));
  });
  link.ReadRegistersRetry(1, Register::EncoderCounts, 1);
  EXPECT_EQ(link.LinkErrorCount, 0);
  EXPECT_FALSE(link.ReadFailed);
  EXPECT_EQ(link.Raw(), 4000);
  EXPECT_EQ(link.ReplyValues, std::vector<float>{4000});
  EXPECT_EQ(world.Log.Texts(), (Texts{"R 19", "R 34", "R 34", "R 34"}));
}

TEST_F(LinkTest, AnAbandonedExchangeSendsNoSecondFrame) {
  device.Drive.Inject(Fault::DropNth, Hits::Next(1));
  EXPECT_FALSE(link.Write(Register::PositionCommand, 2, {.Abandon = [] { return true; }}));
  EXPECT_EQ(world.Log.Texts(), Texts{"W 9=2"});
}

}  // namespace
}  // namespace gainsmith::test
