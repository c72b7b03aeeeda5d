#include "trace/auto_range.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/number_text.h"

namespace gainsmith {
namespace {

// How far `rounded` is from the next full step above it, read off the last digits of its text, the
// sign included when it falls among them.
double HeadRoom(double rounded) {
  const std::string text = FixedText(rounded, 0);
  const bool oneDigit = text.size() == 1;
  const double full = oneDigit ? 10 : 100;
  const double half = full / 2;
  const double last = LeadingNumber(oneDigit ? text : text.substr(text.size() - 2));
  const double rest = full - last;
  return rest > half ? half - last : rest;
}

struct Division {
  double AtLeast;
  double Result;
};

constexpr std::array<Division, 28> Divisions{{
    {2800, 3000}, {2500, 2800}, {2400, 2500}, {2200, 2400}, {2000, 2200}, {1800, 2000},
    {1500, 1800}, {1400, 1500}, {1200, 1400}, {1000, 1200}, {800, 1000},  {600, 800},
    {500, 600},   {400, 500},   {250, 400},   {200, 250},   {100, 200},   {80, 100},
    {50, 80},     {40, 50},     {20, 40},     {10, 20},     {5, 10},      {2, 5},
    {1, 2},       {0.5, 1},     {0.2, 0.5},   {0.1, 0.2},
}};

}  // namespace

float AutoRange(std::span<const float> values) {
  const auto [lowest, highest] = std::minmax_element(values.begin(), values.end());
  const double lo = *lowest;
  const double hi = *highest;
  if (hi + lo >= 0) {
    const double rounded = RoundHalfToEven(hi * 11 / 10);
    return static_cast<float>(rounded + HeadRoom(rounded));
  }
  const double rounded = RoundHalfToEven(lo * 11 / 10);
  return static_cast<float>(-(rounded - HeadRoom(rounded)));
}

float NiceDivision(float x) {
  const double tenth = static_cast<double>(x) / 10;
  if (tenth >= 3000) return static_cast<float>(tenth);
  for (const Division& division : Divisions) {
    if (tenth >= division.AtLeast) return static_cast<float>(division.Result);
  }
  return 0.1F;
}

float PlotGain(float& plotUnits, float& top) {
  if (plotUnits == 0) plotUnits = 1;
  if (top == 0) top = 1;
  return static_cast<float>(RoundHalfAwayFromZero(static_cast<double>(plotUnits) / top, 7));
}

}  // namespace gainsmith
