// How many of a test's moves the user gets to see: a picture for nearly each of them.
#include <gtest/gtest.h>

#include <functional>

#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

TEST(RepeatedPictures, NearlyEveryMoveIsShown) {
  for (const auto& [repeats, least] : {std::pair{"1", 1}, {"3", 2}, {"5", 4}}) {
    SCOPED_TRACE(repeats);
    PositionBench on;
    on.Open(on.Window);
    on.Window.Text1[Form3::RepeatTimes].Text = repeats;
    int pictures = 0;
    TraceArray last{};  // the current, whose noise is never the same twice
    std::function<void()> look = [&] {
      if (on.World.NowMs() < 60'000) on.World.At(100, look);
      if (on.Trace.IBakTrace == last) return;
      last = on.Trace.IBakTrace;
      ++pictures;
    };
    look();
    on.User.Click(on.RunButton);
    on.World.RunFor(60'000);
    EXPECT_GE(pictures, least);
  }
}

}  // namespace
}  // namespace gainsmith::test
