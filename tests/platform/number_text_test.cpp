// Number texts: tables of numbers whose text, or whose reading, could go wrong.
#include "platform/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

namespace gainsmith {
namespace {

// 1.005 is 1.00499999999999989... in binary and 1.005 in 15 digits.
TEST(NumberText, PatternsRoundHalfAwayFromZeroOnTheDecimalText) {
  const struct {
    double Value;
    int Decimals;
    const char* Text;
  } cases[] = {
      {0.0, 0, "0"},         {0.5, 0, "1"},       {-0.5, 0, "-1"},      {2.5, 0, "3"},
      {-0.49, 0, "0"},       {0.04, 0, "0"},      {-0.004, 2, "0.00"},  {-0.005, 2, "-0.01"},
      {1.005, 2, "1.01"},    {9.995, 2, "10.00"}, {4e-6, 5, "0.00000"}, {5e-6, 5, "0.00001"},
      {1e-300, 4, "0.0000"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FixedText(c.Value, c.Decimals), c.Text) << c.Value << " with " << c.Decimals;
  }
  EXPECT_EQ(FixedText(1234.5678, 3), "1234.568");
  EXPECT_EQ(FixedText(-12.5, 10), "-12.5000000000");
  EXPECT_EQ(FixedText(123456789012345678.0, 1), "123456789012346000.0");
  EXPECT_EQ(RoundHalfAwayFromZero(2.345, 2), 2.35);
}

TEST(NumberText, ATieRoundsToEvenWhenPackedAndOnTheDecimalText) {
  const double packed[][2] = {{0.5, 0},   {1.5, 2},    {-0.5, 0},
                              {-1.5, -2}, {2.4999, 2}, {65534.5, 65534}};
  for (const auto& [value, rounded] : packed) EXPECT_EQ(RoundHalfToEven(value), rounded) << value;
  const double texts[][3] = {
      // 2.345 is 234.50000000000003 hundredths in binary.
      {2.345, 2, 2.34}, {-2.345, 2, -2.34},     {2.3451, 2, 2.35}, {2.355, 2, 2.36},
      {0.285, 2, 0.28}, {0.000125, 5, 0.00012}, {0.5, 0, 0},       {1.5, 0, 2},
      {0.05, 1, 0},     {9.95, 1, 10},          {16, 2, 16},       {HUGE_VAL, 1, HUGE_VAL},
  };
  for (const auto& [value, decimals, rounded] : texts) {
    EXPECT_EQ(RoundHalfToEven(value, static_cast<int>(decimals)), rounded) << value;
  }
}

TEST(NumberText, PlainTextReadsBackToTheSameFloat) {
  const std::pair<float, const char*> cases[] = {
      {300.0F, "300"}, {2.54F, "2.54"}, {-0.0F, "0"}, {0.00012F, "0.00012"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(PlainText(value), text);
  // Every exponent of a finite float, with a mantissa that needs all its digits.
  for (std::uint32_t exponent = 0; exponent < 255; ++exponent) {
    for (const std::uint32_t mantissa : {0x000001U, 0x2AAAABU, 0x7FFFFFU}) {
      const auto value = std::bit_cast<float>(exponent << 23 | mantissa);
      const std::string text = PlainText(value);
      EXPECT_EQ(text.find_first_not_of("0123456789."), std::string::npos) << text;
      EXPECT_EQ(WholeNumber(text), value) << text;
      EXPECT_EQ(WholeNumber(" -" + text + " "), -value) << text;
    }
  }
}

TEST(NumberText, FilesHoldSevenDigitsAtMost) {
  const std::pair<float, const char*> cases[] = {
      {1000.0F, "1000"},       {-12.5F, "-12.5"},         {0.00001F, "0.00001"},
      {1234566.5F, "1234566"}, {1234567.5F, "1234568"},   {1.0F / 3, "0.3333333"},
      {9999999.0F, "9999999"}, {99999992.0F, "99999990"}, {16777216.0F, "16777220"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(FileText(value), text);
  for (const float zero : {0.0F, -0.0F}) EXPECT_EQ(FileText(zero), "0");
  EXPECT_EQ(FileText(-0.12345678F), "-0.1234568");
  EXPECT_EQ(FileText(0.99999994F), "0.9999999");
  EXPECT_EQ(FileText(3.4028235e38F), "340282300000000000000000000000000000000");
  EXPECT_EQ(FileText(1e-45F), "0.000000000000000000000000000000000000000000001");
}

TEST(NumberText, AFieldIsReadByItsLeadingNumber) {
  const std::pair<const char*, double> cases[] = {
      {"", 0},        {"abc", 0},     {"  12", 12},        {"12abc", 12}, {"5.01 A", 5.01},
      {"-3", -3},     {"+4", 4},      {".5", 0.5},         {"5.", 5},     {".", 0},
      {"-", 0},       {"1.2.3", 1.2}, {"1e3", 1000},       {"1e", 1},     {"1e+", 1},
      {"2E-1x", 0.2}, {"inf", 0},     {"nan", 0},          {"0x1F", 0},   {"- 5", 0},
      {"1,5", 1},     {"\t7", 7},     {"0.0000001", 1e-7},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(LeadingNumber(text), value) << text;
}

TEST(NumberText, ANumberBeyondAllRangeIsInfiniteOrZeroByItsSize) {
  const std::string zeros(400, '0');
  const std::string huge[] = {"1e999",
                              "1" + zeros,
                              "00" + ("1" + zeros),
                              "1" + zeros + "e-9",
                              "1e99999999999999999999",
                              "0.1e+999",
                              "1e9223372036854775807"};
  const std::string tiny[] = {"1e-999",
                              "0." + zeros + "1",
                              "." + zeros + "1",
                              "." + zeros + "1e+9",
                              "1e-99999999999999999999",
                              "0e999"};
  for (const std::string& text : huge) {
    EXPECT_EQ(LeadingNumber(text), HUGE_VAL) << text;
    EXPECT_EQ(LeadingNumber("-" + text), -HUGE_VAL) << text;
    EXPECT_EQ(WholeNumber(text), std::nullopt) << text;
  }
  for (const std::string& text : tiny) {
    EXPECT_EQ(LeadingNumber(text), 0) << text;
    EXPECT_EQ(WholeNumber(text), 0) << text;
  }
}

TEST(NumberText, AWholeNumberIsAllOfTheTextOrNothing) {
  EXPECT_EQ(WholeNumber("  2.54 "), 2.54F);
  EXPECT_EQ(WholeNumber("1.2E-5"), 1.2e-5F);
  EXPECT_EQ(WholeNumber("1e-60"), 0.0F);
  for (const char* text : {"", " ", "12x", "1 2", "1e", "1e60", "-1e60", "inf", "nan", "0x10"}) {
    EXPECT_EQ(WholeNumber(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace gainsmith
