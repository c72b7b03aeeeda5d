// velocityModeTune: what it sends, in order, and the state it is left in.
#include <gtest/gtest.h>

#include <algorithm>

#include "tuning/run_window_bench.h"
#include "tuning/velocity_window.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;
using W = velocityModeTune;

const Texts StartFrames{"R 19",   "W 22=400", "W 21=2",   "W 23=0",   "W 24=2000", "W 27=100",
                        "W 25=1", "W 26=20",  "W 17=144", "W 20=200", "W 35=2"};

struct VelocityTest : ::testing::Test {
  DriveDevice Device;
  VelocityBench On{Device};
  TuningBench& Bench = On.Bench;
  W& Window = On.Window;
  Button& RunButton = On.RunButton;

  VelocityTest() {
    Device.Drive.Registers()[sim::Reg::VelocityKp] = 400;
    Open(On);
    LoadFrames = Bench.TakeFrames();
  }
  void Click() { Bench.User.Click(RunButton); }
  void ClickAfter(std::int64_t delayMs) {
    Bench.World.At(delayMs, [this] { Bench.User.Click(RunButton); });
  }
  void RunUntilIdle() {
    EXPECT_TRUE(Bench.World.RunUntil(
        [this] { return Bench.Link.LinkIdle && !Window.DataSource.Enabled(); }, 30000));
  }
  Texts LoadFrames;
};

TEST_F(VelocityTest, LoadReadsTheGainsAndEndsAFormerTest) {
  EXPECT_EQ(LoadFrames, (Texts{"R 31", "R 32", "R 13", "W 35=0"}));
  EXPECT_EQ(Window.Text1[W::Vp].Text, "400");
  EXPECT_EQ(Bench.Params[Slot::VelocityKpHigh], 400);
  EXPECT_EQ(Window.Text1[W::RunningTime].Text, "2000");
  EXPECT_TRUE(Bench.Link.LinkIdle);
  EXPECT_TRUE(Bench.Shell[OpenMark::VelocityLoop] && Bench.Shell.ChildWindowOpen);
}

TEST_F(VelocityTest, ATestRunsToTheEndOfItsPlan) {
  Window.Text1[W::RepeatTimes].Text = "3";
  Click();
  Texts expected = StartFrames;
  expected[6] = "W 25=3";
  expected.insert(expected.end(), {"R 28", "upload 8"});
  EXPECT_EQ(Summary(Bench.TakeFrames()), expected);
  EXPECT_EQ(Window.VelocityTestMs, 12600);
  EXPECT_FALSE(Window.Text1[W::TopSpeed].Enabled || Window.Combo1.Enabled);
  EXPECT_TRUE(Window.Text1[W::Vp].Enabled);
  EXPECT_TRUE(Bench.Link.LinkIdle);

  RunUntilIdle();
  Texts tick = Summary(Bench.TakeFrames());
  tick.resize(4);
  EXPECT_EQ(tick, (Texts{"W 20=200", "R 28", "upload 8", "W 20=200"}));
  EXPECT_EQ(RunButton.Caption, "Stop");
  Click();
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 35=0"}));
  EXPECT_EQ(RunButton.Caption, "Start");
  EXPECT_TRUE(Window.Text1[W::TopSpeed].Enabled);
}

// 2 x (1000 + 100) ms: nothing of it is left once the first trace is on the screen.
TEST_F(VelocityTest, AShortPlanGivesOneTrace) {
  Window.Text1[W::RunningTime].Text = "1000";
  Click();
  Bench.TakeFrames();
  Bench.World.RunFor(5000);
  EXPECT_EQ(Bench.TakeFrames(), Texts{});
  EXPECT_FALSE(Window.DataSource.Enabled());
  EXPECT_EQ(RunButton.Caption, "Stop");
}

TEST_F(VelocityTest, ChangedGainsAreSentFirst) {
  Window.Text1[W::Vp].Text = "500";
  Window.Text1[W::Kaff].Text = "7";
  Click();
  Texts frames = Bench.TakeFrames();
  frames.resize(4);
  EXPECT_EQ(frames, (Texts{"R 19", "W 31=500", "W 13=7", "W 22=400"}));
  EXPECT_EQ(Bench.Params[Slot::KaffHigh], 7);
}

TEST_F(VelocityTest, ABadFieldIsCorrectedAndWaitsForStop) {
  struct Case {
    W::Field Index;
    std::vector<const char*> Bad;
    const char* Corrected;
    std::size_t FramesBefore;
  };
  const Case cases[] = {
      {W::TopSpeed, {"", "0", "-300", "abc", "49151.5", "1e999", "nan"}, "100", 1},
      {W::Acceleration, {"", "62", "1e9"}, "10", 2},
      {W::RunningTime, {"", "0", "2147483648", "1e999"}, "5000", 3},
      {W::Interval, {"", "-1", "32768"}, "50", 5},
      {W::RepeatTimes, {"0", "32767.5"}, "5", 6},
  };
  for (const Case& c : cases) {
    const std::string good = Window.Text1[c.Index].Text;
    for (const char* bad : c.Bad) {
      SCOPED_TRACE(bad);
      Window.Text1[c.Index].Text = bad;
      Click();
      ASSERT_EQ(Bench.World.Messages.size(), 1U);
      EXPECT_EQ(Bench.World.Messages[0].Title, "Invalid Value");
      EXPECT_EQ(Bench.TakeMessages(), (Texts{"Please input a value of 0-65535"}));
      EXPECT_EQ(Bench.TakeFrames().size(), c.FramesBefore);
      EXPECT_EQ(Window.Text1[c.Index].Text, c.Corrected);
      EXPECT_EQ(RunButton.Caption, "Stop");
      EXPECT_FALSE(Window.Text1[c.Index].Enabled);
      EXPECT_EQ(Bench.World.Focus, nullptr);

      // No upload has ended yet: the Stop asks for one.
      Click();
      EXPECT_EQ(Summary(Bench.TakeFrames()), (Texts{"W 35=0", "R 28", "upload 8", "W 35=0"}));
      EXPECT_TRUE(Window.Text1[c.Index].Enabled);
      EXPECT_TRUE(Bench.Link.LinkIdle);
    }
    Window.Text1[c.Index].Text = good;
  }
}

TEST_F(VelocityTest, FieldsBecomeWords) {
  struct Case {
    W::Field Index;
    const char* Text;
    Texts Frames;
  };
  const Case cases[] = {
      {W::TopSpeed, "49151.25", {"W 22=65535"}},
      {W::Acceleration, "63", {"W 21=1"}},
      {W::RunningTime, "2147483647", {"W 23=32767", "W 24=65535"}},
      {W::Interval, "32767", {"W 27=32767"}},
  };
  for (const Case& c : cases) {
    const std::string good = Window.Text1[c.Index].Text;
    Window.Text1[c.Index].Text = c.Text;
    ClickAfter(1700);
    Click();
    const Texts frames = Bench.TakeFrames();
    for (const std::string& frame : c.Frames) {
      EXPECT_NE(std::find(frames.begin(), frames.end(), frame), frames.end()) << frame;
    }
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
    Bench.World.RunFor(60000);
    Window.Text1[c.Index].Text = good;
  }
}

TEST_F(VelocityTest, AGainThatCannotBeSentIsSaidInWords) {
  for (const char* bad : {"65536", "-1", "1e999"}) {
    Window.Text1[W::Vi].Text = bad;
    Click();
    ASSERT_EQ(Bench.World.Messages.size(), 1U) << bad;
    EXPECT_NE(Bench.TakeMessages()[0].find("Vi"), std::string::npos);
    EXPECT_EQ(Bench.TakeFrames(), (Texts{"R 19"}));
    EXPECT_TRUE(Window.Loaded);
    Click();
    Bench.TakeFrames();
  }
}

TEST_F(VelocityTest, EnterInAGainWritesItAtOnce) {
  struct Case {
    W::Field Index;
    const char* Typed;
    const char* Shown;
    const char* Frame;
  };
  constexpr Case cases[] = {
      {W::Vp, "", "1", "W 31=1"},
      {W::Vp, "0", "1", "W 31=1"},
      {W::Vp, "70000", "65535", "W 31=65535"},
      {W::Vp, "-3", "1", "W 31=1"},
      {W::Vi, "", "0", "W 32=0"},
      {W::Vi, "1e999", "65535", "W 32=65535"},
      {W::Kaff, "-7", "0", "W 13=0"},
      {W::Kaff, "12.5", "12.5", "W 13=12"},
  };
  for (const Case& c : cases) {
    Bench.User.Paste(Window.Text1[c.Index], c.Typed);
    Bench.User.Enter(Window.Text1[c.Index]);
    EXPECT_EQ(Window.Text1[c.Index].Text, c.Shown);
    EXPECT_EQ(Bench.TakeFrames(), (Texts{c.Frame}));
  }
  EXPECT_EQ(Bench.Params[Slot::KaffHigh], 12.5F);
  // It has gone out: the Start has nothing left to write.
  ClickAfter(400);
  Click();
  EXPECT_EQ(Bench.World.Log.Writes(31), std::vector<int>{});
}

// A tick falls due inside the exchange of the gain, which would be spoilt by it again and again.
TEST_F(VelocityTest, ATickGivesWayToAGain) {
  Window.Text1[W::RepeatTimes].Text = "9";
  Click();
  for (int delayMs = 0; delayMs < 4000; delayMs += 45) {
    Bench.World.RunFor(45);
    Bench.TakeFrames();
    const std::int64_t beforeMs = Bench.World.NowMs();
    Bench.User.Enter(Window.Text1[W::Vp]);
    EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 31=400"}));
    EXPECT_LT(Bench.World.NowMs() - beforeMs, 200);
  }
}

TEST_F(VelocityTest, EnterInAMotionFieldRemembersIt) {
  Bench.User.Type(Window.Text1[W::TopSpeed], "-2a5/0.5e");
  EXPECT_EQ(Window.Text1[W::TopSpeed].Text, "250.5");
  Bench.User.Enter(Window.Text1[W::TopSpeed]);
  Window.Text1[W::Interval].Text = "70";
  EXPECT_EQ(Bench.TakeFrames(), Texts{});
  Bench.User.Close(Window);
  Open(On);
  EXPECT_EQ(Window.Text1[W::TopSpeed].Text, "250.5");
  EXPECT_EQ(Window.Text1[W::Interval].Text, "100");
}

TEST_F(VelocityTest, StopDuringTheFirstUploadLetsTheTicksRunOutThePlan) {
  Window.Text1[W::RepeatTimes].Text = "4";
  ClickAfter(4200);
  Click();
  EXPECT_EQ(RunButton.Caption, "Start");
  EXPECT_TRUE(Window.DataSource.Enabled());
  EXPECT_EQ(Bench.World.Log.Writes(35), (std::vector<int>{2, 0, 0, 0}));
  RunUntilIdle();
  EXPECT_EQ(Bench.World.Log.Writes(35).back(), 0);
}

TEST_F(VelocityTest, ClosesBetweenTicksAndNotInOne) {
  On.EnterShortTest();
  Click();
  bool closedInTick = true;
  Bench.World.At(100, [&] { closedInTick = Bench.World.Unload(Window); });
  Bench.World.RunFor(110);
  EXPECT_FALSE(closedInTick);
  EXPECT_TRUE(Window.Loaded);
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
  ASSERT_TRUE(Bench.World.RunUntil([&] { return Bench.Link.LinkIdle; }, 5000));
  Bench.TakeFrames();
  Bench.User.Close(Window);
  EXPECT_FALSE(Window.Loaded);
  Bench.World.RunFor(5000);
  EXPECT_EQ(Bench.TakeFrames(), Texts{}) << "the drive finishes its repeats alone";
  EXPECT_FALSE(Bench.Shell[OpenMark::VelocityLoop] || Bench.Shell.ChildWindowOpen);
}

// The window counts as idle while a test is being started.
TEST_F(VelocityTest, ClosingWhileATestIsStartedStartsNone) {
  for (std::int64_t delayMs = 5; delayMs < 1990; delayMs += 17) {
    SCOPED_TRACE(delayMs);
    Bench.World.At(delayMs, [&] { Bench.User.Close(Window); });
    Click();
    EXPECT_FALSE(Window.Loaded);
    EXPECT_TRUE(Bench.Link.LinkIdle);
    const std::vector<int> commands = Bench.World.Log.Writes(35);
    EXPECT_TRUE(commands.empty() || commands.back() == 0 || delayMs > 1800);
    EXPECT_FALSE(Window.DataSource.Enabled());
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
    Open(On);
    Bench.TakeFrames();
  }
}

TEST_F(VelocityTest, ChannelsAndColours) {
  Click();
  const std::size_t both = Window.Plot.Picture1.Lines.size();
  Bench.User.Click(Window.Check1[W::IBak]);
  EXPECT_EQ(Window.Plot.Picture1.Lines.size(), both / 2);
  Bench.World.ChosenColours = {0x00FFFF};
  Bench.User.Click(Window.Command4[W::VBak]);
  EXPECT_EQ(Window.Plot.Picture1.Lines.back().Color, 0x00FFFFU);
  Bench.User.Close(Window);
  EXPECT_EQ(Bench.Trace.VelocityColours[Signal::VBak], 0x80FF80U);
  EXPECT_FALSE(Window.Check1[W::IErr].Enabled || Window.Command4[W::VRef].Enabled);
}

}  // namespace
}  // namespace gainsmith::test
