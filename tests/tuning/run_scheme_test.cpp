// The run-button scheme, in both of its windows: Stop at every moment, storms of clicks, and lines
// and drives that fail at every exchange.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "link/frames.h"
#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;

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

// The Stop click falls into every wait of a test in turn.
TYPED_TEST(RunSchemeTest, StopMeansStopAtEveryMoment) {
  TypeParam on;
  for (std::int64_t delayMs = 200; delayMs < 8000; delayMs += delayMs < 2500 ? 11 : 53) {
    SCOPED_TRACE(delayMs);
    on.OpenShortTest();
    std::int64_t clickedMs = 0;
    std::size_t before = 0;
    on.World.At(delayMs, [&] {
      if (on.RunButton.Caption != "Stop") return;
      clickedMs = on.World.NowMs();
      before = on.World.Log.Frames().size();
      on.User.Click(on.RunButton);
    });
    on.User.Click(on.RunButton);
    on.World.RunFor(20000);
    ASSERT_NE(clickedMs, 0);
    const auto& frames = on.World.Log.Frames();
    const std::string command = "W " + std::to_string(TypeParam::CommandRegister) + "=";
    EXPECT_EQ(frames[before].Text(), command + "0") << "the stop word is the next to go out";
    EXPECT_LE(frames[before].AtMs - clickedMs, 220);
    for (std::size_t i = before; i < frames.size(); ++i) EXPECT_NE(frames[i].Text(), command + "2");
    ExpectStopped(on);
    on.User.Close(on.Window);
    EXPECT_FALSE(on.Window.Loaded);
  }
}

// The reply to the run command is lost, so it would be sent again: not behind the Stop.
TYPED_TEST(RunSchemeTest, AStopKeepsTheRunCommandFromGoingOutAgain) {
  for (std::int64_t lateMs = 5; lateMs < 620; lateMs += 15) {
    SCOPED_TRACE(lateMs);
    TypeParam on;
    on.OpenShortTest();
    bool spoilt = false;
    on.Device.BeforeRequest = [&](int) {
      if (spoilt || on.World.Log.Writes(20).empty()) return;
      spoilt = true;
      on.Device.Drive.Inject(sim::Fault::DropNth, sim::Hits::Only(1));
      on.ClickAfter(lateMs, on.RunButton);
    };
    on.User.Click(on.RunButton);
    on.World.RunFor(30000);
    const std::vector<int> commands = on.World.Log.Writes(TypeParam::CommandRegister);
    EXPECT_LE(std::count(commands.begin(), commands.end(), 2), 1);
    ExpectStopped(on);
  }
}

TYPED_TEST(RunSchemeTest, AStormOfClicksEndsWhereItsLastWordSays) {
  constexpr int Runs = 1200;
  std::ptrdiff_t testsStarted = 0;
  for (int seed = 0; seed < Runs && !this->HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(static_cast<std::uint32_t>(seed));
    const auto upTo = [&](std::uint32_t most) { return static_cast<int>(random() % (most + 1)); };
    sim::DriveOptions options;
    options.Seed = static_cast<std::uint32_t>(seed);
    TypeParam on(options);
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
    EXPECT_TRUE(on.Link.Read(Register::EncoderCounts));
    on.User.Close(on.Window);
    EXPECT_FALSE(on.Window.Loaded);
  }
  EXPECT_GT(testsStarted, Runs);
}

// --- Failures.

// From the opening of the window: a test with two recordings and more, and its Stop. `event` is
// what befalls the drive at request `at`. Gives the number of requests.
template <typename WindowBench>
int Play(WindowBench& on, int at = -1, const std::function<void()>& event = {}) {
  on.Device.BeforeRequest = [&](int number) {
    if (number == at) event();
  };
  on.OpenShortTest();
  // After a failed load the message is still to come.
  if (on.Link.LinkIdle) on.User.Click(on.RunButton);
  on.World.RunFor(5000);
  if (on.Window.Loaded) on.User.Click(on.RunButton);
  on.World.RunFor(30000);
  on.Device.BeforeRequest = {};
  return on.Device.Requests;
}

TYPED_TEST(RunSchemeTest, ALostLinkIsSaidOnceAndClosesTheWindow) {
  TypeParam undisturbed;
  const int requests = Play(undisturbed);
  ASSERT_GT(requests, TypeParam::LoadRequests + 30);
  for (const sim::Fault fault : {sim::Fault::Silent, sim::Fault::HangUp, sim::Fault::BadCrc}) {
    for (int good = 0; good < requests; ++good) {
      SCOPED_TRACE(std::string(sim::NameOf(fault)) + " at " + std::to_string(good));
      TypeParam on;
      Play(on, good, [&] { on.Device.Drive.Inject(fault); });
      ASSERT_EQ(on.World.Messages.size(), 1U);
      EXPECT_EQ(on.World.Messages[0].Title, "Cmmunication Error");
      EXPECT_EQ(on.TakeMessages(), (Texts{LostLink}));
      EXPECT_FALSE(on.Window.Loaded);
      EXPECT_TRUE(on.Link.LinkIdle);
      EXPECT_FALSE(on.Shell[TypeParam::Mark] || on.Shell.ChildWindowOpen);

      // It opens again, and ends what was left running.
      on.Device.Drive.ClearFaults();
      on.Device.Drive.Reconnect();
      on.Open(on.Window);
      ExpectStopped(on);
    }
  }
}

TYPED_TEST(RunSchemeTest, ADriveThatRestartsIsNotALostLink) {
  TypeParam undisturbed;
  const int requests = Play(undisturbed);
  for (int good = TypeParam::LoadRequests; good < requests; ++good) {
    SCOPED_TRACE(good);
    TypeParam on;
    Play(on, good, [&] { on.Device.Drive.Reset(on.World.NowMs() * 1000); });
    ExpectStopped(on);
    on.User.Close(on.Window);
    EXPECT_FALSE(on.Window.Loaded);
  }
}

// A drive that answers everything, and whose recorder never finishes.
TYPED_TEST(RunSchemeTest, ARecordingThatNeverCompletesIsGivenUp) {
  ScriptedDevice device([](int, const std::vector<std::uint8_t>& request) {
    std::vector<std::uint8_t> reply(request.begin(), request.begin() + 6);
    if (request[1] == 3) reply = {request[0], 3, 2, 0, 0};
    if (request[1] == 3 && request[3] != 28) reply[3] = 16;
    const Crc16 crc = CalcCrc16(reply);
    reply.insert(reply.end(), {crc.Low, crc.High});
    return std::vector<ScriptedDevice::Reply>{{1000, reply}};
  });
  TypeParam on;
  on.Plug(device);
  on.OpenShortTest();
  on.User.Click(on.RunButton);
  const Texts frames = on.TakeFrames();
  EXPECT_EQ(std::count(frames.begin(), frames.end(), "R 28"), 17);
  EXPECT_EQ(on.TakeMessages(), (Texts{LostLink}));
  EXPECT_FALSE(on.Window.Loaded);
  EXPECT_TRUE(on.Trace.TraceReadFailed);
}

// The Stop itself meets the dead line, nested in a test that waits: one message for both.
TYPED_TEST(RunSchemeTest, AStopIntoADeadLineIsSaidOnce) {
  for (std::int64_t delayMs = 400; delayMs < 6000; delayMs += 97) {
    SCOPED_TRACE(delayMs);
    TypeParam on;
    on.OpenShortTest();
    on.World.At(delayMs, [&] {
      on.Device.Drive.Inject(sim::Fault::Silent);
      on.User.Click(on.RunButton);
    });
    on.User.Click(on.RunButton);
    on.World.RunFor(60000);
    EXPECT_EQ(on.TakeMessages(), (Texts{LostLink}));
    EXPECT_FALSE(on.Window.Loaded);
    EXPECT_TRUE(on.Link.LinkIdle);
  }
}

}  // namespace
}  // namespace gainsmith::test
