// Number texts: see the header.
#include "platform/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace gainsmith {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::size_t SkipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at;
}

// Length of the number that starts at the first character of `text`; 0 when none does. A point
// needs a digit on one side; an exponent without digits does not belong to the number.
std::size_t NumberLength(std::string_view text) {
  std::size_t at = (!text.empty() && (text[0] == '+' || text[0] == '-')) ? 1 : 0;
  const std::size_t whole = at;
  at = SkipDigits(text, at);
  std::size_t digits = at - whole;
  if (at < text.size() && text[at] == '.') {
    const std::size_t fraction = at + 1;
    const std::size_t end = SkipDigits(text, fraction);
    digits += end - fraction;
    if (digits > 0) at = end;
  }
  if (digits == 0) return 0;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    std::size_t exponent = at + 1;
    if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
    const std::size_t end = SkipDigits(text, exponent);
    if (end > exponent) at = end;
  }
  return at;
}

// Whether a number without sign that no double can hold is too large for it, not too small.
bool IsHuge(std::string_view text) {
  const std::size_t e = std::min(text.find_first_of("eE"), text.size());
  const std::size_t point = std::min(text.find('.'), e);
  const std::size_t first = text.find_first_of("123456789");
  if (first >= e) return false;
  const bool negative = text.substr(e).starts_with("e-") || text.substr(e).starts_with("E-");
  text.remove_prefix(std::min(text.size(), text.find_first_of("0123456789", e)));
  // No text is as long as this, so a larger exponent says no more.
  std::int64_t exponent = std::int64_t{1} << 40;
  std::int64_t read = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
  if (error != std::errc::result_out_of_range) exponent = std::min(exponent, read);
  const auto order = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
  return order + (negative ? -exponent : exponent) > 0;
}

// `text` is a number by NumberLength.
double ParseNumber(std::string_view text) {
  const bool negative = text.front() == '-';
  if (text.front() == '+' || negative) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    // from_chars leaves the value alone here.
    value = IsHuge(text) ? std::numeric_limits<double>::infinity() : 0;
  }
  return negative ? -value : value;
}

// Adds 1 to the decimal digits, which may grow by one.
void Increment(std::string& digits) {
  auto digit = digits.rbegin();
  for (; digit != digits.rend() && *digit == '9'; ++digit) *digit = '0';
  if (digit == digits.rend()) {
    digits.insert(digits.begin(), '1');
  } else {
    ++*digit;
  }
}

enum class Tie { Away, ToEven };

// Whether the first `count` digits grow by one when the others are dropped; there are others.
bool RoundsUp(std::string_view digits, std::size_t count, Tie tie) {
  if (digits[count] != '5' || tie == Tie::Away) return digits[count] >= '5';
  if (digits.find_first_not_of('0', count + 1) != std::string_view::npos) return true;
  return count > 0 && (digits[count - 1] - '0') % 2 == 1;
}

// A number's significant digits, the first of them worth 10 to the power of Exponent.
struct Decimal {
  std::string Digits;
  int Exponent = 0;
};

// The decimal of a value's size, with as many digits as are asked for (as to_chars is asked), or
// with the fewest that read back.
template <typename Float, typename... Precision>
Decimal DecimalOf(Float value, Precision... precision) {
  // "d.dde+xx"
  std::array<char, 40> buffer{};
  const auto printed = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                     std::chars_format::scientific, precision...);
  const std::string_view text(buffer.data(), static_cast<std::size_t>(printed.ptr - buffer.data()));
  const std::size_t e = text.find('e');
  Decimal decimal;
  for (char c : text.substr(0, e)) {
    if (IsDigit(c)) decimal.Digits.push_back(c);
  }
  decimal.Exponent = std::atoi(buffer.data() + e + 1);
  return decimal;
}

// `value`, which is finite, with exactly `decimals` digits behind the point.
std::string RoundedText(double value, int decimals, Tie tie) {
  const auto [digits, exponent] = DecimalOf(value, 14);

  // Digits kept: those before the point and `decimals` behind it.
  const int kept = exponent + 1 + decimals;
  std::string result;
  if (kept >= 0) {
    const auto count = static_cast<std::size_t>(kept);
    if (count < digits.size()) {
      result = digits.substr(0, count);
      if (RoundsUp(digits, count, tie)) Increment(result);
    } else {
      result = digits + std::string(count - digits.size(), '0');
    }
  }
  const auto places = static_cast<std::size_t>(decimals);
  if (result.size() < places + 1) result.insert(0, places + 1 - result.size(), '0');
  const bool zero = result.find_first_not_of('0') == std::string::npos;
  if (places > 0) result.insert(result.size() - places, ".");
  return value < 0 && !zero ? "-" + result : result;
}

}  // namespace

double RoundHalfToEven(double value) {
  const double below = std::floor(value);
  const double rest = value - below;
  if (rest < 0.5) return below;
  if (rest > 0.5) return below + 1;
  return std::fmod(below, 2) == 0 ? below : below + 1;
}

double RoundHalfToEven(double value, int decimals) {
  if (!std::isfinite(value)) return value;
  return LeadingNumber(RoundedText(value, decimals, Tie::ToEven));
}

std::string FixedText(double value, int decimals) {
  return RoundedText(value, decimals, Tie::Away);
}

double RoundHalfAwayFromZero(double value, int decimals) {
  return LeadingNumber(FixedText(value, decimals));
}

std::string PlainText(float value) {
  if (value == 0) return "0";
  std::array<char, 80> buffer{};
  const auto printed =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
  return {buffer.data(), printed.ptr};
}

std::string FileText(float value) {
  constexpr std::size_t MostDigits = 7;
  if (value == 0) return "0";
  auto [digits, exponent] = DecimalOf(value);
  if (digits.size() > MostDigits) {
    Decimal rounded = DecimalOf(value, static_cast<int>(MostDigits) - 1);
    rounded.Digits.resize(rounded.Digits.find_last_not_of('0') + 1);
    digits = rounded.Digits;
    exponent = rounded.Exponent;
  }
  if (exponent < 0) {
    digits.insert(0, static_cast<std::size_t>(-exponent), '0');
    exponent = 0;
  }
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() < whole) digits.append(whole - digits.size(), '0');
  if (digits.size() > whole) digits.insert(whole, ".");
  return value < 0 ? "-" + digits : digits;
}

double LeadingNumber(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  const std::size_t length = NumberLength(text);
  return length == 0 ? 0 : ParseNumber(text.substr(0, length));
}

std::optional<float> WholeNumber(std::string_view text) {
  text = Trimmed(text);
  const std::size_t length = NumberLength(text);
  if (length == 0 || length != text.size()) return std::nullopt;
  // Straight to 32 bits, not by way of 64, so that the shortest text of a float gives it back.
  const bool negative = text.front() == '-';
  if (text.front() == '+' || negative) text.remove_prefix(1);
  float value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    if (std::abs(ParseNumber(text)) > 1) return std::nullopt;
    value = 0;
  }
  return negative ? -value : value;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace gainsmith
