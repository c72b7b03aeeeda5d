// The parameter table: conversions of every slot, and the flags word.
#include "params/parameter_table.h"

#include <gtest/gtest.h>

#include "link/frames.h"
#include "params/drive_flags.h"
#include "params/setting_text.h"

namespace gainsmith::test {
namespace {

TEST(ParameterTable, EveryRawValueComesBackFromEverySlot) {
  for (const ParameterRow& row : ParameterRows()) {
    for (int raw = 0; raw <= 65535; ++raw) {
      const float value = RawToValue(row.Index, static_cast<std::uint16_t>(raw));
      ASSERT_EQ(PackWord(ValueToRaw(row.Index, value)), raw) << row.Name;
    }
  }
  for (int word = 0; word <= 65535; ++word) {
    ParameterStore store;
    TakeDriveFlags(store, static_cast<std::uint16_t>(word));
    // Both mode bits at once are no mode; the drive gets the one that the table holds.
    const bool noMode = (word & flags::ModeMask) == flags::ModeMask;
    ASSERT_EQ(FlagsToSend(store), static_cast<float>(noMode ? word & ~flags::ModeMask : word));
  }
}

TEST(DriveFlags, AWordIsExpandedIntoItsSlots) {
  const struct {
    std::uint16_t Word;
    // Slots 22 to 28.
    std::array<float, 7> Slots;
  } cases[] = {
      {0x0001, {0, 0, 0, 0, 0, 0, 0}}, {0x0002, {1, 0, 0, 0, 0, 0, 0}},
      {0x0004, {0, 0, 0, 0, 0, 0, 1}}, {0x0008, {0, 0, 0, 0, 1, 0, 0}},
      {0x0010, {0, 2, 0, 0, 0, 0, 0}}, {0x0020, {0, 1, 0, 0, 0, 0, 0}},
      {0x0040, {0, 0, 1, 0, 0, 0, 0}}, {0x0080, {0, 0, 0, 1, 0, 0, 0}},
      {0x0100, {0, 0, 0, 0, 0, 1, 0}}, {0xFE31, {0, 7, 0, 0, 0, 0, 0}},
  };
  for (const auto& c : cases) {
    ParameterStore store;
    // Left alone where both mode bits are set.
    store[Slot::OperatingMode] = 7;
    TakeDriveFlags(store, c.Word);
    EXPECT_EQ(store.DriveFlagsWord, c.Word);
    for (std::size_t i = 0; i < c.Slots.size(); ++i) {
      EXPECT_EQ(store.ParameterValues[22 + i], c.Slots[i]) << c.Word << ", slot " << 22 + i;
    }
  }
}

TEST(DriveFlags, ADownloadOfAFileSendsTheWholeWordOrTheSlotsOverTheLastWord) {
  const struct {
    const char* What;
    float LastWord;
    std::array<float, 7> Slots;
    float Sent;
  } cases[] = {
      {"a whole word counts alone", 0x01FF, {0x0142, 2, 0, 0, 0, 0, 0}, 0x0142},
      {"bits without a slot are kept", 0xFE01, {1, 0, 0, 0, 0, 0, 0}, 0xFE03},
      {"slots over other slots", 0x01FE, {0, 1, 0, 1, 0, 0, 0}, 0x00A0},
      {"velocity mode", 0x0000, {0, 2, 0, 0, 0, 0, 0}, 0x0010},
      {"a word that looks like a bit", 0x0001, {1, 0, 0, 0, 0, 0, 0}, 0x0001},
      {"a bit that looks like a word", 0x0001, {1, 0, 0, 0, 0, 1, 0}, 0x0103},
      {"an unknown mode keeps the bits", 0x0030, {0, 3, 0, 0, 0, 0, 0}, 0x0030},
      {"anything but 0 sets", 0x0000, {1, 0, 5, 0, 0, 1, 0}, 0x0142},
  };
  for (const auto& c : cases) {
    ParameterStore store;
    store.DriveFlagsWord = c.LastWord;
    for (std::size_t i = 0; i < c.Slots.size(); ++i) store.ParameterValues[22 + i] = c.Slots[i];
    TakeFileFlags(store);
    EXPECT_EQ(FlagsToSend(store), c.Sent) << c.What;
  }
}

TEST(SettingText, SpeaksAsThePropertiesWindowDoesAndComparesWhatTheDriveWouldGet) {
  ParameterStore bits;
  ParameterStore word;
  TakeDriveFlags(bits, 0x0142);
  TakeWholeDriveFlags(word, 0x0142);
  for (const Slot slot : ListOrder()) {
    EXPECT_EQ(SettingText(bits, slot), SettingText(word, slot));
    EXPECT_TRUE(SameSetting(bits, word, slot));
  }
  const struct {
    Slot Index;
    float Value;
    const char* Text;
    float SameAs, Unlike;
  } cases[] = {
      {Slot::DirectionPolarity, 1, "positive", 5, 0},
      {Slot::AlarmPolarity, 1, "active low", 2, 0},
      {Slot::OperatingMode, 1, "torque mode", 1, 2},
      {Slot::PulseEdge, 1, "falling edge", 1, 0},
      {Slot::AnalogReverse, 1, "on", 1, 0},
      {Slot::Resistance, 2.6F, "2.6", 2.601F, 2.61F},
      {Slot::Inertia, 1e9F, "1000000000", 1e9F, 2e9F},
  };
  for (const auto& c : cases) {
    ParameterStore one, same, other;
    one[c.Index] = c.Value;
    same[c.Index] = c.SameAs;
    other[c.Index] = c.Unlike;
    EXPECT_EQ(SettingText(one, c.Index), c.Text);
    EXPECT_TRUE(SameSetting(one, same, c.Index)) << c.Text;
    EXPECT_FALSE(SameSetting(one, other, c.Index)) << c.Text;
  }
}

}  // namespace
}  // namespace gainsmith::test
