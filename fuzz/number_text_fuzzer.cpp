// Numbers in texts that anybody may have typed, beside the C library's reading of them; and texts
// of any number.
#include <bit>
#include <cmath>
#include <cstdlib>
#include <string>

#include "fuzzer.h"
#include "platform/number_text.h"

namespace gainsmith::fuzz {
namespace {

// The same number, or none twice; the sign of a zero does not count.
bool Same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

void CheckReading(const std::string& text) {
  const std::size_t start = text.find_first_not_of(" \t");
  const std::string rest = start == std::string::npos ? "" : text.substr(start);
  // Nothing but what a decimal number may hold: the library reads more kinds than we do.
  const std::string number = rest.substr(0, rest.find_first_not_of("0123456789+-.eE"));
  Require(Same(LeadingNumber(text), std::strtod(number.c_str(), nullptr)), "the leading number");

  const std::optional<float> whole = WholeNumber(text);
  const std::string trimmed(Trimmed(text));
  char* end = nullptr;
  const float expected = std::strtof(trimmed.c_str(), &end);
  const bool plain = !trimmed.empty() &&
                     trimmed.find_first_not_of("0123456789+-.eE") == std::string::npos &&
                     end == trimmed.c_str() + trimmed.size() && std::isfinite(expected);
  Require(whole.has_value() == plain, "whether a text is a number as a whole");
  Require(!whole || Same(*whole, expected), "the whole number");
}

// `text` is `value` with `decimals` digits behind the point.
void CheckPattern(const std::string& text, double value, int decimals) {
  Require(text.find_first_not_of("-.0123456789") == std::string::npos, "digits only");
  const std::size_t point = text.find('.');
  const std::size_t behind = point == std::string::npos ? 0 : text.size() - point - 1;
  Require(behind == static_cast<std::size_t>(decimals), "the digits behind the point");
  Require((point == std::string::npos) == (decimals == 0), "the point");
  const std::size_t sign = text.rfind('-');
  Require(sign == std::string::npos || (sign == 0 && value < 0), "the sign");
  Require(sign == std::string::npos || text.find_first_of("123456789") != std::string::npos,
          "no sign before a zero");
  const double step = std::pow(10, -decimals);
  Require(std::abs(std::strtod(text.c_str(), nullptr) - value) <=
              0.5 * step * (1 + 1e-9) + std::abs(value) * 1e-14,
          "the nearest");
}

void CheckPrinting(double value, int decimals) {
  // The 15 digits of a larger one may lie beyond the largest number.
  if (!(std::abs(value) < 1.7976931348623e308)) return;
  const std::string away = FixedText(value, decimals);
  CheckPattern(away, value, decimals);
  const double rounded = RoundHalfAwayFromZero(value, decimals);
  Require(FixedText(rounded, decimals) == away, "rounding twice is rounding once");
  const double even = RoundHalfToEven(value, decimals);
  Require(
      std::abs(even - rounded) <= std::pow(10, -decimals) * (1 + 1e-9) + std::abs(value) * 1e-14,
      "the two roundings are neighbours");
  const double packed = RoundHalfToEven(value);
  Require(packed == std::nearbyint(value), "packing");
}

void CheckTexts(float value) {
  if (!std::isfinite(value)) return;
  Require(WholeNumber(PlainText(value)) == value, "a plain text reads back");
  const std::optional<float> kept = WholeNumber(FileText(value));
  if (!kept) return Require(false, "a file's text reads back");
  Require(std::abs(*kept - value) <= std::abs(value) * 6e-7 + 2e-45, "seven digits are kept");
  Require(WholeNumber(FileText(*kept)) == *kept, "once in a file, it stays as it is");
}

}  // namespace
}  // namespace gainsmith::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  FuzzedDataProvider input(bytes, count);
  const int decimals = input.ConsumeIntegralInRange(0, 14);
  // By its bits, so that every kind of number comes up.
  const auto value = std::bit_cast<double>(input.ConsumeIntegral<std::uint64_t>());
  gainsmith::fuzz::CheckPrinting(value, decimals);
  gainsmith::fuzz::CheckTexts(static_cast<float>(value));
  gainsmith::fuzz::CheckTexts(std::bit_cast<float>(input.ConsumeIntegral<std::uint32_t>()));
  gainsmith::fuzz::CheckReading(input.ConsumeRemainingBytesAsString());
  return 0;
}
