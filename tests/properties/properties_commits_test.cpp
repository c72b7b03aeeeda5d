// What the properties window sends at once: on Enter, a choice or a click. These controls are
// parked, so that the tests call them as the keyboard and the load do.
#include <gtest/gtest.h>

#include "properties_bench.h"

namespace gainsmith::test {
namespace {

TEST(PropertiesCommits, EnterWritesTheFieldOrZeroInItsPlace) {
  const std::string no = "";
  const std::string hundreds = " value should be 0-327.67";
  const std::string thousands = " value should be 0-32.767";
  const std::string inertia = " value should be 0-0.32767";
  const struct {
    TextBox sysConfigFrm::*Field;
    const char* Text;
    std::string Refusal;  // empty: none
    const char* Frame;
    Slot Kept;
    float Value;
  } cases[] = {
      {&sysConfigFrm::Text3, "2.54", no, "W 247=254", Slot::Resistance, 2.54F},
      {&sysConfigFrm::Text3, "2.345", no, "W 247=234", Slot::Resistance, 2.34F},
      {&sysConfigFrm::Text3, "2.355 ohms", no, "W 247=236", Slot::Resistance, 2.36F},
      {&sysConfigFrm::Text3, "327.66", no, "W 247=32766", Slot::Resistance, 327.66F},
      {&sysConfigFrm::Text3, "327.67", hundreds, "W 247=0", Slot::Resistance, 0},
      {&sysConfigFrm::Text3, "-0.01", hundreds, "W 247=0", Slot::Resistance, 0},
      {&sysConfigFrm::Text3, "abc", no, "W 247=0", Slot::Resistance, 0},
      {&sysConfigFrm::Text3, "", no, "W 247=0", Slot::Resistance, 0},
      {&sysConfigFrm::Text4, "1e999", hundreds, "W 248=0", Slot::Inductance, 0},
      {&sysConfigFrm::Text4, "5.2", no, "W 248=520", Slot::Inductance, 5.2F},
      {&sysConfigFrm::Text7, "400", hundreds, "W 249=0", Slot::BackEmf, 0},
      {&sysConfigFrm::Text7, "0.29", no, "W 249=29", Slot::BackEmf, 0.29F},
      {&sysConfigFrm::Text5, "32.7669", no, "W 250=32767", Slot::TorqueConstant, 32.767F},
      {&sysConfigFrm::Text5, "32.767", thousands, "W 250=0", Slot::TorqueConstant, 0},
      {&sysConfigFrm::Text6, "0.000123", no, "W 251=12", Slot::Inertia, 0.00012F},
      {&sysConfigFrm::Text6, ".32766", no, "W 251=32766", Slot::Inertia, 0.32766F},
      {&sysConfigFrm::Text6, "0.32767", inertia, "W 251=0", Slot::Inertia, 0},
      {&sysConfigFrm::Text9, "12", no, "W 41=12", Slot::AnalogOffset, 12},
      {&sysConfigFrm::Text9, "2.5", no, "W 41=2", Slot::AnalogOffset, 2.5F},
      {&sysConfigFrm::Text10, "5.4", no, "W 40=54", Slot::AnalogPeakCurrent, 5.4F},
      {&sysConfigFrm::Text10, "5.45", no, "W 40=54", Slot::AnalogPeakCurrent, 5.4F},
      {&sysConfigFrm::Text11, "6000", no, "W 39=6000", Slot::AnalogMaxVelocity, 6000},
      {&sysConfigFrm::Text11, "nonsense", no, "W 39=0", Slot::AnalogMaxVelocity, 0},
  };
  PropertiesBench bench;
  bench.Open();
  for (const auto& c : cases) {
    TextBox& field = bench.Window.*c.Field;
    field.Text = c.Text;
    bench.World.Log.Clear();
    bench.World.Messages.clear();
    EXPECT_FALSE(field.OnKeyPress(KeyEnter));
    EXPECT_EQ(bench.World.Log.Texts(), (Texts{c.Frame})) << field.Name << " " << c.Text;
    EXPECT_EQ(bench.Values[c.Kept], c.Value) << field.Name << " " << c.Text;
    if (c.Refusal.empty()) {
      EXPECT_TRUE(bench.World.Messages.empty()) << field.Name << " " << c.Text;
      EXPECT_EQ(field.Text, c.Text);
    } else {
      ASSERT_EQ(bench.World.Messages.size(), 1U) << field.Name << " " << c.Text;
      EXPECT_EQ(bench.World.Messages[0].Text, c.Text + c.Refusal);
      EXPECT_EQ(bench.World.Messages[0].Title, "Invalid Value");
      EXPECT_EQ(bench.World.Messages[0].Icon, MessageIcon::None);
      EXPECT_EQ(field.Text, "0");
    }
  }
  EXPECT_TRUE(bench.Window.Visible);
}

TEST(PropertiesCommits, AnAnalogValueThatNoRegisterHoldsIsRefusedInWords) {
  const struct {
    TextBox sysConfigFrm::*Field;
    const char* Text;
    Slot Kept;
  } cases[] = {{&sysConfigFrm::Text9, "-1", Slot::AnalogOffset},
               {&sysConfigFrm::Text9, "65536", Slot::AnalogOffset},
               {&sysConfigFrm::Text10, "6553.6", Slot::AnalogPeakCurrent},
               {&sysConfigFrm::Text11, "1e999", Slot::AnalogMaxVelocity}};
  PropertiesBench bench;
  bench.Open();
  for (const auto& c : cases) {
    const float before = bench.Values[c.Kept];
    bench.World.Messages.clear();
    (bench.Window.*c.Field).Text = c.Text;
    (bench.Window.*c.Field).OnKeyPress(KeyEnter);
    ASSERT_EQ(bench.World.Messages.size(), 1U) << c.Text;
    EXPECT_NE(bench.World.Messages[0].Text, LinkText) << c.Text;
    EXPECT_EQ(bench.Values[c.Kept], before) << c.Text;
  }
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_TRUE(bench.Window.Visible);
}

TEST(PropertiesCommits, TheKeyFilterPassesWhatNumbersAreMadeOf) {
  PropertiesBench bench;
  bench.Open();
  sysConfigFrm& w = bench.Window;
  for (TextBox* field :
       {&w.Text3, &w.Text4, &w.Text5, &w.Text6, &w.Text7, &w.Text9, &w.Text10, &w.Text11}) {
    std::string passed;
    for (int key = 1; key < 256; ++key) {
      if (key != KeyEnter && field->OnKeyPress(key)) passed += static_cast<char>(key);
    }
    EXPECT_EQ(passed, "\b./0123456789") << field->Name;
  }
  for (const TextBox* field : {&w.Text1[0], &w.Text1[7], &w.txtMaxCurrent, &w.txtRatedCurrent}) {
    EXPECT_FALSE(field->OnKeyPress) << field->Name;
  }
  EXPECT_TRUE(bench.World.Log.Frames().empty());
}

TEST(PropertiesCommits, ChoicesAndClicksWriteAtOnce) {
  PropertiesBench bench;
  bench.Open();
  sysConfigFrm& w = bench.Window;
  const auto choose = [](ComboBox& combo, int index) {
    combo.Choose(index);
    combo.OnClick();
  };
  const auto tick = [](CheckBox& box, bool on) {
    box.Ticked = on;
    box.OnClick();
  };
  choose(w.Combo1, 3);
  choose(w.Combo2, 6);
  bench.World.At(10, [&] { EXPECT_FALSE(bench.TheLink.LinkIdle); });
  tick(w.Check2, true);
  EXPECT_TRUE(bench.TheLink.LinkIdle);
  tick(w.Check2, false);
  tick(w.Check1[0], true);
  tick(w.Check1[1], true);
  tick(w.Check1[1], false);
  bench.User.Click(w.Command2);
  EXPECT_EQ(bench.World.Log.Texts(),
            (Texts{"W 252=1500", "W 51=6", "W 254=0", "W 254=1", "W 55=1", "W 58=1", "W 58=0"}));
  EXPECT_EQ(bench.Values[Slot::RatedPower], 1500);
  EXPECT_EQ(bench.Values[Slot::InputSmoothing], 6);
  // The slots of the boxes keep what was read.
  EXPECT_EQ(bench.Values[Slot::Interpolation], 0);
  EXPECT_EQ(bench.Values[Slot::AnalogReverse], 0);
  EXPECT_EQ(bench.Get(252), 1500);
}

TEST(PropertiesCommits, AFailedWriteIsToldOnceAndOnlyMotorFieldsCloseTheWindow) {
  const struct {
    const char* Name;
    std::function<void(sysConfigFrm&)> Act;
    std::size_t Frames;
    bool Closes;
    bool LinkIdle;
  } cases[] = {
      {"Text3", [](sysConfigFrm& w) { w.Text3.OnKeyPress(KeyEnter); }, 12, true, true},
      {"Text6", [](sysConfigFrm& w) { w.Text6.OnKeyPress(KeyEnter); }, 12, true, true},
      {"Text9", [](sysConfigFrm& w) { w.Text9.OnKeyPress(KeyEnter); }, 12, false, true},
      {"Text10", [](sysConfigFrm& w) { w.Text10.OnKeyPress(KeyEnter); }, 12, false, true},
      {"Combo1", [](sysConfigFrm& w) { w.Combo1.OnClick(); }, 12, false, true},
      {"Check2", [](sysConfigFrm& w) { w.Check2.OnClick(); }, 12, false, true},
      {"Combo2", [](sysConfigFrm& w) { w.Combo2.OnClick(); }, 4, false, false},
      {"Check1", [](sysConfigFrm& w) { w.Check1[0].OnClick(); }, 4, false, false},
  };
  for (const bool earlier : {false, true}) {
    for (const auto& c : cases) {
      PropertiesBench bench;
      bench.Open();
      bench.TheLink.WriteFailed = earlier;
      bench.FallSilent();
      c.Act(bench.Window);
      EXPECT_EQ(bench.World.Log.Frames().size(), c.Frames) << c.Name;
      ASSERT_EQ(bench.World.Messages.size(), 1U) << c.Name;
      EXPECT_EQ(bench.World.Messages[0].Text, LinkText) << c.Name;
      EXPECT_EQ(bench.Window.Loaded, !c.Closes) << c.Name;
      EXPECT_EQ(bench.TheLink.LinkIdle, c.LinkIdle) << c.Name;
      EXPECT_EQ(bench.TheLink.WriteFailed, earlier && !c.Closes) << c.Name;
    }
  }
}

TEST(PropertiesCommits, AWindowClosedUnderAFailingCommitIsNotClosedTwice) {
  PropertiesBench bench;
  bench.Open();
  bench.FallSilent();
  bench.World.At(1000, [&] { bench.User.Click(bench.Window.Command2); });
  bench.World.At(2000, [&] {
    bench.Line.Stops = [](int, const LoggedFrame& frame) { return frame.IsWrite(); };
    bench.World.ShowModal(bench.Window);
  });
  bench.Window.Text3.OnKeyPress(KeyEnter);
  // The failure is told, and the window that was opened anew meanwhile stays.
  EXPECT_EQ(bench.World.Messages.size(), 1U);
  EXPECT_TRUE(bench.Window.Visible);
}

}  // namespace
}  // namespace gainsmith::test
