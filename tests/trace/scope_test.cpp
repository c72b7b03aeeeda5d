// Form5: what it sends, in order, what it shows, and the state it is left in.
#include <algorithm>
#include <cmath>

#include "trace/scope_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;

const Texts OneCycle{"W 20=200", "R 28", "upload 12"};

float Peak(const TraceArray& trace) {
  return *std::max_element(trace.begin(), trace.end(),
                           [](float a, float b) { return std::abs(a) < std::abs(b); });
}

TEST_F(ScopeTest, LoadReadsTheEncoderAndChoosesTheChannels) {
  Device.Drive.Registers()[sim::Reg::EncoderCounts] = 40000;  // above the signed range
  Bench.Trace.VBakTrace.fill(7);
  Open();
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"R 19", "W 17=145"}));
  EXPECT_EQ(Bench.Trace.EncoderCounts, 40000);
  EXPECT_EQ(Bench.Params[Slot::EncoderCounts], 40000);
  EXPECT_EQ(Bench.Trace.VBakTrace, TraceArray{});
  EXPECT_EQ(std::pair(Window.LeftTwips, Window.TopTwips), std::pair(3000, 2000));
  EXPECT_FALSE(Window.Check2.Enabled || Window.Timer1.Enabled());
  EXPECT_TRUE(Bench.Link.LinkIdle);
  EXPECT_TRUE(Bench.Shell.ChildWindowOpen && Bench.Shell[OpenMark::Scope]);
  Bench.User.Close(Window);
  ExpectClosed();
  EXPECT_EQ(Bench.TakeFrames(), Texts{});
}

TEST_F(ScopeTest, AVisitStartsAnewWhateverTheLastOneLeft) {
  OpenQuietly();
  Record(At500Ms);
  Bench.User.Click(Window.Check1[Form5::Velocity]);
  Bench.User.Click(Window.Check2);
  ASSERT_TRUE(Window.Plot.FrequencyMode);
  Bench.User.Close(Window);
  Open();
  EXPECT_FALSE(Window.Plot.FrequencyMode || Window.Plot.CaptureHaveData || Window.StopRequested);
  EXPECT_TRUE(Window.Plot.Label5[0].Visible && Window.Plot.Picture1.Lines.empty());
  const CheckBox& velocity = Window.Check1[Form5::Velocity];
  EXPECT_TRUE(velocity.Ticked && velocity.Enabled && Window.Command1.Enabled);
  EXPECT_FALSE(Window.Check2.Ticked || Window.Check2.Enabled);
  EXPECT_EQ(Window.Combo1.Text, "2000ms");
}

TEST_F(ScopeTest, StartThenCycleAfterCycleThenStop) {
  TurnMotor();
  OpenQuietly();
  Choose(At500Ms);
  Click();
  EXPECT_EQ(Bench.TakeFrames(), (Texts{"W 26=5"}));
  EXPECT_EQ(Window.Command1.Caption, "Stop");
  for (std::size_t i = 1; i < Window.Check1.size(); ++i) EXPECT_FALSE(Window.Check1[i].Enabled);
  EXPECT_FALSE(Window.Combo1.Enabled || Window.Label2.Enabled || Window.Check2.Enabled);
  EXPECT_EQ(Bench.Trace.TimeStep[0], 50);

  ASSERT_TRUE(RunToRecording());
  EXPECT_EQ(Summary(Bench.TakeFrames()), OneCycle);
  EXPECT_TRUE(Window.Timer1.Enabled());
  EXPECT_EQ(Window.Plot.Label4[10].Caption, "500");
  EXPECT_EQ(Window.Plot.Picture1.Lines.size(), 3U * 199);
  EXPECT_GT(std::abs(Peak(Bench.Trace.VBakTrace)), 50);
  const std::int64_t endMs = Bench.World.NowMs();
  ASSERT_TRUE(RunToRecording());
  // 50 ms, and eight bytes of 2 ms of which the last one's pause follows its time.
  EXPECT_EQ(Bench.World.Log.Frames().front().AtMs, endMs + 50 + 14);
  EXPECT_EQ(Summary(Bench.TakeFrames()), OneCycle);

  Click();
  ExpectStopped();
  ExpectQuiet();
  EXPECT_EQ(Window.Plot.Picture1.Lines.size(), 3U * 199);
}

TEST_F(ScopeTest, StopEndsACycleAtItsNextTestAndDropsWhatItHasRead) {
  struct Case {
    const char* When;
    int Request;
    std::int64_t DelayMs;
    Texts Frames;
  };
  // At 2000 ms a recording takes more than ten polls.
  const Case cases[] = {
      {"while arming", 0, 0, {"W 20=200"}},
      {"while arming settles", 0, 130, {"W 20=200"}},
      {"in the first poll", 1, 0, {"W 20=200", "R 28"}},
      {"while the first poll settles", 1, 130, {"W 20=200", "R 28"}},
      {"in the fifth poll", 5, 0, {"W 20=200", "R 28", "R 28", "R 28", "R 28", "R 28"}},
      {"in the first block", -12, 0, OneCycle},
      {"in the last block", -1, 0, OneCycle},
      {"in the wait after it", -1, 170, OneCycle},
  };
  TurnMotor();
  OpenQuietly();
  Click();
  ASSERT_TRUE(RunToRecording());
  Bench.TakeFrames();
  ASSERT_TRUE(RunToRecording());
  const int requests = static_cast<int>(Bench.TakeFrames().size());
  for (const Case& c : cases) {
    SCOPED_TRACE(c.When);
    const TraceArray before = Bench.Trace.VBakTrace;
    const auto revision = Window.Plot.Picture1.Revision;
    AtRequest(c.Request < 0 ? requests + c.Request : c.Request, [&] { ClickAfter(c.DelayMs); });
    Bench.World.RunFor(8000);
    const Texts frames = Bench.TakeFrames();
    EXPECT_EQ(c.Request < 0 ? Summary(frames) : frames, c.Frames);
    ExpectStopped();
    EXPECT_EQ(Bench.Trace.VBakTrace, before);
    EXPECT_EQ(Window.Plot.Picture1.Revision, revision);

    Click();
    ASSERT_TRUE(RunToRecording());
    EXPECT_NE(Bench.Trace.VBakTrace, before) << "the next run goes on as ever";
    Bench.TakeFrames();
  }
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

// Stop, another trace time and Start while a cycle is under way: what it has recorded with the old
// trace time is dropped, so that no recording is shown at the wrong scale.
TEST_F(ScopeTest, AStartInsideACycleOvertakesIt) {
  TurnMotor();
  OpenQuietly();
  for (std::int64_t delayMs = 1; delayMs < 2700; delayMs += 31) {
    SCOPED_TRACE(delayMs);
    Choose(At100Ms);
    Click();
    auto shown = Window.Plot.Picture1.Revision;
    Bench.World.At(delayMs, [&] {
      Click();
      Choose(At500Ms);
      Click();
      shown = Window.Plot.Picture1.Revision;
    });
    ASSERT_TRUE(Bench.World.RunUntil(
        [&] { return Bench.Trace.SampleDivider == 5 && Window.Plot.Picture1.Revision != shown; },
        10'000));
    EXPECT_EQ(Bench.World.Log.Writes(26).back(), 5);
    EXPECT_EQ(Window.Plot.Label4[10].Caption, "500");
    EXPECT_NEAR(std::abs(Peak(Bench.Trace.VBakTrace)), 100, 15);
    Click();
    ExpectStopped();
    Bench.TakeFrames();
  }
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

TEST_F(ScopeTest, NoCycleBeginsBeforeTheTraceTimeIsWritten) {
  OpenQuietly();
  Window.Timer1.Start();  // as the main window's command does
  ClickAfter(20);
  ASSERT_TRUE(RunToRecording());
  EXPECT_EQ(Bench.World.Log.Writes(26), (std::vector<int>{20}));
  EXPECT_EQ(Summary(Bench.TakeFrames()), (Texts{"W 26=20", "W 20=200", "R 28", "upload 12"}));
}

TEST_F(ScopeTest, FastClicksLeaveNothingRunning) {
  OpenQuietly();
  for (const int clicks : {2, 3, 4, 5, 8, 9}) {
    for (const std::int64_t pauseMs : {0, 3, 60, 170, 400}) {
      SCOPED_TRACE(std::to_string(clicks) + " clicks, " + std::to_string(pauseMs) + " ms");
      for (int click = 0; click < clicks; ++click) ClickAfter(pauseMs * click);
      Bench.World.RunFor(pauseMs * clicks + 8000);
      if (clicks % 2 != 0) {
        EXPECT_EQ(Window.Command1.Caption, "Stop");
        EXPECT_TRUE(Window.Timer1.Enabled());
        ASSERT_TRUE(RunToRecording());
        Click();
      }
      ExpectStopped();
      ExpectQuiet();
    }
  }
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

TEST_F(ScopeTest, ClosesOnlyBetweenCycles) {
  OpenQuietly();
  Choose(At100Ms);
  Click();
  AtRequest(3, [&] { Bench.User.Close(Window); });
  ASSERT_TRUE(RunToRecording());
  EXPECT_TRUE(Window.Visible);
  ASSERT_EQ(Bench.World.Messages.size(), 1U);
  EXPECT_EQ(Bench.World.Messages[0].Icon, MessageIcon::Critical);
  EXPECT_EQ(Bench.TakeMessages(), (Texts{CloseRefused}));

  AtRequest(5, [&] {
    Click();
    Bench.User.Close(Window);  // the cycle still runs, and has been told to stop
    EXPECT_TRUE(Window.Visible);
  });
  Bench.World.RunFor(5000);
  ExpectStopped();

  Click();
  ASSERT_TRUE(RunToRecording());
  Bench.World.RunFor(20);
  Bench.TakeFrames();
  Bench.User.Close(Window);
  ExpectClosed();
  ExpectQuiet();
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

TEST_F(ScopeTest, ChannelsAreChosenWhileStoppedAndDropTheZoom) {
  TurnMotor();
  OpenQuietly();
  Record(At500Ms);
  Bench.User.Drag(Window.Plot.Picture1, 20, 300, 100, -300);
  ASSERT_EQ(Window.Plot.ZoomLevel, 1);
  struct {
    Form5::Channel Channel;
    Signal Shown;
  } const channels[] = {{Form5::Current, Signal::IBak},
                        {Form5::Velocity, Signal::VBak},
                        {Form5::PositionError, Signal::PErr}};
  std::size_t left = 3;
  for (const auto& c : channels) {
    Bench.User.Click(Window.Check1[c.Channel]);
    EXPECT_FALSE(Bench.Trace.Show(c.Shown));
    EXPECT_EQ(Window.Plot.ZoomLevel, 0);
    EXPECT_EQ(Window.Plot.Picture1.Lines.size(), --left * 199);
  }
  EXPECT_EQ(Window.Plot.Label4[10].Caption, "500") << "the labels stay";
  Bench.User.Click(Window.Check1[Form5::Velocity]);
  Record(At300Ms);
  EXPECT_EQ(Window.Plot.Picture1.Lines.size(), 199U) << "a recording keeps the choice";
}

}  // namespace
}  // namespace gainsmith::test
