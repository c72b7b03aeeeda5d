// The spectrum: the rounding of its tables and axes, and Form5's frequency view: what it shows and
// locks, and that it finds what turns the motor.
#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "trace/fft.h"
#include "trace/scope_bench.h"

namespace gainsmith::test {
namespace {

// One pulse shows the twiddle factors themselves: at sample n, bin k is the factor of n * k, put
// together in seven stages. At a power of two there is one factor only.
TEST(Fft128, TwiddlesAreRoundedToFourDecimals) {
  FftArray data{};
  data[1] = 1;
  Fft128(data);
  for (std::size_t k = 0; k < 64; ++k) {
    const double exact = std::cos(2 * std::numbers::pi * static_cast<double>(k) / 128);
    EXPECT_EQ(data[k], static_cast<float>(std::round(exact * 10000) / 10000)) << k;
    EXPECT_EQ(data[k + 64], -data[k]) << k;
  }
}

TEST(Spectrum, ItsScaleIsThatOfTheLargestBinRoundedUpToFiftyStrictly) {
  FftArray spectrum{};
  spectrum[0] = spectrum[1] = spectrum[65] = 9;  // the mean and the mirror
  spectrum[64] = 2;
  EXPECT_EQ(LargestBin(spectrum), 2);
  spectrum[2] = 3;
  EXPECT_EQ(LargestBin(spectrum), 3);
  for (const auto& [x, rounded] :
       {std::pair{0.F, 50.F}, {49.4F, 50.4F}, {50, 100}, {1234.5F, 1250.5F}, {1235.5F, 1249.5F}}) {
    EXPECT_FLOAT_EQ(RoundUpToFifty(x), rounded) << x;
  }
}

struct ScopeSpectrumTest : ScopeTest {
  void Toggle() { User.Click(Window.Check2); }
  // A trace in the place of the recorded one.
  void ShowSpectrumOf(const std::function<double(int)>& rpm) {
    for (int i = 0; i < ChannelSamples; ++i) {
      Trace.VBakTrace[static_cast<std::size_t>(i)] = static_cast<float>(rpm(i));
    }
    Toggle();
  }
  // The time view, or that of frequencies, which locks and hides what has no meaning there.
  void ExpectTimeView(bool time) {
    const gainsmith::Plot& plot = Window.Plot;
    EXPECT_EQ(plot.FrequencyMode, !time);
    EXPECT_EQ(Window.Command1.Enabled, time);
    ExpectSetupEnabled(time);
    for (const Label* label : {&plot.Label5[0], &plot.Label6[10], &plot.Label10, &plot.Label11}) {
      EXPECT_EQ(label->Visible, time) << label->Name;
    }
  }
};

TEST_F(ScopeSpectrumTest, ShowsToneAndConstant) {
  OpenQuietly();
  Record(At1000Ms);
  const auto& spectrum = Trace.Spectrum;

  ShowSpectrumOf([](int i) {
    // The first 70 samples and the last two take no part.
    return i < 70 || i > 197 ? 5000 : 20 * std::sin(2 * std::numbers::pi * 12 * (i - 70) / 128);
  });
  EXPECT_NEAR(spectrum[12], 20 * 64, 0.1);
  EXPECT_LT(spectrum[11], 0.5);
  const float top = Window.Plot.SpectrumTop;
  EXPECT_EQ(top, RoundUpToFifty(LargestBin(spectrum)) + 20);
  EXPECT_EQ(Window.Plot.Picture1.Scale, (PictureScale{0, top, 64.4F, -top}));
  ASSERT_EQ(Window.Plot.Picture1.Lines.size(), 65U);
  EXPECT_EQ(Window.Plot.Picture1.Lines[12].Y1, spectrum[12]);
  EXPECT_EQ(Window.Plot.Label9.Caption, "Energy(J)");
  EXPECT_EQ(Window.Plot.Label8.Caption, "Frequency(Hz)");
  Toggle();

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
  const TraceArray velocity = Trace.VBakTrace;
  const auto lines = Window.Plot.Picture1.Lines;
  Toggle();
  ExpectTimeView(false);
  User.Drag(Window.Plot.Picture1, 5, 50, 60, 10);
  EXPECT_EQ(Window.Plot.ZoomLevel, 0);

  Toggle();
  ExpectTimeView(true);
  EXPECT_EQ(Trace.VBakTrace, velocity);
  EXPECT_EQ(Window.Plot.Picture1.Lines, lines) << "the recording is back";
  EXPECT_EQ(Window.Plot.Label4[10].Caption, "500");
  EXPECT_EQ(Window.Plot.Label8.Caption, "Time(ms)");
  EXPECT_EQ(Window.Plot.Label9.Caption, "Current(A)");
  EXPECT_EQ(TakeMessages(), Texts{});
}

TEST_F(ScopeSpectrumTest, RefusesTraceTimesAboveASecond) {
  OpenQuietly();
  Record(At1200Ms);
  User.Drag(Window.Plot.Picture1, 20, 300, 100, -300);
  Toggle();
  ASSERT_FALSE(World.Messages.empty());
  EXPECT_EQ(World.Messages[0].Title, "Invalid Value");
  EXPECT_EQ(TakeMessages(), (Texts{"Please input a value of 100ms - 1s"}));
  EXPECT_FALSE(Window.Check2.Ticked);
  ExpectTimeView(true);
  EXPECT_EQ(Window.Plot.ZoomLevel, 0) << "the handler of the unticking has run";

  // The present choice counts, but the axis is that of the recording, which has no rate.
  Choose(At500Ms);
  Toggle();
  ExpectTimeView(false);
  EXPECT_EQ(Window.Plot.Label4[10].Caption, "0");
}

TEST_F(ScopeSpectrumTest, FindsASineThatTurnsTheMotorAtEveryTraceTime) {
  // The axis has half the sample rate in ten whole steps: the tie of 12.5 gives 12.
  const struct {
    TraceTimeEntry Entry;
    double SampleRateHz;
    std::size_t Bin;
    const char* Last;
  } cases[] = {{At100Ms, 2000, 2, "1000"},
               {At500Ms, 400, 5, "200"},
               {At800Ms, 250, 7, "120"},
               {At1000Ms, 200, 8, "100"}};
  OpenQuietly();
  for (const auto& c : cases) {
    const double hz = c.SampleRateHz * static_cast<double>(c.Bin) / SpectrumBins;
    SCOPED_TRACE(hz);
    TurnMotor(hz, 100);
    Record(c.Entry);
    Toggle();
    EXPECT_EQ(Window.Plot.Label4[10].Caption, c.Last);
    const auto& spectrum = Trace.Spectrum;
    const auto largest = std::max_element(spectrum.begin() + 1, spectrum.begin() + 64);
    EXPECT_EQ(static_cast<std::size_t>(largest - spectrum.begin()), c.Bin);
    // The drive's loops swing a little further than they are told.
    const auto [low, high] = std::minmax_element(Trace.VBakTrace.begin(), Trace.VBakTrace.end());
    EXPECT_NEAR(*largest, 64 * (*high - *low) / 2, 64 * 20);
    EXPECT_NEAR(*largest, 64 * 115, 64 * 25);
    Toggle();
    Device.Drive.StopMotion(World.NowMs() * 1000);
    World.RunFor(2000);
  }
}

}  // namespace
}  // namespace gainsmith::test
