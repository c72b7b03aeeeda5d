// How many of a test's moves the user gets to see: a picture for nearly each of them.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "trace/position_reference.h"
#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

// Where the shaft was, by the velocity words from where it stood at first, less where the picture's
// feedback says it was.
double WorstDisagreement(const TraceState& trace) {
  const double pulsesPerSample =
      trace.EncoderCounts * trace.SampleDivider * 0.5 / 60'000.0;  // at 1 rpm
  double shaft = trace.PBakTrace[0] - trace.VBakTrace[0] * pulsesPerSample;
  double worst = 0;
  for (std::size_t i = 0; i < 199; ++i) {
    shaft += trace.VBakTrace[i] * pulsesPerSample;
    worst = std::max(worst, std::abs(trace.PBakTrace[i] - shaft));
  }
  return worst;
}

TEST(RepeatedPictures, NearlyEveryMoveIsShownAndFitsItsReference) {
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
      EXPECT_LE(WorstDisagreement(on.Trace), 3);
    };
    look();
    on.User.Click(on.RunButton);
    on.World.RunFor(60'000);
    EXPECT_GE(pictures, least);
  }
}

}  // namespace
}  // namespace gainsmith::test
