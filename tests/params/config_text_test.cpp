// Configuration text: the format to the byte, and every way in which a file can be bad.
#include "params/config_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>

#include "params/parameter_table.h"

namespace gainsmith::test {
namespace {

// `count` lines of which line i holds the value i, with the keys that a user may have made up.
std::string Lines(int count, const char* end = "\r\n") {
  std::string text;
  for (int i = 0; i < count; ++i) text += "any& " + std::to_string(i) + " " + end;
  return text;
}

// All lines, with another one in the place of the line of slot 12.
std::string WithLine12(const std::string& line) {
  std::string text = Lines(51);
  const std::string present = "any& 12 ";
  return text.replace(text.find(present), present.size(), line);
}

TEST(ConfigText, StandsToTheByte) {
  ParameterStore store;
  store[Slot::CurrentKp] = 1000;
  store[Slot::CurrentKi] = 1234566.5F;
  store[Slot::VelocityKpHigh] = -12.5F;
  store[Slot::PulseEdge] = 322;
  store[Slot::Resistance] = 2.54F;
  store[Slot::Inertia] = 0.00001F;
  store[Slot::Trap2Width] = -0.0F;
  store[Slot::RatedCurrentLimit] = 2.8F;
  store.ParameterValues[51] = 77;
  const std::string text = FormatConfig(store).value();
  EXPECT_EQ(text,
            "0& 1000 \r\n1& 1234566 \r\n1F&-12.5 \r\n20& 0 \r\nD& 0 \r\n6& 0 \r\n7& 0 \r\n8& 0 \r\n"
            "21& 0 \r\nE& 0 \r\nF& 0 \r\n12& 0 \r\n2E& 0 \r\n2F& 0 \r\n30& 0 \r\n2A& 0 \r\n"
            "2B& 0 \r\n2C& 0 \r\n2D& 0 \r\n31& 0 \r\n13& 0 \r\n22& 0 \r\n*& 322 \r\n*& 0 \r\n"
            "*& 0 \r\n*& 0 \r\n*& 0 \r\n*& 0 \r\n*& 0 \r\nFC& 0 \r\nF7& 2.54 \r\nF8& 0 \r\n"
            "F9& 0 \r\nFA& 0 \r\nFB& 0.00001 \r\n33& 0 \r\n34& 0 \r\n35& 0 \r\n36& 0 \r\n"
            "EE& 0 \r\nEF& 0 \r\nF0& 0 \r\nF1& 0 \r\n37& 0 \r\n38& 0 \r\n29& 0 \r\n28& 0 \r\n"
            "27& 0 \r\n3A& 0 \r\nMaxCurrent& 0 \r\nRatedCurrent& 2.8 \r\n");
}

TEST(ConfigText, WhatTheDriveCanHoldReadsBackToTheBitAndAllElseToSevenDigits) {
  ParameterStore loaded;
  for (unsigned raw = 0; raw <= 0xffff; raw += 85) {
    ParameterStore store;
    for (const ParameterRow& row : ParameterRows()) {
      store[row.Index] = RawToValue(row.Index, static_cast<std::uint16_t>(raw));
    }
    ASSERT_TRUE(ParseConfig(FormatConfig(store).value(), loaded));
    EXPECT_EQ(loaded.ParameterValues, store.ParameterValues) << raw;
  }
  std::mt19937 bits(1);
  for (int round = 0; round < 200; ++round) {
    ParameterStore store;
    for (std::size_t i = 0; i < ParameterCount; ++i) {
      float& value = store.ParameterValues[i];
      do {
        value = std::bit_cast<float>(static_cast<std::uint32_t>(bits()));
      } while (!std::isfinite(value));
    }
    ASSERT_TRUE(ParseConfig(FormatConfig(store).value(), loaded));
    for (std::size_t i = 0; i < ParameterCount; ++i) {
      const double value = store.ParameterValues[i];
      constexpr double SmallestNormal = 1.2e-38;
      const double most = 6e-7 * std::max(std::abs(value), SmallestNormal);
      EXPECT_NEAR(loaded.ParameterValues[i], value, most);
    }
  }
  for (const float value : {NAN, INFINITY}) {
    ParameterStore store;
    store[Slot::Inertia] = value;
    EXPECT_FALSE(FormatConfig(store)) << "no text gives it back";
  }
}

TEST(ConfigText, TakesEveryHarmlessFormAndStopsAtABadLine) {
  using namespace std::string_literals;
  const struct {
    const char* What;
    std::string Text;
    // Slots that hold their new values, each its own number; the others keep what they held.
    std::size_t Loaded;
  } cases[] = {
      {"line feeds", Lines(51, "\n"), 51},
      {"no end behind the last line", Lines(50) + "x&50", 51},
      {"lines behind the last", Lines(60), 51},
      {"a second separator", WithLine12("k& 12 & 9 & x"), 51},
      {"exponent", WithLine12("k& 1.2E+01 "), 51},
      {"too few lines", Lines(50), 50},
      {"no separator", WithLine12(" 12 "), 12},
      {"empty field", WithLine12("k&"), 12},
      {"more than a number", WithLine12("k& 5 A"), 12},
      {"not a number", WithLine12("k& nan"), 12},
      {"too large for a float", WithLine12("k& 1e39"), 12},
      {"a NUL in the value", WithLine12("k& 5\0"s), 12},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    ParameterStore store;
    store.ParameterValues.fill(-1);
    EXPECT_EQ(ParseConfig(c.Text, store), c.Loaded == 51);
    for (std::size_t i = 0; i < store.ParameterValues.size(); ++i) {
      EXPECT_EQ(store.ParameterValues[i], i < c.Loaded ? static_cast<float>(i) : -1.0F) << i;
    }
  }
}

}  // namespace
}  // namespace gainsmith::test
