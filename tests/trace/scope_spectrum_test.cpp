// Form5's frequency view: what it shows and locks, and that it finds what turns the motor.
#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "trace/fft.h"
#include "trace/scope_bench.h"

namespace gainsmith::test {
namespace {

using Texts = TuningBench::Texts;

struct ScopeSpectrumTest : ScopeTest {
  // A trace in the place of the recorded one.
  void ShowSpectrumOf(const std::function<double(int)>& rpm) {
    for (int i = 0; i < ChannelSamples; ++i) {
      Bench.Trace.VBakTrace[static_cast<std::size_t>(i)] = static_cast<float>(rpm(i));
    }
    Bench.User.Click(Window.Check2);
  }
  AxisTexts TimeAxis() const {
    AxisTexts texts;
    for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = Window.Plot.Label4[i].Caption;
    return texts;
  }
  std::vector<const Control*> Locked() const {
    return {&Window.Check1[1], &Window.Check1[2], &Window.Check1[3],
            &Window.Combo1,    &Window.Label2,    &Window.Command1};
  }
};

TEST_F(ScopeSpectrumTest, ShowsToneAndConstant) {
  OpenQuietly();
  Record(At1000Ms);
  const auto& spectrum = Bench.Trace.Spectrum;

  ShowSpectrumOf([](int i) {
    // The first 70 samples and the last two take no part.
    return i < 70 || i > 197 ? 5000 : 20 * std::sin(2 * std::numbers::pi * 12 * (i - 70) / 128);
  });
  EXPECT_NEAR(spectrum[12], 20 * 64, 0.1);
  EXPECT_LT(spectrum[11], 0.5);
  EXPECT_EQ(Window.Plot.SpectrumTop, RoundUpToFifty(LargestBin(spectrum)) + 20);
  const float top = Window.Plot.SpectrumTop;
  EXPECT_EQ(Window.Plot.Picture1.Scale, (PictureScale{0, top, 64.4F, -top}));
  ASSERT_EQ(Window.Plot.Picture1.Lines.size(), 65U);
  EXPECT_EQ(Window.Plot.Picture1.Lines[12].Y1, spectrum[12]);
  EXPECT_EQ(Window.Plot.Label9.Caption, "Energy(J)");
  EXPECT_EQ(Window.Plot.Label8.Caption, "Frequency(Hz)");
  Bench.User.Click(Window.Check2);

  // A constant is all in bin 0, which does not set the scale.
  ShowSpectrumOf([](int) { return 30; });
  EXPECT_EQ(spectrum[0], 128 * 30);
  EXPECT_EQ(Window.Plot.SpectrumTop, 70);
  EXPECT_EQ(Window.Plot.Label3[1].Caption, "7");
}

TEST_F(ScopeSpectrumTest, LocksAndHidesWhatHasNoMeaningThere) {
  TurnMotor();
  OpenQuietly();
  Record(At500Ms);
  const TraceArray velocity = Bench.Trace.VBakTrace;
  const auto lines = Window.Plot.Picture1.Lines;
  const AxisTexts times = TimeAxis();
  for (int visit = 0; visit < 2; ++visit) {
    Bench.User.Click(Window.Check2);
    EXPECT_TRUE(Window.Plot.FrequencyMode);
    for (const Control* control : Locked()) EXPECT_FALSE(control->Enabled) << control->Name;
    for (std::size_t i = 0; i < AxisLabels; ++i) {
      EXPECT_FALSE(Window.Plot.Label5[i].Visible || Window.Plot.Label6[i].Visible);
    }
    EXPECT_FALSE(Window.Plot.Label10.Visible || Window.Plot.Label11.Visible);
    Bench.User.Drag(Window.Plot.Picture1, 5, 50, 60, 10);
    EXPECT_EQ(Window.Plot.ZoomLevel, 0);

    Bench.User.Click(Window.Check2);
    EXPECT_FALSE(Window.Plot.FrequencyMode);
    for (const Control* control : Locked()) EXPECT_TRUE(control->Enabled) << control->Name;
    EXPECT_TRUE(Window.Plot.Label5[0].Visible && Window.Plot.Label6[10].Visible);
    EXPECT_TRUE(Window.Plot.Label10.Visible && Window.Plot.Label11.Visible);
    EXPECT_EQ(Bench.Trace.VBakTrace, velocity);
    EXPECT_EQ(Window.Plot.Picture1.Lines, lines) << "the recording is back";
    EXPECT_EQ(TimeAxis(), times);
    EXPECT_EQ(Window.Plot.Label9.Caption, "Current(A)");
  }
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
}

TEST_F(ScopeSpectrumTest, FrequencyAxesOfSeveralTraceTimes) {
  struct Case {
    int Entry;
    const char* First;
    const char* Last;
  };
  // Half the sample rate in ten whole steps: 333.5 Hz gives 33, and the tie of 12.5 gives 12.
  const Case cases[] = {{0, "100", "1000"}, {1, "50", "500"}, {2, "33", "330"},
                        {6, "14", "140"},   {7, "12", "120"}, {9, "10", "100"}};
  OpenQuietly();
  for (const Case& c : cases) {
    Record(static_cast<TraceTimeEntry>(c.Entry));
    Bench.User.Click(Window.Check2);
    EXPECT_EQ(Window.Plot.Label4[1].Caption, c.First) << Window.Combo1.Text;
    EXPECT_EQ(Window.Plot.Label4[10].Caption, c.Last) << Window.Combo1.Text;
    Bench.User.Click(Window.Check2);
  }
}

TEST_F(ScopeSpectrumTest, RefusesTraceTimesAboveASecond) {
  OpenQuietly();
  Record(At2000Ms);
  Bench.User.Drag(Window.Plot.Picture1, 20, 300, 100, -300);
  Bench.User.Click(Window.Check2);
  ASSERT_EQ(Bench.World.Messages.size(), 1U);
  EXPECT_EQ(Bench.World.Messages[0].Title, "Invalid Value");
  EXPECT_EQ(Bench.World.Messages[0].Icon, MessageIcon::Critical);
  EXPECT_EQ(Bench.TakeMessages(), (Texts{"Please input a value of 100ms - 1s"}));
  EXPECT_FALSE(Window.Check2.Ticked || Window.Plot.FrequencyMode);
  EXPECT_EQ(Window.Plot.ZoomLevel, 0) << "the handler of the unticking has run";
  ExpectStopped();

  // The present choice counts, but the axis is that of the recording, which has no rate.
  Choose(At500Ms);
  Bench.User.Click(Window.Check2);
  EXPECT_EQ(Bench.TakeMessages(), Texts{});
  EXPECT_TRUE(Window.Plot.FrequencyMode);
  AxisTexts zeros;
  zeros.fill("0");
  EXPECT_EQ(TimeAxis(), zeros);
}

TEST_F(ScopeSpectrumTest, BeforeAnyRecordingThePictureStaysEmpty) {
  OpenQuietly();
  Choose(At500Ms);
  ClickAfter(40);
  Click();
  Bench.User.Click(Window.Check2);
  EXPECT_TRUE(Window.Plot.FrequencyMode);
  EXPECT_TRUE(Window.Plot.Picture1.Lines.empty());
  EXPECT_EQ(Window.Plot.Label8.Caption, "Time(ms)");
  EXPECT_EQ(Window.Plot.Label9.Caption, "Current (A)");
}

TEST_F(ScopeSpectrumTest, FindsASineThatTurnsTheMotor) {
  struct Case {
    TraceTimeEntry Entry;
    double SampleRateHz;
    std::size_t Bin;
  };
  OpenQuietly();
  for (const Case& c : {Case{At1000Ms, 200, 8}, Case{At1000Ms, 200, 3}, Case{At500Ms, 400, 5}}) {
    const double hz = c.SampleRateHz * static_cast<double>(c.Bin) / SpectrumBins;
    SCOPED_TRACE(hz);
    TurnMotor(hz, 100);
    Record(c.Entry);
    Bench.User.Click(Window.Check2);
    const auto& spectrum = Bench.Trace.Spectrum;
    const auto largest = std::max_element(spectrum.begin() + 1, spectrum.begin() + 64);
    EXPECT_EQ(static_cast<std::size_t>(largest - spectrum.begin()), c.Bin);
    EXPECT_NEAR(*largest, 64 * 100, 64 * 15);
    Bench.User.Click(Window.Check2);
    Device.Drive.StopMotion(Bench.World.NowMs() * 1000);
    Bench.World.RunFor(2000);
  }
}

}  // namespace
}  // namespace gainsmith::test
