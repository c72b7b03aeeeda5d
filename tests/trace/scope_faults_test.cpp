// Form5 on a spoilt line: one message, a closed window, nothing left running.
#include "trace/scope_bench.h"

namespace gainsmith::test {
namespace {

constexpr int EncoderRead = 0;
constexpr int KindWrite = 1;
constexpr int FramesOfAFailure = 12;

struct ScopeFaultTest : ScopeTest {
  // What comes when the line dies with request `number` from now.
  void DieAt(int number, sim::Fault fault) {
    AtRequest(number, [this, fault] { Device.Drive.Inject(fault); });
  }
  // Nothing goes on, and the line is mended.
  void ExpectClosedAndQuiet() {
    ExpectClosed();
    ExpectQuiet();
    Device.BeforeRequest = {};
    Device.Drive.ClearFaults();
    Device.Drive.Reconnect();
  }
  // Load, Start and the first cycle. False when the window was closed on the way.
  bool Session() {
    OpenQuietly();
    World.RunFor(1100);
    if (!Window.Loaded) return false;
    Choose(At100Ms);
    Click();
    World.RunUntil([&] { return Window.Plot.CaptureHaveData || !Window.Loaded; }, 30'000);
    return Window.Loaded;
  }
};

TEST_F(ScopeFaultTest, ALineThatDiesAtAnyExchangeClosesTheWindowAndARestartIsBridged) {
  constexpr int RequestsOfASession = 3 + 14;
  for (const sim::Fault fault : {sim::Fault::Silent, sim::Fault::HangUp}) {
    for (int request = 0; request < RequestsOfASession; ++request) {
      SCOPED_TRACE(std::string(sim::NameOf(fault)) + " at request " + std::to_string(request));
      DieAt(request, fault);
      const int before = Device.Requests;
      EXPECT_FALSE(Session());
      EXPECT_EQ(Device.Requests - before, request + FramesOfAFailure);
      EXPECT_EQ(TakeMessages(), Texts(request == KindWrite ? 2 : 1, LostLink));
      ExpectClosedAndQuiet();

      // The next visit finds all in order. A restart loses the motion and the drive's settings,
      // and for a moment its ear: the scope sends again and goes on.
      TurnMotor();
      Device.Drive.Inject(sim::Fault::ResetInTest, sim::Hits::Only(request + 1));
      EXPECT_TRUE(Session());
      EXPECT_EQ(TakeMessages(), Texts{});
      Click();
      User.Close(Window);
      ExpectClosed();
      Device.Drive.ClearFaults();
    }
  }
}

TEST_F(ScopeFaultTest, AFailedLoadIsToldASecondLaterThoughStartWasClicked) {
  std::int64_t toldMs = 0;
  World.OnMessage = [&](const Message&) { toldMs = World.NowMs(); };
  for (const int request : {EncoderRead, KindWrite}) {
    DieAt(request, sim::Fault::Silent);
    Open();
    EXPECT_EQ(TakeMessages(), Texts(request == KindWrite ? 1 : 0, LostLink));
    const std::int64_t failedMs = World.NowMs();
    User.Close(Window);
    EXPECT_TRUE(Window.Visible) << "not while the failure is to be told";
    ClickAfter(500);
    World.RunFor(20'000);
    EXPECT_EQ(toldMs, failedMs + 1000);
    EXPECT_EQ(TakeMessages(), (Texts{LostLink}));
    ExpectClosedAndQuiet();
  }
}

// The line dies in a cycle, and before the cycle notices the user stops it and starts anew: the
// inner failure is told, the outer handler ends in silence.
TEST_F(ScopeFaultTest, AFailureInsideAFailingCycleIsToldOnce) {
  for (std::int64_t delayMs = 60; delayMs < 2800; delayMs += 53) {
    SCOPED_TRACE(delayMs);
    OpenQuietly();
    Choose(At100Ms);
    Click();
    World.At(delayMs, [this] {
      Device.Drive.Inject(sim::Fault::Silent);
      Click();
      Click();
    });
    World.RunFor(30'000);
    EXPECT_EQ(TakeMessages(), (Texts{LostLink}));
    ExpectClosedAndQuiet();
  }
}

TEST_F(ScopeFaultTest, ClosingWhileStartWritesEndsItInSilence) {
  for (std::int64_t delayMs = 0; delayMs < 160; delayMs += 7) {
    SCOPED_TRACE(delayMs);
    OpenQuietly();
    Device.Drive.Inject(sim::Fault::Silent);
    std::size_t sent = 0;
    World.At(delayMs, [&] {
      User.Close(Window);
      sent = World.Log.Frames().size();
    });
    Click();
    EXPECT_LE(World.Log.Frames().size(), sent + 1) << "none is sent again";
    EXPECT_EQ(TakeMessages(), Texts{});
    ExpectClosedAndQuiet();
  }
}

}  // namespace
}  // namespace gainsmith::test
