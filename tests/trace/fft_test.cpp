// The spectrum: known signals, the table's rounding, and the axes' choices.
#include "trace/fft.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <utility>

namespace gainsmith {
namespace {

constexpr double Tau = 2 * std::numbers::pi;

// One pulse shows the twiddle factors themselves: at sample n, bin k is the factor of n * k, put
// together in seven stages. At a power of two there is one factor only.
TEST(Fft128, TwiddlesAreRoundedToFourDecimals) {
  FftArray data{};
  data[1] = 1;
  Fft128(data);
  for (std::size_t k = 0; k < 64; ++k) {
    const double exact = std::cos(Tau * static_cast<double>(k) / 128);
    EXPECT_EQ(data[k], static_cast<float>(std::round(exact * 10000) / 10000)) << k;
    EXPECT_EQ(data[k + 64], -data[k]) << k;
  }
}

TEST(Spectrum, TheMeanAndTheMirrorDoNotSetTheScale) {
  FftArray spectrum{};
  spectrum[0] = spectrum[1] = spectrum[65] = 9;
  spectrum[64] = 2;
  EXPECT_EQ(LargestBin(spectrum), 2);
  spectrum[2] = 3;
  EXPECT_EQ(LargestBin(spectrum), 3);
}

TEST(Spectrum, RoundsUpToFiftyStrictlyAndKeepsTheFraction) {
  const std::pair<float, float> cases[] = {{0, 50},    {49.4F, 50.4F},     {50, 100},
                                           {100, 150}, {1234.5F, 1250.5F}, {1235.5F, 1249.5F}};
  for (const auto& [x, rounded] : cases) EXPECT_FLOAT_EQ(RoundUpToFifty(x), rounded) << x;
}

}  // namespace
}  // namespace gainsmith
