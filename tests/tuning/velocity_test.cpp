// velocityModeTune: what it sends, in order, and the state it is left in.
#include <gtest/gtest.h>

#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

using W = velocityModeTune;

struct VelocityTest : ::testing::Test, VelocityBench {
  VelocityTest() {
    Device.Drive.Registers()[sim::Reg::VelocityKp] = 400;
    Open(Window);
    LoadFrames = TakeFrames();
  }
  void RunUntilIdle() {
    EXPECT_TRUE(
        World.RunUntil([this] { return Link.LinkIdle && !Window.DataSource.Enabled(); }, 30000));
  }
  Texts LoadFrames;
};

TEST_F(VelocityTest, ATestFromTheOpeningToTheEndOfItsPlan) {
  EXPECT_EQ(LoadFrames, (Texts{"R 31", "R 32", "R 13", "W 35=0"}));
  EXPECT_EQ(Window.Text1[W::Vp].Text, "400");
  EXPECT_EQ(Params[Slot::VelocityKpHigh], 400);
  EXPECT_EQ(Window.Text1[W::RunningTime].Text, "2000");
  EXPECT_TRUE(Link.LinkIdle);
  EXPECT_TRUE(Shell[Mark] && Shell.ChildWindowOpen);

  Window.Text1[W::RepeatTimes].Text = "3";
  User.Click(RunButton);
  EXPECT_EQ(Summary(TakeFrames()),
            (Texts{"R 19", "W 22=400", "W 21=2", "W 23=0", "W 24=2000", "W 27=100", "W 25=3",
                   "W 26=20", "W 17=144", "W 20=200", "W 35=2", "R 28", "upload 8"}));
  EXPECT_EQ(Window.VelocityTestMs, 12600);
  EXPECT_FALSE(Window.Text1[W::TopSpeed].Enabled || Window.Combo1.Enabled);
  EXPECT_TRUE(Window.Text1[W::Vp].Enabled);
  EXPECT_TRUE(Link.LinkIdle);

  // No recording begins in the last 2500 ms.
  const auto first = Window.Plot.Picture1.Revision;
  RunUntilIdle();
  EXPECT_GE(Window.Plot.Picture1.Revision, first + 5);
  EXPECT_EQ(World.Log.Writes(20), std::vector<int>(5, 200));
  Texts tick = Summary(TakeFrames());
  tick.resize(4);
  EXPECT_EQ(tick, (Texts{"W 20=200", "R 28", "upload 8", "W 20=200"}));
  EXPECT_EQ(RunButton.Caption, "Stop");
  User.Click(RunButton);
  EXPECT_EQ(TakeFrames(), (Texts{"W 35=0"}));
  EXPECT_TRUE(Window.Text1[W::TopSpeed].Enabled);
  ExpectStopped(*this);
}

// Words at their limits, behind the gains that were changed.
TEST_F(VelocityTest, ChangedGainsAreSentFirstAndFieldsBecomeWords) {
  Window.Text1[W::Vp].Text = "500";
  Window.Text1[W::Kaff].Text = "7";
  Window.Text1[W::TopSpeed].Text = "49151.25";
  Window.Text1[W::Acceleration].Text = "63";
  Window.Text1[W::RunningTime].Text = "2147483647";
  Window.Text1[W::Interval].Text = "32767";
  ClickAfter(2500, RunButton);
  User.Click(RunButton);
  EXPECT_EQ(TakeFrames(8), (Texts{"R 19", "W 31=500", "W 13=7", "W 22=65535", "W 21=1",
                                  "W 23=32767", "W 24=65535", "W 27=32767"}));
  EXPECT_EQ(Params[Slot::KaffHigh], 7);
  EXPECT_EQ(TakeMessages(), Texts{});
}

TEST_F(VelocityTest, ABadFieldIsCorrectedAndWaitsForStop) {
  const struct {
    W::Field Index;
    Texts Bad;
    const char* Corrected;
    std::size_t FramesBefore;
    const char* Text = "Please input a value of 0-65535";
  } cases[] = {
      {W::TopSpeed, {"", "0", "-300", "abc", "49151.5", "1e999", "nan"}, "100", 1},
      {W::Acceleration, {"", "62.5", "1e9"}, "10", 2},
      {W::RunningTime, {"0"}, "5000", 3},
      {W::RepeatTimes, {"0", "32767.5"}, "5", 6},
      // No limit of the field, but nothing that the drive could take, nor has taken the next time.
      {W::Vi,
       {"65536", "65536"},
       "65536",
       1,
       "Vi: the drive takes a value of 0-65535. It was not sent, and the test was not started. "
       "Nothing else was sent."},
  };
  for (const auto& c : cases) {
    TextBox& field = Window.Text1[c.Index];
    const std::string good = field.Text;
    for (const std::string& bad : c.Bad) {
      SCOPED_TRACE(bad);
      field.Text = bad;
      User.Click(RunButton);
      ASSERT_EQ(World.Messages.size(), 1U);
      EXPECT_EQ(TakeMessages(), (Texts{c.Text}));
      EXPECT_EQ(TakeFrames().size(), c.FramesBefore);
      EXPECT_EQ(field.Text, c.Corrected);
      EXPECT_EQ(RunButton.Caption, "Stop");
      EXPECT_FALSE(Window.Text1[W::RepeatTimes].Enabled);
      EXPECT_EQ(World.Focus, nullptr);

      // No upload has ended yet: the Stop asks for one.
      User.Click(RunButton);
      EXPECT_EQ(Summary(TakeFrames()), (Texts{"W 35=0", "R 28", "upload 8", "W 35=0"}));
      EXPECT_TRUE(Window.Text1[W::RepeatTimes].Enabled);
      EXPECT_TRUE(Link.LinkIdle);
    }
    field.Text = good;
  }
}

TEST_F(VelocityTest, EnterInAGainWritesItAtOnce) {
  const struct {
    W::Field Index;
    const char* Typed;
    const char* Shown;
    const char* Frame;
  } cases[] = {
      {W::Vp, "", "1", "W 31=1"},           {W::Vp, "70000", "65535", "W 31=65535"},
      {W::Vp, "-3", "1", "W 31=1"},         {W::Vi, "", "0", "W 32=0"},
      {W::Kaff, "12.5", "12.5", "W 13=12"},
  };
  for (const auto& c : cases) {
    User.Paste(Window.Text1[c.Index], c.Typed);
    User.Enter(Window.Text1[c.Index]);
    EXPECT_EQ(Window.Text1[c.Index].Text, c.Shown);
    EXPECT_EQ(TakeFrames(), (Texts{c.Frame}));
  }
  EXPECT_EQ(Params[Slot::KaffHigh], 12.5F);
  // It has gone out: the Start has nothing left to write.
  ClickAfter(400, RunButton);
  User.Click(RunButton);
  EXPECT_EQ(World.Log.Writes(31), std::vector<int>{});
}

// A tick falls due inside the exchange of the gain, which would be spoilt by it again and again.
TEST_F(VelocityTest, ATickGivesWayToAGain) {
  Window.Text1[W::RepeatTimes].Text = "9";
  User.Click(RunButton);
  for (int delayMs = 0; delayMs < 4000; delayMs += 45) {
    World.RunFor(45);
    TakeFrames();
    const std::int64_t beforeMs = World.NowMs();
    User.Enter(Window.Text1[W::Vp]);
    EXPECT_EQ(TakeFrames(), (Texts{"W 31=400"}));
    EXPECT_LT(World.NowMs() - beforeMs, 200);
  }
}

TEST_F(VelocityTest, EnterInAMotionFieldRemembersIt) {
  User.Type(Window.Text1[W::TopSpeed], "-2a5/0.5e");
  EXPECT_EQ(Window.Text1[W::TopSpeed].Text, "250.5");
  User.Enter(Window.Text1[W::TopSpeed]);
  Window.Text1[W::Interval].Text = "70";
  EXPECT_EQ(TakeFrames(), Texts{});
  User.Close(Window);
  Open(Window);
  EXPECT_EQ(Window.Text1[W::TopSpeed].Text, "250.5");
  EXPECT_EQ(Window.Text1[W::Interval].Text, "100");
}

TEST_F(VelocityTest, StopDuringTheFirstUploadLetsTheTicksRunOutThePlan) {
  Window.Text1[W::RepeatTimes].Text = "4";
  ClickAfter(4200, RunButton);
  User.Click(RunButton);
  EXPECT_EQ(RunButton.Caption, "Start");
  EXPECT_TRUE(Window.DataSource.Enabled());
  EXPECT_EQ(World.Log.Writes(35), (std::vector<int>{2, 0, 0, 0}));
  RunUntilIdle();
  ExpectStopped(*this);
}

TEST_F(VelocityTest, ClosesBetweenTicksAndNotInOne) {
  OpenShortTest();
  User.Click(RunButton);
  World.At(100, [&] { EXPECT_FALSE(World.Unload(Window)) << "in a tick"; });
  World.RunFor(110);
  EXPECT_TRUE(Window.Loaded);
  EXPECT_EQ(TakeMessages(), Texts{});
  ASSERT_TRUE(World.RunUntil([&] { return Link.LinkIdle; }, 5000));
  TakeFrames();
  User.Close(Window);
  EXPECT_FALSE(Window.Loaded);
  World.RunFor(5000);
  EXPECT_EQ(TakeFrames(), Texts{}) << "the drive finishes its repeats alone";
  EXPECT_FALSE(Shell[Mark] || Shell.ChildWindowOpen);
}

TEST_F(VelocityTest, ChannelsAndColours) {
  User.Click(RunButton);
  const std::size_t both = Window.Plot.Picture1.Lines.size();
  User.Click(Window.Check1[W::IBak]);
  EXPECT_EQ(Window.Plot.Picture1.Lines.size(), both / 2);
  World.ChosenColours = {0x00FFFF};
  User.Click(Window.Command4[W::VBak]);
  EXPECT_EQ(Window.Plot.Picture1.Lines.back().Color, 0x00FFFFU);
  User.Close(Window);
  EXPECT_EQ(Trace.VelocityColours[Signal::VBak], 0x80FF80U);
  EXPECT_FALSE(Window.Check1[W::IErr].Enabled || Window.Command4[W::VRef].Enabled);
}

// Enter in a gain, again and by chance under a Start that writes the same gain: the newer value
// stands in field, table and drive, and the older is not sent behind it.
TEST_F(VelocityTest, TheNewerOfTwoGainsStands) {
  for (const bool starting : {false, true}) {
    for (std::int64_t delayMs = 20; delayMs < 160; delayMs += 10) {
      SCOPED_TRACE(std::to_string(delayMs) + (starting ? " under Start" : ""));
      TextBox& field = Window.Text1[W::Vp];
      TakeFrames();
      field.Text = "100";
      // Behind the read of the encoder's counts.
      World.At(delayMs + (starting ? 171 : 0), [&] {
        field.Text = "200";
        User.Enter(field);
      });
      if (starting) {
        ClickAfter(3000, RunButton);
        User.Click(RunButton);
      } else {
        User.Enter(field);
      }
      World.RunFor(9000);
      // The first may have been broken off.
      const std::vector<int> sent = World.Log.Writes(31);
      EXPECT_LE(sent.size(), 2U);
      EXPECT_EQ(sent.back(), 200);
      EXPECT_EQ(Device.Drive.Registers()[sim::Reg::VelocityKp], 200);
      EXPECT_EQ(field.Text, "200");
      EXPECT_EQ(Params[Slot::VelocityKpHigh], 200);
      ExpectStopped(*this);
      // Start knows what the drive holds.
      EXPECT_EQ(Window.GainCopies[0], 200);
    }
  }
}

// The first Enter is still under way below the Start that was newer: its text is history.
TEST_F(VelocityTest, ATextIsCommittedAnewWhenAStartHasSentAnotherSince) {
  TextBox& field = Window.Text1[W::Vp];
  field.Text = "100";
  TakeFrames();
  World.At(20, [&] {
    field.Text = "200";
    User.Click(RunButton);
  });
  World.At(700, [&] {
    EXPECT_EQ(World.Log.Writes(31).back(), 200);
    field.Text = "100";
    User.Enter(field);
  });
  ClickAfter(4000, RunButton);
  User.Enter(field);
  World.RunFor(9000);
  EXPECT_EQ(Device.Drive.Registers()[sim::Reg::VelocityKp], 100);
  EXPECT_EQ(Window.GainCopies[0], 100);
  EXPECT_EQ(Params[Slot::VelocityKpHigh], 100);
}

TEST_F(VelocityTest, ARefusedGainSaysWhatWasSentBefore) {
  Window.Text1[W::Vp].Text = "70";
  Window.Text1[W::Vi].Text = "70000";
  User.Click(RunButton);
  EXPECT_EQ(TakeFrames(), (Texts{"R 19", "W 31=70"}));
  EXPECT_EQ(TakeMessages(),
            (Texts{"Vi: the drive takes a value of 0-65535. It was not sent, and the test was not "
                   "started. Sent before it, and in the drive: Vp:"}));
}

}  // namespace
}  // namespace gainsmith::test
