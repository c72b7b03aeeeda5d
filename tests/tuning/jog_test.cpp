// Form3's jog: presses, releases, and what comes between them.
#include <gtest/gtest.h>

#include <sstream>

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

// Two handlers at once: which words go out to register 9, the last of which is in force. A deed is
// a time in ms, what is done (+ press, - release, c click, k close), and to what: r and l jog,
// s starts and stops, w is the window.
TEST_F(JogTest, TheNewestPressOwnsTheMotor) {
  const struct {
    const char* What;
    const char* Deeds;
    std::vector<int> Words;
  } cases[] = {
      {"tapped, and the other held", "0+r 100-r 300+l", {5}},
      {"tapped, and the other held while the word is in flight", "0+r 100-r 360+l", {1, 5}},
      {"released, and the other held at once", "0+r 1000-r 1060+l", {1, 0, 5}},
      {"the other pressed before the release", "0+r 1000+l 1100-r 3000-l", {1, 5, 0}},
      {"the other tapped under the release", "0+r 1000-r 1060+l 1100-l", {1, 0, 5, 0}},
      {"tapped, and Start at once", "0+r 100-r 150cs", {1, 0}},
      {"released, and Start at once", "0+r 1000-r 1060cs", {1, 0}},
      {"held, and Start", "0+r 1000cs", {1}},
      {"pressed while Start writes its list", "0cs 700+r", {1}},
      {"pressed while the run word is in flight", "0cs 1930+r 4000-r", {2, 1, 0, 0}},
      {"pressed in the first recording", "0cs 2500+r 4000-r", {2, 1, 0, 0}},
      {"tapped while Start writes its gains", "0cs 40+r 1500-r", {1, 0, 0}},
      {"Stop under a held button", "0cs 9000+r 10000cs 11000-r", {2, 1, 0, 0, 0}},
      {"pressed while a stop word is in flight", "0cs 9000cs 9250+r", {2, 0, 1}},
      {"the window closed, both released", "0+r 1000+l 1020-r 1030-l 1040kw", {1, 0}},
      {"the window closed, one released", "0+r 1000+l 1020-r 1040kw 3000-l", {1, 0}},
  };
  std::map<char, Button*> buttons{
      {'r', &Window.Command2}, {'l', &Window.Command3}, {'s', &RunButton}, {'w', nullptr}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    Open(Window);
    World.Log.Clear();
    std::istringstream deeds(c.Deeds);
    for (std::int64_t atMs = 0; deeds >> atMs;) {
      char kind = 0;
      char target = 0;
      deeds >> kind >> target;
      World.At(atMs, [this, kind, button = buttons.at(target)] {
        if (kind == '+') User.Press(*button);
        if (kind == '-') User.Release(*button);
        if (kind == 'c') (void)User.TryClick(*button);
        if (kind == 'k') User.Close(Window);
      });
    }
    // A Start that gave way waits for the release of what is still held.
    World.At(15000, [&] {
      EXPECT_EQ(World.Log.Writes(9), c.Words);
      EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], c.Words.back());
      EXPECT_EQ(RunButton.Caption, "Start");
      for (const char side : {'r', 'l'}) User.Release(*buttons[side]);
    });
    World.RunFor(20000);
    EXPECT_TRUE(Link.LinkIdle);
    EXPECT_EQ(TakeMessages(), Texts{});
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 0);
    EXPECT_EQ(Window.Pointer, MousePointer::Default);
    if (Window.Loaded) User.Close(Window);
    EXPECT_FALSE(Window.Loaded);
  }
}

TEST_F(JogTest, AReleaseStillStopsWhenTheLineIsLostUnderTheNextPress) {
  User.Press(Window.Command2);
  PressAfter(60, Window.Command3);
  World.At(61, [&] { Device.Drive.Inject(sim::Fault::Silent, sim::Hits::Next(13)); });
  TakeFrames();
  User.Release(Window.Command2);
  World.RunFor(20000);
  EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 0);
  EXPECT_EQ(TakeFrames().back(), "W 9=0");
  EXPECT_EQ(TakeMessages(), (Texts{LostLinkText}));
}

// Also where the press waits below the message: its own stop word would come too late.
TEST_F(JogTest, AReleaseBehindAMessageStopsTheMotor) {
  World.OnMessage = [&](const Message&) {
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 1);
    User.Release(Window.Command2);
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 0);
  };
  // Behind the press, and in the closing wait of its jog word.
  for (const int delayMs : {1000, 480}) {
    World.At(delayMs, [&] { World.ShowMessage({"Any", "Any"}); });
    User.Press(Window.Command2);
    World.RunFor(2000);
    EXPECT_EQ(TakeMessages().size(), 1U);
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 0);
    EXPECT_EQ(TakeFrames().back(), "W 9=0");
  }
}

// A key that is held down gives Enter again and again.
TEST_F(JogTest, EnterUnderWayCommitsNothingAgain) {
  for (int ms = 30; ms < 130; ms += 30) World.At(ms, [&] { User.Enter(Window.Text2); });
  World.At(140, [&] {
    User.Type(Window.Text2, "100");
    User.Enter(Window.Text2);
  });
  User.Enter(Window.Text2);
  World.RunFor(1000);
  EXPECT_EQ(TakeFrames(), (Texts{"W 22=167", "W 22=333"}));
}

TEST_F(JogTest, FieldsTakeDigitsAndEnterSendsThem) {
  User.Type(Window.Text2, "-1.5e9x");
  EXPECT_EQ(Window.Text2.Text, "159");
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

}  // namespace
}  // namespace gainsmith::test
