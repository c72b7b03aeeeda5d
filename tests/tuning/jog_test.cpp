// Form3's jog: presses, releases, and what comes between them.
#include <gtest/gtest.h>

#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

struct JogTest : ::testing::Test, PositionBench {
  void SetUp() override {
    Open(Window);
    TakeFrames();
  }
  void PressAfter(std::int64_t delayMs, Button& button) {
    World.At(delayMs, [this, &button] { User.Press(button); });
  }
  void ReleaseAfter(std::int64_t delayMs, Button& button) {
    World.At(delayMs, [this, &button] { User.Release(button); });
  }
};

TEST_F(JogTest, ALongPressTurnsTheMotorUntilItsRelease) {
  struct Case {
    Button& Pressed;
    const char* Command;
    double Rpm;
  };
  for (const Case& c : {Case{Window.Command2, "W 9=1", 50}, Case{Window.Command3, "W 9=5", -50}}) {
    User.Press(c.Pressed);
    EXPECT_EQ(TakeFrames(), (Texts{"W 22=167", "W 21=30", c.Command}));
    World.RunFor(1000);
    Device.Drive.Advance(World.NowMs() * 1000);
    EXPECT_NEAR(Device.Drive.Motor().ShaftSpeedRpm(), c.Rpm, 5);
    User.Release(c.Pressed);
    EXPECT_EQ(TakeFrames(), (Texts{"W 9=0"}));
    World.RunFor(1000);
    ExpectStopped(*this);
  }
}

// A jog command whose reply is lost would go out again: not behind a release.
TEST_F(JogTest, AReleaseDuringThePressLeavesTheStopToIt) {
  for (const bool replyLost : {false, true}) {
    for (std::int64_t delayMs = 1; delayMs < (replyLost ? 700 : 480); delayMs += 7) {
      SCOPED_TRACE(delayMs);
      if (replyLost) Device.Drive.Inject(sim::Fault::DropNth, sim::Hits::Only(3));
      ReleaseAfter(delayMs, Window.Command2);
      User.Press(Window.Command2);
      EXPECT_EQ(TakeFrames(), (Texts{"W 22=167", "W 21=30", "W 9=1", "W 9=0"}));
      EXPECT_EQ(Window.JogState[Form3::Clockwise], Form3::JogReleased);
      EXPECT_EQ(TakeMessages(), Texts{});
    }
  }
}

TEST_F(JogTest, APressMayFollowAReleaseAtAnyMoment) {
  for (std::int64_t delayMs = 1; delayMs < 700; delayMs += 13) {
    SCOPED_TRACE(delayMs);
    ReleaseAfter(delayMs, Window.Command2);
    PressAfter(delayMs + 5, Window.Command2);
    User.Press(Window.Command2);
    World.RunFor(2000);
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 1) << "the button is held";
    User.Release(Window.Command2);
    World.RunFor(2000);
    ExpectStopped(*this);
  }
}

TEST_F(JogTest, BothButtonsReleasedMeansStandstill) {
  for (std::int64_t secondMs = 10; secondMs < 700; secondMs += 45) {
    for (std::int64_t firstReleaseMs = 20; firstReleaseMs < 1500; firstReleaseMs += 130) {
      SCOPED_TRACE(std::to_string(secondMs) + ", " + std::to_string(firstReleaseMs));
      ReleaseAfter(firstReleaseMs, Window.Command2);
      PressAfter(secondMs, Window.Command3);
      ReleaseAfter(secondMs + 300, Window.Command3);
      User.Press(Window.Command2);
      World.RunFor(4000);
      ExpectStopped(*this);
    }
  }
}

TEST_F(JogTest, FieldsTakeDigitsAndEnterSendsThem) {
  User.Type(Window.Text2, "-1.5e9x");
  EXPECT_EQ(Window.Text2.Text, "159");
  EXPECT_TRUE(Window.Text2.OnKeyPress(KeyBackspace));
  User.Enter(Window.Text2);
  User.Type(Window.Text3, "11");
  User.Enter(Window.Text3);
  EXPECT_EQ(TakeFrames(), (Texts{"W 22=530", "W 21=1"}));
}

TEST_F(JogTest, ABadFieldIsCorrectedAndThePressGoesOn) {
  struct Case {
    TextBox& Field;
    Texts Bad;
    const char* Corrected;
    const char* StillSent;
  };
  for (const Case& c : {Case{Window.Text2, {"", "20000"}, "1", "W 21=30"},
                        Case{Window.Text3, {"10", "-300"}, "10", "W 22=167"}}) {
    const std::string good = c.Field.Text;
    for (const std::string& bad : c.Bad) {
      c.Field.Text = bad;
      User.Press(Window.Command2);
      User.Release(Window.Command2);
      EXPECT_EQ(c.Field.Text, c.Corrected);
      EXPECT_EQ(TakeFrames(), (Texts{c.StillSent, "W 9=1", "W 9=0"})) << bad;
      EXPECT_EQ(TakeMessages(), (Texts{"Please input a value of 0-65535"}));
    }
    c.Field.Text = good;
  }
}

TEST_F(JogTest, ALostLinkIsSaidOnceAndClosesTheWindow) {
  for (int good = 0; good < 4; ++good) {
    SCOPED_TRACE(good);
    Open(Window);
    // Silent from the exchange after the good ones.
    World.At(good * 163, [&] { Device.Drive.Inject(sim::Fault::Silent); });
    // The button may still be held when its command is given up.
    if (good != 2) ReleaseAfter(3000, Window.Command2);
    User.Press(Window.Command2);
    World.RunFor(20000);
    EXPECT_EQ(TakeMessages(), (Texts{LostLink}));
    EXPECT_FALSE(Window.Loaded);
    Device.Drive.ClearFaults();
  }
}

}  // namespace
}  // namespace gainsmith::test
