// What the properties window sends at once: on Enter, a choice or a click. These controls are
// parked, so that the tests call them as the keyboard and the load do.
#include <gtest/gtest.h>

#include "properties_bench.h"

namespace gainsmith::test {
namespace {

TEST(PropertiesCommits, EnterWritesTheFieldOrZeroInItsPlace) {
  const std::string below327 = " value should be 0-327.67";
  const struct {
    const char* Field;
    std::string Text;
    std::string Refusal;  // empty: none
    const char* Frame;
    Slot Kept;
    float Value;
  } cases[] = {
      {"Text3", "2.355 ohms", "", "W 247=236", Slot::Resistance, 2.36F},
      {"Text3", "327.66", "", "W 247=32766", Slot::Resistance, 327.66F},
      {"Text3", "327.67", below327, "W 247=0", Slot::Resistance, 0},
      {"Text3", "-0.01", below327, "W 247=0", Slot::Resistance, 0},
      {"Text3", "abc", "", "W 247=0", Slot::Resistance, 0},
      {"Text4", "1e999", below327, "W 248=0", Slot::Inductance, 0},
      {"Text7", "400", below327, "W 249=0", Slot::BackEmf, 0},
      {"Text5", "32.767", " value should be 0-32.767", "W 250=0", Slot::TorqueConstant, 0},
      {"Text6", "0.000123", "", "W 251=12", Slot::Inertia, 0.00012F},
      {"Text6", "0.32767", " value should be 0-0.32767", "W 251=0", Slot::Inertia, 0},
      {"Text9", "2.5", "", "W 41=2", Slot::AnalogOffset, 2.5F},
      {"Text10", "5.45", "", "W 40=54", Slot::AnalogPeakCurrent, 5.4F},
      {"Text11", "nonsense", "", "W 39=0", Slot::AnalogMaxVelocity, 0},
  };
  PropertiesBench bench;
  bench.Open();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Field + (" " + c.Text));
    bench.Text(c.Field) = c.Text;
    bench.Enter(c.Field);
    EXPECT_EQ(bench.TakeFrames(), c.Frame);
    EXPECT_EQ(bench.Values[c.Kept], c.Value);
    const bool refused = !c.Refusal.empty();
    EXPECT_EQ(bench.Text(c.Field), refused ? "0" : c.Text);
    EXPECT_EQ(bench.TakeMessages(), Messages(refused, {c.Text + c.Refusal, "Invalid Value"}));
  }
  // An analog value that no register holds changes nothing, and is told in words of its own.
  const auto before = bench.Values.ParameterValues;
  for (const auto& [field, text] :
       {std::pair{"Text9", "-1"}, {"Text9", "65536"}, {"Text10", "6553.6"}, {"Text11", "1e999"}}) {
    bench.Text(field) = text;
    bench.Enter(field);
    const Messages told = bench.TakeMessages();
    ASSERT_EQ(told.size(), 1U) << text;
    EXPECT_EQ(told[0].Title, MainTitle) << text;
  }
  EXPECT_EQ(bench.Values.ParameterValues, before);
  EXPECT_EQ(bench.TakeFrames(), "");
}

TEST(PropertiesCommits, TheKeyFilterPassesWhatNumbersAreMadeOf) {
  PropertiesBench bench;
  for (const char* name :
       {"Text3", "Text4", "Text5", "Text6", "Text7", "Text9", "Text10", "Text11"}) {
    std::string passed;
    for (int key = 1; key < 256; ++key) {
      if (key != KeyEnter && bench.Field(name).OnKeyPress(key)) passed += static_cast<char>(key);
    }
    EXPECT_EQ(passed, "\b./0123456789") << name;
  }
  for (const char* name : {"Text1(0)", "Text1(7)", "txtMaxCurrent", "txtRatedCurrent"}) {
    EXPECT_FALSE(bench.Field(name).OnKeyPress) << name;
  }
}

TEST(PropertiesCommits, ChoicesAndClicksWriteAtOnce) {
  PropertiesBench bench;
  bench.Open();
  sysConfigFrm& w = bench.Window;
  w.Combo1.Choose(3);
  w.Combo1.OnClick();
  w.Combo2.Choose(6);
  w.Combo2.OnClick();
  bench.World.At(10, [&] { EXPECT_FALSE(bench.TheLink.LinkIdle); });
  for (const auto& [box, on] : {std::pair{&w.Check2, true},
                                {&w.Check2, false},
                                {&w.Check1[0], true},
                                {&w.Check1[1], true},
                                {&w.Check1[1], false}}) {
    box->Ticked = on;
    box->OnClick();
    EXPECT_TRUE(bench.TheLink.LinkIdle);
  }
  bench.User.Click(w.Command2);
  EXPECT_EQ(bench.TakeFrames(), "W 252=1500, W 51=6, W 254=0, W 254=1, W 55=1, W 58=1, W 58=0")
      << "closing undoes nothing";
  EXPECT_EQ(bench.Values[Slot::RatedPower], 1500);
  EXPECT_EQ(bench.Values[Slot::InputSmoothing], 6);
  EXPECT_EQ(bench.Values[Slot::Interpolation], 0) << "the boxes' slots keep what was read";
}

TEST(PropertiesCommits, AFailedWriteIsToldOnceAndOnlyMotorFieldsCloseTheWindow) {
  const struct {
    const char* Name;
    std::function<void(PropertiesBench&)> Act;
    std::size_t Frames;
    bool Closes;
    bool LinkIdle;
  } cases[] = {
      {"Text3", [](PropertiesBench& b) { b.Enter("Text3"); }, 12, true, true},
      {"Text10", [](PropertiesBench& b) { b.Enter("Text10"); }, 12, false, true},
      {"Combo1", [](PropertiesBench& b) { b.Window.Combo1.OnClick(); }, 12, false, true},
      {"Check2", [](PropertiesBench& b) { b.Window.Check2.OnClick(); }, 12, false, true},
      {"Combo2", [](PropertiesBench& b) { b.Window.Combo2.OnClick(); }, 4, false, false},
      {"Check1", [](PropertiesBench& b) { b.Window.Check1[0].OnClick(); }, 4, false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Name);
    PropertiesBench bench;
    bench.Open();
    bench.TheLink.WriteFailed = true;  // of an earlier download
    bench.Line.Stops = [](const LoggedFrame&) { return true; };
    c.Act(bench);
    EXPECT_EQ(bench.World.Log.Frames().size(), c.Frames);
    EXPECT_EQ(bench.TakeMessages(), Messages{LostLink});
    EXPECT_EQ(bench.Window.Loaded, !c.Closes);
    EXPECT_EQ(bench.TheLink.LinkIdle, c.LinkIdle);
    EXPECT_EQ(bench.TheLink.WriteFailed, !c.Closes);
  }
}

}  // namespace
}  // namespace gainsmith::test
