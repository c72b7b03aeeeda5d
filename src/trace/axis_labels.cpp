#include "trace/axis_labels.h"

#include <cmath>

#include "platform/number_text.h"
#include "trace/trace_state.h"

namespace gainsmith {
namespace {

std::string WholeText(double value) { return FixedText(value, 0); }

}  // namespace

AxisTexts LadderTexts(double top, double step, int decimals, double currentStep) {
  AxisTexts texts;
  texts.front() = FixedText(-top, decimals);
  texts.back() = FixedText(top, decimals);
  bool zeroDone = false;
  for (std::size_t i = 1; i + 1 < texts.size(); ++i) {
    texts[i] = FixedText(LeadingNumber(texts[i - 1]) + step, decimals);
    if (!zeroDone && std::abs(LeadingNumber(texts[i])) < currentStep) {
      texts[i] = "0";
      zeroDone = true;
    }
  }
  return texts;
}

AxisTexts TimeTexts(double traceTimeMs) {
  AxisTexts texts;
  texts.front() = "0";
  texts.back() = PlainText(static_cast<float>(traceTimeMs));
  const double step = RoundHalfToEven(traceTimeMs / 10, 2);
  for (std::size_t i = 1; i + 1 < texts.size(); ++i) {
    texts[i] = WholeText(LeadingNumber(texts[i - 1]) + step);
  }
  return texts;
}

AxisTexts StartTexts(double first, double step, int decimals) {
  AxisTexts texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts[i] = FixedText(first + static_cast<double>(i) * step, decimals);
  }
  return texts;
}

AxisTexts ZoomedCurrentTexts(float top, float step, int level) {
  const int digits = level < 3 ? 3 : 5;
  AxisTexts texts;
  texts.back() = FixedText(top / MaPerAmpere, digits);
  for (std::size_t i = texts.size() - 1; i-- > 0;) {
    const double value = LeadingNumber(texts[i + 1]) - step / MaPerAmpere;
    texts[i] = FixedText(RoundHalfToEven(value, digits), digits);
  }
  return texts;
}

AxisTexts ZoomedTimeTexts(float left, float sampleDivider, float timeStepMs) {
  AxisTexts texts;
  texts.front() = WholeText(RoundHalfToEven(left * MsPerTick * sampleDivider));
  for (std::size_t i = 1; i < texts.size(); ++i) {
    texts[i] = WholeText(RoundHalfToEven(LeadingNumber(texts[i - 1]) + timeStepMs));
  }
  return texts;
}

AxisTexts ZoomedStarTexts(float top, float step, int level) {
  const int decimals = level - 1;
  AxisTexts texts;
  std::string number = FixedText(top, decimals);
  for (std::size_t i = texts.size(); i-- > 0;) {
    texts[i] = "*" + number + "*";
    number = FixedText(LeadingNumber(number) - step, decimals);
  }
  return texts;
}

}  // namespace gainsmith
