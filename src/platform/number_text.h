// Number texts: reading a number from a field, printing it by a pattern, and the two roundings.
// No result depends on the locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace gainsmith {

// Nearest whole number, a tie goes to the even neighbour (2.5 gives 2, 3.5 gives 4). Packing a
// value for the wire uses this one.
double RoundHalfToEven(double value);

// The same to `decimals` (0 to 14) digits behind the point, decided on the number's 15-digit
// decimal text: 2.345 is a tie and gives 2.34, though its binary form lies a little above. An
// infinity stays what it is.
double RoundHalfToEven(double value, int decimals);

// The number printed with exactly `decimals` (0 to 14) digits behind the point, as the patterns
// "#0", "#0.00" and their like print it: rounded on the number's 15-digit decimal text, a tie goes
// away from zero. At least one digit stands before the point; a negative number that prints as
// zero has no sign. `value` is finite.
std::string FixedText(double value, int decimals);

// FixedText and its number read back: the value rounded half away from zero to `decimals`.
double RoundHalfAwayFromZero(double value, int decimals);

// A number as fields and lists show it: plain decimal, shortest that reads back to the same float
// (300 gives "300", 0.1F gives "0.1").
std::string PlainText(float value);

// A number as files hold it: the same, but rounded to seven significant digits where it has more
// (1234566.5 gives "1234566", 1/3 gives "0.3333333"). `value` is finite.
std::string FileText(float value);

// The number at the start of a text: blanks skipped, then sign, digits, one point, exponent. What
// follows is ignored; a text without a number there gives 0, and so do "inf", "nan" and "0x1F". A
// number beyond the range of a double gives infinity with its sign.
double LeadingNumber(std::string_view text);

// The number that is the whole of a text, blanks around it allowed; nothing if there is anything
// else, or no number at all, or one that a 32-bit float cannot hold as a finite value.
std::optional<float> WholeNumber(std::string_view text);

// The text without blanks at either end.
std::string_view Trimmed(std::string_view text);

}  // namespace gainsmith
