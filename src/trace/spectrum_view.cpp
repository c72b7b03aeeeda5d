#include "trace/spectrum_view.h"

#include "platform/number_text.h"

namespace gainsmith {
namespace {

// From 0 upwards in even steps of whole numbers.
AxisTexts WholeSteps(double step) {
  AxisTexts texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts[i] = FixedText(static_cast<double>(i) * step, 0);
  }
  return texts;
}

}  // namespace

SpectrumAxes SpectrumAxesOf(const FftArray& spectrum, float sampleDivider) {
  SpectrumAxes axes;
  const float top = SampleRate(sampleDivider) / 2;
  axes.Frequency = WholeSteps(RoundHalfToEven(top / 10.0));
  axes.SpectrumTop = RoundUpToFifty(LargestBin(spectrum)) + 20;
  axes.Energy = WholeSteps(RoundHalfToEven(axes.SpectrumTop / 10.0));
  return axes;
}

void DrawSpectrum(PictureBox& picture, const FftArray& spectrum, float spectrumTop) {
  constexpr Colour Curve = Rgb(0, 208, 0);
  constexpr int LastBin = SpectrumBins / 2;
  picture.Scale = {.Left = 0, .Top = spectrumTop, .Width = 64.4F, .Height = -spectrumTop};
  for (int bin = 0; bin <= LastBin; ++bin) {
    const auto at = static_cast<std::size_t>(bin);
    const auto x = static_cast<float>(bin);
    picture.Line(x, spectrum[at], x + 1, spectrum[at + 1], Curve);
  }
}

}  // namespace gainsmith
