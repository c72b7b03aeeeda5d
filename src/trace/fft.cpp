#include "trace/fft.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/number_text.h"

namespace gainsmith {
namespace {

constexpr int Stages = 7;
constexpr std::size_t HalfTurn = SpectrumBins / 2;

// Entry k is cos(2 pi k / 128) rounded to 4 decimals. The rounding is part of the result.
constexpr std::array<double, HalfTurn> TwiddleCos{
    1.0,     0.9988,  0.9952,  0.9892,  0.9808,  0.97,    0.9569,  0.9415,  0.9239,  0.904,
    0.8819,  0.8577,  0.8315,  0.8032,  0.773,   0.741,   0.7071,  0.6716,  0.6344,  0.5957,
    0.5556,  0.5141,  0.4714,  0.4276,  0.3827,  0.3369,  0.2903,  0.243,   0.1951,  0.1467,
    0.098,   0.0491,  0.0,     -0.0491, -0.098,  -0.1467, -0.1951, -0.243,  -0.2903, -0.3369,
    -0.3827, -0.4276, -0.4714, -0.5141, -0.5556, -0.5957, -0.6344, -0.6716, -0.7071, -0.741,
    -0.773,  -0.8032, -0.8315, -0.8577, -0.8819, -0.904,  -0.9239, -0.9415, -0.9569, -0.97,
    -0.9808, -0.9892, -0.9952, -0.9988};

// Entry k is -sin(2 pi k / 128), which is -cos of a quarter turn less.
constexpr std::array<double, HalfTurn> TwiddleSin = [] {
  constexpr std::size_t QuarterTurn = HalfTurn / 2;
  std::array<double, HalfTurn> table{};
  for (std::size_t k = 0; k < table.size(); ++k) {
    table[k] = -TwiddleCos[k < QuarterTurn ? QuarterTurn - k : k - QuarterTurn];
  }
  return table;
}();

std::size_t ReversedBits(std::size_t index) {
  std::size_t reversed = 0;
  for (int bit = 0; bit < Stages; ++bit) reversed |= ((index >> bit) & 1U) << (Stages - 1 - bit);
  return reversed;
}

// Replaces two complex values by their sum and difference, the second one turned by twiddle `w`.
// Sums are taken in 64 bits, results kept in 32.
void Butterfly(FftArray& data, FftArray& FftImag, std::size_t i1, std::size_t i2, std::size_t w) {
  const double re = TwiddleCos[w] * data[i2] - TwiddleSin[w] * FftImag[i2];
  const double im = TwiddleSin[w] * data[i2] + TwiddleCos[w] * FftImag[i2];
  const double firstRe = data[i1];
  const double firstIm = FftImag[i1];
  data[i1] = static_cast<float>(firstRe + re);
  FftImag[i1] = static_cast<float>(firstIm + im);
  data[i2] = static_cast<float>(firstRe - re);
  FftImag[i2] = static_cast<float>(firstIm - im);
}

}  // namespace

FftArray FftInputOf(const TraceArray& velocity) {
  constexpr std::size_t FirstSample = 70;
  FftArray input{};
  std::copy_n(velocity.begin() + FirstSample, input.size(), input.begin());
  return input;
}

FftArray Fft128(FftArray& data) {
  const FftArray FftCopy = data;
  FftArray FftImag{};
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = FftCopy[ReversedBits(i)];
  for (int stage = 0; stage < Stages; ++stage) {
    const std::size_t half = std::size_t{1} << stage;
    const std::size_t stride = HalfTurn >> stage;
    for (std::size_t block = 0; block < data.size(); block += 2 * half) {
      for (std::size_t m = 0; m < half; ++m) {
        Butterfly(data, FftImag, block + m, block + m + half, m * stride);
      }
    }
  }
  FftArray spectrum{};
  for (std::size_t k = 0; k < spectrum.size(); ++k) {
    const double re = data[k];
    const double im = FftImag[k];
    spectrum[k] = static_cast<float>(std::sqrt(im * im + re * re));
  }
  return spectrum;
}

float SampleRate(float divider) {
  if (divider < 1 || divider > 10) return 0;
  constexpr double MsPerSecond = 1000;
  return static_cast<float>(RoundHalfAwayFromZero(MsPerSecond / (divider / 2), 0));
}

float LargestBin(const FftArray& spectrum) {
  return *std::max_element(spectrum.begin() + 2, spectrum.begin() + HalfTurn + 1);
}

float RoundUpToFifty(float x) {
  const std::string text = FixedText(RoundHalfToEven(x), 0);
  const double last = LeadingNumber(text.size() < 2 ? text : text.substr(text.size() - 2));
  const double rest = 100 - last;
  return static_cast<float>(x + (rest > 50 ? 50 - last : rest));
}

}  // namespace gainsmith
