// Configuration text: the format to the byte, and every way in which a file can be bad.
#include "params/config_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace gainsmith::test {
namespace {

// `count` lines of which line i holds the value i, with the keys that a user may have made up.
std::string Lines(int count, const char* end = "\r\n") {
  std::string text;
  for (int i = 0; i < count; ++i) text += "any& " + std::to_string(i) + " " + end;
  return text;
}

// The text with line `line` (from 0) replaced.
std::string WithLine(int line, const std::string& replacement) {
  std::string text = Lines(51);
  std::size_t begin = 0;
  for (int i = 0; i < line; ++i) begin = text.find('\n', begin) + 1;
  return text.replace(begin, text.find("\r\n", begin) - begin, replacement);
}

TEST(ConfigText, StandsToTheByte) {
  ParameterStore store;
  store[Slot::CurrentKp] = 1000;
  store[Slot::VelocityKpHigh] = -12.5F;
  store[Slot::PulseEdge] = 322;
  store[Slot::Resistance] = 2.54F;
  store[Slot::Inertia] = 0.00001F;
  store[Slot::Trap2Width] = -0.0F;
  store[Slot::RatedCurrentLimit] = 2.8F;
  store.ParameterValues[51] = 77;
  const std::string text = FormatConfig(store).value();
  EXPECT_EQ(text,
            "0& 1000 \r\n1& 0 \r\n1F&-12.5 \r\n20& 0 \r\nD& 0 \r\n6& 0 \r\n7& 0 \r\n8& 0 \r\n"
            "21& 0 \r\nE& 0 \r\nF& 0 \r\n12& 0 \r\n2E& 0 \r\n2F& 0 \r\n30& 0 \r\n2A& 0 \r\n"
            "2B& 0 \r\n2C& 0 \r\n2D& 0 \r\n31& 0 \r\n13& 0 \r\n22& 0 \r\n*& 322 \r\n*& 0 \r\n"
            "*& 0 \r\n*& 0 \r\n*& 0 \r\n*& 0 \r\n*& 0 \r\nFC& 0 \r\nF7& 2.54 \r\nF8& 0 \r\n"
            "F9& 0 \r\nFA& 0 \r\nFB& 0.00001 \r\n33& 0 \r\n34& 0 \r\n35& 0 \r\n36& 0 \r\n"
            "EE& 0 \r\nEF& 0 \r\nF0& 0 \r\nF1& 0 \r\n37& 0 \r\n38& 0 \r\n29& 0 \r\n28& 0 \r\n"
            "27& 0 \r\n3A& 0 \r\nMaxCurrent& 0 \r\nRatedCurrent& 2.8 \r\n");
}

TEST(ConfigText, WhatIsWrittenReadsBackToTheBit) {
  constexpr float Sizes[] = {0.1F,        1.17549435e-38F, 1.4e-45F,   3.40282347e38F, 16777217.0F,
                             0.33333334F, 1e-5F,           123456.79F, 9.9999998e9F,   2.54F};
  ParameterStore store;
  for (std::size_t i = 0; i < ParameterCount; ++i) {
    const float size = Sizes[i % std::size(Sizes)];
    store.ParameterValues[i] = i % 3 == 0 ? -size : size + static_cast<float>(i) * size / 7;
    if (!std::isfinite(store.ParameterValues[i])) store.ParameterValues[i] = size;
  }
  ParameterStore loaded;
  ASSERT_TRUE(ParseConfig(FormatConfig(store).value(), loaded));
  EXPECT_EQ(loaded.ParameterValues, store.ParameterValues);
}

TEST(ConfigText, AValueThatNoTextGivesBackIsNotWritten) {
  for (const float value : {NAN, std::numeric_limits<float>::infinity()}) {
    ParameterStore store;
    store[Slot::Inertia] = value;
    EXPECT_FALSE(FormatConfig(store));
  }
}

TEST(ConfigText, TakesEveryHarmlessForm) {
  struct Case {
    const char* What;
    std::string Text;
    int Slot;
    float Value;
  };
  using namespace std::string_literals;
  const Case cases[] = {
      {"line feeds", Lines(51, "\n"), 50, 50},
      {"no end behind the last line", Lines(50) + "x&7", 50, 7},
      {"lines behind the last", Lines(60), 50, 50},
      {"no key", WithLine(3, "&8"), 3, 8},
      {"a NUL in a key", WithLine(3, "a\0b& 8 "s), 3, 8},
      {"a second separator", WithLine(3, "k& 8 & 9 & x"), 3, 8},
      {"exponent", WithLine(3, "k& 1.3E-04 "), 3, 0.00013F},
      {"plus sign", WithLine(3, "k&+8"), 3, 8},
  };
  for (const Case& c : cases) {
    ParameterStore store;
    EXPECT_TRUE(ParseConfig(c.Text, store)) << c.What;
    EXPECT_EQ(store.ParameterValues[static_cast<std::size_t>(c.Slot)], c.Value) << c.What;
    EXPECT_EQ(store.ParameterValues[51], 0) << c.What;
  }
}

TEST(ConfigText, ABadLineStopsTheLoadWithTheSlotsBeforeItChanged) {
  using namespace std::string_literals;
  struct Case {
    const char* What;
    std::string Text;
    // Slots that hold their new values.
    int Loaded;
  };
  const Case cases[] = {
      {"empty file", "", 0},
      {"too few lines", Lines(50), 50},
      {"no separator", WithLine(12, " 12 "), 12},
      {"empty field", WithLine(12, "k&"), 12},
      {"more than a number", WithLine(12, "k& 5 A"), 12},
      {"hexadecimal", WithLine(12, "k& 0x1F"), 12},
      {"not a number", WithLine(12, "k& nan"), 12},
      {"too large for a float", WithLine(12, "k& 1e39"), 12},
      {"a NUL in the value", WithLine(12, "k& 5\0"s), 12},
  };
  for (const Case& c : cases) {
    ParameterStore store;
    store.ParameterValues.fill(-1);
    EXPECT_FALSE(ParseConfig(c.Text, store)) << c.What;
    for (int i = 0; i < 51; ++i) {
      EXPECT_EQ(store.ParameterValues[static_cast<std::size_t>(i)],
                i < c.Loaded ? static_cast<float>(i) : -1.0F)
          << c.What << ", slot " << i;
    }
  }
}

}  // namespace
}  // namespace gainsmith::test
