// Timers of windows, and waits on a real clock.
#include <ctime>

#include "desk.h"

namespace gainsmith::test {
namespace {

struct TimerTest : Desk {
  TimerTest() {
    timer.IntervalMs = 10;
    window.Timers = {&timer};
  }
  Timer timer;
};

TEST_F(TimerTest, TicksOnlyWhileLoadedAndNeverInsideItsOwnTick) {
  int depth = 0;
  int deepest = 0;
  int ticks = 0;
  std::int64_t endedMs = 0;
  std::int64_t shortestMs = 1000;
  timer.OnTimer = [&] {
    if (++ticks > 1) shortestMs = std::min(shortestMs, world.NowMs() - endedMs);
    deepest = std::max(deepest, ++depth);
    WaitMs(25);
    --depth;
    endedMs = world.NowMs();
  };
  timer.Start();
  WaitMs(30);
  EXPECT_EQ(ticks, 0) << "not loaded";
  world.Show(window);
  EXPECT_TRUE(driver.WaitUntil([&] { return ticks == 3; }));
  EXPECT_EQ(deepest, 1);
  EXPECT_GE(shortestMs, timer.IntervalMs) << "the interval starts anew when a tick has ended";
  world.Unload(window);
  WaitMs(30);
  EXPECT_EQ(ticks, 3);
}

TEST_F(TimerTest, OneTimerTicksInsideAnothersTick) {
  Timer second;
  second.IntervalMs = 5;
  window.Timers.push_back(&second);
  int nested = 0;
  timer.OnTimer = [&] {
    second.Start();
    EXPECT_TRUE(driver.WaitUntil([&] { return nested >= 2; }));
    timer.Stop();
  };
  // Stopped and started again in its own tick, it goes on.
  second.OnTimer = [&] {
    ++nested;
    second.Stop();
    if (nested < 3) second.Start();
  };
  timer.Start();
  world.Show(window);
  EXPECT_TRUE(driver.WaitUntil([&] { return !timer.Enabled(); }));
  WaitMs(30);
  EXPECT_EQ(nested, 3);
}

TEST_F(TimerTest, WaitsUseNextToNoProcessorTime) {
  Show();
  const std::clock_t busyBefore = std::clock();
  for (int round = 0; round < 50; ++round) {
    WaitMs(1);
    WaitMs(19);
  }
  const double busyMs = 1000.0 * static_cast<double>(std::clock() - busyBefore) / CLOCKS_PER_SEC;
  EXPECT_LT(busyMs, 100) << "of more than a second";
}

}  // namespace
}  // namespace gainsmith::test
