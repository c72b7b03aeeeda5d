// The run-button scheme, in both of its windows: Stop at every moment, storms of clicks, and a
// drive that never finishes.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "link/frames.h"
#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

template <typename WindowBench>
class RunSchemeTest : public ::testing::Test {};

using Windows = ::testing::Types<VelocityBench, PositionBench>;
TYPED_TEST_SUITE(RunSchemeTest, Windows);

// Whole frames only, each as it was built: no two of them were ever mixed on the line.
bool OneFrameAtATime(const VirtualWorld& world) {
  for (const LoggedFrame& frame : world.Log.Frames()) {
    const Crc16 crc = CalcCrc16(std::span(frame.Bytes).first(6));
    if (frame.Bytes[6] != crc.Low || frame.Bytes[7] != crc.High) return false;
  }
  return true;
}

// The Stop click falls into every wait of a test in turn. A run command whose reply is lost would
// be sent again: not behind the Stop.
TYPED_TEST(RunSchemeTest, StopMeansStopAtEveryMoment) {
  for (const bool replyLost : {false, true}) {
    for (std::int64_t delayMs = 200; delayMs < 8000; delayMs += delayMs < 2500 ? 11 : 53) {
      SCOPED_TRACE(std::to_string(delayMs) + (replyLost ? ", reply lost" : ""));
      TypeParam on;
      on.OpenShortTest();
      std::int64_t clickedMs = 0;
      std::size_t before = 0;
      on.World.At(delayMs, [&] {
        if (on.RunButton.Caption != "Stop") return;
        clickedMs = on.World.NowMs();
        before = on.World.Log.Frames().size();
        on.User.Click(on.RunButton);
      });
      if (replyLost) {
        on.Device.Drive.Inject(sim::Fault::DropNth, sim::Hits::Only(TypeParam::RunRequest));
      }
      on.User.Click(on.RunButton);
      on.World.RunFor(20000);
      ASSERT_NE(clickedMs, 0);
      const auto& frames = on.World.Log.Frames();
      const std::string command = "W " + std::to_string(TypeParam::CommandRegister) + "=";
      EXPECT_EQ(frames[before].Text(), command + "0") << "the stop word is the next to go out";
      EXPECT_LE(frames[before].AtMs - clickedMs, 220);
      for (std::size_t i = before; i < frames.size(); ++i) {
        EXPECT_NE(frames[i].Text(), command + "2");
      }
      ExpectStopped(on);
      on.User.Close(on.Window);
      EXPECT_FALSE(on.Window.Loaded);
    }
  }
}

TYPED_TEST(RunSchemeTest, AStormOfClicksEndsWhereItsLastWordSays) {
  constexpr int Runs = 1200;
  std::ptrdiff_t testsStarted = 0;
  for (int seed = 0; seed < Runs && !this->HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(static_cast<std::uint32_t>(seed));
    const auto upTo = [&](std::uint32_t most) { return static_cast<int>(random() % (most + 1)); };
    TypeParam on;
    sim::SimulatedDrive& drive = on.Device.Drive;
    on.OpenShortTest();
    if (seed % 2 == 0) on.ChangeAGain("55");
    if (seed % 3 == 0) drive.Inject(sim::Fault::DropNth, sim::Hits::Every(5 + upTo(20)));
    if (seed % 7 == 0) drive.Inject(sim::Fault::LateReply, sim::Hits::Every(4 + upTo(9)));

    std::int64_t delayMs = 0;
    for (int clicks = 2 + upTo(20); clicks > 0; --clicks) {
      constexpr std::uint32_t LongestGapMs[] = {150, 1000, 6000};
      delayMs += upTo(LongestGapMs[random() % 3]);
      on.World.At(delayMs, [&] { static_cast<void>(on.User.TryClick(on.RunButton)); });
    }
    on.World.RunFor(delayMs + 1);
    if (on.RunButton.Caption == "Stop") on.User.Click(on.RunButton);
    on.World.RunFor(30000);

    ExpectStopped(on);
    EXPECT_TRUE(OneFrameAtATime(on.World));
    const std::vector<int> commands = on.World.Log.Writes(TypeParam::CommandRegister);
    testsStarted += std::count(commands.begin(), commands.end(), 2);
    EXPECT_EQ(on.Link.Read(Errand(on.Link), Register::EncoderCounts), Sent::Taken);
    on.User.Close(on.Window);
    EXPECT_FALSE(on.Window.Loaded);
  }
  EXPECT_GT(testsStarted, Runs);
}

// The window may go while its test is being started, as long as it counts as idle. Only a test that
// has begun goes on without it.
TYPED_TEST(RunSchemeTest, ClosingWhileATestIsStartedStartsNone) {
  TypeParam on;
  for (std::int64_t delayMs = 5; delayMs < TypeParam::ClosableMs; delayMs += 17) {
    SCOPED_TRACE(delayMs);
    on.Open(on.Window);
    on.World.Log.Clear();
    constexpr std::int64_t NotBegun = -1;
    on.Window.Run.TestStartTick = NotBegun;
    bool begun = false;
    on.World.At(delayMs, [&] {
      begun = on.Window.Run.TestStartTick != NotBegun;
      on.User.Close(on.Window);
    });
    on.User.Click(on.RunButton);
    EXPECT_FALSE(on.Window.Loaded || on.Shell[TypeParam::Mark] || on.Shell.ChildWindowOpen);
    EXPECT_TRUE(on.Link.LinkIdle);
    const std::vector<int> commands = on.World.Log.Writes(TypeParam::CommandRegister);
    EXPECT_EQ(!commands.empty() && commands.back() != 0, begun);
    EXPECT_FALSE(on.Window.DataSource.Enabled());
    EXPECT_EQ(on.TakeMessages(), Texts{});
  }
}

TYPED_TEST(RunSchemeTest, ARecordingThatNeverCompletesIsGivenUp) {
  TypeParam on;
  on.OpenShortTest();
  // The drive takes a sample every half minute.
  on.Device.BeforeRequest = [&](int) {
    on.Device.Drive.Registers()[sim::Reg::SampleDivider] = 65535;
  };
  on.User.Click(on.RunButton);
  const Texts frames = on.TakeFrames();
  EXPECT_EQ(std::count(frames.begin(), frames.end(), "R 28"), 17);
  EXPECT_EQ(on.TakeMessages(), (Texts{LostLinkText}));
  EXPECT_FALSE(on.Window.Loaded);
  EXPECT_TRUE(on.Trace.TraceReadFailed);
}

}  // namespace
}  // namespace gainsmith::test
