// What a user sees who turns a gain: the traces of the windows against the simulated motor.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

TEST(Response, HalfTheGainDoublesTheLagAndFeedForwardRemovesIt) {
  PositionBench on;
  on.Open(on.Window);
  // Largest position error of the default move while the motor cruises, in a recording of 2 s.
  const auto lag = [&](const char* kp, const char* kvff) {
    on.Window.Text1[Form3::PositionKp].Text = kp;
    on.Window.Text1[Form3::Kvff].Text = kvff;
    on.User.Click(on.RunButton);
    on.World.RunFor(10000);
    on.User.Click(on.RunButton);
    on.World.RunFor(3000);
    ExpectStopped(on);
    float largest = 0;
    for (std::size_t i = 60; i < 140; ++i) {
      largest = std::max(largest, std::abs(on.Trace.PErrTrace[i]));
    }
    return largest;
  };
  const float whole = lag("800", "0");
  EXPECT_GT(whole, 20);
  EXPECT_NEAR(lag("400", "0") / whole, 2, 0.2);
  EXPECT_LT(lag("800", "1000"), whole / 5);
}

TEST(Response, AVelocityGainWrittenByEnterShowsInTheNextTrace) {
  VelocityBench on;
  on.Open(on.Window);
  on.Window.Text1[velocityModeTune::RepeatTimes].Text = "9";
  on.Window.Combo1.Choose(0);
  const auto ripple = [&] {
    const TraceArray& current = on.Trace.IBakTrace;
    float swing = 0;
    for (std::size_t i = 20; i < 199; ++i) swing += std::abs(current[i + 1] - current[i]);
    return swing;
  };
  on.User.Click(on.RunButton);
  on.World.RunFor(6000);
  const float calm = ripple();
  TextBox& vp = on.Window.Text1[velocityModeTune::Vp];
  on.User.Type(vp, std::to_string(6 * std::stoi(vp.Text)));
  on.User.Enter(vp);
  on.World.RunFor(3000);
  EXPECT_GT(ripple(), 5 * calm);
  EXPECT_EQ(on.TakeMessages(), TuningBench::Texts{});
}

}  // namespace
}  // namespace gainsmith::test
