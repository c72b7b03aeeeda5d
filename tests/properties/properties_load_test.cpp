// The load of the properties window: order of reads, what lands where, modes, failures.
#include <gtest/gtest.h>

#include <set>

#include "properties_bench.h"

namespace gainsmith::test {
namespace {

const Texts LoadFrames{"R 252", "R 247", "R 248", "R 249", "R 250", "R 251", "R 34", "R 14",
                       "R 15",  "R 18",  "R 19",  "R 56",  "R 255", "R 56",  "R 40", "R 41",
                       "R 39",  "R 51",  "R 55",  "R 58",  "R 245", "R 246"};
constexpr int FlagsExchange = 12;

TEST(PropertiesLoad, ReadsItsRegistersInOrderAndRefreshesTheTable) {
  PropertiesBench bench;
  bench.Set({{252, 750}, {247, 254}, {248, 260}, {249, 7}, {250, 1234}, {251, 13}, {34, 3}});
  bench.Set({{56, 25}, {40, 235}, {41, 12}, {39, 3000}, {51, 3}, {245, 350}, {246, 200}});
  bench.World.ShowModal(bench.Window);
  EXPECT_EQ(bench.World.Log.Texts(), LoadFrames);
  EXPECT_TRUE(bench.World.Messages.empty());

  const sysConfigFrm& w = bench.Window;
  const struct {
    std::string Shown;
    const char* Text;
    Slot Kept;
    float Value;
  } cases[] = {
      {w.Combo1.Text, "750", Slot::RatedPower, 750},
      {w.Text3.Text, "2.54", Slot::Resistance, 2.54F},
      {w.Text4.Text, "2.60", Slot::Inductance, 2.6F},
      {w.Text7.Text, "0.07", Slot::BackEmf, 0.07F},
      {w.Text5.Text, "1.234", Slot::TorqueConstant, 1.234F},
      {w.Text6.Text, "0.000130", Slot::Inertia, 0.00013F},
      {w.cboMotorPolePair.Text, "3", Slot::PolePairs, 3},
      {w.Text1[0].Text, "1", Slot::GearNumerator, 1},
      {w.Text1[1].Text, "2", Slot::GearDenominator, 2},
      {w.Text1[2].Text, "1000", Slot::FollowingErrorLimit, 1000},
      {w.Text1[3].Text, "4000", Slot::EncoderCounts, 4000},
      {w.Text1[7].Text, "25", Slot::AnalogDeadBand, 25},
      {w.Text10.Text, "23.5", Slot::AnalogPeakCurrent, 23.5F},
      {w.Text9.Text, "12", Slot::AnalogOffset, 12},
      {w.Text11.Text, "3000", Slot::AnalogMaxVelocity, 3000},
      {w.Combo2.Text, "Mode 3", Slot::InputSmoothing, 3},
      {w.txtMaxCurrent.Text, "3.5", Slot::PeakCurrentLimit, 3.5F},
      {w.txtRatedCurrent.Text, "2", Slot::RatedCurrentLimit, 2},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.Shown, c.Text);
    EXPECT_EQ(bench.Values[c.Kept], c.Value) << c.Text;
  }
  EXPECT_EQ(w.cboMotorPolePair.ListIndex, -1);
  EXPECT_FALSE(w.Check1[0].Ticked || w.Check1[1].Ticked);
}

TEST(PropertiesLoad, AChoiceThatIsNotInItsListSelectsNothing) {
  PropertiesBench bench;
  bench.Set({{252, 1000}, {51, 7}, {34, 2}});
  bench.Open();
  EXPECT_EQ(bench.Window.Combo1.ListIndex, 2);
  EXPECT_EQ(bench.Window.Combo2.ListIndex, 7);
  EXPECT_EQ(bench.Window.cboMotorPolePair.ListIndex, 0);
  bench.User.Click(bench.Window.Command2);
  bench.Set({{252, 500}, {51, 9}, {34, 5}});
  bench.Open();
  EXPECT_EQ(bench.Window.Combo1.ListIndex, -1);
  EXPECT_EQ(bench.Window.Combo2.ListIndex, -1);
  EXPECT_EQ(bench.Window.cboMotorPolePair.ListIndex, -1);
  EXPECT_EQ(bench.Values[Slot::RatedPower], 500);
  EXPECT_EQ(bench.Values[Slot::InputSmoothing], 9);
}

TEST(PropertiesLoad, ABoxThatItTicksWritesBackAtOnce) {
  PropertiesBench bench;
  bench.Set({{55, 1}, {58, 5}});
  bench.World.ShowModal(bench.Window);
  Texts expected = LoadFrames;
  expected.insert(expected.begin() + 20, "W 58=1");
  expected.insert(expected.begin() + 19, "W 55=1");
  EXPECT_EQ(bench.World.Log.Texts(), expected);
  EXPECT_TRUE(bench.Window.Check1[0].Ticked && bench.Window.Check1[1].Ticked);
  EXPECT_EQ(bench.Values[Slot::Interpolation], 1);
  EXPECT_EQ(bench.Values[Slot::AnalogReverse], 5);

  // The next visit starts from clear boxes, so that it writes back again.
  bench.User.Click(bench.Window.Command2);
  bench.World.Log.Clear();
  bench.World.ShowModal(bench.Window);
  EXPECT_EQ(bench.World.Log.Writes(55), (std::vector<int>{1}));
}

TEST(PropertiesLoad, SelectsTheOptionsOfEveryBit) {
  const struct {
    std::uint16_t Mask;
    int Clear;
    int Set;
  } bits[] = {{0x0001, 2, -1},  {0x0002, 0, 1},   {0x0004, 4, 5},  {0x0008, 7, 6},
              {0x0040, 15, 16}, {0x0080, 11, 12}, {0x0100, 13, 14}};
  PropertiesBench bench;
  constexpr std::uint16_t words[] = {0x0000, 0x0001, 0x0002, 0x0004, 0x0008, 0x0040,
                                     0x0080, 0x0100, 0xFFCF, 0x0142, 0x008D};
  for (const std::uint16_t word : words) {
    bench.Set({{255, word}});
    bench.Open();
    std::set<int> expected{10};
    for (const auto& bit : bits) expected.insert((word & bit.Mask) != 0 ? bit.Set : bit.Clear);
    expected.erase(-1);
    std::set<int> selected;
    for (std::size_t i = 0; i < bench.Window.Option1.size(); ++i) {
      if (bench.Window.Option1[i].Selected) selected.insert(static_cast<int>(i));
    }
    EXPECT_EQ(selected, expected) << word;
    EXPECT_EQ(bench.Values.DriveFlagsWord, word);
    EXPECT_EQ(bench.Values[Slot::PulseEdge], word);
    EXPECT_EQ(bench.Values[Slot::AlarmPolarity], (word & 0x0080) != 0 ? 1 : 0);
    bench.User.Click(bench.Window.Command2);
  }
}

TEST(PropertiesLoad, TheOperatingModeSteersTheMainWindow) {
  // Enabled before and after: tool bar button 4, MnuCurrentLoop, mnuPositionLoop.
  using States = std::array<bool, 3>;
  constexpr States On{true, true, true};
  constexpr States Off{false, false, false};
  const struct {
    std::uint16_t Mode;
    int Option;
    States Before;
    States After;
  } cases[] = {
      {0x00, 10, On, On}, {0x00, 10, Off, {true, false, true}},
      {0x10, 9, On, Off}, {0x10, 9, Off, Off},
      {0x20, 8, On, On},  {0x20, 8, Off, Off},
      {0x30, -1, On, On}, {0x30, -1, Off, Off},
  };
  PropertiesBench bench;
  for (const auto& c : cases) {
    bench.Main[Tool1::CurrentLoop].Enabled = c.Before[0];
    bench.Main.MnuCurrentLoop.Enabled = c.Before[1];
    bench.Main.mnuPositionLoop.Enabled = c.Before[2];
    bench.Set({{255, static_cast<std::uint16_t>(c.Mode | 0x0146)}});
    bench.Open();
    EXPECT_EQ((States{bench.Main[Tool1::CurrentLoop].Enabled, bench.Main.MnuCurrentLoop.Enabled,
                      bench.Main.mnuPositionLoop.Enabled}),
              c.After)
        << c.Mode;
    EXPECT_TRUE(bench.Main[Tool1::PositionLoop].Enabled);
    for (const int option : {8, 9, 10}) {
      EXPECT_EQ(bench.Window.Option1[std::size_t(option)].Selected, option == c.Option);
    }
    bench.User.Click(bench.Window.Command2);
  }
}

TEST(PropertiesLoad, ALimitOfZeroIsHidden) {
  PropertiesBench bench;
  bench.Set({{245, 0}});
  bench.Open();
  EXPECT_FALSE(bench.Window.txtMaxCurrent.Visible || bench.Window.Label16.Visible);
  EXPECT_TRUE(bench.Window.txtRatedCurrent.Visible && bench.Window.Label18.Visible);
  EXPECT_EQ(bench.Values[Slot::PeakCurrentLimit], 0);
  bench.User.Click(bench.Window.Command2);
  bench.Set({{245, 100}, {246, 0}});
  bench.Open();
  EXPECT_TRUE(bench.Window.txtMaxCurrent.Visible && bench.Window.Label16.Visible);
  EXPECT_FALSE(bench.Window.txtRatedCurrent.Visible || bench.Window.Label18.Visible);
}

TEST(PropertiesLoad, ADriveNeverHeardOfGivesOneMessageAndNoWindow) {
  for (const bool modal : {true, false}) {
    PropertiesBench bench;
    bench.FallSilent();
    bool returned = false;
    if (modal) {
      bench.World.ShowModal(bench.Window, [&] { returned = true; });
      EXPECT_TRUE(returned);
    } else {
      bench.World.Show(bench.Window);
    }
    ASSERT_EQ(bench.World.Messages.size(), 1U);
    EXPECT_EQ(bench.World.Messages[0].Text, LinkText);
    EXPECT_EQ(bench.World.Messages[0].Title, "Cmmunication Error");
    EXPECT_EQ(bench.World.Messages[0].Icon, MessageIcon::Critical);
    EXPECT_FALSE(bench.Window.Loaded || bench.Window.Visible);
    EXPECT_FALSE(bench.TheLink.ReadFailed);
    // Four frames for each read up to the flags word and for the read that the report broke off.
    EXPECT_EQ(bench.World.Log.Frames().size(), 4U * (FlagsExchange + 2));
    bench.World.RunFor(5000);
    EXPECT_EQ(bench.World.Messages.size(), 1U);

    bench.Line.Stops = nullptr;
    bench.World.ShowModal(bench.Window);
    EXPECT_TRUE(bench.Window.Visible);
    EXPECT_EQ(bench.World.Messages.size(), 1U);
  }
}

TEST(PropertiesLoad, AFailedReadShowsTheReplyThatStoodLast) {
  PropertiesBench bench;
  bench.Set({{18, 1234}, {19, 4000}});
  bench.Line.Stops = [](int, const LoggedFrame& frame) { return frame.Register() == 19; };
  bench.World.ShowModal(bench.Window);
  EXPECT_EQ(bench.Window.Text1[3].Text, "1234");
  // The flags word was read well, but the check behind it finds the earlier failure.
  EXPECT_EQ(bench.World.Messages.size(), 1U);
  EXPECT_FALSE(bench.Window.Loaded);
  EXPECT_EQ(bench.Values.DriveFlagsWord, 0);
}

TEST(PropertiesLoad, OneLostReplyIsMadeUpForByTheNextFrame) {
  PropertiesBench bench;
  for (int exchange = 0; exchange < static_cast<int>(LoadFrames.size()); ++exchange) {
    bench.Device.Drive.Inject(sim::Fault::BadCrc, sim::Hits::Only(exchange + 1));
    bench.World.ShowModal(bench.Window);
    EXPECT_EQ(bench.World.Log.Frames().size(), LoadFrames.size() + 1) << exchange;
    EXPECT_TRUE(bench.World.Messages.empty() && bench.Window.Visible) << exchange;
    bench.User.Click(bench.Window.Command2);
    bench.World.Log.Clear();
  }
}

TEST(PropertiesLoad, ADriveThatGoesAtAnyExchange) {
  enum class End { Silent, HungUp, Reset };
  // The two writes that answer ticked boxes are exchanges of the load as well.
  const int exchanges = static_cast<int>(LoadFrames.size()) + 2;
  for (const End end : {End::Silent, End::HungUp, End::Reset}) {
    for (int at = 0; at < exchanges; ++at) {
      SCOPED_TRACE(at);
      PropertiesBench bench;
      bench.Set({{55, 1}, {58, 1}});
      bool struck = false;
      bench.Line.Stops = [&](int exchange, const LoggedFrame&) {
        if (exchange < at || (end == End::Reset && struck)) return false;
        if (end == End::HungUp && !struck) bench.Device.Drive.Inject(sim::Fault::HangUp);
        if (end == End::Reset) bench.Device.Drive.Reset(bench.World.NowMs() * 1000);
        struck = true;
        return end != End::HungUp;
      };
      bench.World.ShowModal(bench.Window);
      bench.World.RunFor(3000);
      if (end == End::Reset) {
        EXPECT_TRUE(bench.World.Messages.empty());
        EXPECT_TRUE(bench.Window.Visible);
        continue;
      }
      // Up to the flags word one report, and the window is gone. Behind it a read fails unseen,
      // and a write that answers a ticked box is told.
      const bool reported = at <= FlagsExchange;
      EXPECT_EQ(bench.Window.Visible, !reported);
      for (const Message& message : bench.World.Messages) EXPECT_EQ(message.Text, LinkText);
      EXPECT_GE(bench.World.Messages.size(), reported ? 1U : 0U);
      EXPECT_LE(bench.World.Messages.size(), reported ? 1U : 2U);
      if (bench.Window.Loaded) bench.User.Click(bench.Window.Command2);
      EXPECT_FALSE(bench.Window.Loaded);
    }
  }
}

}  // namespace
}  // namespace gainsmith::test
