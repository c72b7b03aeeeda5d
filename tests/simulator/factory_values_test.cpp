// The factory values against the defaults file that comes with the tool.
#include "simulator/factory_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace gainsmith::sim {
namespace {

struct Slot {
  int Register;
  int Scale;
};

// The registers of the defaults file's lines, in order. Lines 22 to 28 are bits of the flags word.
const std::vector<Slot> Slots{
    {0x00, 1},   {0x01, 1},  {0x1F, 1},   {0x20, 1},   {0x0D, 1},   {0x06, 1},    {0x07, 1},
    {0x08, 1},   {0x21, 1},  {0x0E, 1},   {0x0F, 1},   {0x12, 1},   {0x2E, 1},    {0x2F, 1},
    {0x30, 1},   {0x2A, 1},  {0x2B, 1},   {0x2C, 1},   {0x2D, 1},   {0x31, 1},    {0x13, 1},
    {0x22, 1},   {0xFF, 1},  {0xFF, 1},   {0xFF, 1},   {0xFF, 1},   {0xFF, 1},    {0xFF, 1},
    {0xFF, 1},   {0xFC, 1},  {0xF7, 100}, {0xF8, 100}, {0xF9, 100}, {0xFA, 1000}, {0xFB, 100000},
    {0x33, 1},   {0x34, 1},  {0x35, 1},   {0x36, 1},   {0xEE, 1},   {0xEF, 1},    {0xF0, 1},
    {0xF1, 1},   {0x37, 1},  {0x38, 1},   {0x29, 1},   {0x28, 10},  {0x27, 1},    {0x3A, 1},
    {0xF5, 100}, {0xF6, 100}};
constexpr std::size_t FirstFlag = 22;
constexpr std::size_t LastFlag = 28;

std::string FileText() {
  std::ifstream file(GAINSMITH_DATA_DIR "/default.ini", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The value fields, after a look at the form of every line.
std::vector<double> FileValues() {
  const std::string text = FileText();
  std::vector<double> values;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t end = text.find("\r\n", start);
    EXPECT_NE(end, std::string::npos) << "a line without CR LF";
    if (end == std::string::npos) break;
    const std::string line = text.substr(start, end - start);
    const std::size_t separator = line.find("& ");
    EXPECT_NE(separator, std::string::npos) << line;
    EXPECT_EQ(line.back(), ' ') << line;
    values.push_back(std::stod(line.substr(separator + 2)));
    start = end + 2;
  }
  return values;
}

TEST(FactoryValues, AreThoseOfTheDefaultsFile) {
  const std::vector<double> values = FileValues();
  ASSERT_EQ(values.size(), Slots.size());
  const RegisterBank registers = FactoryValues();
  for (std::size_t slot = 0; slot < Slots.size(); ++slot) {
    if (slot >= FirstFlag && slot <= LastFlag) continue;
    EXPECT_EQ(std::llround(values[slot] * Slots[slot].Scale),
              registers.Values[static_cast<std::size_t>(Slots[slot].Register)])
        << "line " << slot;
  }
}

TEST(FactoryValues, FlagsWordIsThatOfTheDefaultsFile) {
  const std::vector<double> values = FileValues();
  ASSERT_EQ(values.size(), Slots.size());
  const std::vector<unsigned> modeBits{0x0000, 0x0020, 0x0010};
  unsigned flags = modeBits.at(static_cast<std::size_t>(values[23]));
  const struct {
    std::size_t Slot;
    unsigned Mask;
  } bits[] = {{22, 0x0002}, {28, 0x0004}, {26, 0x0008}, {24, 0x0040}, {25, 0x0080}, {27, 0x0100}};
  for (const auto& bit : bits) {
    ASSERT_TRUE(values[bit.Slot] == 0 || values[bit.Slot] == 1) << "line " << bit.Slot;
    if (values[bit.Slot] == 1) flags |= bit.Mask;
  }
  EXPECT_EQ(flags, FactoryValues()[Reg::Flags]);
}

TEST(FactoryValues, EveryParameterHasItsLineInTheDefaultsFile) {
  for (const FactoryValue& parameter : FactoryParameters()) {
    const auto isIts = [&](const Slot& slot) {
      return slot.Register == static_cast<int>(parameter.Register);
    };
    EXPECT_TRUE(std::any_of(Slots.begin(), Slots.end(), isIts))
        << static_cast<int>(parameter.Register);
  }
}

}  // namespace
}  // namespace gainsmith::sim
