// The run-button scheme, in both of its windows: Stop at every moment, storms of clicks, and lines
// and drives that fail at every exchange.
#include <gtest/gtest.h>

#include <algorithm>
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

template <typename WindowBench>
bool AtRest(WindowBench& on, sim::SimulatedDrive& drive) {
  drive.Advance(on.Bench.World.NowMs() * 1000);
  const std::vector<int> commands = on.Bench.World.Log.Writes(WindowBench::CommandRegister);
  return !drive.Moving() && (commands.empty() || commands.back() == 0);
}

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
  DriveDevice device;
  TypeParam on(device);
  VirtualWorld& world = on.Bench.World;
  for (std::int64_t delayMs = 200; delayMs < 8000; delayMs += delayMs < 2500 ? 11 : 53) {
    SCOPED_TRACE(delayMs);
    Open(on);
    on.EnterShortTest();
    on.Bench.TakeFrames();
    std::int64_t clickedMs = 0;
    std::size_t before = 0;
    world.At(delayMs, [&] {
      if (on.RunButton.Caption != "Stop") return;
      clickedMs = world.NowMs();
      before = world.Log.Frames().size();
      on.Bench.User.Click(on.RunButton);
    });
    on.Bench.User.Click(on.RunButton);
    world.RunFor(20000);
    ASSERT_NE(clickedMs, 0);
    const auto& frames = world.Log.Frames();
    const std::string command = "W " + std::to_string(TypeParam::CommandRegister) + "=";
    EXPECT_EQ(frames[before].Text(), command + "0") << "the stop word is the next to go out";
    EXPECT_LE(frames[before].AtMs - clickedMs, 220);
    for (std::size_t i = before; i < frames.size(); ++i) EXPECT_NE(frames[i].Text(), command + "2");
    EXPECT_EQ(on.RunButton.Caption, "Start");
    EXPECT_TRUE(on.Bench.Link.LinkIdle);
    EXPECT_FALSE(on.Window.DataSource.Enabled());
    EXPECT_EQ(on.Window.Pointer, MousePointer::Default);
    EXPECT_TRUE(AtRest(on, device.Drive));
    EXPECT_EQ(on.Bench.TakeMessages(), Texts{});
    on.Bench.User.Close(on.Window);
    EXPECT_FALSE(on.Window.Loaded);
  }
}

// The reply to the run command is lost, so it would be sent again: not behind the Stop.
TYPED_TEST(RunSchemeTest, AStopKeepsTheRunCommandFromGoingOutAgain) {
  for (std::int64_t lateMs = 5; lateMs < 620; lateMs += 15) {
    SCOPED_TRACE(lateMs);
    TappedDrive device;
    TypeParam on(device);
    Open(on);
    on.Bench.TakeFrames();
    bool spoilt = false;
    device.BeforeRequest = [&](int) {
      if (spoilt || on.Bench.World.Log.Writes(20).empty()) return;
      spoilt = true;
      device.Drive.Inject(sim::Fault::DropNth, sim::Hits::Only(1));
      on.Bench.World.At(lateMs, [&] { on.Bench.User.Click(on.RunButton); });
    };
    on.Bench.User.Click(on.RunButton);
    on.Bench.World.RunFor(30000);
    const std::vector<int> commands = on.Bench.World.Log.Writes(TypeParam::CommandRegister);
    EXPECT_LE(std::count(commands.begin(), commands.end(), 2), 1);
    EXPECT_TRUE(AtRest(on, device.Drive));
    EXPECT_EQ(on.Bench.TakeMessages(), Texts{});
  }
}

TYPED_TEST(RunSchemeTest, AStormOfClicksEndsWhereItsLastWordSays) {
  constexpr int Runs = 1200;
  std::ptrdiff_t testsStarted = 0;
  for (int seed = 0; seed < Runs; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(static_cast<std::uint32_t>(seed));
    const auto upTo = [&](std::uint32_t most) { return static_cast<int>(random() % (most + 1)); };
    sim::DriveOptions options;
    options.Seed = static_cast<std::uint32_t>(seed);
    DriveDevice device(options);
    TypeParam on(device);
    Open(on);
    on.Bench.TakeFrames();
    on.EnterShortTest();
    if (seed % 2 == 0) on.ChangeAGain("55");
    if (seed % 3 == 0) device.Drive.Inject(sim::Fault::DropNth, sim::Hits::Every(5 + upTo(20)));
    if (seed % 7 == 0) device.Drive.Inject(sim::Fault::LateReply, sim::Hits::Every(4 + upTo(9)));

    std::int64_t delayMs = 0;
    for (int clicks = 2 + upTo(20); clicks > 0; --clicks) {
      constexpr std::uint32_t LongestGapMs[] = {150, 1000, 6000};
      delayMs += upTo(LongestGapMs[random() % 3]);
      on.Bench.World.At(delayMs, [&] { static_cast<void>(on.Bench.User.TryClick(on.RunButton)); });
    }
    on.Bench.World.RunFor(delayMs + 1);
    if (on.RunButton.Caption == "Stop") on.Bench.User.Click(on.RunButton);
    on.Bench.World.RunFor(30000);

    ASSERT_EQ(on.Bench.TakeMessages(), Texts{});
    ASSERT_EQ(on.RunButton.Caption, "Start");
    ASSERT_TRUE(AtRest(on, device.Drive));
    ASSERT_TRUE(on.Bench.Link.LinkIdle);
    ASSERT_FALSE(on.Window.DataSource.Enabled());
    ASSERT_TRUE(OneFrameAtATime(on.Bench.World));
    const std::vector<int> commands = on.Bench.World.Log.Writes(TypeParam::CommandRegister);
    testsStarted += std::count(commands.begin(), commands.end(), 2);
    ASSERT_TRUE(on.Bench.Link.Read(Register::EncoderCounts));
    on.Bench.User.Close(on.Window);
    ASSERT_FALSE(on.Window.Loaded);
  }
  EXPECT_GT(testsStarted, Runs);
}

// --- Failures.

template <typename WindowBench>
struct Session {
  TappedDrive Device;
  WindowBench On{Device};

  // From the opening of the window: a test with two recordings and more, and its Stop.
  void Play() {
    VirtualWorld& world = On.Bench.World;
    Open(On);
    if (!On.Bench.Link.LinkIdle) {
      world.RunFor(1100);
      return;
    }
    On.EnterShortTest();
    On.Bench.User.Click(On.RunButton);
    world.RunFor(5000);
    if (On.Window.Loaded) On.Bench.User.Click(On.RunButton);
    world.RunFor(30000);
  }
};

template <typename WindowBench>
int RequestsOfASession() {
  Session<WindowBench> session;
  session.Play();
  return session.Device.Requests;
}

TYPED_TEST(RunSchemeTest, ALostLinkIsSaidOnceAndClosesTheWindow) {
  const int requests = RequestsOfASession<TypeParam>();
  ASSERT_GT(requests, TypeParam::LoadRequests + 30);
  for (const sim::Fault fault : {sim::Fault::Silent, sim::Fault::HangUp, sim::Fault::BadCrc}) {
    for (int good = 0; good < requests; ++good) {
      SCOPED_TRACE(std::string(sim::NameOf(fault)) + " at " + std::to_string(good));
      Session<TypeParam> session;
      TypeParam& on = session.On;
      session.Device.BeforeRequest = [&](int number) {
        if (number == good) session.Device.Drive.Inject(fault);
      };
      session.Play();
      ASSERT_EQ(on.Bench.World.Messages.size(), 1U);
      EXPECT_EQ(on.Bench.World.Messages[0].Title, "Cmmunication Error");
      EXPECT_EQ(on.Bench.TakeMessages(), (Texts{LostLink}));
      EXPECT_FALSE(on.Window.Loaded);
      EXPECT_TRUE(on.Bench.Link.LinkIdle);
      EXPECT_FALSE(on.Bench.Shell[on.Mark()] || on.Bench.Shell.ChildWindowOpen);

      session.Device.BeforeRequest = {};
      session.Device.Drive.ClearFaults();
      session.Device.Drive.Reconnect();
      Open(on);
      EXPECT_TRUE(on.Bench.Link.LinkIdle) << "opens again";
      EXPECT_EQ(on.RunButton.Caption, "Start");
      EXPECT_TRUE(AtRest(on, session.Device.Drive)) << "and ends what was left running";
    }
  }
}

TYPED_TEST(RunSchemeTest, ADriveThatRestartsIsNotALostLink) {
  const int requests = RequestsOfASession<TypeParam>();
  for (int good = TypeParam::LoadRequests; good < requests; ++good) {
    SCOPED_TRACE(good);
    Session<TypeParam> session;
    TypeParam& on = session.On;
    session.Device.BeforeRequest = [&](int number) {
      if (number == good) session.Device.Drive.Reset(on.Bench.World.NowMs() * 1000);
    };
    session.Play();
    EXPECT_EQ(on.Bench.TakeMessages(), Texts{});
    EXPECT_EQ(on.RunButton.Caption, "Start");
    EXPECT_TRUE(AtRest(on, session.Device.Drive));
    on.Bench.User.Close(on.Window);
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
  TypeParam on(device);
  Open(on);
  on.EnterShortTest();
  on.Bench.TakeFrames();
  on.Bench.User.Click(on.RunButton);
  const Texts frames = on.Bench.World.Log.Texts();
  EXPECT_EQ(std::count(frames.begin(), frames.end(), "R 28"), 17);
  EXPECT_EQ(on.Bench.TakeMessages(), (Texts{LostLink}));
  EXPECT_FALSE(on.Window.Loaded);
  EXPECT_TRUE(on.Bench.Trace.TraceReadFailed);
}

// The Stop itself meets the dead line, nested in a test that waits: one message for both.
TYPED_TEST(RunSchemeTest, AStopIntoADeadLineIsSaidOnce) {
  for (std::int64_t delayMs = 400; delayMs < 6000; delayMs += 97) {
    SCOPED_TRACE(delayMs);
    DriveDevice device;
    TypeParam on(device);
    Open(on);
    on.EnterShortTest();
    on.Bench.World.At(delayMs, [&] {
      device.Drive.Inject(sim::Fault::Silent);
      on.Bench.User.Click(on.RunButton);
    });
    on.Bench.User.Click(on.RunButton);
    on.Bench.World.RunFor(60000);
    EXPECT_EQ(on.Bench.TakeMessages(), (Texts{LostLink}));
    EXPECT_FALSE(on.Window.Loaded);
    EXPECT_TRUE(on.Bench.Link.LinkIdle);
  }
}

}  // namespace
}  // namespace gainsmith::test
