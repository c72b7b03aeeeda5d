// What a user sees who turns a gain: the traces of the windows against the simulated motor.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

struct PositionResponse : ::testing::Test {
  DriveDevice Device;
  PositionBench On{Device};

  void SetUp() override { Open(On); }
  // The first recording of the default move, in 2 s, with these gains of both sets.
  const TraceState& Record(const char* kp, const char* kvff) {
    On.Window.Text1[Form3::PositionKp].Text = kp;
    On.Window.Text1[Form3::Kvff].Text = kvff;
    On.Bench.User.Click(On.RunButton);
    On.Bench.World.RunFor(10000);
    On.Bench.User.Click(On.RunButton);
    On.Bench.World.RunFor(3000);
    EXPECT_EQ(On.RunButton.Caption, "Start");
    return On.Bench.Trace;
  }
  // Largest position error while the motor cruises.
  static float Lag(const TraceState& trace) {
    float lag = 0;
    for (std::size_t i = 60; i < 140; ++i) lag = std::max(lag, std::abs(trace.PErrTrace[i]));
    return lag;
  }
};

TEST_F(PositionResponse, HalfTheGainDoublesTheLagAndFeedForwardRemovesIt) {
  const float lag = Lag(Record("800", "0"));
  EXPECT_GT(lag, 20);
  EXPECT_NEAR(Lag(Record("400", "0")) / lag, 2, 0.2);
  EXPECT_LT(Lag(Record("800", "1000")), lag / 5);
}

TEST(VelocityResponse, AGainWrittenByEnterShowsInTheNextTrace) {
  DriveDevice device;
  VelocityBench on(device);
  Open(on);
  on.Window.Text1[velocityModeTune::RepeatTimes].Text = "9";
  on.Window.Combo1.Choose(0);
  const auto ripple = [&] {
    const TraceArray& current = on.Bench.Trace.IBakTrace;
    float swing = 0;
    for (std::size_t i = 20; i < 199; ++i) swing += std::abs(current[i + 1] - current[i]);
    return swing;
  };
  on.Bench.User.Click(on.RunButton);
  on.Bench.World.RunFor(6000);
  const float calm = ripple();
  TextBox& vp = on.Window.Text1[velocityModeTune::Vp];
  on.Bench.User.Type(vp, std::to_string(6 * std::stoi(vp.Text)));
  on.Bench.User.Enter(vp);
  on.Bench.World.RunFor(3000);
  EXPECT_GT(ripple(), 5 * calm);
  EXPECT_EQ(on.Bench.TakeMessages(), TuningBench::Texts{});
}

}  // namespace
}  // namespace gainsmith::test
