// Form1: frames, fields, the picture, and what closing it in a test leaves behind.
#include <gtest/gtest.h>

#include <algorithm>

#include "tuning/current_loop_window.h"
#include "tuning/tuning_bench.h"

namespace gainsmith::test {
namespace {

struct CurrentLoopTest : ::testing::Test, TuningBench {
  Form1 Window{World, Link, Params, Shell};
  PictureBox& Picture = Window.Picture1;

  void Click() { User.Click(Window.cmdTest); }
  void Redraw() { World.RunFor(101); }
};

TEST_F(CurrentLoopTest, LoadTestAndCloseSpeakInOrder) {
  const std::int64_t beforeMs = World.NowMs();
  Open(Window);
  // Two exchanges: 8 bytes of 2 ms, 31 ms and a step, 50 ms and a step, 31 ms and a step.
  EXPECT_EQ(World.NowMs() - beforeMs, 2 * (16 + 32 + 51 + 32));
  EXPECT_EQ(TakeFrames(), (Texts{"R 0", "R 1"}));
  EXPECT_EQ(Params[Slot::CurrentKp], 400);
  EXPECT_TRUE(Shell[OpenMark::CurrentLoop]);
  EXPECT_TRUE(Link.LinkIdle);
  User.Drag(Picture, 0, 0, 100, 1);
  EXPECT_EQ(Window.Plot.ZoomLevel, 0) << "nothing to zoom yet";

  const std::int64_t clickedMs = World.NowMs();
  Click();
  // The last write and the blocks have no closing wait.
  EXPECT_EQ(World.NowMs() - clickedMs, 3 * (16 + 53 + 51 + 53) + (16 + 53 + 51) + 4 * 147);
  EXPECT_EQ(TakeFrames(), (Texts{"W 0=400", "W 1=500", "W 4=512", "W 2=1", "R 256x50", "R 306x50",
                                 "R 356x50", "R 406x50"}));
  EXPECT_TRUE(Window.DataSource.Enabled());

  Shell.ChildWindowOpen = true;
  User.Close(Window);
  EXPECT_EQ(TakeFrames(), (Texts{"W 2=0"}));
  EXPECT_FALSE(Shell[OpenMark::CurrentLoop] || Shell.ChildWindowOpen);
  EXPECT_EQ(TakeMessages(), Texts{});
  Device.Drive.Inject(sim::Fault::Silent);
  Open(Window);
  EXPECT_EQ(Window.Text1[Form1::Kp].Text, "") << "nothing was read";
}

TEST_F(CurrentLoopTest, FieldsAreCheckedWhenLeftAndCorrected) {
  const struct {
    Form1::Field Index;
    Texts Bad;
    const char* Text;
    const char* Corrected;
  } cases[] = {
      {Form1::Kp, {"", "abc", "-5", "0x1F", "nan"}, "Kp value should be 1-65535", "1"},
      {Form1::Kp, {"65536", "1e300", "65535.01"}, "Kp value should be 1-65535", "65535"},
      {Form1::TestCurrent, {"5.01", "9"}, "Test current value should be 1-5 A", "5"},
  };
  Open(Window);
  for (const auto& c : cases) {
    for (const std::string& bad : c.Bad) {
      SCOPED_TRACE(bad);
      Window.Text1[c.Index].Text = bad;
      User.Leave(Window.Text1[c.Index]);
      EXPECT_EQ(TakeMessages(), (Texts{c.Text}));
      EXPECT_EQ(Window.Text1[c.Index].Text, c.Corrected);
      EXPECT_EQ(World.Focus, &Window.Text1[c.Index]);
    }
  }
  Window.Text1[Form1::Kp].Text = "65535";
  for (const auto& [ki, current] : {std::pair{"0", "0.1"}, std::pair{"32767", " 5 A"}}) {
    Window.Text1[Form1::Ki].Text = ki;
    Window.Text1[Form1::TestCurrent].Text = current;
    User.Leave(Window.Text1[Form1::TestCurrent]);
    EXPECT_EQ(TakeMessages(), Texts{}) << ki << ", " << current;
  }
}

// The fields stay open to the user while the words go out.
TEST_F(CurrentLoopTest, TheWordsAreThoseOfTheClick) {
  Open(Window);
  TakeFrames();
  World.At(100, [&] {
    for (TextBox& field : Window.Text1) field.Text = "abc";
  });
  Click();
  Texts frames = TakeFrames();
  frames.resize(4);
  EXPECT_EQ(frames, (Texts{"W 0=400", "W 1=500", "W 4=512", "W 2=1"}));
}

// The fields may have been changed since; the samples were not made with that.
TEST_F(CurrentLoopTest, ACopyNamesWhatTheTraceWasMadeWith) {
  Open(Window);
  EXPECT_EQ(Picture.OnCopy(), "");
  Click();
  Window.Text1[Form1::Kp].Text = "7";
  const std::string text = Picture.OnCopy();
  EXPECT_TRUE(text.starts_with("Kp\t400\t\nKi\t500\t\nTest Current\t0.5\tA\nRise time")) << text;
  EXPECT_NE(text.find("\n\nSample\tCurrent (A)\n0\t"), std::string::npos) << text;
}

TEST_F(CurrentLoopTest, ARefusedFieldStillFiresTheStepWithoutAPicture) {
  Open(Window);
  TakeFrames();
  Window.Text1[Form1::Kp].Text = "70000";
  Click();
  EXPECT_EQ(TakeMessages(), (Texts{"Kp value should be 1-65535"}));
  EXPECT_EQ(TakeFrames(), (Texts{"W 0=65535", "W 1=500", "W 4=512", "W 2=1"}));
  EXPECT_FALSE(Window.DataSource.Enabled());
  EXPECT_TRUE(Window.cmdTest.Enabled);
}

TEST_F(CurrentLoopTest, DrawsTheTraceBothLinesAndTheRubberBand) {
  Open(Window);
  Window.Text1[Form1::TestCurrent].Text = "1";
  Click();
  Redraw();
  EXPECT_EQ(Picture.Scale, (PictureScale{0, 3, 199, -6}));
  ASSERT_EQ(Picture.Lines.size(), 199U + 2U);
  const PictureLine& trace = Picture.Lines[0];
  const PictureLine& zero = Picture.Lines[199];
  const PictureLine& target = Picture.Lines[200];
  EXPECT_EQ(std::tie(trace.Color, trace.WidthPixels), std::make_tuple(Rgb(28, 249, 105), 2));
  EXPECT_EQ(std::tie(zero.Y1, zero.X2, zero.WidthPixels), std::make_tuple(0.F, 199.F, 1));
  EXPECT_EQ(std::tie(target.Y1, target.Color), std::make_tuple(1.F, Rgb(243, 81, 33)));
  EXPECT_EQ(Window.Label3[Form1::Height].Caption, "6.00");
  EXPECT_EQ(Window.Label3[Form1::Width].Caption, "199");
  // The drive's own step answer: it settles on the test current.
  EXPECT_NEAR(Window.Plot.MeasuredCurrent[150], 1, 0.1);
  const auto revision = Picture.Revision;
  World.RunFor(1000);
  EXPECT_EQ(Picture.Revision, revision) << "the same picture was drawn again";

  Picture.OnMouseDown(LeftButton, 10, 1);
  Picture.OnMouseMove(LeftButton, 60, -1);
  Redraw();
  ASSERT_EQ(Picture.Lines.size(), 199U + 4U + 2U);
  EXPECT_TRUE(Picture.Lines[199].Dotted);
  EXPECT_EQ(Picture.Lines[199].Color, Rgb(23, 32, 3));
  EXPECT_EQ(Picture.Overlay.size(), 4U);
  Picture.OnMouseMove(NoButton, 60, -1);
  Redraw();
  EXPECT_EQ(Picture.Lines.size(), 199U + 2U);
  EXPECT_TRUE(Picture.Overlay.empty());
}

TEST(CurrentPlotTest, ConvertsCountsAsTheDriveMeansThem) {
  CurrentPlot plot;
  PictureBox picture;
  plot.ShowTrace({512, -1024, 5120}, 0, picture);
  EXPECT_EQ(plot.MeasuredCurrent[0], 0.5F);
  EXPECT_EQ(plot.MeasuredCurrent[1], -1.F);
  EXPECT_EQ(plot.MeasuredCurrent[2], 5.F);
  EXPECT_EQ(picture.Scale, (PictureScale{0, 0.2F, 199, -0.4F})) << "no test current";
}

TEST_F(CurrentLoopTest, ZoomsByRectanglesAndBackByClicks) {
  const PictureScale full{0, 1.5F, 199, -3};
  const PictureScale first{10, 1.5F, 30, -2.5F};
  const struct {
    float X1, Y1, X2, Y2;
    int Level;
    PictureScale View;
    const char* Amperes = "1.20 A";
  } gestures[] = {
      {50, 1, 50, 1, 0, full},
      {40, -1, 10, 9, 1, first, "1.25 A"},                 // clamped to the top
      {20, 1, 24, 0, 0, full},                             // four samples: one back
      {40, -1, 10, 1.5F, 1, first, "1.25 A"},              // and in again
      {20, 0.5F, 30, 0.504F, 0, full},                     // too low: one back
      {20, 1, 25, 0.5F, 1, {20, 1, 5, -0.5F}, "0.950 A"},  // just enough
      {20, 1, 20, 1, 0, full},
      {20, 0.005F, 30, 0, 1, {20, 0.005F, 10, -0.005F}, "0.00450 A"},
      {20, 1, 20, 1, 0, full},
      {10.5F, 1, 500, 0, 1, {10, 1, 188, -1}, "0.90 A"},
  };
  Open(Window);
  Click();
  for (const auto& g : gestures) {
    User.Drag(Picture, g.X1, g.Y1, g.X2, g.Y2);
    EXPECT_EQ(Window.Plot.ZoomLevel, g.Level);
    EXPECT_EQ(Window.Plot.View(), g.View) << g.X1 << " " << g.X2;
    Redraw();
    const auto axis = std::find_if(Picture.Texts.begin(), Picture.Texts.end(), [](const auto& t) {
      return t.At == PictureText::Place::RightEdge;
    });
    ASSERT_NE(axis, Picture.Texts.end());
    EXPECT_EQ(axis->Text, g.Amperes);
  }
  for (int i = 0; i < 20; ++i) User.Drag(Picture, 20, 0.5F, 30, 0.6F);
  EXPECT_EQ(Window.Plot.ZoomLevel, CurrentZoomLevels - 1);
  User.Drag(Picture, 20, 0, 20, 0, RightButton);
  EXPECT_EQ(Window.Plot.View(), full);

  // While a test is set up the mouse is shut out.
  World.At(100, [&] {
    User.Drag(Picture, 10, 1, 60, -1);
    EXPECT_EQ(Window.Plot.View(), full);
  });
  Click();
}

TEST_F(CurrentLoopTest, ClosingBreaksOffATestAndEndsTheTestMode) {
  for (std::int64_t delayMs = 0; delayMs < 2000; delayMs += 7) {
    SCOPED_TRACE(delayMs);
    Open(Window);
    World.At(delayMs, [&] { User.Close(Window); });
    Click();
    World.RunUntil([&] { return !Window.Loaded; }, 2000);
    // A gain under way is still brought to its end.
    EXPECT_EQ(World.Log.Writes(2).back(), 0);
    for (const Slot slot : {Slot::CurrentKp, Slot::CurrentKi}) {
      EXPECT_EQ(Device.Drive.Registers().Values[static_cast<std::size_t>(slot)], Params[slot]);
    }
    EXPECT_FALSE(Window.Loaded);
    EXPECT_TRUE(Link.LinkIdle);
    EXPECT_EQ(TakeMessages(), Texts{});
  }
}

}  // namespace
}  // namespace gainsmith::test
