// Form5 on a spoilt line: one message, a closed window, nothing left running.
#include "trace/scope_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;

constexpr int EncoderRead = 0;
constexpr int KindWrite = 1;
constexpr int FramesOfAFailure = 12;

struct ScopeFaultTest : ScopeTest {
  // What comes when the line dies with request `number` from now.
  void DieAt(int number, sim::Fault fault) {
    AtRequest(number, [this, fault] { Device.Drive.Inject(fault); });
  }
  void Revive() {
    Device.BeforeRequest = {};
    Device.Drive.ClearFaults();
    Device.Drive.Reconnect();
  }
  // Load, Start and two cycles. False when the window was closed on the way.
  bool Session() {
    OpenQuietly();
    Bench.World.RunFor(1100);
    if (!Window.Loaded) return false;
    Choose(At100Ms);
    Click();
    for (int cycle = 0; cycle < 2; ++cycle) {
      Bench.World.RunUntil([&] { return !Bench.Link.LinkIdle || !Window.Loaded; }, 200);
      Bench.World.RunUntil([&] { return Bench.Link.LinkIdle || !Window.Loaded; }, 30'000);
    }
    return Window.Loaded;
  }
  void Leave() {
    Click();
    Bench.User.Close(Window);
  }
};

TEST_F(ScopeFaultTest, ALineThatDiesAtAnyExchangeIsToldAndClosesTheWindow) {
  for (const sim::Fault fault : {sim::Fault::Silent, sim::Fault::HangUp, sim::Fault::BadCrc}) {
    int request = 0;
    for (;; ++request) {
      SCOPED_TRACE(std::string(sim::NameOf(fault)) + " at request " + std::to_string(request));
      DieAt(request, fault);
      const int before = Device.Requests;
      if (Session()) break;
      EXPECT_EQ(Device.Requests - before, request + FramesOfAFailure);
      EXPECT_EQ(Bench.TakeMessages(), Texts(request == KindWrite ? 2 : 1, LostLink));
      ExpectClosed();
      EXPECT_EQ(Bench.Link.LoadFailed, request <= KindWrite);
      ExpectQuiet();

      Revive();
      EXPECT_TRUE(Session()) << "the next visit finds everything in order";
      Leave();
      ExpectClosed();
    }
    EXPECT_GE(request, 3 + 2 * 14);
    Leave();
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
  }
}

// A restart loses the motion and the drive's settings, and for a moment its ear: the scope sends
// again and goes on.
TEST_F(ScopeFaultTest, ADriveThatRestartsAtAnyExchangeIsBridged) {
  for (int request = 1; request <= 31; ++request) {
    SCOPED_TRACE(request);
    TurnMotor();
    Device.Drive.Inject(sim::Fault::ResetInTest, sim::Hits::Only(request));
    EXPECT_TRUE(Session());
    EXPECT_TRUE(Window.Plot.CaptureHaveData);
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
    Leave();
    ExpectClosed();
    Device.Drive.ClearFaults();
  }
}

TEST_F(ScopeFaultTest, AFailedLoadIsToldASecondLater) {
  DieAt(EncoderRead, sim::Fault::Silent);
  Open();
  EXPECT_EQ(Bench.TakeFrames(), Texts(FramesOfAFailure, "R 19"));
  EXPECT_TRUE(Window.Visible);
  EXPECT_FALSE(Bench.Link.LinkIdle);
  Bench.User.Close(Window);
  EXPECT_TRUE(Window.Visible) << "not while the failure is to be told";
  Bench.World.RunFor(990);
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
  Bench.World.RunFor(20);
  EXPECT_EQ(Bench.TakeMessages(), (Texts{LostLink}));
  ExpectClosed();
}

TEST_F(ScopeFaultTest, AStartBeforeTheFailedLoadIsToldEndsWithIt) {
  for (const int request : {EncoderRead, KindWrite}) {
    for (const std::int64_t delayMs : {10, 500, 950}) {
      SCOPED_TRACE(std::to_string(request) + ", " + std::to_string(delayMs) + " ms");
      DieAt(request, sim::Fault::Silent);
      Open();
      ClickAfter(delayMs);
      Bench.World.RunFor(20'000);
      EXPECT_EQ(Bench.TakeMessages(), Texts(request == KindWrite ? 2 : 1, LostLink));
      ExpectClosed();
      ExpectQuiet();
      Revive();
    }
  }
}

TEST_F(ScopeFaultTest, TheFailureTimerWithoutAFailureStartsTheCycle) {
  OpenQuietly();
  Window.err.Start();
  Bench.World.RunFor(1040);
  EXPECT_TRUE(Window.Timer1.Enabled());
  EXPECT_FALSE(Window.err.Enabled());
  ASSERT_TRUE(RunToRecording());
  EXPECT_EQ(Bench.TakeFrames().front(), "W 20=200");
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

TEST(ScopeNotReady, GivesUpAtThe802ndAnswer) {
  // Echoes writes, and answers each read with zeros: the recorder never ends.
  ScriptedDevice device([](int, const std::vector<std::uint8_t>& request) {
    std::vector<std::uint8_t> reply(request.begin(), request.begin() + 6);
    if (request[1] == 3) reply = {request[0], 3, 2, 0, 0};
    const Crc16 crc = CalcCrc16(reply);
    reply.insert(reply.end(), {crc.Low, crc.High});
    return std::vector<ScriptedDevice::Reply>{{1000, reply}};
  });
  TuningBench bench(device);
  Form5 window(bench.World, bench.Link, bench.Params, bench.Shell, bench.Trace);
  bench.World.ShowModal(window);
  bench.User.Click(window.Command1);
  bench.TakeFrames();
  bench.World.RunFor(400'000);
  const auto& frames = bench.World.Log.Frames();
  ASSERT_EQ(frames.size(), 1U + 802);
  EXPECT_EQ(frames.back().Text(), "R 28");
  // A poll is eight bytes of 2 ms, two waits of 51 ms and one of 50, each a step longer.
  EXPECT_EQ(frames[802].AtMs - frames[1].AtMs, 801 * (16 + 2 * 52 + 51));
  EXPECT_EQ(bench.TakeMessages(), (Texts{LostLink}));
  EXPECT_FALSE(window.Loaded);
  EXPECT_TRUE(bench.Link.LinkIdle);
}

// The line dies in a cycle, and before the cycle notices the user stops it and starts anew: the
// inner failure is told, the outer handler ends in silence.
TEST_F(ScopeFaultTest, AFailureInsideAFailingCycleIsToldOnce) {
  for (std::int64_t delayMs = 60; delayMs < 2800; delayMs += 53) {
    SCOPED_TRACE(delayMs);
    OpenQuietly();
    Choose(At100Ms);
    Click();
    Bench.World.At(delayMs, [this] {
      Device.Drive.Inject(sim::Fault::Silent);
      Click();
      Click();
    });
    std::size_t sent = 0;
    Bench.World.OnMessage = [&](const Message&) { sent = Bench.World.Log.Frames().size(); };
    Bench.World.RunFor(30'000);
    EXPECT_EQ(Bench.TakeMessages(), (Texts{LostLink}));
    EXPECT_EQ(Bench.World.Log.Frames().size(), sent) << "a closed window sends nothing";
    ExpectClosed();
    Revive();
  }
}

TEST_F(ScopeFaultTest, ClosingWhileStartWritesEndsItInSilence) {
  for (const bool silent : {false, true}) {
    for (std::int64_t delayMs = 0; delayMs < 160; delayMs += 7) {
      SCOPED_TRACE(delayMs);
      OpenQuietly();
      if (silent) Device.Drive.Inject(sim::Fault::Silent);
      bool openedAgain = false;
      Bench.World.At(delayMs, [&] {
        Bench.User.Close(Window);
        if (silent) return;
        Open();
        openedAgain = true;
      });
      Click();
      EXPECT_EQ(Bench.TakeMessages(), Texts{});
      EXPECT_FALSE(Window.Timer1.Enabled());
      if (openedAgain) {
        EXPECT_EQ(Window.Command1.Caption, "Start");
        ExpectQuiet();
        Bench.User.Close(Window);
      }
      ExpectClosed();
      ExpectQuiet();
      Revive();
    }
  }
}

}  // namespace
}  // namespace gainsmith::test
