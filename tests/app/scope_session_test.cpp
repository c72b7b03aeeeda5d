// The scope in the whole tool: its command while it is open.

#include "bench.h"

namespace gainsmith::test {
namespace {

struct ScopeBench : Bench {
  ScopeBench() {
    Connect();
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

TEST(ScopeSession, ItsCommandTurnsTheCycleOnAndOff) {
  ScopeBench bench;
  bench.user.Click(bench.tool.mdiForm1[Tool1::Scope]);
  EXPECT_EQ(bench.TakeFrames(), (Texts{"R 19", "W 17=145"}));
  Timer& cycle = bench.scope.Timer1;
  bench.tool.commands.Run(Command::Scope);
  EXPECT_TRUE(cycle.Enabled());
  ASSERT_TRUE(bench.RunToRecording());
  ASSERT_TRUE(bench.RunToRecording());
  EXPECT_EQ(bench.scope.Command1.Caption, "Start");

  // Off in the middle of a cycle: that one comes to its end.
  bench.world.At(200, [&] {
    EXPECT_FALSE(bench.link.LinkIdle);
    bench.tool.commands.Run(Command::Scope);
  });
  EXPECT_TRUE(bench.RunToRecording());
  EXPECT_FALSE(cycle.Enabled());
  bench.TakeFrames();
  bench.world.RunFor(5000);
  EXPECT_EQ(bench.TakeFrames(), Texts{});

  // A Start while the command's cycle runs brings its own trace time.
  bench.tool.commands.Run(Command::Scope);
  bench.user.Choose(bench.scope.Combo1, 0);
  bench.world.At(200, [&] { bench.user.Click(bench.scope.Command1); });
  ASSERT_TRUE(bench.RunToRecording());
  EXPECT_EQ(bench.scope.Plot.Label4[10].Caption, "100");
  EXPECT_EQ(bench.world.Log.Writes(26), (std::vector<int>{1}));

  // After a stop the command only arms the recorder once more: the stop is still wanted.
  bench.user.Click(bench.scope.Command1);
  bench.TakeFrames();
  bench.tool.commands.Run(Command::Scope);
  bench.world.RunFor(5000);
  EXPECT_EQ(bench.TakeFrames(), (Texts{"W 20=200"}));
  EXPECT_FALSE(cycle.Enabled());
  bench.user.Close(bench.scope);
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  EXPECT_TRUE(bench.tool.form3.Visible);
  EXPECT_EQ(bench.TakeMessages(), Texts{});
}

}  // namespace
}  // namespace gainsmith::test
