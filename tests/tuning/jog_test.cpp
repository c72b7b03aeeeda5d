// Form3's jog: presses, releases, and what comes between them.
#include <gtest/gtest.h>

#include <algorithm>

#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;

struct JogTest : ::testing::Test {
  DriveDevice Device;
  PositionBench On{Device};
  TuningBench& Bench = On.Bench;
  Form3& Window = On.Window;

  void SetUp() override {
    Open(On);
    Bench.TakeFrames();
  }
  void ReleaseAfter(std::int64_t delayMs, Button& button) {
    Bench.World.At(delayMs, [this, &button] { Bench.User.Release(button); });
  }
};

TEST_F(JogTest, ALongPressTurnsTheMotorUntilItsRelease) {
  struct Case {
    Button& Pressed;
    const char* Command;
    int Sign;
  };
  for (const Case& c : {Case{Window.Command2, "W 9=1", 1}, Case{Window.Command3, "W 9=5", -1}}) {
    Bench.User.Press(c.Pressed);
    EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 22=167", "W 21=30", c.Command}));
    Bench.World.RunFor(1000);
    Device.Drive.Advance(Bench.World.NowMs() * 1000);
    EXPECT_NEAR(Device.Drive.Motor().ShaftSpeedRpm(), c.Sign * 50, 5);
    Bench.User.Release(c.Pressed);
    EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 9=0"}));
    Bench.World.RunFor(1000);
    Device.Drive.Advance(Bench.World.NowMs() * 1000);
    EXPECT_FALSE(Device.Drive.Moving());
  }
}

TEST_F(JogTest, AReleaseDuringThePressLeavesTheStopToIt) {
  for (std::int64_t delayMs = 1; delayMs < 480; delayMs += 7) {
    SCOPED_TRACE(delayMs);
    ReleaseAfter(delayMs, Window.Command2);
    Bench.User.Press(Window.Command2);
    EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 22=167", "W 21=30", "W 9=1", "W 9=0"}));
    EXPECT_EQ(Window.JogState[Form3::Clockwise], Form3::JogReleased);
  }
}

// The reply to the jog command is lost, so it would go out again: not behind a release.
TEST_F(JogTest, AReleasedCommandIsNotSentAgain) {
  Device.Drive.Inject(sim::Fault::DropNth, sim::Hits::Only(3));
  ReleaseAfter(600, Window.Command2);
  Bench.User.Press(Window.Command2);
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 22=167", "W 21=30", "W 9=1", "W 9=0"}));
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

TEST_F(JogTest, APressMayFollowAReleaseAtAnyMoment) {
  for (std::int64_t delayMs = 1; delayMs < 700; delayMs += 13) {
    SCOPED_TRACE(delayMs);
    ReleaseAfter(delayMs, Window.Command2);
    Bench.World.At(delayMs + 5, [&] { Bench.User.Press(Window.Command2); });
    Bench.User.Press(Window.Command2);
    Bench.World.RunFor(2000);
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 1) << "the button is held";
    Bench.User.Release(Window.Command2);
    Bench.World.RunFor(2000);
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 0);
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
  }
}

TEST_F(JogTest, BothButtonsReleasedMeansStandstill) {
  for (std::int64_t secondMs = 10; secondMs < 700; secondMs += 45) {
    for (std::int64_t firstReleaseMs = 20; firstReleaseMs < 1500; firstReleaseMs += 130) {
      SCOPED_TRACE(std::to_string(secondMs) + ", " + std::to_string(firstReleaseMs));
      ReleaseAfter(firstReleaseMs, Window.Command2);
      Bench.World.At(secondMs, [&] { Bench.User.Press(Window.Command3); });
      ReleaseAfter(secondMs + 300, Window.Command3);
      Bench.User.Press(Window.Command2);
      Bench.World.RunFor(4000);
      EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 0);
    }
  }
}

// Nothing guards a jog against a test: whatever comes of it, Stop and release end it.
TEST_F(JogTest, AJogInARunningTestEndsAtRest) {
  Button& run = Window.Command1[Form3::MainStart];
  Window.Combo1.Choose(1);
  Window.Text1[Form3::RepeatTimes].Text = "5";
  for (std::int64_t delayMs = 100; delayMs < 9000; delayMs += 130) {
    SCOPED_TRACE(delayMs);
    Bench.World.At(delayMs, [&] { Bench.User.Press(Window.Command3); });
    ReleaseAfter(delayMs + 400, Window.Command3);
    // Not before the button says so: a jog inside the first write puts that off.
    Bench.World.At(std::max<std::int64_t>(delayMs + 600, 2000), [&] {
      if (run.Caption == "Stop") Bench.User.Click(run);
    });
    Bench.User.Click(run);
    Bench.World.RunFor(25000);
    if (run.Caption == "Stop") Bench.User.Click(run);
    Bench.World.RunFor(5000);
    EXPECT_EQ(run.Caption, "Start");
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 0);
    EXPECT_TRUE(Bench.Link.LinkIdle);
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
  }
}

TEST_F(JogTest, FieldsTakeDigitsAndEnterSendsThem) {
  Bench.User.Type(Window.Text2, "-1.5e9x");
  EXPECT_EQ(Window.Text2.Text, "159");
  Bench.User.Enter(Window.Text2);
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 22=530"}));
  Bench.User.Type(Window.Text3, "11");
  Bench.User.Enter(Window.Text3);
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 21=1"}));
  EXPECT_FALSE(Window.Text2.OnKeyPress(KeyEnter));
  EXPECT_TRUE(Window.Text2.OnKeyPress(KeyBackspace));
}

TEST_F(JogTest, ABadFieldIsCorrectedAndThePressGoesOn) {
  struct Case {
    TextBox& Field;
    const char* Bad;
    const char* Corrected;
    Texts Frames;
  };
  const Case cases[] = {
      {Window.Text2, "", "1", {"W 21=30", "W 9=1", "W 9=0"}},
      {Window.Text2, "20000", "1", {"W 21=30", "W 9=1", "W 9=0"}},
      {Window.Text3, "10", "10", {"W 22=167", "W 9=1", "W 9=0"}},
      {Window.Text3, "-300", "10", {"W 22=167", "W 9=1", "W 9=0"}},
  };
  for (const Case& c : cases) {
    Window.Text2.Text = "50";
    Window.Text3.Text = "300";
    c.Field.Text = c.Bad;
    Bench.User.Press(Window.Command2);
    Bench.User.Release(Window.Command2);
    EXPECT_EQ(c.Field.Text, c.Corrected);
    EXPECT_EQ(Bench.TakeFrames(), c.Frames);
    EXPECT_EQ(Bench.TakeMessages(), (Texts{"Please input a value of 0-65535"}));
  }
}

TEST_F(JogTest, ALostLinkIsSaidOnceAndNeverTurnsTheMotorAgain) {
  for (int good = 0; good < 4; ++good) {
    SCOPED_TRACE(good);
    // Silent from the exchange after the good ones.
    Bench.World.At(good * 163, [&] { Device.Drive.Inject(sim::Fault::Silent); });
    ReleaseAfter(3000, Window.Command2);
    Bench.User.Press(Window.Command2);
    Bench.World.RunFor(20000);
    EXPECT_EQ(Bench.TakeMessages(), (Texts{LostLink}));
    EXPECT_FALSE(Window.Loaded);
    Device.Drive.ClearFaults();
    Device.Drive.Reset(Bench.World.NowMs() * 1000);
    Bench.World.RunFor(1000);
    Open(On);
    EXPECT_TRUE(Window.Loaded);
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
  }
}

}  // namespace
}  // namespace gainsmith::test
