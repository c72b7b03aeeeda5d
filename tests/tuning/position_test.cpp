// Form3: what it sends, in order, and the state it is left in.
#include <gtest/gtest.h>

#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;

const Texts LoadFrames{"R 6",  "R 33", "R 8",  "R 31", "R 32", "R 19", "R 42", "R 43",
                       "R 44", "R 46", "R 47", "R 45", "R 48", "R 13", "W 9=0"};
const Texts StartFrames{"W 19=4000", "W 22=1000", "W 21=20",  "W 23=0",   "W 24=40000", "W 27=200",
                        "W 25=1",    "W 26=20",   "W 17=145", "W 20=200", "W 9=2"};

struct PositionTest : ::testing::Test {
  DriveDevice Device;
  PositionBench On{Device};
  TuningBench& Bench = On.Bench;
  Form3& Window = On.Window;
  Button& Run = On.RunButton;

  PositionTest() {
    Device.Drive.Registers()[sim::Reg::PositionKp] = 800;
    Device.Drive.Registers()[sim::Reg::Kaff] = 1000;
  }
  void OpenQuietly() {
    Open(On);
    Bench.TakeFrames();
  }
  void Click() { Bench.User.Click(Run); }
  void ClickAfter(std::int64_t delayMs) {
    Bench.World.At(delayMs, [this] { Bench.User.Click(Run); });
  }
  void ExpectStopped() {
    EXPECT_EQ(Run.Caption, "Start");
    EXPECT_EQ(Run.BackColor, 0x00FF00U);
    EXPECT_TRUE(Bench.Link.LinkIdle);
    EXPECT_FALSE(Window.DataSource.Enabled());
    EXPECT_TRUE(Window.Text1[Form3::Velocity].Enabled);
    EXPECT_TRUE(Window.Check1[Form3::PErr].Enabled);
    EXPECT_EQ(Window.Pointer, MousePointer::Default);
    EXPECT_EQ(Device.Drive.Registers()[sim::Reg::PositionCommand], 0);
  }
};

TEST_F(PositionTest, LoadReadsTheGainsAndEndsAFormerTest) {
  Device.Drive.Registers()[sim::Reg::LowKaff] = 65535;
  Bench.Trace.SampleDivider = 7;
  Open(On);
  EXPECT_EQ(Bench.TakeFrames(), LoadFrames);
  EXPECT_GE(Bench.World.Repaints, 100) << "the progress flash";
  EXPECT_FALSE(Bench.Progress.Loaded);
  EXPECT_EQ(Window.Text1[Form3::PositionKp].Text, "800");
  EXPECT_EQ(Window.Text1[Form3::LowKaff].Text, "65535");
  EXPECT_EQ(Bench.Params[Slot::KaffLow], 65535);
  EXPECT_EQ(Bench.Params[Slot::EncoderCounts], 4000);
  EXPECT_EQ(Window.Text1[Form3::Distance].Text, "40000");
  EXPECT_EQ(Window.Combo1.Text, "2000ms");
  EXPECT_EQ(Run.BackColor, 0x00C000U);
  EXPECT_TRUE(Bench.Link.LinkIdle);
  EXPECT_TRUE(Bench.Shell[OpenMark::PositionLoop] && Bench.Shell.ChildWindowOpen);
}

TEST_F(PositionTest, ALoadThatFindsTheWindowClosingGivesUp) {
  Bench.Trace.ClosingPositionWindow = true;
  bool closed = false;
  Bench.World.ShowModal(Window, [&] { closed = true; });
  EXPECT_TRUE(closed);
  EXPECT_FALSE(Window.Loaded);
  EXPECT_EQ(Bench.TakeFrames(), Texts{});
}

// One recording, then a finished plan: the tick's recording is taken and not shown.
TEST_F(PositionTest, ATestRunsToTheEndOfItsPlan) {
  OpenQuietly();
  Click();
  Texts expected{"W 13=1000"};
  expected.insert(expected.end(), StartFrames.begin(), StartFrames.end());
  expected.insert(expected.end(), {"R 28", "upload 12"});
  EXPECT_EQ(Summary(Bench.TakeFrames()), expected);
  EXPECT_EQ(Window.PositionTestMs, 4250);
  EXPECT_EQ(Run.Caption, "Stop");
  EXPECT_EQ(Window.Command1[Form3::GainStart].Caption, "Stop");
  EXPECT_EQ(Run.BackColor, 0x0000FFU);
  EXPECT_FALSE(Window.Text5.Enabled || Window.Text1[Form3::RepeatTimes].Enabled);
  EXPECT_TRUE(Window.Check1[Form3::PBak].Enabled);
  EXPECT_FALSE(Window.Plot.Picture1.Lines.empty());

  const auto shown = Window.Plot.Picture1.Revision;
  ASSERT_TRUE(Bench.World.RunUntil([&] { return !Window.DataSource.Enabled(); }, 20000));
  EXPECT_EQ(Summary(Bench.TakeFrames()), (Texts{"W 20=200", "R 28", "upload 12"}));
  EXPECT_EQ(Window.Plot.Picture1.Revision, shown);
  EXPECT_EQ(Run.Caption, "Stop");
  EXPECT_FALSE(Bench.Link.LinkIdle);

  Click();
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 9=0"}));
  ExpectStopped();
}

TEST_F(PositionTest, OnlyChangedGainsAreSentAndKaffAlways) {
  struct Case {
    std::vector<Form3::Field> Changed;
    Texts Frames;
  };
  const Case cases[] = {
      {{}, {"W 13=1000"}},
      {{Form3::LowVelocityKi}, {"W 47=77", "W 13=1000"}},
      {{Form3::PositionKp, Form3::Kvff, Form3::PositionKd, Form3::VelocityKp, Form3::VelocityKi,
        Form3::LowPositionKp, Form3::LowPositionKi, Form3::LowPositionKd, Form3::LowVelocityKp,
        Form3::LowVelocityKi, Form3::LowKvff, Form3::LowKaff},
       {"W 6=77", "W 33=77", "W 8=77", "W 31=77", "W 32=77", "W 42=77", "W 43=77", "W 44=77",
        "W 46=77", "W 13=1000"}},
  };
  OpenQuietly();
  for (const Case& c : cases) {
    for (const Form3::Field field : c.Changed) Window.Text1[field].Text = "77";
    ClickAfter(static_cast<std::int64_t>(c.Frames.size()) * 171 + 60);
    Click();
    Texts frames = Bench.TakeFrames();
    ASSERT_GE(frames.size(), c.Frames.size());
    frames.resize(c.Frames.size());
    EXPECT_EQ(frames, c.Frames);
    Bench.World.RunFor(100);
    ExpectStopped();
  }
  EXPECT_EQ(Bench.Params[Slot::PositionKiLow], 77);
  EXPECT_NE(Bench.Params[Slot::KvffLow], 77);
}

TEST_F(PositionTest, MotionFieldsAreRememberedByAStart) {
  OpenQuietly();
  Window.Text1[Form3::Velocity].Text = "250";
  Bench.User.Close(Window);
  Open(On);
  EXPECT_EQ(Window.Text1[Form3::Velocity].Text, "300");
  Window.Text1[Form3::Velocity].Text = "250";
  Window.Text1[Form3::RepeatTimes].Text = "9";
  ClickAfter(300);
  Click();
  Bench.World.RunFor(500);
  Bench.User.Close(Window);
  Open(On);
  EXPECT_EQ(Window.Text1[Form3::Velocity].Text, "250");
  EXPECT_EQ(Window.Text1[Form3::RepeatTimes].Text, "1");
}

// What the words must be for fields at their limits.
TEST_F(PositionTest, FieldsBecomeWords) {
  struct Case {
    Form3::Field Index;
    const char* Text;
    const char* Frame;
  };
  constexpr Case cases[] = {
      {Form3::Interval, "32767", "W 27=65534"},      {Form3::Interval, "0.2", "W 27=0"},
      {Form3::Distance, "65535.6", "W 24=0"},        {Form3::Distance, "1", "W 24=1"},
      {Form3::Distance, "2147480000", "W 23=32767"}, {Form3::Acceleration, "4.9", "W 21=0"},
      {Form3::Velocity, "19660.5", "W 22=65535"},    {Form3::RepeatTimes, "2.5", "W 25=2"},
      {Form3::PositionKp, "2.5", "W 6=2"},
  };
  for (const Case& c : cases) {
    OpenQuietly();
    Window.Text1[c.Index].Text = c.Text;
    ClickAfter(2100);
    Click();
    const Texts frames = Bench.TakeFrames();
    EXPECT_NE(std::find(frames.begin(), frames.end(), c.Frame), frames.end()) << c.Frame;
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
    Bench.World.RunUntil([&] { return Bench.Link.LinkIdle; }, 20000);
    Bench.User.Close(Window);
  }
}

TEST_F(PositionTest, ABadFieldChangesAndSendsNothing) {
  struct Case {
    Form3::Field Index;
    std::vector<const char*> Bad;
    std::string Text;
  };
  const std::vector<const char*> badCount{"", "abc", "-1", "0", "32767.5", "1e999", "nan"};
  const std::string gain = "should be an integer value of 0-65535";
  const std::vector<const char*> badGain{"-0.1", "65535.01", "1e999"};
  const Case cases[] = {
      {Form3::Velocity,
       {"", "abc", "-1", "0", "65536", "inf", "0x1F"},
       "Volicty value should be an integer value of 1-65535"},
      {Form3::Acceleration,
       {"", "0", "65536"},
       "Acceleration value should be an integer value of 1-65535"},
      {Form3::Distance,
       {"", "0.5", "-40000", "nan"},
       "Distance value should be an integer value of at least 1"},
      {Form3::Interval, badCount, "Interval value should be an integer value of 1-32767"},
      {Form3::RepeatTimes, badCount, "Repeat time value should be an integer value of 1-32767"},
      {Form3::PositionKp, {"", "0", "65536"}, "The Kp value of Position Loop 1 " + gain},
      {Form3::Kvff, badGain, "The Kvff value of Position Loop 1 " + gain},
      {Form3::PositionKd, badGain, "The Kd valueof Position Loop 1 " + gain},
      {Form3::LowPositionKi, badGain, "The Kvff value of Position Loop 2 " + gain},
      {Form3::LowVelocityKi, badGain, "The Vi value of Position Loop 2 " + gain},
      // No limit of the field, but nothing that the drive could take.
      {Form3::Velocity,
       {"19661", "19660.6"},
       "The velocity is more than the drive can take: with 4000 pulses per revolution it takes at "
       "most 19660. Nothing was sent."},
      {Form3::Distance,
       {"2147483648", "1e999"},
       "The distance is more than the drive can take: it takes at most 2147483647 pulses. Nothing "
       "was sent."},
  };
  OpenQuietly();
  for (const Case& c : cases) {
    TextBox& field = Window.Text1[c.Index];
    const std::string good = field.Text;
    for (const char* bad : c.Bad) {
      field.Text = bad;
      Click();
      EXPECT_EQ(Bench.TakeMessages(), (Texts{c.Text})) << bad;
      EXPECT_EQ(Bench.World.Focus, &field);
      EXPECT_EQ(field.Text, bad);
    }
    field.Text = good;
  }
  Window.Text5.Text = "-1";
  Click();
  ASSERT_EQ(Bench.World.Messages.size(), 1U);
  EXPECT_EQ(Bench.World.Messages[0].Title, "Invalide Value");
  EXPECT_EQ(Bench.TakeFrames(), Texts{});
  EXPECT_EQ(Run.Caption, "Start");
  EXPECT_TRUE(Bench.Link.LinkIdle);
}

// --- Stop.

// A Stop click in the middle of the list: its own stop word, and the one of the outer handler.
TEST_F(PositionTest, StopWhileStartIsStillWriting) {
  OpenQuietly();
  ClickAfter(350);  // in the frame of register 22
  Click();
  EXPECT_EQ(Summary(Bench.TakeFrames()), (Texts{"W 13=1000", "W 19=4000", "W 9=0", "R 28",
                                                "upload 12", "W 9=0", "W 22=1000", "W 9=0"}));
  ExpectStopped();
}

// The click that would write gains a second time.
TEST_F(PositionTest, ASecondStartClickWhileGainsAreWrittenDoesNothing) {
  OpenQuietly();
  Window.Text1[Form3::PositionKp].Text = "120";
  Window.Text1[Form3::Kvff].Text = "90";
  for (const int delayMs : {20, 90, 170, 250, 330, 450}) ClickAfter(delayMs);
  ClickAfter(3000);
  Click();
  const Texts frames = Bench.TakeFrames();
  EXPECT_EQ(Texts(frames.begin(), frames.begin() + 4),
            (Texts{"W 6=120", "W 33=90", "W 13=1000", "W 19=4000"}));
  Bench.World.RunFor(100);
  ExpectStopped();
}

// --- Closing.

TEST_F(PositionTest, ARunningTestRefusesToClose) {
  OpenQuietly();
  Window.Text1[Form3::RepeatTimes].Text = "5";
  Bench.World.At(2500, [&] { Bench.User.Close(Window); });
  Click();
  EXPECT_EQ(Bench.TakeMessages(),
            (Texts{"Please click Stop button first before you can close it"}));
  EXPECT_TRUE(Window.Loaded);
  // No further trace comes until the next click; the test itself goes on.
  const auto revision = Window.Plot.Picture1.Revision;
  Bench.World.RunFor(8000);
  EXPECT_EQ(Window.Plot.Picture1.Revision, revision);
  Click();
  Bench.World.RunFor(100);
  ExpectStopped();
  Bench.TakeFrames();
  Bench.User.Close(Window);
  EXPECT_FALSE(Window.Loaded);
  EXPECT_FALSE(Bench.Shell[OpenMark::PositionLoop] || Bench.Shell.ChildWindowOpen);
  EXPECT_TRUE(Bench.Trace.ClosingPositionWindow);
  Bench.World.RunFor(5000);
  EXPECT_EQ(Bench.TakeFrames(), Texts{}) << "closing writes nothing";
}

TEST_F(PositionTest, ClosingWhileGainsAreWrittenIsSound) {
  OpenQuietly();
  Bench.World.At(50, [&] { Bench.User.Close(Window); });
  Click();
  EXPECT_FALSE(Window.Loaded);
  EXPECT_FALSE(Bench.Shell[OpenMark::PositionLoop] || Bench.Shell.ChildWindowOpen);
  EXPECT_TRUE(Bench.Link.LinkIdle);
  EXPECT_EQ(Bench.World.Log.Writes(9), std::vector<int>{});
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

// --- Channels and colours.

TEST_F(PositionTest, PositionSeriesShareAnAxisUntilTheNextCapture) {
  OpenQuietly();
  On.EnterShortTest();
  Bench.User.Click(Window.Check1[Form3::PRef]);
  EXPECT_EQ(Window.Plot.Label11.Caption, "Position Error (p)");
  Click();
  EXPECT_FALSE(Window.Check1[Form3::PRef].Ticked);
  const std::size_t lines = Window.Plot.Picture1.Lines.size();
  Bench.User.Click(Window.Check1[Form3::PRef]);
  EXPECT_GT(Window.Plot.Picture1.Lines.size(), lines);
  EXPECT_EQ(Window.Plot.Label11.Caption, "P_Ref(P)");
  const auto revision = Window.Plot.Picture1.Revision;
  ASSERT_TRUE(
      Bench.World.RunUntil([&] { return Window.Plot.Picture1.Revision != revision; }, 20000));
  EXPECT_EQ(Window.Plot.PositionSource, PositionSeries::PErr);
  EXPECT_FALSE(Window.Check1[Form3::PRef].Ticked);
}

TEST_F(PositionTest, ColoursLastUntilTheWindowCloses) {
  OpenQuietly();
  Bench.World.ChosenColours = {std::nullopt, 0x123456};
  Bench.User.Click(Window.Command4[7]);
  EXPECT_EQ(Bench.Trace.PositionColours[Signal::IBak], 255U);
  Bench.User.Click(Window.Command4[7]);
  EXPECT_EQ(Window.Command4[7].BackColor, 0x123456U);
  EXPECT_EQ(Bench.Trace.PositionColours[Signal::IBak], 0x123456U);
  Bench.User.Close(Window);
  EXPECT_EQ(Bench.Trace.PositionColours[Signal::IBak], 255U);
}

}  // namespace
}  // namespace gainsmith::test
