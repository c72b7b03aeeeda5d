// The exchange engine against a scripted line, in virtual time.
//
// A wait of n ms takes n + 1 here: the clock has whole milliseconds, and a wait lasts one step
// more. At 38400 baud a one-register exchange is thus 8 x 2 ms of sending, 52 ms before the first
// poll, 51 ms after the bytes are taken and 52 ms of settling.
#include "link/link.h"

#include <gtest/gtest.h>

#include "support/virtual_world.h"

namespace gainsmith::test {
namespace {

using sim::Fault;
using sim::Hits;
constexpr int SendMs = 16;
constexpr int ReplyWait = 52;
// The reply to a write has one byte more: 80 / 38 is 2.
constexpr int WriteReplyWait = 53;
constexpr int PollWait = 51;
constexpr int LookMs = SendMs + ReplyWait;
constexpr int WholeMs = LookMs + PollWait + ReplyWait;

// A device may go away between the count of its bytes and their reading.
struct VanishingWorld : VirtualWorld {
  std::size_t ReadAtMost = 1000;
  std::vector<std::uint8_t> ReadAll() override {
    std::vector<std::uint8_t> bytes = VirtualWorld::ReadAll();
    bytes.resize(std::min(bytes.size(), ReadAtMost));
    return bytes;
  }
};

class LinkTest : public testing::Test {
 protected:
  void SetUp() override {
    world.Devices[1] = &device;
    ASSERT_TRUE(world.OpenPort(1, link.SerialSettings));
    start = world.NowMs();
  }
  std::int64_t Elapsed() { return world.NowMs() - start; }
  bool Read(Register reg) { return link.Read(errand, reg) == Sent::Taken; }

  VanishingWorld world;
  DriveDevice device;
  Link link{world};
  Errand errand{link};
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
    EXPECT_EQ(link.Exchange(errand, Function::Read, Register::Samples, count, c.Options),
              Sent::Taken);
    EXPECT_EQ(Elapsed(), c.Ms) << c.Baud << " baud, " << c.Count << " registers";
    EXPECT_EQ(link.ReplyValues.size(), static_cast<std::size_t>(c.Count));
  }
}

TEST_F(LinkTest, ASilentDriveIsPolledTwelveTimesForEachFrame) {
  constexpr Register Kp = Register::CurrentKp;
  const ExchangeOptions limited{.MostFrames = 5};
  const struct {
    const char* What;
    int Frames, WaitMs;
    std::function<void()> Do;
  } cases[] = {
      {"usual limit", 12, ReplyWait, [&] { EXPECT_FALSE(Read(Kp)); }},
      {"short limit", 5, WriteReplyWait,
       [&] { EXPECT_EQ(link.Write(errand, Kp, 1, limited), Sent::Lost); }},
      {"read form", 4, ReplyWait, [&] { link.ReadRegistersRetry(errand, 1, Kp, 1); }},
      {"write form", 4, WriteReplyWait, [&] { link.WriteRegisterRetry(errand, 1, Kp, 1); }},
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
  link.ReadRegistersRetry(errand, 1, Kp, 1);
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
    const auto lookBetween = [&](int frames) {
      if (frames == 0) return false;
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
    EXPECT_EQ(
        link.Exchange(errand, function, Register::EncoderCounts, 1, {.Withdrawn = lookBetween}),
        Sent::Taken);
    EXPECT_EQ(world.Log.Frames().size(), 2U);
    EXPECT_EQ(Elapsed(), SendMs + wait + c.SpoiltMs + SendMs + wait + PollWait + wait);
  }
}

TEST_F(LinkTest, AReplyThatIsShorterThanItsCountFailsTheAttemptAndIsNotKept) {
  ASSERT_TRUE(Read(Register::EncoderCounts));
  for (const std::size_t bytes : {0U, 3U}) {
    world.ReadAtMost = bytes;
    EXPECT_FALSE(Read(Register::PolePairs));
    EXPECT_EQ(link.LinkErrorCount, 1);
    EXPECT_EQ(link.Raw(), 4000) << "the last that was complete";
  }
}

TEST_F(LinkTest, AValueThatCannotBePackedIsRefusedBeforeTheLine) {
  EXPECT_EQ(link.Write(errand, Register::CurrentKp, 65536), Sent::Lost);
  EXPECT_TRUE(link.ValueRefused);
  link.WriteRegisterRetry(errand, 1, Register::CurrentKp, -1);
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
    int Fragments;  // frames that another one broke off
    int BehindMs;   // from then on; a spoilt attempt polls no more
  } cases[] = {
      {"between two bytes", 5, {"R 34", "R 19"}, 1, 2 * WholeMs},
      {"before the reply is looked for", SendMs + 10, again, 0, 2 * WholeMs},
      {"after the reply was taken", LookMs + 10, again, 0, 2 * WholeMs},
      {"in the closing wait", LookMs + PollWait + 10, {"R 19", "R 34"}, 0, WholeMs},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.When);
    world.Log.Clear();
    start = world.NowMs();
    world.At(c.DelayMs, [&] {
      EXPECT_TRUE(Read(Register::PolePairs));
      EXPECT_EQ(link.Raw(), 4);
      EXPECT_EQ(link.Write(errand, Register::CurrentKp, -1), Sent::Lost);
    });
    EXPECT_TRUE(Read(Register::EncoderCounts));
    EXPECT_EQ(link.LinkErrorCount, 0);
    EXPECT_FALSE(link.ValueRefused);
    EXPECT_EQ(link.Raw(), 4000);
    EXPECT_EQ(link.ReplyValues, std::vector<float>{4000});
    EXPECT_EQ(world.Log.Texts(), c.Frames);
    EXPECT_EQ(world.Log.Fragments(), c.Fragments);
    EXPECT_EQ(Elapsed(), c.DelayMs + c.BehindMs);
  }
}

TEST_F(LinkTest, TheReplyToAnotherFrameIsNeverTakenForTheCallers) {
  // A frame whose sender does not wait for its reply, inside an exchange.
  world.At(SendMs + 2, [&] { link.SendFrame(1, Function::Read, Register::PolePairs, 1); });
  EXPECT_TRUE(Read(Register::EncoderCounts));
  EXPECT_EQ(link.Raw(), 4000);
  EXPECT_EQ(world.Log.Texts(), (Texts{"R 19", "R 34", "R 19"}));
}

// A handler that uses every wait of an exchange for a read of its own: the exchange still counts
// its frames and comes to its end.
TEST_F(LinkTest, AnExchangeEndsThoughOthersRunInAllItsWaits) {
  Timer timer;
  timer.IntervalMs = 50;
  timer.OnTimer = [&] { EXPECT_TRUE(Read(Register::PolePairs)); };
  Window window;
  window.Timers.push_back(&timer);
  world.Show(window);
  timer.Start();
  EXPECT_FALSE(Read(Register::EncoderCounts));
  EXPECT_GE(world.Log.Frames().size(), 12U);
  EXPECT_LE(world.Log.Frames().size(), 48U);
}

// What happens while a word's first frame is in flight, its reply lost.
enum class Event { Nothing, Closed, PortClosed, Withdrawn, NewerSame, NewerStop, NewerMoving };

TEST_F(LinkTest, AnErrandEndsAsItsKindOfWordDoes) {
  const struct {
    const char* What;
    Register Target;
    int Value;
    // By event: T taken, O overtaken, L lost, - off.
    std::string InFlight, Before;
  } rows[] = {
      {"moving", Register::PositionCommand, 2, "T------", "T------"},
      {"stop", Register::PositionCommand, 0, "TTL-TT-", "TTL-TT-"},
      {"setting", Register::CurrentKp, 7, "TTL-OTT", "TTL-TTT"},
      {"profile", Register::SpeedWord, 7, "T---OTT", "T---TTT"},
      {"command", Register::ArmRecorder, 200, "T---TTT", "T---TTT"},
  };
  const std::map<Sent, char> letters{
      {Sent::Taken, 'T'}, {Sent::Overtaken, 'O'}, {Sent::Lost, 'L'}, {Sent::Off, '-'}};
  for (const auto& row : rows) {
    for (const bool inFlight : {true, false}) {
      std::string ends;
      for (int i = 0; i < 7; ++i) {
        const auto event = static_cast<Event>(i);
        ASSERT_TRUE(world.IsPortOpen() || link.OpenPort());
        Window window;
        world.Show(window);
        const Errand older(link, window);
        const auto value = static_cast<float>(row.Value);
        bool withdrawn = false;
        const auto happen = [&] {
          const Errand newer(link);
          if (event == Event::Closed) world.Unload(window);
          if (event == Event::PortClosed) link.ClosePort();
          if (event == Event::Withdrawn) withdrawn = true;
          if (event == Event::NewerSame) link.Write(newer, row.Target, value == 2 ? 0 : value);
          if (event == Event::NewerStop) link.Write(newer, Register::PositionCommand, 0);
          if (event == Event::NewerMoving) link.Write(newer, Register::PositionCommand, 1);
        };
        if (inFlight) {
          device.Drive.Inject(Fault::DropNth, Hits::Next(1));
          world.At(SendMs + 2, happen);
        } else {
          happen();
        }
        ends += letters.at(
            link.Write(older, row.Target, value, {.Withdrawn = [&](int) { return withdrawn; }}));
        if (window.Loaded) world.Unload(window);
      }
      EXPECT_EQ(ends, inFlight ? row.InFlight : row.Before) << row.What;
    }
  }
}

TEST_F(LinkTest, AWordOfAnEarlierConnectionGoesToNoOtherDrive) {
  const Errand older(link);
  link.ClosePort();
  ASSERT_TRUE(link.OpenPort());
  EXPECT_EQ(link.Write(older, Register::CurrentKp, 5), Sent::Lost);
  EXPECT_EQ(link.Read(older, Register::CurrentKp), Sent::Off);
  EXPECT_TRUE(world.Log.Frames().empty());
}

// Nested handlers that lose the link tell it once; the same handler tells each of its losses.
TEST_F(LinkTest, ALossIsToldOnceByNestedHandlers) {
  const auto lose = [&](const Errand& of) {
    if (link.Read(of, Register::CurrentKp, {.MostFrames = 1}) == Sent::Lost) link.TellFailure(of);
  };
  device.Drive.Inject(Fault::Silent);
  world.At(100, [&] { lose(Errand(link)); });
  lose(errand);
  EXPECT_EQ(world.TakeMessages().size(), 1U);
  // A setting is given up with it, a stop word is not.
  for (const auto& [reg, frames] :
       {std::pair{Register::CurrentKp, 1}, {Register::PositionCommand, 12}}) {
    const Errand outer(link);
    world.At(100, [&] { lose(Errand(link)); });
    world.Log.Clear();
    EXPECT_EQ(link.Write(outer, reg, 0), Sent::Lost);
    link.TellFailure(outer);
    EXPECT_EQ(world.Log.Writes(static_cast<int>(reg)).size(), static_cast<std::size_t>(frames));
    EXPECT_EQ(world.TakeMessages().size(), 1U);
  }
  const Errand next(link);
  lose(next);
  // Behind the message that tells it, as the stop word of a release does.
  world.OnMessage = [&](const Message&) { lose(Errand(link)); };
  lose(next);
  EXPECT_EQ(world.TakeMessages().size(), 2U);
}

TEST_F(LinkTest, KnowsWhatTheDriveHasAnswered) {
  EXPECT_TRUE(Read(Register::CurrentKp));
  const std::int64_t answered = *link.Known().AnsweredAtMs;
  EXPECT_EQ(link.Write(errand, Register::PositionCommand, 2), Sent::Taken);
  EXPECT_TRUE(link.Known().Commands.at(Register::PositionCommand).Acknowledged);
  EXPECT_GT(*link.Known().AnsweredAtMs, answered);
  device.Drive.Inject(Fault::Silent);
  EXPECT_EQ(link.Write(errand, Register::PositionCommand, 0, {.MostFrames = 2}), Sent::Lost);
  EXPECT_TRUE(link.Known().LastExchangeFailed);
  EXPECT_EQ(link.Known().Commands.at(Register::PositionCommand).Word, 0);
  EXPECT_FALSE(link.Known().Commands.at(Register::PositionCommand).Acknowledged);
  EXPECT_EQ(link.Known().Resends, 1);
  EXPECT_EQ(link.Known().LostReplies, 2);
}

}  // namespace
}  // namespace gainsmith::test
