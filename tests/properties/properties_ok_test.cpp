// OK of the properties window: checks, options, writes in order, and what a failure leaves.
#include <gtest/gtest.h>

#include "params/drive_flags.h"
#include "properties_bench.h"

namespace gainsmith::test {
namespace {

const Texts LimitsAndFlags{"W 245=600", "W 246=300", "W 255=0"};

TEST(PropertiesOk, WithNothingChangedWritesTheLimitsAndTheFlags) {
  PropertiesBench bench;
  bench.Open();
  bench.User.Click(bench.Window.cmdOK);
  EXPECT_EQ(bench.World.Log.Texts(), LimitsAndFlags);
  EXPECT_FALSE(bench.Window.Loaded);
  EXPECT_TRUE(bench.World.Messages.empty());

  PropertiesBench without;
  without.Set({{245, 0}, {246, 0}, {255, 0x0146}});
  without.Open();
  without.Window.txtMaxCurrent.Text = "99";
  without.User.Click(without.Window.cmdOK);
  EXPECT_EQ(without.World.Log.Texts(), (Texts{"W 255=326"}));
}

TEST(PropertiesOk, WithOneThingChangedWritesThatToo) {
  const struct {
    TextBox sysConfigFrm::*Field;
    int Index;
    const char* Text;
    Texts Frames;
    Slot Kept;
    float Value;
  } cases[] = {
      {nullptr, -1, "3", {"W 34=3", "W 245=600", "W 246=300", "W 255=0"}, Slot::PolePairs, 3},
      {nullptr, -1, "2.5", {"W 34=2", "W 245=600", "W 246=300", "W 255=0"}, Slot::PolePairs, 2.5F},
      {&sysConfigFrm::txtMaxCurrent,
       0,
       "2.345",
       {"W 245=234", "W 246=300", "W 255=0"},
       Slot::PeakCurrentLimit,
       2.34F},
      {&sysConfigFrm::txtRatedCurrent,
       0,
       " 0.35 A",
       {"W 245=600", "W 246=35", "W 255=0"},
       Slot::RatedCurrentLimit,
       0.35F},
      {nullptr,
       0,
       "255",
       {"W 245=600", "W 246=300", "W 14=255", "W 255=0"},
       Slot::GearNumerator,
       255},
      {nullptr,
       1,
       "2.50",
       {"W 245=600", "W 246=300", "W 15=2", "W 255=0"},
       Slot::GearDenominator,
       2.5F},
      {nullptr,
       2,
       "65535",
       {"W 245=600", "W 246=300", "W 18=65535", "W 255=0"},
       Slot::FollowingErrorLimit,
       65535},
      {nullptr,
       3,
       "400",
       {"W 245=600", "W 246=300", "W 19=400", "W 255=0"},
       Slot::EncoderCounts,
       400},
      {nullptr, 3, " 4000.0 ", LimitsAndFlags, Slot::EncoderCounts, 4000},
  };
  for (const auto& c : cases) {
    PropertiesBench bench;
    bench.Open();
    if (c.Field != nullptr) {
      bench.User.Type(bench.Window.*c.Field, c.Text);
    } else if (c.Index >= 0) {
      bench.User.Type(bench.Window.Text1[std::size_t(c.Index)], c.Text);
    } else {
      bench.Window.cboMotorPolePair.Text = c.Text;
    }
    bench.User.Click(bench.Window.cmdOK);
    EXPECT_EQ(bench.World.Log.Texts(), c.Frames) << c.Text;
    EXPECT_EQ(bench.Values[c.Kept], c.Value) << c.Text;
    EXPECT_FALSE(bench.Window.Loaded) << c.Text;
  }
}

void ChangeEverything(PropertiesBench& bench) {
  sysConfigFrm& w = bench.Window;
  w.cboMotorPolePair.Text = "2";
  w.txtMaxCurrent.Text = "16";
  w.txtRatedCurrent.Text = "6";
  bench.SetText(0, "10");
  bench.SetText(1, "20");
  bench.SetText(2, "0");
  bench.SetText(3, "60000");
  for (const auto option : {sysConfigFrm::FallingEdge, sysConfigFrm::DirectionPositive,
                            sysConfigFrm::EnableHigh, sysConfigFrm::AlarmActiveLow}) {
    bench.User.Click(w.Option1[option]);
  }
}

const Texts EverythingFrames{"W 34=2",  "W 245=1600", "W 246=600",  "W 14=10",
                             "W 15=20", "W 18=0",     "W 19=60000", "W 255=198"};

TEST(PropertiesOk, WithEverythingChangedWritesInOrder) {
  PropertiesBench bench;
  bench.Open();
  ChangeEverything(bench);
  bench.User.Click(bench.Window.cmdOK);
  EXPECT_EQ(bench.World.Log.Texts(), EverythingFrames);
  EXPECT_EQ(bench.Values.DriveFlagsWord, 0x00C6);
  EXPECT_EQ(bench.Values[Slot::PulseEdge], 0x00C6);
  EXPECT_EQ(bench.Get(255), 0x00C6);
}

TEST(PropertiesOk, ADownloadBehindItSendsTheSameFlags) {
  PropertiesBench bench;
  // Read by an earlier bulk read; the drive has been set up anew since.
  TakeDriveFlags(bench.Values, 0x01CA);
  bench.Set({{255, 0x0044}});
  bench.Open();
  EXPECT_EQ(FlagsToSend(bench.Values), 0x0044);
  bench.User.Click(bench.Window.Option1[sysConfigFrm::DirectionNegative]);
  bench.User.Click(bench.Window.Option1[sysConfigFrm::EnableLow]);
  bench.User.Click(bench.Window.cmdOK);
  // No bit is left: the word is no longer told from a single flag.
  EXPECT_EQ(bench.Get(255), 0);
  EXPECT_EQ(FlagsToSend(bench.Values), 0);
}

TEST(PropertiesOk, OnlyTheFourShownBitsFollowTheOptions) {
  const struct {
    std::uint16_t Word;
    std::initializer_list<sysConfigFrm::OptionIndex> Shown;
    std::uint16_t Applied;
  } cases[] = {
      {0xFFFF, {}, 0xFFFF},
      {0x0000, {}, 0x0000},
      {0xFFFF,
       {sysConfigFrm::UpRisingEdge, sysConfigFrm::DirectionNegative, sysConfigFrm::EnableLow,
        sysConfigFrm::AlarmActiveHigh},
       0xFF39},
      {0x0139, {sysConfigFrm::EnableHigh}, 0x0179},
      {0x0010, {sysConfigFrm::FallingEdge}, 0x0012},
  };
  for (const auto& c : cases) {
    PropertiesBench bench;
    bench.Set({{255, c.Word}});
    bench.Open();
    // The parked groups are turned round by hand: OK does not look at them.
    for (const auto& [on, off] : {std::pair{sysConfigFrm::EndLimitHigh, sysConfigFrm::EndLimitLow},
                                  {sysConfigFrm::InPositionHigh, sysConfigFrm::InPositionLow},
                                  {sysConfigFrm::TorqueMode, sysConfigFrm::PositionMode}}) {
      std::swap(bench.Window.Option1[on].Selected, bench.Window.Option1[off].Selected);
    }
    for (const auto option : c.Shown) bench.User.Click(bench.Window.Option1[option]);
    bench.User.Click(bench.Window.cmdOK);
    EXPECT_EQ(bench.World.Log.Writes(255), (std::vector<int>{c.Applied}));
  }
}

TEST(PropertiesOk, RefusesWhatIsOutOfRangeAndWritesNothing) {
  const std::string poles = " Motor Pole Pair value should be an integer value great than 1";
  const std::string denominator = "Denominator should be an integer value of 1-255";
  const std::string numerator = "Nominator should be an integer value of 1-255";
  const std::string following =
      "Position Following Error Limit value should be an integer value of 0-65,535";
  const std::string encoder = "Encoder Resolution value should be an integer value of 400-60,000";
  const std::string peak = "Peak Current Limit value should be 1-16A";
  const std::string rated = "The Continuous Current value should be 0.35-6A";
  PropertiesBench bench;
  bench.Open();
  sysConfigFrm& w = bench.Window;
  struct Case {
    Control& Field;
    std::string& Text;
    const char* Typed;
    std::string Message;  // empty: passes
  };
  const Case cases[] = {
      {w.cboMotorPolePair, w.cboMotorPolePair.Text, "1", poles},
      {w.cboMotorPolePair, w.cboMotorPolePair.Text, "abc", poles},
      {w.cboMotorPolePair, w.cboMotorPolePair.Text, "1.01", ""},
      {w.cboMotorPolePair, w.cboMotorPolePair.Text, "65536",
       "Motor Pole Pair value can't be sent: the drive takes 2-65,535"},
      {w.Text1[0], w.Text1[0].Text, "", denominator},
      {w.Text1[0], w.Text1[0].Text, "0", denominator},
      {w.Text1[0], w.Text1[0].Text, "255.1", denominator},
      {w.Text1[0], w.Text1[0].Text, "2.5", ""},
      {w.Text1[1], w.Text1[1].Text, "256", numerator},
      {w.Text1[1], w.Text1[1].Text, "-3", numerator},
      {w.Text1[1], w.Text1[1].Text, "255", ""},
      {w.Text1[2], w.Text1[2].Text, "65536", following},
      {w.Text1[2], w.Text1[2].Text, "-1", following},
      {w.Text1[2], w.Text1[2].Text, "nonsense", ""},
      {w.Text1[2], w.Text1[2].Text, "65535", ""},
      {w.Text1[3], w.Text1[3].Text, "399", encoder},
      {w.Text1[3], w.Text1[3].Text, "60000.1", encoder},
      {w.Text1[3], w.Text1[3].Text, "1e999", encoder},
      {w.Text1[3], w.Text1[3].Text, "400", ""},
      {w.txtMaxCurrent, w.txtMaxCurrent.Text, "0.99", peak},
      {w.txtMaxCurrent, w.txtMaxCurrent.Text, "16.0000001", peak},
      {w.txtMaxCurrent, w.txtMaxCurrent.Text, "16", ""},
      {w.txtRatedCurrent, w.txtRatedCurrent.Text, "0.3499999999", rated},
      {w.txtRatedCurrent, w.txtRatedCurrent.Text, "0.35", ""},
      {w.txtRatedCurrent, w.txtRatedCurrent.Text, "6", ""},
      {w.txtRatedCurrent, w.txtRatedCurrent.Text, "6.01", rated},
  };
  for (const Case& c : cases) {
    const std::string before = std::exchange(c.Text, c.Typed);
    bench.World.Messages.clear();
    bench.World.Focus = nullptr;
    EXPECT_EQ(w.ValidateProperties(), c.Message.empty()) << c.Field.Name << " " << c.Typed;
    if (!c.Message.empty()) {
      ASSERT_EQ(bench.World.Messages.size(), 1U) << c.Field.Name << " " << c.Typed;
      EXPECT_EQ(bench.World.Messages[0].Text, c.Message);
      EXPECT_EQ(bench.World.Messages[0].Title, "Invalid Value");
      EXPECT_EQ(bench.World.Messages[0].Icon, MessageIcon::Critical);
      EXPECT_EQ(bench.World.Focus, &c.Field);
      bench.User.Click(w.cmdOK);
      EXPECT_TRUE(w.Visible && w.cmdOK.Enabled);
    }
    c.Text = before;
  }
  EXPECT_TRUE(bench.World.Log.Frames().empty());

  // The first field in the order of the checks is the one that is told.
  bench.SetText(0, "0");
  bench.SetText(3, "0");
  w.cboMotorPolePair.Text = "0";
  bench.World.Messages.clear();
  bench.User.Click(w.cmdOK);
  EXPECT_EQ(bench.World.Messages[0].Text, poles);
}

TEST(PropertiesOk, AFailedWriteStopsThereAndClosesTheWindow) {
  for (std::size_t at = 0; at < EverythingFrames.size(); ++at) {
    PropertiesBench bench;
    bench.Open();
    ChangeEverything(bench);
    bench.Line.Stops = [&](int, const LoggedFrame& frame) {
      return frame.Text() == EverythingFrames[at];
    };
    bench.User.Click(bench.Window.cmdOK);

    Texts expected(EverythingFrames.begin(), EverythingFrames.begin() + static_cast<long>(at));
    const bool flags = at + 1 == EverythingFrames.size();
    expected.insert(expected.end(), flags ? 4 : 12, EverythingFrames[at]);
    EXPECT_EQ(bench.World.Log.Texts(), expected);
    ASSERT_EQ(bench.World.Messages.size(), 1U) << at;
    EXPECT_EQ(bench.World.Messages[0].Text, LinkText);
    EXPECT_FALSE(bench.Window.Loaded);
    EXPECT_FALSE(bench.TheLink.WriteFailed || bench.TheLink.ReadFailed);
    EXPECT_EQ(bench.Values[Slot::EncoderCounts], at < 6 ? 4000 : 60000) << at;
    EXPECT_EQ(bench.Values[Slot::PulseEdge], flags ? 0x00C6 : 0) << at;

    // The next visit finds everything in order.
    bench.Line.Stops = nullptr;
    bench.Open();
    EXPECT_TRUE(bench.Window.Visible && bench.Window.cmdOK.Enabled);
    EXPECT_EQ(bench.Window.Pointer, MousePointer::Default);
  }
}

TEST(PropertiesOk, AFailureThatADownloadLeftBehindIsNotReportedAsItsOwn) {
  PropertiesBench bench;
  bench.Open();
  bench.TheLink.WriteFailed = true;
  bench.User.Click(bench.Window.cmdOK);
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_FALSE(bench.Window.Loaded);
}

TEST(PropertiesOk, CancelInTheMiddleStopsTheWritesThatAreToCome) {
  PropertiesBench bench;
  bench.Open();
  ChangeEverything(bench);
  bench.World.At(200, [&] {
    EXPECT_FALSE(bench.User.TryClick(bench.Window.cmdOK));
    EXPECT_EQ(bench.Window.Pointer, MousePointer::Hourglass);
    bench.User.Click(bench.Window.Command2);
  });
  bench.User.Click(bench.Window.cmdOK);
  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"W 34=2", "W 245=1600"}));
  EXPECT_FALSE(bench.Window.Loaded);
  EXPECT_TRUE(bench.World.Messages.empty());
}

}  // namespace
}  // namespace gainsmith::test
