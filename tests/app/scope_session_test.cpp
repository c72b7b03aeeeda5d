// The scope in the whole tool: the ways to it, its command while it is open, the program's end.
#include <gtest/gtest.h>

#include "bench.h"

namespace gainsmith::test {
namespace {

using Texts = Bench::Texts;

struct ScopeBench : Bench {
  ScopeBench() {
    Connect();
    device.Drive.StartMotion(world.NowMs() * 1000);
    TakeFrames();
  }
  bool RunToRecording() {
    const auto before = scope.Plot.Picture1.Revision;
    return world.RunUntil([&] { return scope.Plot.Picture1.Revision != before && link.LinkIdle; },
                          10'000);
  }

  Form5& scope = tool.form5;
  Link& link = tool.link;
};

TEST(ScopeSession, OpensByMenuAndToolBarAndGivesTheDriveBack) {
  ScopeBench bench;
  MDIForm1& main = bench.tool.mdiForm1;
  for (int visit = 0; visit < 2; ++visit) {
    if (visit == 0) {
      bench.user.Click(main.mnuScope);
    } else {
      bench.user.Click(main[Tool1::Scope]);
    }
    EXPECT_EQ(bench.TakeFrames(), (Texts{"R 19", "W 17=145"}));
    EXPECT_FALSE(bench.user.CanReach(main.MnuCurrentLoop));
    bench.user.Choose(bench.scope.Combo1, 4);
    bench.user.Click(bench.scope.Command1);
    ASSERT_TRUE(bench.RunToRecording());
    bench.user.Click(bench.scope.Command1);
    bench.user.Click(bench.scope.Check2);
    EXPECT_EQ(bench.scope.Plot.Label4[10].Caption, "200");
    bench.user.Close(bench.scope);
    EXPECT_FALSE(bench.scope.Loaded);
    bench.TakeFrames();
  }
  bench.user.Click(main.mnuPositionLoop);
  EXPECT_TRUE(bench.tool.form3.Visible);
  EXPECT_EQ(bench.TakeMessages(), Texts{});
}

TEST(ScopeSession, ItsCommandTurnsTheCycleOnAndOff) {
  ScopeBench bench;
  bench.user.Click(bench.tool.mdiForm1.mnuScope);
  Timer& cycle = bench.scope.Timer1;
  bench.tool.commands.mnuScope_Click();
  EXPECT_TRUE(cycle.Enabled());
  ASSERT_TRUE(bench.RunToRecording());
  ASSERT_TRUE(bench.RunToRecording());
  EXPECT_EQ(bench.scope.Command1.Caption, "Start");

  // Off in the middle of a cycle: that one comes to its end.
  bench.world.At(200, [&] {
    EXPECT_FALSE(bench.link.LinkIdle);
    bench.tool.commands.mnuScope_Click();
  });
  EXPECT_TRUE(bench.RunToRecording());
  EXPECT_FALSE(cycle.Enabled());
  bench.TakeFrames();
  bench.world.RunFor(5000);
  EXPECT_EQ(bench.TakeFrames(), Texts{});

  // A Start while the command's cycle runs brings its own trace time.
  bench.tool.commands.mnuScope_Click();
  bench.user.Choose(bench.scope.Combo1, 0);
  bench.world.At(200, [&] { bench.user.Click(bench.scope.Command1); });
  ASSERT_TRUE(bench.RunToRecording());
  EXPECT_EQ(bench.scope.Plot.Label4[10].Caption, "100");
  EXPECT_EQ(bench.world.Log.Writes(26), (std::vector<int>{1}));

  // After a stop the command only arms the recorder once more: the stop is still wanted.
  bench.user.Click(bench.scope.Command1);
  bench.TakeFrames();
  bench.tool.commands.mnuScope_Click();
  bench.world.RunFor(5000);
  EXPECT_EQ(bench.TakeFrames(), (Texts{"W 20=200"}));
  EXPECT_FALSE(cycle.Enabled());
  bench.user.Close(bench.scope);
  EXPECT_EQ(bench.TakeMessages(), Texts{});
}

TEST(ScopeSession, TheProgramEndsAtAnyMomentOfACycle) {
  for (std::int64_t delayMs = 10; delayMs < 2800; delayMs += 190) {
    SCOPED_TRACE(delayMs);
    ScopeBench bench;
    bench.user.Click(bench.tool.mdiForm1.mnuScope);
    bench.user.Choose(bench.scope.Combo1, 0);
    bench.user.Click(bench.scope.Command1);
    const std::int64_t start = bench.world.NowMs();
    bench.world.Answers = {MessageAnswer::Yes};
    bench.world.At(delayMs, [&] { bench.world.Unload(bench.tool.mdiForm1); });
    bench.world.RunFor(10'000);
    EXPECT_TRUE(bench.world.Ended());
    EXPECT_FALSE(bench.world.IsPortOpen());
    EXPECT_EQ(bench.world.NowMs(), start + delayMs) << "nothing waits behind the end";
    EXPECT_EQ(bench.TakeMessages(), (Texts{"Exit Gainsmith for KVT518?"}));
  }
}

}  // namespace
}  // namespace gainsmith::test
