// Form3: what it sends, in order, and the state it is left in.
#include <gtest/gtest.h>

#include <algorithm>
#include <span>

#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

struct PositionTest : ::testing::Test, PositionBench {
  PositionTest() {
    Device.Drive.Registers()[sim::Reg::PositionKp] = 800;
    Device.Drive.Registers()[sim::Reg::Kaff] = 1000;
    Device.Drive.Registers()[sim::Reg::LowKaff] = 65535;
    Open(Window);
    LoadFrames = TakeFrames();
  }
  void ExpectStoppedAndUnlocked() {
    ExpectStopped(*this);
    EXPECT_EQ(RunButton.BackColor, 0x00FF00U);
    EXPECT_TRUE(Window.Text1[Form3::Velocity].Enabled && Window.Check1[Form3::PErr].Enabled);
  }
  // The first frames of a test that is soon stopped.
  Texts StartFrames(std::size_t count) {
    ClickAfter(2500, RunButton);
    User.Click(RunButton);
    Texts frames = TakeFrames(count);
    World.RunFor(100);
    ExpectStoppedAndUnlocked();
    TakeFrames();
    return frames;
  }
  Texts LoadFrames;
};

// Its first recording is shown; that of the tick which finds the plan at its end is not.
TEST_F(PositionTest, ATestFromTheOpeningToTheEndOfItsPlan) {
  EXPECT_EQ(LoadFrames, (Texts{"R 6", "R 33", "R 8", "R 31", "R 32", "R 19", "R 42", "R 43", "R 44",
                               "R 46", "R 47", "R 45", "R 48", "R 13", "W 9=0"}));
  EXPECT_GE(World.Repaints, 100) << "the progress flash";
  EXPECT_FALSE(Progress.Loaded);
  EXPECT_EQ(Window.Text1[Form3::PositionKp].Text, "800");
  EXPECT_EQ(Window.Text1[Form3::LowKaff].Text, "65535");
  EXPECT_EQ(Params[Slot::KaffLow], 65535);
  EXPECT_EQ(Params[Slot::EncoderCounts], 4000);
  EXPECT_EQ(Window.Text1[Form3::Distance].Text, "40000");
  EXPECT_EQ(Window.Combo1.Text, "2000ms");
  EXPECT_TRUE(Window.Text1[Form3::Velocity].ToolTip.starts_with(
      "Rpm. Above 0, up to 19660 with 4000 pulses per revolution"));
  EXPECT_EQ(RunButton.BackColor, 0x00C000U);
  EXPECT_TRUE(Link.LinkIdle);
  EXPECT_TRUE(Shell[Mark] && Shell.ChildWindowOpen);

  User.Click(Window.Check1[Form3::VBak]);
  Params[Slot::EncoderCounts] = 1;
  User.Click(RunButton);
  EXPECT_EQ(Params[Slot::EncoderCounts], 4000) << "the table holds what was sent";
  EXPECT_EQ(Summary(TakeFrames()), (Texts{"W 13=1000", "W 19=4000", "W 22=1000", "W 21=20",
                                          "W 23=0", "W 24=40000", "W 27=200", "W 25=1", "W 26=20",
                                          "W 17=145", "W 20=200", "W 9=2", "R 28", "upload 12"}));
  EXPECT_EQ(Window.PositionTestMs, 4250);
  EXPECT_EQ(RunButton.Caption, "Stop");
  EXPECT_EQ(Window.Command1[Form3::GainStart].Caption, "Stop");
  EXPECT_EQ(RunButton.BackColor, 0x0000FFU);
  EXPECT_FALSE(Window.Text5.Enabled || Window.Text1[Form3::RepeatTimes].Enabled);
  EXPECT_FALSE(Window.Check1[Form3::PErr].Enabled);
  EXPECT_TRUE(Window.Check1[Form3::PBak].Enabled);
  EXPECT_FALSE(Window.Plot.Picture1.Lines.empty());

  const auto shown = Window.Plot.Picture1.Revision;
  ASSERT_TRUE(World.RunUntil([&] { return !Window.DataSource.Enabled(); }, 20000));
  EXPECT_EQ(Summary(TakeFrames()), (Texts{"W 20=200", "R 28", "upload 12"}));
  EXPECT_EQ(Window.Plot.Picture1.Revision, shown);
  EXPECT_FALSE(Trace.Show[Signal::VBak]) << "as its box says";
  EXPECT_EQ(RunButton.Caption, "Stop");
  EXPECT_FALSE(Link.LinkIdle);

  User.Click(RunButton);
  EXPECT_EQ(TakeFrames(), (Texts{"W 9=0"}));
  ExpectStoppedAndUnlocked();
}

TEST_F(PositionTest, OnlyChangedGainsAreSentAndKaffAlways) {
  const struct {
    std::vector<Form3::Field> Changed;
    Texts Frames;
  } cases[] = {
      {{}, {"W 13=1000", "W 19=4000"}},
      {{Form3::PositionKp, Form3::Kvff, Form3::PositionKd, Form3::VelocityKp, Form3::VelocityKi,
        Form3::LowPositionKp, Form3::LowPositionKi, Form3::LowPositionKd, Form3::LowVelocityKp,
        Form3::LowVelocityKi, Form3::LowKvff, Form3::LowKaff},
       {"W 6=77", "W 33=77", "W 8=77", "W 31=77", "W 32=77", "W 42=77", "W 43=77", "W 44=77",
        "W 46=77", "W 47=77", "W 13=1000", "W 19=4000"}},
  };
  for (const auto& c : cases) {
    for (const Form3::Field field : c.Changed) Window.Text1[field].Text = "77";
    EXPECT_EQ(StartFrames(c.Frames.size()), c.Frames);
  }
  EXPECT_EQ(Params[Slot::PositionKiLow], 77);
  EXPECT_NE(Params[Slot::KvffLow], 77);
}

// Words at their limits, and what of it the next window knows.
TEST_F(PositionTest, FieldsBecomeWordsAndAreRememberedByAStart) {
  Window.Text1[Form3::PositionKp].Text = "2.5";
  Window.Text1[Form3::Velocity].Text = "19660.5";
  Window.Text1[Form3::Acceleration].Text = "4.9";
  Window.Text1[Form3::Distance].Text = "65535.6";
  Window.Text1[Form3::Interval].Text = "32767";
  Window.Text1[Form3::RepeatTimes].Text = "2.5";
  EXPECT_EQ(StartFrames(9), (Texts{"W 6=2", "W 13=1000", "W 19=4000", "W 22=65535", "W 21=0",
                                   "W 23=1", "W 24=0", "W 27=65534", "W 25=2"}));
  Window.Text1[Form3::Velocity].Text = "250";
  User.Close(Window);
  Open(Window);
  EXPECT_EQ(Window.Text1[Form3::Velocity].Text, "19660.5");
  EXPECT_EQ(Window.Text1[Form3::Interval].Text, "32767");
  EXPECT_EQ(Window.Text1[Form3::RepeatTimes].Text, "1");
}

TEST_F(PositionTest, ABadFieldChangesAndSendsNothing) {
  std::array<TextBox, Form3::FieldCount>& text = Window.Text1;
  const struct {
    TextBox& Field;
    Texts Bad;
    std::string Text;
  } cases[] = {
      {text[Form3::Velocity],
       {"abc", "inf", "0x1F"},
       "Volicty value should be an integer value of 1-65535"},
      {Window.Text5,
       {"-0.1", "65535.01", "1e999"},
       "The Kaff value of Position Loop 1 should be an integer value of 0-65535"},
      // No limit of the field, but nothing that the drive could take.
      {text[Form3::Velocity],
       {"19661", "19660.6"},
       "The velocity is more than the drive can take: with 4000 pulses per revolution it takes at "
       "most 19660. Nothing was sent."},
  };
  for (const auto& c : cases) {
    const std::string good = c.Field.Text;
    for (const std::string& bad : c.Bad) {
      c.Field.Text = bad;
      User.Click(RunButton);
      ASSERT_EQ(World.Messages.size(), 1U) << bad;
      EXPECT_EQ(TakeMessages(), (Texts{c.Text})) << bad;
      EXPECT_EQ(World.Focus, &c.Field);
      EXPECT_EQ(c.Field.Text, bad);
    }
    c.Field.Text = good;
  }
  Trace.EncoderCounts = 65535;
  text[Form3::Acceleration].Text = "65535";
  User.Click(RunButton);
  EXPECT_EQ(TakeMessages(),
            (Texts{"The acceleration is more than the drive can take: with 65535 pulses per "
                   "revolution it takes at most 40000. Nothing was sent."}));
  Trace.EncoderCounts = 0;
  User.Click(RunButton);
  EXPECT_EQ(TakeMessages(),
            (Texts{"The drive reports 0 pulses per motor revolution, so no speed can be reckoned. "
                   "Set the encoder resolution in Properties. Nothing was sent."}));
  EXPECT_EQ(TakeFrames(), Texts{});
  EXPECT_EQ(RunButton.Caption, "Start");
  EXPECT_TRUE(Link.LinkIdle);
}

// --- Stop.

// A Stop click in the middle of the list: its own stop word, and the one of the outer handler.
TEST_F(PositionTest, StopWhileStartIsStillWriting) {
  ClickAfter(350, RunButton);  // in the frame of register 22
  User.Click(RunButton);
  EXPECT_EQ(Summary(TakeFrames()), (Texts{"W 13=1000", "W 19=4000", "W 9=0", "R 28", "upload 12",
                                          "W 9=0", "W 22=1000", "W 9=0"}));
  ExpectStoppedAndUnlocked();
}

// The click that would write gains a second time.
// The tick that has heard the Stop still has its own stop word to say.
TEST_F(PositionTest, AStartWaitsForATickThatHasHeardAStop) {
  Window.Text1[Form3::RepeatTimes].Text = "9";
  bool inTick = false;
  Device.BeforeRequest = [&](int) {
    if (inTick || World.Log.Writes(20).size() < 2) return;
    inTick = true;
    // Between two polls of the recorder.
    World.At(600, [&] {
      User.Click(RunButton);
      TakeFrames();
      EXPECT_EQ(Window.Pointer, MousePointer::Hourglass);
      User.Click(RunButton);
      EXPECT_EQ(RunButton.Caption, "Start");
    });
  };
  User.Click(RunButton);
  World.RunFor(12000);
  ASSERT_TRUE(inTick);
  EXPECT_EQ(TakeFrames().back(), "W 9=0");
  ExpectStoppedAndUnlocked();
}

TEST_F(PositionTest, ASecondStartClickWhileGainsAreWrittenDoesNothing) {
  Window.Text1[Form3::PositionKp].Text = "120";
  Window.Text1[Form3::Kvff].Text = "90";
  for (const int delayMs : {20, 90, 170, 250, 330, 450}) ClickAfter(delayMs, RunButton);
  EXPECT_EQ(StartFrames(4), (Texts{"W 6=120", "W 33=90", "W 13=1000", "W 19=4000"}));
}

// --- Closing.

TEST_F(PositionTest, ARunningTestRefusesToClose) {
  Window.Text1[Form3::RepeatTimes].Text = "5";
  World.At(2500, [&] { User.Close(Window); });
  User.Click(RunButton);
  EXPECT_EQ(TakeMessages(), (Texts{"Please click Stop button first before you can close it"}));
  EXPECT_TRUE(Window.Loaded);
  // No further trace comes until the next click; the test itself goes on.
  const auto revision = Window.Plot.Picture1.Revision;
  World.RunFor(8000);
  EXPECT_EQ(Window.Plot.Picture1.Revision, revision);
  User.Click(RunButton);
  World.RunFor(100);
  ExpectStoppedAndUnlocked();
  TakeFrames();
  User.Close(Window);
  EXPECT_FALSE(Window.Loaded);
  EXPECT_FALSE(Shell[Mark] || Shell.ChildWindowOpen);
  World.Show(Window);
  EXPECT_FALSE(Window.Loaded) << "it is still on its way out";
  EXPECT_EQ(TakeFrames(), Texts{});
}

// --- What is seen.

TEST_F(PositionTest, HalfTheGainDoublesTheLagAndFeedForwardRemovesIt) {
  // Largest position error of the default move while the motor cruises, in a recording of 2 s.
  const auto lag = [&](const char* kp, const char* kvff) {
    Window.Text1[Form3::PositionKp].Text = kp;
    Window.Text1[Form3::Kvff].Text = kvff;
    User.Click(RunButton);
    World.RunFor(10000);
    User.Click(RunButton);
    World.RunFor(3000);
    const auto error = std::span(Trace.PErrTrace).subspan(60, 80);
    const auto [least, most] = std::minmax_element(error.begin(), error.end());
    return std::max(-*least, *most);
  };
  Window.Text5.Text = "0";
  const float whole = lag("800", "0");
  EXPECT_GT(whole, 20);
  EXPECT_NEAR(lag("400", "0") / whole, 2, 0.2);
  EXPECT_LT(lag("800", "1000"), whole / 5);
}

TEST_F(PositionTest, PositionSeriesShareAnAxisUntilTheNextCapture) {
  OpenShortTest();
  PictureBox& picture = Window.Plot.Picture1;
  CheckBox& reference = Window.Check1[Form3::PRef];
  CheckBox& feedback = Window.Check1[Form3::PBak];
  User.Click(reference);
  User.Click(feedback);
  EXPECT_EQ(Window.Plot.Label11.Caption, "Position Error (p)");
  User.Click(RunButton);
  EXPECT_FALSE(reference.Ticked || feedback.Ticked);
  const std::size_t lines = picture.Lines.size();
  User.Click(reference);
  EXPECT_GT(picture.Lines.size(), lines);
  EXPECT_EQ(Window.Plot.Label11.Caption, "P_Ref(P)");
  const auto revision = picture.Revision;
  ASSERT_TRUE(World.RunUntil([&] { return picture.Revision != revision; }, 20000));
  EXPECT_EQ(Window.Plot.PositionSource, PositionSeries::PErr);
  EXPECT_FALSE(reference.Ticked);
}

// Of the five channels with data: the box, the colour button and what both begin with.
struct ChannelControls {
  Form3::Channel Box;
  std::size_t Button;
  Signal Of;
  bool Ticked;
  Colour Swatch;
};
constexpr ChannelControls LiveChannels[] = {
    {Form3::PErr, 0, Signal::PErr, true, 0xFFC0FF},
    {Form3::PBak, 1, Signal::PBak, false, 0x800080},
    {Form3::PRef, 2, Signal::PRef, false, 0xFF8080},
    {Form3::VBak, 4, Signal::VBak, true, 0x80FF80},
    {Form3::IBak, 7, Signal::IBak, true, 0x0000FF},
};

TEST_F(PositionTest, EachBoxShowsItsOwnSignal) {
  for (const ChannelControls& channel : LiveChannels) {
    Trace.ShowRecordedChannels(3);
    for (const bool ticked : {!channel.Ticked, channel.Ticked}) {
      User.Click(Window.Check1[channel.Box]);
      for (const ChannelControls& other : LiveChannels) {
        EXPECT_EQ(Trace.Show[other.Of], (other.Box == channel.Box ? ticked : other.Ticked))
            << channel.Box << " " << other.Box;
      }
    }
  }
}

TEST_F(PositionTest, ColoursAndTicksLastUntilTheWindowCloses) {
  for (const ChannelControls& channel : LiveChannels) {
    World.ChosenColours = {0x123450U + static_cast<Colour>(channel.Button)};
    User.Click(Window.Command4[channel.Button]);
    User.Click(Window.Check1[channel.Box]);
  }
  World.ChosenColours = {};  // the dialog is left without a choice
  User.Click(Window.Command4[0]);
  for (const ChannelControls& channel : LiveChannels) {
    const Colour chosen = 0x123450U + static_cast<Colour>(channel.Button);
    EXPECT_EQ(Window.Command4[channel.Button].BackColor, chosen);
    EXPECT_EQ(Trace.PositionColours[channel.Of], chosen);
    EXPECT_EQ(Window.Check1[channel.Box].Ticked, !channel.Ticked);
  }
  User.Close(Window);
  EXPECT_EQ(Trace.PositionColours.Values, DefaultTuningColours().Values);
  Open(Window);
  for (const ChannelControls& channel : LiveChannels) {
    EXPECT_EQ(Window.Command4[channel.Button].BackColor, channel.Swatch);
    EXPECT_EQ(Window.Check1[channel.Box].Ticked, channel.Ticked);
    EXPECT_TRUE(Window.Command4[channel.Button].Enabled && Window.Check1[channel.Box].Enabled);
  }
  for (const Form3::Channel none : {Form3::IErr, Form3::IRef, Form3::VErr, Form3::VRef}) {
    EXPECT_FALSE(Window.Check1[none].Enabled || Window.Check1[none].Ticked);
  }
}

}  // namespace
}  // namespace gainsmith::test
