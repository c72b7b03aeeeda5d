// What the properties window sends at once: on Enter, a choice or a click. These controls are
// parked, so that the tests call them as the keyboard and the load do.

#include "params/parameter_table.h"
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
      {"Text3", "327.67", below327, "W 247=0", Slot::Resistance, 0},
      {"Text3", "-0.01", below327, "W 247=0", Slot::Resistance, 0},
      {"Text4", "1e999", below327, "W 248=0", Slot::Inductance, 0},
      {"Text7", "327.66", "", "W 249=32766", Slot::BackEmf, 327.66F},
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
    bench.Act(c.Field);
    EXPECT_EQ(bench.TakeFrames(), c.Frame);
    EXPECT_EQ(bench.Values[c.Kept], c.Value);
    const bool refused = !c.Refusal.empty();
    EXPECT_EQ(bench.Text(c.Field), refused ? "0" : c.Text);
    EXPECT_EQ(bench.TakeMessages(), Messages(refused, {c.Text + c.Refusal, "Invalid Value"}));
  }
  // An analog value that no register holds changes nothing, and is told in words of its own.
  bench.Text("Text10") = "6553.6";
  bench.Act("Text10");
  EXPECT_EQ(bench.TakeMessages(),
            Messages{Tell("The value 65536 for register 40 can't be sent: the drive takes 0 to "
                          "65535. Nothing was sent for it.",
                          MainTitle, MessageIcon::Critical)});
  EXPECT_EQ(bench.Values[Slot::AnalogPeakCurrent], 5.4F);
  EXPECT_EQ(bench.TakeFrames(), "");
}

TEST(PropertiesCommits, ChoicesAndClicksWriteAtOnce) {
  PropertiesBench bench;
  bench.Open();
  bench.TheLink.WriteFailed = true;  // of an earlier download
  bench.Window.Combo1.Choose(3);
  bench.Window.Combo2.Choose(6);
  bench.Window.Check1[1].Ticked = true;
  for (const char* name : {"Combo1", "Combo2", "Check2", "Check1(0)", "Check1(1)"}) bench.Act(name);
  EXPECT_EQ(bench.TakeFrames(), "W 252=1500, W 51=6, W 254=1, W 55=0, W 58=1");
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_EQ(bench.Values[Slot::RatedPower], 1500);
  EXPECT_EQ(bench.Values[Slot::InputSmoothing], 6);
  EXPECT_EQ(bench.Values[Slot::AnalogReverse], 0) << "the boxes' slots keep what was read";
}

// At any moment of a commit: the same again commits nothing, another value is the one that stays.
TEST(PropertiesCommits, TheNewestOfTwoIsInFieldSlotAndDrive) {
  const struct {
    const char *Field, *First, *Second;
    Slot Kept;
    int Register;
    std::uint16_t Word;
    bool Again;  // the first once more sends again
  } cases[] = {
      {"Text3", "1.25", "2.5", Slot::Resistance, 247, 250, false},
      {"Text10", "1.5", "2.5", Slot::AnalogPeakCurrent, 40, 25, false},
      {"Combo1", "400", "750", Slot::RatedPower, 252, 750, true},
      {"Combo2", "Mode 1", "Mode 2", Slot::InputSmoothing, 51, 2, true},
  };
  const auto commit = [](PropertiesBench& bench, const std::string& field, const char* text) {
    bench.Text(field) = text;
    if (field.starts_with("Combo")) {
      auto& list = *static_cast<ComboBox*>(bench.Fields.at(field));
      for (list.Choose(0); list.Text != text;) list.Choose(list.ListIndex + 1);
    }
    bench.Act(field);
  };
  for (const auto& c : cases) {
    for (int delayMs = 1; delayMs < 173; delayMs += 4) {
      SCOPED_TRACE(c.Field + (" " + std::to_string(delayMs)));
      PropertiesBench bench;
      bench.Open();
      bench.World.At(delayMs, [&] { commit(bench, c.Field, c.First); });
      commit(bench, c.Field, c.First);
      EXPECT_TRUE(c.Again || bench.World.Log.Frames().size() == 1);
      bench.World.At(delayMs, [&] { commit(bench, c.Field, c.Second); });
      commit(bench, c.Field, c.First);
      EXPECT_EQ(bench.Word(c.Register), c.Word);
      EXPECT_EQ(PackWord(ValueToRaw(c.Kept, bench.Values[c.Kept])), c.Word);
      EXPECT_EQ(bench.Text(c.Field), c.Second);
      EXPECT_TRUE(bench.World.Messages.empty());
    }
  }
}

TEST(PropertiesCommits, AFailedWriteIsToldOnceAndOnlyMotorFieldsCloseTheWindow) {
  for (const auto& [name, frames] : {std::pair{"Text3", 12U},
                                     {"Text10", 12U},
                                     {"Combo1", 12U},
                                     {"Check2", 12U},
                                     {"Check1(0)", 4U}}) {
    SCOPED_TRACE(name);
    PropertiesBench bench;
    bench.Open();
    bench.TheLink.WriteFailed = true;  // of an earlier download
    bench.Device.Drive.Inject(sim::Fault::Silent);
    bench.Act(name);
    const bool closes = name == std::string("Text3");
    EXPECT_EQ(bench.World.Log.Frames().size(), frames);
    EXPECT_EQ(bench.TakeMessages(), Messages{LostLink});
    EXPECT_EQ(bench.Window.Loaded, !closes);
    EXPECT_EQ(bench.TheLink.WriteFailed, !closes);
  }
}

}  // namespace
}  // namespace gainsmith::test
