// Form5 on a spoilt line: one message, a closed window, nothing left running.
#include "trace/scope_bench.h"

namespace gainsmith::test {
namespace {

constexpr int EncoderRead = 0;
constexpr int KindWrite = 1;

struct ScopeFaultTest : ScopeTest {
  // Nothing goes on, and the line is mended.
  void ExpectClosedAndQuiet() {
    ExpectClosed();
    ExpectQuiet();
    Device.BeforeRequest = {};
    Device.Drive.ClearFaults();
    Device.Drive.Reconnect();
  }
};

TEST_F(ScopeFaultTest, AFailedLoadIsToldASecondLaterThoughStartWasClicked) {
  std::int64_t toldMs = 0;
  World.OnMessage = [&](const Message&) { toldMs = World.NowMs(); };
  for (const int request : {EncoderRead, KindWrite}) {
    AtRequest(request, [this] { Device.Drive.Inject(sim::Fault::Silent); });
    Open();
    EXPECT_EQ(TakeMessages(), Texts(request == KindWrite ? 1 : 0, LostLinkText));
    const std::int64_t failedMs = World.NowMs();
    User.Close(Window);
    EXPECT_TRUE(Window.Visible) << "not while the failure is to be told";
    ClickAfter(500);
    World.RunFor(20'000);
    EXPECT_EQ(toldMs, failedMs + 1000);
    EXPECT_EQ(TakeMessages(), (Texts{LostLinkText}));
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
    EXPECT_EQ(TakeMessages(), (Texts{LostLinkText}));
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
