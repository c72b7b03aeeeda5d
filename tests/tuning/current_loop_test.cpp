// Form1: frames, fields, the picture, and what a spoilt line leaves behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tuning/current_loop_window.h"
#include "tuning/tuning_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;

Texts TestFrames(const std::string& kp, const std::string& ki, const std::string& current) {
  return {"W 0=" + kp, "W 1=" + ki, "W 4=" + current, "W 2=1",
          "R 256x50",  "R 306x50",  "R 356x50",       "R 406x50"};
}

struct CurrentLoopTest : ::testing::Test {
  TappedDrive Device;
  TuningBench Bench{Device};
  Form1 Window{Bench.World, Bench.Link, Bench.Params, Bench.Shell};

  void Open() { Bench.World.ShowModal(Window); }
  void Test() { Bench.User.Click(Window.cmdTest); }
  void Redraw() { Bench.World.RunFor(101); }
};

TEST_F(CurrentLoopTest, LoadTestAndCloseSpeakInOrder) {
  Open();
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"R 0", "R 1"}));
  EXPECT_EQ(Window.Text1[Form1::Kp].Text, "400");
  EXPECT_EQ(Window.Text1[Form1::Ki].Text, "500");
  EXPECT_EQ(Bench.Params[Slot::CurrentKp], 400);
  EXPECT_TRUE(Bench.Shell[OpenMark::CurrentLoop]);
  EXPECT_TRUE(Bench.Link.LinkIdle);
  EXPECT_FALSE(Window.DataSource.Enabled());

  Test();
  EXPECT_EQ(Bench.TakeFrames(), TestFrames("400", "500", "512"));
  EXPECT_TRUE(Window.DataSource.Enabled());
  EXPECT_TRUE(Window.cmdTest.Enabled);

  Bench.Shell.ChildWindowOpen = true;
  Bench.User.Close(Window);
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 2=0"}));
  EXPECT_FALSE(Bench.Shell[OpenMark::CurrentLoop]);
  EXPECT_FALSE(Bench.Shell.ChildWindowOpen);
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

TEST_F(CurrentLoopTest, WaitsOfTheLoadAreShorter) {
  const std::int64_t before = Bench.World.NowMs();
  Open();
  // Two exchanges: 8 bytes of 2 ms, 31 ms and a step, 50 ms and a step, 31 ms and a step.
  EXPECT_EQ(Bench.World.NowMs() - before, 2 * (16 + 32 + 51 + 32));
}

TEST_F(CurrentLoopTest, FieldsAreCheckedInOrderAndCorrected) {
  struct Case {
    const char *Kp, *Ki, *Current;
    const char* Text;
    Form1::Field Field;
    const char* Corrected;
  };
  constexpr const char* KpText = "Kp value should be 1-65535";
  constexpr const char* KiText = "Ki value should be 1-32767";
  constexpr const char* CurrentText = "Test current value should be 1-5 A";
  const Case cases[] = {
      {"", "0", "9", KpText, Form1::Kp, "1"},
      {"abc", "1", "1", KpText, Form1::Kp, "1"},
      {"-5", "1", "1", KpText, Form1::Kp, "1"},
      {"0x1F", "1", "1", KpText, Form1::Kp, "1"},
      {"nan", "1", "1", KpText, Form1::Kp, "1"},
      {"65536", "1", "1", KpText, Form1::Kp, "65535"},
      {"1e300", "1", "1", KpText, Form1::Kp, "65535"},
      {"65535.01", "1", "1", KpText, Form1::Kp, "65535"},
      {"1", "-0.1", "1", KiText, Form1::Ki, "1"},
      {"1", "32768", "1", KiText, Form1::Ki, "32767"},
      {"1", "0", "0", CurrentText, Form1::TestCurrent, "0.5"},
      {"1", "0", "5.01", CurrentText, Form1::TestCurrent, "5"},
  };
  Open();
  for (const Case& c : cases) {
    Window.Text1[Form1::Kp].Text = c.Kp;
    Window.Text1[Form1::Ki].Text = c.Ki;
    Window.Text1[Form1::TestCurrent].Text = c.Current;
    Bench.User.Leave(Window.Text1[c.Field]);
    EXPECT_EQ(Bench.TakeMessages(), (Texts{c.Text})) << c.Kp << "/" << c.Ki << "/" << c.Current;
    EXPECT_EQ(Window.Text1[c.Field].Text, c.Corrected);
    EXPECT_EQ(Bench.World.Focus, &Window.Text1[c.Field]);
  }
  Window.Text1[Form1::Kp].Text = "65535";
  Window.Text1[Form1::Ki].Text = "32767";
  for (const char* current : {"5", "0.1", " 5 A"}) {
    Window.Text1[Form1::TestCurrent].Text = current;
    Bench.User.Leave(Window.Text1[Form1::TestCurrent]);
    EXPECT_EQ(Bench.TakeMessages(), Texts{}) << current;
  }
}

TEST_F(CurrentLoopTest, ARefusedFieldStillFiresTheStepWithoutAPicture) {
  Open();
  Bench.TakeFrames();
  Window.Text1[Form1::Kp].Text = "70000";
  Test();
  EXPECT_EQ(Bench.TakeMessages(), (Texts{"Kp value should be 1-65535"}));
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 0=65535", "W 1=500", "W 4=512", "W 2=1"}));
  EXPECT_FALSE(Window.DataSource.Enabled());
  EXPECT_TRUE(Window.cmdTest.Enabled);

  // Only the first bad field is corrected: the second one cannot even be sent.
  Window.Text1[Form1::Kp].Text = "0";
  Window.Text1[Form1::Ki].Text = "-7";
  Test();
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 0=1"}));
  ASSERT_EQ(Bench.World.Messages.size(), 2U);
  EXPECT_NE(Bench.World.Messages[1].Text.find("-7"), std::string::npos);
  EXPECT_TRUE(Bench.Link.LinkIdle);
}

TEST_F(CurrentLoopTest, DrawsTheTraceAndBothLines) {
  Open();
  Window.Text1[Form1::TestCurrent].Text = "1";
  Test();
  Redraw();
  EXPECT_EQ(Window.Picture1.Scale, (PictureScale{0, 3, 199, -6}));
  const auto& lines = Window.Picture1.Lines;
  ASSERT_EQ(lines.size(), 199U + 2U);
  EXPECT_EQ(lines[0].Color, Rgb(28, 249, 105));
  EXPECT_EQ(lines[0].WidthPixels, 2);
  const auto& zero = lines[199];
  const auto& target = lines[200];
  EXPECT_EQ(std::tie(zero.Y1, zero.X2, zero.WidthPixels), std::make_tuple(0.F, 199.F, 1));
  EXPECT_EQ(std::tie(target.Y1, target.Color), std::make_tuple(1.F, Rgb(243, 81, 33)));
  EXPECT_EQ(Window.Label3[Form1::Height].Caption, "6.00");
  EXPECT_EQ(Window.Label3[Form1::Width].Caption, "199");
  // The drive's own step answer: it settles on the test current.
  EXPECT_NEAR(Window.Plot.MeasuredCurrent[150], 1, 0.1);

  const auto revision = Window.Picture1.Revision;
  Bench.World.RunFor(1000);
  EXPECT_EQ(Window.Picture1.Revision, revision) << "the same picture was drawn again";
}

TEST(CurrentPlotTest, ConvertsCountsAsTheDriveMeansThem) {
  CurrentPlot plot;
  PictureBox picture;
  std::array<float, CurrentSamples> counts{};
  counts[0] = 512;
  counts[1] = -1024;
  counts[199] = 5120;
  plot.ShowTrace(counts, 0, picture);
  EXPECT_EQ(plot.MeasuredCurrent[0], 0.5F);
  EXPECT_EQ(plot.MeasuredCurrent[1], -1.F);
  EXPECT_EQ(plot.MeasuredCurrent[199], 5.F);
  EXPECT_EQ(picture.Scale, (PictureScale{0, 0.2F, 199, -0.4F})) << "no test current";
}

TEST_F(CurrentLoopTest, ZoomsByRectanglesAndBackByClicks) {
  PictureBox& picture = Window.Picture1;
  Open();
  Bench.User.Drag(picture, 0, 0, 100, 1);
  EXPECT_EQ(Window.Plot.ZoomLevel, 0) << "nothing to zoom yet";
  Test();
  struct Gesture {
    float X1, Y1, X2, Y2;
    int Level;
    PictureScale View;
  };
  const PictureScale full{0, 1.5F, 199, -3};
  const PictureScale first{10, 1.5F, 30, -2.5F};
  const Gesture gestures[] = {
      {50, 1, 50, 1, 0, full},
      {40, -1, 10, 9, 1, first},        // clamped to the top
      {20, 1, 24, 0, 0, full},          // four samples: one back
      {40, -1, 10, 1.5F, 1, first},     // and in again
      {20, 0.5F, 30, 0.504F, 0, full},  // too low: one back
      {10.5F, 1, 500, 0, 1, {10, 1, 188, -1}},
  };
  for (const Gesture& g : gestures) {
    Bench.User.Drag(picture, g.X1, g.Y1, g.X2, g.Y2);
    EXPECT_EQ(Window.Plot.ZoomLevel, g.Level);
    EXPECT_EQ(Window.Plot.View(), g.View) << g.X1 << " " << g.X2;
  }
  for (int i = 0; i < 20; ++i) Bench.User.Drag(picture, 20, 0.5F, 30, 0.6F);
  EXPECT_EQ(Window.Plot.ZoomLevel, CurrentZoomLevels - 1);
  Bench.User.Drag(picture, 20, 0, 20, 0, RightButton);
  EXPECT_EQ(Window.Plot.View(), full);
}

TEST_F(CurrentLoopTest, TheRubberBandIsDrawnWhileAButtonIsHeld) {
  Open();
  Test();
  Window.Picture1.OnMouseDown(LeftButton, 10, 1);
  Window.Picture1.OnMouseMove(LeftButton, 60, -1);
  Redraw();
  ASSERT_EQ(Window.Picture1.Lines.size(), 199U + 4U + 2U);
  EXPECT_TRUE(Window.Picture1.Lines[199].Dotted);
  EXPECT_EQ(Window.Picture1.Lines[199].Color, Rgb(23, 32, 3));
  EXPECT_EQ(Window.Picture1.Overlay.size(), 4U);
  Window.Picture1.OnMouseMove(NoButton, 60, -1);
  Redraw();
  EXPECT_EQ(Window.Picture1.Lines.size(), 199U + 2U);
  EXPECT_TRUE(Window.Picture1.Overlay.empty());
}

TEST_F(CurrentLoopTest, TheMouseIsShutOutWhileTheSetupIsWritten) {
  Open();
  Test();
  Bench.World.At(100, [&] { Bench.User.Drag(Window.Picture1, 10, 1, 60, -1); });
  Test();
  EXPECT_EQ(Window.Plot.ZoomLevel, 0);
}

// --- Spoilt lines.

TEST_F(CurrentLoopTest, ASilentDriveAtLoadLeavesTheWindowOpen) {
  Device.Drive.Inject(sim::Fault::Silent);
  Open();
  EXPECT_EQ(Bench.TakeMessages(), (Texts{LostLink}));
  EXPECT_EQ(Bench.TakeFrames().size(), 12U);
  EXPECT_TRUE(Window.Visible);
  EXPECT_EQ(Window.Text1[Form1::Kp].Text, "");
  EXPECT_TRUE(Bench.Link.LinkIdle);

  Device.Drive.ClearFaults();
  Window.Text1[Form1::Kp].Text = "10";
  Window.Text1[Form1::Ki].Text = "10";
  Test();
  EXPECT_EQ(Bench.TakeMessages(), Texts{}) << "the window can go on";
}

// Whatever exchange of a test the line dies at: each road ends in its message, and the next test
// works again.
TEST_F(CurrentLoopTest, SurvivesALineThatDiesAtAnyExchange) {
  for (const sim::Fault fault : {sim::Fault::Silent, sim::Fault::HangUp, sim::Fault::BadCrc}) {
    for (int good = 0; good < 8; ++good) {
      SCOPED_TRACE(std::string(sim::NameOf(fault)) + " after " + std::to_string(good));
      Open();
      Device.Requests = 0;
      Device.BeforeRequest = [&](int number) {
        if (number == good) Device.Drive.Inject(fault);
      };
      Test();
      // A write that fails ends the test; each block that fails says so for itself.
      const std::size_t expected = good < 4 ? 1 : static_cast<std::size_t>(8 - good);
      EXPECT_EQ(Bench.TakeMessages(), Texts(expected, LostLink));
      EXPECT_TRUE(Bench.Link.LinkIdle);
      EXPECT_TRUE(Window.cmdTest.Enabled);
      EXPECT_EQ(Window.DataSource.Enabled(), good >= 4);

      Device.BeforeRequest = {};
      Device.Drive.ClearFaults();
      Device.Drive.Reconnect();
      Test();
      EXPECT_EQ(Bench.TakeMessages(), Texts{});
      Bench.User.Close(Window);
    }
  }
}

TEST_F(CurrentLoopTest, ClosingBreaksOffATestAndEndsTheTestMode) {
  for (std::int64_t delayMs = 0; delayMs < 2000; delayMs += 7) {
    SCOPED_TRACE(delayMs);
    Open();
    Bench.TakeFrames();
    Bench.World.At(delayMs, [&] { Bench.User.Close(Window); });
    Test();
    Bench.World.RunUntil([&] { return !Window.Loaded; }, 2000);
    EXPECT_EQ(Bench.World.Log.Texts().back(), "W 2=0");
    EXPECT_FALSE(Window.Loaded);
    EXPECT_TRUE(Bench.Link.LinkIdle);
    EXPECT_EQ(Bench.TakeMessages(), Texts{});
  }
}

}  // namespace
}  // namespace gainsmith::test
