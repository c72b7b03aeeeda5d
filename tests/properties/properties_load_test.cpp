// The load of the properties window: order of reads, what lands where, modes, failures.

#include "properties_bench.h"

namespace gainsmith::test {
namespace {

// What an exchange that reads one register takes.
constexpr int ReadMs = 171;

TEST(PropertiesLoad, ReadsItsRegistersInOrderAndRefreshesTheTable) {
  PropertiesBench bench;
  bench.Set({{252, 750}, {247, 254}, {248, 260}, {249, 7}, {250, 1234}, {251, 13}, {34, 3}});
  bench.Set({{56, 25}, {40, 235}, {41, 12}, {39, 3000}, {51, 3}, {245, 350}, {246, 200}});
  bench.Set({{55, 1}, {58, 5}});
  bench.TheLink.ReadFailed = true;  // of an earlier connect
  bench.World.ShowModal(bench.Window);
  EXPECT_FALSE(bench.Window.err.Enabled() || !bench.World.Messages.empty());
  // A box that the load ticks writes back at once.
  EXPECT_EQ(bench.TakeFrames(),
            "R 252, R 247, R 248, R 249, R 250, R 251, R 34, R 14, R 15, R 18, R 19, R 56, R 255, "
            "R 56, R 40, R 41, R 39, R 51, R 55, W 55=1, R 58, W 58=1, R 245, R 246");

  using enum Slot;
  const std::pair<const char*, const char*> shown[] = {
      {"Combo1", "750"},         {"Text3", "2.54"},        {"Text4", "2.60"},
      {"Text5", "1.234"},        {"Text6", "0.000130"},    {"Text7", "0.07"},
      {"cboMotorPolePair", "3"}, {"Text1(0)", "1"},        {"Text1(1)", "2"},
      {"Text1(2)", "1000"},      {"Text1(3)", "4000"},     {"Text1(7)", "25"},
      {"Text9", "12"},           {"Text10", "23.5"},       {"Text11", "3000"},
      {"txtMaxCurrent", "3.5"},  {"txtRatedCurrent", "2"},
  };
  const Slot kept[] = {
      RatedPower,       Resistance,       Inductance,    TorqueConstant,    Inertia,
      BackEmf,          PolePairs,        GearNumerator, GearDenominator,   FollowingErrorLimit,
      EncoderCounts,    AnalogDeadBand,   AnalogOffset,  AnalogPeakCurrent, AnalogMaxVelocity,
      PeakCurrentLimit, RatedCurrentLimit};
  for (std::size_t i = 0; i < std::size(shown); ++i) {
    EXPECT_EQ(bench.Text(shown[i].first), shown[i].second);
    EXPECT_EQ(bench.Values[kept[i]], std::stof(shown[i].second)) << shown[i].first;
  }
  EXPECT_EQ(bench.Text("Combo2") + "," + std::to_string(bench.Values[InputSmoothing]),
            "Mode 3,3.000000");

  const sysConfigFrm& w = bench.Window;
  EXPECT_TRUE(w.Check1[0].Ticked && w.Check1[1].Ticked);
  EXPECT_EQ(bench.Values[Slot::AnalogReverse], 5);
  EXPECT_EQ(w.Combo1.ListIndex, 1);
  EXPECT_EQ(w.Combo2.ListIndex, 3);
  EXPECT_EQ(w.cboMotorPolePair.ListIndex, -1) << "not in the list";

  bench.User.Click(bench.Window.Command2);
  bench.Set({{34, 4}});
  bench.Open();
  EXPECT_EQ(w.cboMotorPolePair.ListIndex, 1);
}

TEST(PropertiesLoad, TheFlagsWordSelectsItsOptionsAndSteersTheMainWindow) {
  const struct {
    std::uint16_t Mask;
    int Clear, Set;
  } bits[] = {{0x0001, 2, -1},  {0x0002, 0, 1},   {0x0004, 4, 5},  {0x0008, 7, 6},
              {0x0040, 15, 16}, {0x0080, 11, 12}, {0x0100, 13, 14}};
  // Tool bar button 4, MnuCurrentLoop, mnuPositionLoop.
  using States = std::array<bool, 3>;
  const struct {
    std::uint16_t Bits;
    int Option;
    States FromOn, FromOff;  // enabled afterwards, where all were, and where none was
  } modes[] = {{0x00, 10, {true, true, true}, {true, false, true}},
               {0x10, 9, {}, {}},
               {0x20, 8, {true, true, true}, {}},
               {0x30, -1, {true, true, true}, {}}};
  PropertiesBench bench;
  bool& button = bench.Main[Tool1::CurrentLoop].Enabled;
  bool& current = bench.Main.MnuCurrentLoop.Enabled;
  bool& position = bench.Main.mnuPositionLoop.Enabled;
  for (const int others :
       {0x0000, 0x0001, 0x0002, 0x0004, 0x0008, 0x0040, 0x0080, 0x0100, 0xFFCF}) {
    for (const auto& mode : modes) {
      const auto word = static_cast<std::uint16_t>(others | mode.Bits);
      SCOPED_TRACE(word);
      std::set<int> expected{mode.Option};
      for (const auto& bit : bits) expected.insert((word & bit.Mask) != 0 ? bit.Set : bit.Clear);
      expected.erase(-1);
      for (const bool on : {true, false}) {
        button = current = position = on;
        bench.Set({{255, word}});
        bench.Open();
        std::set<int> selected;
        for (std::size_t i = 0; i < bench.Window.Option1.size(); ++i) {
          if (bench.Window.Option1[i].Selected) selected.insert(static_cast<int>(i));
        }
        EXPECT_EQ(selected, expected);
        EXPECT_EQ((States{button, current, position}), on ? mode.FromOn : mode.FromOff);
        EXPECT_EQ(bench.Values.DriveFlagsWord, word);
        EXPECT_EQ(bench.Values[Slot::PulseEdge], word);
        bench.User.Click(bench.Window.Command2);
      }
    }
  }
}

TEST(PropertiesLoad, ALimitOfZeroIsHiddenAndNeitherCheckedNorWritten) {
  PropertiesBench bench;
  const sysConfigFrm& w = bench.Window;
  for (const bool peak : {false, true}) {
    bench.Set({{245, peak ? 100 : 0}, {246, peak ? 0 : 100}});
    bench.Open();
    EXPECT_TRUE(w.txtMaxCurrent.Visible == peak && w.Label16.Visible == peak);
    EXPECT_TRUE(w.txtRatedCurrent.Visible != peak && w.Label18.Visible != peak);
    EXPECT_EQ(bench.Values[Slot::PeakCurrentLimit], peak ? 1 : 0);
    bench.Text(peak ? "txtRatedCurrent" : "txtMaxCurrent") = "99";
    bench.User.Click(bench.Window.cmdOK);
    EXPECT_EQ(bench.TakeFrames(), peak ? "W 245=100, W 255=0" : "W 246=100, W 255=0");
  }
}

TEST(PropertiesLoad, AFailedReadShowsTheReplyThatStoodLastAndLeavesItsSlotAlone) {
  const struct {
    int ReadsBefore;
    const char *Field, *Shown;
    Slot Kept;
  } cases[] = {
      {10, "Text1(3)", "1234", Slot::EncoderCounts},          // before the flags word
      {18, "Combo2", "Mode 3", Slot::Interpolation},          // a switch behind it
      {21, "txtRatedCurrent", "6", Slot::RatedCurrentLimit},  // the last
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.ReadsBefore);
    PropertiesBench bench;
    bench.Set({{18, 1234}, {255, 0x0040}, {51, 3}});
    bench.Values[c.Kept] = 9;
    bench.World.At(c.ReadsBefore * ReadMs + 1,
                   [&] { bench.Device.Drive.Inject(sim::Fault::Silent, sim::Hits::Next(4)); });
    bench.World.ShowModal(bench.Window);
    EXPECT_EQ(bench.Text(c.Field), c.Shown);
    EXPECT_EQ(bench.Values[c.Kept], 9);
    EXPECT_FALSE(bench.Window.Check1[0].Ticked);
    EXPECT_TRUE(bench.World.Log.Writes(55).empty());
    EXPECT_EQ(bench.Values.DriveFlagsWord, c.ReadsBefore < 12 ? 0 : 0x0040);
    EXPECT_EQ(bench.TakeMessages(), Messages{LostLink});
    EXPECT_FALSE(bench.Window.Loaded || bench.TheLink.ReadFailed || !bench.TheLink.LinkIdle);
  }
}

}  // namespace
}  // namespace gainsmith::test
