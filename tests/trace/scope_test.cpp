// Form5: what it sends, in order, what it shows, and the state it is left in.
#include <algorithm>
#include <cmath>

#include "trace/scope_bench.h"

namespace gainsmith::test {
namespace {

const Texts OneCycle{"W 20=200", "R 28", "upload 12"};

float Peak(const TraceArray& trace) {
  return *std::max_element(trace.begin(), trace.end(),
                           [](float a, float b) { return std::abs(a) < std::abs(b); });
}

TEST_F(ScopeTest, EveryVisitReadsTheEncoderChoosesTheChannelsAndStartsAnew) {
  Open();
  Record(At500Ms);
  User.Click(Window.Check1[Form5::Velocity]);
  User.Click(Window.Check2);
  ASSERT_TRUE(Window.Plot.FrequencyMode);
  const auto traces = {&Trace.PErrTrace, &Trace.PBakTrace, &Trace.PRefTrace, &Trace.VBakTrace,
                       &Trace.IBakTrace};
  for (TraceArray* trace : traces) trace->fill(7);
  Window.TraceBlockFailed = true;
  TakeFrames();
  User.Close(Window);
  ExpectClosed();
  EXPECT_EQ(TakeFrames(), Texts{});

  Device.Drive.Registers()[sim::Reg::EncoderCounts] = 40000;  // above the signed range
  Open();
  EXPECT_EQ(TakeFrames(), (Texts{"R 19", "W 17=145"}));
  EXPECT_EQ(Trace.EncoderCounts, 40000);
  EXPECT_EQ(Params[Slot::EncoderCounts], 40000);
  for (const TraceArray* trace : traces) EXPECT_EQ(*trace, TraceArray{});
  EXPECT_FALSE(Window.StopRequested || Window.TraceBlockFailed);
  EXPECT_TRUE(Link.LinkIdle && Shell.ChildWindowOpen && Shell[OpenMark::Scope]);
  EXPECT_FALSE(Window.Plot.FrequencyMode || Window.Plot.CaptureHaveData);
  EXPECT_TRUE(Window.Plot.Label5[0].Visible && Window.Plot.Picture1.Lines.empty());
  EXPECT_TRUE(Window.Check1[Form5::Velocity].Ticked && Window.Command1.Enabled);
  EXPECT_FALSE(Window.Check2.Ticked || Window.Check2.Enabled || Window.Timer1.Enabled());
  EXPECT_EQ(Window.Combo1.Text, "2000ms");
  ExpectSetupEnabled(true);
}

TEST_F(ScopeTest, StartThenCycleAfterCycleThenStop) {
  TurnMotor();
  OpenQuietly();
  Choose(At500Ms);
  Click();
  EXPECT_EQ(TakeFrames(), (Texts{"W 26=5"}));
  EXPECT_EQ(Window.Command1.Caption, "Stop");
  ExpectSetupEnabled(false);

  std::int64_t beginMs = World.NowMs();
  for (int cycle = 0; cycle < 2; ++cycle) {
    ASSERT_TRUE(RunToRecording());
    // 50 ms, and eight bytes of 2 ms of which the last one's pause follows its time.
    EXPECT_EQ(World.Log.Frames().front().AtMs, beginMs + 50 + 14);
    EXPECT_EQ(Summary(TakeFrames()), OneCycle);
    EXPECT_TRUE(Window.Timer1.Enabled());
    EXPECT_EQ(Window.Plot.Label4[10].Caption, "500");
    EXPECT_EQ(Window.Plot.Picture1.Lines.size(), 3U * 199);
    EXPECT_GT(std::abs(Peak(Trace.VBakTrace)), 50);
    beginMs = World.NowMs();
  }

  Click();
  ExpectStopped();
  ExpectQuiet();
}

TEST_F(ScopeTest, StopEndsARunAtItsNextTestAndDropsWhatItHasRead) {
  // Requests are counted from the Start on, or backwards from the end of the first cycle.
  const struct {
    const char* When;
    int Request;
    std::int64_t DelayMs;
    Texts Frames;
  } cases[] = {
      {"while Start writes", 0, 0, {}},
      {"while arming", 1, 0, {"W 20=200"}},
      {"while the first poll settles", 2, 130, {"W 20=200", "R 28"}},
      {"in the last poll", -13, 0, {"W 20=200", "R 28"}},
      {"in the first block", -12, 0, OneCycle},
      {"in the wait after the last", -1, 170, OneCycle},
  };
  TurnMotor();
  OpenQuietly();
  Record(At2000Ms);
  const int requests = static_cast<int>(TakeFrames().size());
  for (const auto& c : cases) {
    SCOPED_TRACE(c.When);
    const auto revision = Window.Plot.Picture1.Revision;
    AtRequest(c.Request < 0 ? requests + c.Request : c.Request, [&] { ClickAfter(c.DelayMs); });
    Click();
    World.RunFor(8000);
    Texts frames = TakeFrames();
    frames.erase(frames.begin());  // the trace time
    EXPECT_EQ(c.Request < 0 ? Summary(frames) : frames, c.Frames);
    ExpectStopped();
    EXPECT_EQ(Window.Plot.Picture1.Revision, revision);
  }
  EXPECT_EQ(TakeMessages(), Texts{});
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
    World.At(delayMs, [&] {
      Click();
      Choose(At500Ms);
      Click();
      shown = Window.Plot.Picture1.Revision;
    });
    ASSERT_TRUE(World.RunUntil(
        [&] { return Trace.SampleDivider == 5 && Window.Plot.Picture1.Revision != shown; },
        10'000));
    EXPECT_EQ(World.Log.Writes(26).back(), 5);
    EXPECT_EQ(Window.Plot.Label4[10].Caption, "500");
    EXPECT_NEAR(std::abs(Peak(Trace.VBakTrace)), 100, 15);
    Click();
    ExpectStopped();
    TakeFrames();
  }
  EXPECT_EQ(TakeMessages(), Texts{});
}

TEST_F(ScopeTest, NoCycleBeginsBeforeTheTraceTimeIsWritten) {
  OpenQuietly();
  Window.Timer1.Start();  // as the main window's command does
  Click();
  ASSERT_TRUE(RunToRecording());
  EXPECT_EQ(Summary(TakeFrames()), (Texts{"W 26=20", "W 20=200", "R 28", "upload 12"}));
}

TEST_F(ScopeTest, ClosesOnlyBetweenCycles) {
  OpenQuietly();
  Choose(At100Ms);
  Click();
  AtRequest(3, [&] { User.Close(Window); });
  ASSERT_TRUE(RunToRecording());
  EXPECT_EQ(TakeMessages(),
            (Texts{"Please click the Stop button first before you can close this screen"}));

  AtRequest(5, [&] {
    Click();
    User.Close(Window);  // the cycle still runs, and has been told to stop
  });
  World.RunFor(5000);
  EXPECT_TRUE(Window.Visible);
  ExpectStopped();

  Click();
  EXPECT_FALSE(Window.Check2.Enabled);
  ASSERT_TRUE(RunToRecording());
  World.RunFor(20);
  User.Close(Window);
  ExpectClosed();
  ExpectQuiet();
  EXPECT_EQ(TakeMessages(), Texts{});
}

TEST_F(ScopeTest, ChannelsAreChosenWhileStoppedAndDropTheZoom) {
  TurnMotor();
  OpenQuietly();
  Record(At500Ms);
  User.Drag(Window.Plot.Picture1, 20, 300, 100, -300);
  ASSERT_EQ(Window.Plot.ZoomLevel, 1);
  std::size_t left = 3;
  for (const auto& [channel, shown] : {std::pair{Form5::Velocity, Signal::VBak},
                                       {Form5::PositionError, Signal::PErr},
                                       {Form5::Current, Signal::IBak}}) {
    User.Click(Window.Check1[channel]);
    EXPECT_FALSE(Trace.Show[shown]);
    EXPECT_EQ(Window.Plot.ZoomLevel, 0);
    EXPECT_EQ(Window.Plot.Picture1.Lines.size(), --left * 199);
  }
  EXPECT_EQ(Window.Plot.Label4[10].Caption, "500") << "the labels stay";
  Record(At800Ms);
  EXPECT_TRUE(Window.Plot.Picture1.Lines.empty()) << "a recording keeps the choice";
  EXPECT_EQ(Window.Plot.Label4[10].Caption, "800");
}

}  // namespace
}  // namespace gainsmith::test
