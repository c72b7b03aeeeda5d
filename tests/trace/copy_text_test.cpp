// What a copied plot puts on a spreadsheet.
#include "plot_bench.h"

namespace gainsmith::test {
namespace {

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

TEST(CopyText, ARecordingComesWithWhatItWasMadeWith) {
  PlotBench bench(PositionPlot);
  bench.plot.Notes = [&] { return RunNotes{{{"Kp", "800", ""}}, MoveScoreOf(bench.trace, 10)}; };
  EXPECT_EQ(bench.plot.Picture1.OnCopy(), "") << "nothing to see, nothing to copy";
  bench.trace.ProfileSpeed = bench.trace.ProfileAccel = 100;
  bench.trace.ProfileDistLow = 300;
  bench.trace.ProfileDwell = 10'000;
  bench.Capture();
  const auto lines = LinesOf(bench.plot.Picture1.OnCopy());
  // Settings, score, trace time and an empty line; the headings; the samples.
  ASSERT_EQ(lines.size(), 1 + 4 + 1 + 1 + 1 + 200U);
  EXPECT_EQ(lines[0], "Kp\t800\t");
  EXPECT_EQ(lines[1], "Trace time\t2000\tms");
  EXPECT_EQ(lines[2], "Peak error\t90\tp");
  EXPECT_EQ(lines[5], "Peak current\t1\tA");
  EXPECT_EQ(lines[7],
            "Time (ms)\tCurrent (A)\tVelocity (rpm)\tPosition error (p)\tPosition reference (p)\t"
            "Position feedback (p)");
  EXPECT_EQ(lines[8], "0\t0\t0\t0\t0\t0");
  EXPECT_TRUE(lines[15].starts_with("70\t1\t300\t90\t")) << lines[15];
  EXPECT_EQ(lines.back(), "1990\t0\t0\t0\t\t") << "the reference has no last sample";
  bench.trace.SampleDivider = 1;
  EXPECT_FALSE(LinesOf(bench.plot.Picture1.OnCopy()).back().ends_with("\t\t"));
}

TEST(CopyText, TheScopeKnowsNoReference) {
  PlotBench bench(ScopePlot);
  bench.Capture();
  const auto lines = LinesOf(bench.plot.Picture1.OnCopy());
  EXPECT_EQ(lines[2], "Time (ms)\tCurrent (A)\tVelocity (rpm)\tPosition error (p)");
}

// Ten ms to the sample; the run begins behind the six samples before it, and is held for 80 ms.
TEST(CopyText, ARunIsScoredUntilItIsTakenBack) {
  TraceState trace;
  trace.SetTraceTime(20);
  const float answer[] = {0, 30, 60, 90, 100, 104, 100, 100};
  std::copy(std::begin(answer), std::end(answer), trace.VBakTrace.begin() + 6);
  trace.IBakTrace[9] = -2500;
  const auto lines = RunScoreOf(trace, 100, 80);
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_NEAR(lines[0].Value.value(), 10 * (3 - 1.0 / 3), 1e-6);
  EXPECT_NEAR(lines[1].Value.value(), 4, 1e-6);
  EXPECT_DOUBLE_EQ(lines[2].Value.value(), 40);
  EXPECT_DOUBLE_EQ(lines[5].Value.value(), 2.5);
  EXPECT_EQ(RunScoreOf(trace, 100, 0).size(), 1U) << "held for no sample";
}

}  // namespace
}  // namespace gainsmith::test
