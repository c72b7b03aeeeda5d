// OK of the properties window: checks, options, writes in order, and what a failure leaves.

#include "params/drive_flags.h"
#include "properties_bench.h"

namespace gainsmith::test {
namespace {

using enum sysConfigFrm::OptionIndex;

const std::string LimitsAndFlags = "W 245=600, W 246=300, W 255=0";

TEST(PropertiesOk, WritesTheLimitsAndTheFlagsAndWhatChanged) {
  const struct {
    const char *Field, *Text;
    std::string Frames;
    Slot Kept;
    float Value;
  } cases[] = {
      {"cboMotorPolePair", "1.5", "W 34=2, " + LimitsAndFlags, Slot::PolePairs, 1.5F},
      {"txtMaxCurrent", "2.345", "W 245=234, W 246=300, W 255=0", Slot::PeakCurrentLimit, 2.34F},
      {"txtRatedCurrent", " .35 A", "W 245=600, W 246=35, W 255=0", Slot::RatedCurrentLimit, .35F},
      {"Text1(0)", "255", "W 245=600, W 246=300, W 14=255, W 255=0", Slot::GearNumerator, 255},
      {"Text1(1)", "2.50", "W 245=600, W 246=300, W 15=2, W 255=0", Slot::GearDenominator, 2.5F},
      {"Text1(3)", "400", "W 245=600, W 246=300, W 19=400, W 255=0", Slot::EncoderCounts, 400},
      {"Text1(3)", " 4000.0 ", LimitsAndFlags, Slot::EncoderCounts, 4000},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Text);
    PropertiesBench bench;
    bench.Open();
    bench.Text(c.Field) = c.Text;
    // What an earlier download left there is not reported as a failure of its own.
    bench.TheLink.WriteFailed = true;
    bench.User.Click(bench.Window.cmdOK);
    EXPECT_EQ(bench.TakeFrames(), c.Frames);
    EXPECT_EQ(bench.Values[c.Kept], c.Value);
    EXPECT_FALSE(bench.Window.Loaded);
    EXPECT_TRUE(bench.World.Messages.empty());
  }
}

const Texts EverythingFrames{"W 34=2",  "W 245=1600", "W 246=600",  "W 14=10",
                             "W 15=20", "W 18=0",     "W 19=60000", "W 255=198"};

void ChangeEverything(PropertiesBench& bench) {
  bench.Text("cboMotorPolePair") = "2";
  bench.Text("txtMaxCurrent") = "16";
  bench.Text("txtRatedCurrent") = "6";
  const char* const texts[] = {"10", "20", "0", "60000"};
  for (std::size_t i = 0; i < 4; ++i) bench.Window.Text1[i].Text = texts[i];
  for (const auto option : {FallingEdge, DirectionPositive, EnableHigh, AlarmActiveLow}) {
    bench.User.Click(bench.Window.Option1[option]);
  }
}

TEST(PropertiesOk, OnlyTheFourShownBitsFollowTheOptions) {
  const struct {
    std::uint16_t Word;
    std::initializer_list<sysConfigFrm::OptionIndex> Shown;
    std::uint16_t Applied;
  } cases[] = {
      {0xFFFF, {}, 0xFFFF},
      {0xFFFF, {UpRisingEdge, DirectionNegative, EnableLow, AlarmActiveHigh}, 0xFF39},
      {0x0139, {EnableHigh}, 0x0179},
      {0x0010, {FallingEdge}, 0x0012},
      {0x0001, {}, 0x0001},
  };
  for (const auto& c : cases) {
    PropertiesBench bench;
    bench.Set({{255, c.Word}});
    bench.Open();
    for (const auto option : c.Shown) bench.User.Click(bench.Window.Option1[option]);
    bench.User.Click(bench.Window.cmdOK);
    EXPECT_EQ(bench.World.Log.Writes(255), (std::vector<int>{c.Applied}));
    EXPECT_EQ(FlagsToSend(bench.Values), c.Applied) << "by a download behind it";
  }
}

TEST(PropertiesOk, RefusesWhatIsOutOfRangeAndWritesNothing) {
  const std::string poles = " Motor Pole Pair value should be an integer value great than 1";
  const std::string counts = "Encoder Resolution value should be an integer value of 400-60,000";
  const std::string rated = "The Continuous Current value should be 0.35-6A";
  const struct {
    const char *Field, *Typed;
    std::string Text;
  } cases[] = {
      {"cboMotorPolePair", "1", poles},
      {"cboMotorPolePair", "65536",
       "Motor Pole Pair value can't be sent: the drive takes 2-65,535"},
      {"Text1(1)", "255.1", "Nominator should be an integer value of 1-255"},
      {"Text1(3)", "399", counts},
      {"Text1(3)", "60000.1", counts},
      {"txtMaxCurrent", "16.0000001", "Peak Current Limit value should be 1-16A"},
      {"txtRatedCurrent", "0.3499999999", rated},
      {"txtRatedCurrent", "6.01", rated},
  };
  PropertiesBench bench;
  bench.Open();
  const auto refuses = [&](const std::string& text) {
    bench.World.Focus = nullptr;
    bench.User.Click(bench.Window.cmdOK);
    EXPECT_EQ(bench.TakeMessages(), Messages{Tell(text, "Invalid Value", MessageIcon::Critical)});
    EXPECT_TRUE(bench.Window.Visible && bench.Window.cmdOK.Enabled);
  };
  for (const auto& c : cases) {
    const std::string before = bench.Text(c.Field);
    SCOPED_TRACE(c.Field + (std::string(" ") + c.Typed));
    bench.Text(c.Field) = c.Typed;
    refuses(c.Text);
    EXPECT_EQ(bench.World.Focus, bench.Fields.at(c.Field));
    bench.Text(c.Field) = before;
  }
  // The first field in the order of the checks is the one that is told.
  for (const char* field : {"Text1(3)", "Text1(0)", "cboMotorPolePair"}) bench.Text(field) = "0";
  refuses(poles);
  EXPECT_EQ(bench.TakeFrames(), "");
}

TEST(PropertiesOk, WithEverythingChangedWritesInOrderAndStopsAtAFailure) {
  const std::size_t all = EverythingFrames.size();
  for (std::size_t at = 0; at <= all; ++at) {
    SCOPED_TRACE(at);
    PropertiesBench bench;
    bench.Open();
    ChangeEverything(bench);
    // A write takes 173 ms.
    const auto failsAtMs = static_cast<std::int64_t>(at) * 173 + 1;
    if (at < all) {
      bench.World.At(failsAtMs, [&] {
        EXPECT_EQ(bench.Main.lblActivity.Caption, "Writing Properties");
        bench.Device.Drive.Inject(sim::Fault::Silent);
      });
    }
    bench.User.Click(bench.Window.cmdOK);
    EXPECT_EQ(bench.Main.lblActivity.Caption, "");
    Texts expected(EverythingFrames.begin(), EverythingFrames.begin() + static_cast<long>(at));
    if (at < all) {
      expected.insert(expected.end(), at + 1 == all ? 4 : 12, EverythingFrames[at]);
      EXPECT_EQ(bench.TakeMessages(), Messages{LostLink});
    }
    EXPECT_EQ(bench.World.Log.Texts(), expected);
    EXPECT_FALSE(bench.Window.Loaded || bench.TheLink.WriteFailed || bench.TheLink.ReadFailed);
    EXPECT_EQ(bench.Values[Slot::EncoderCounts], at < 6 ? 4000 : 60000);
    EXPECT_EQ(bench.Values[Slot::PulseEdge], at + 1 >= all ? 0x00C6 : 0);

    // The next visit finds everything in order.
    bench.Device.Drive.ClearFaults();
    bench.Open();
    EXPECT_TRUE(bench.Window.Visible && bench.Window.cmdOK.Enabled);
    EXPECT_EQ(bench.Window.Pointer, MousePointer::Default);
  }
}

TEST(PropertiesOk, OnceBegunItIsFinishedOrTold) {
  const struct {
    const char* What;
    std::function<void(PropertiesBench&)> Disturb;
    bool Lost;
  } cases[] = {
      {"Cancel", [](auto& b) { b.User.Click(b.Window.Command2); }, false},
      {"a field typed into", [](auto& b) { b.Text("Text1(2)") = "70000"; }, false},
      {"another drive", [](auto& b) { b.Main.OnSettingsReplaced("test"); }, false},
      {"the port closed and opened anew",
       [](auto& b) {
         b.TheLink.ClosePort();
         b.Main.OnSettingsReplaced("test");
         b.TheLink.OpenPort();
       },
       true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    PropertiesBench bench;
    bench.Open();
    ChangeEverything(bench);
    bench.World.At(200, [&] {
      EXPECT_FALSE(bench.User.TryClick(bench.Window.cmdOK));
      EXPECT_EQ(bench.Window.Pointer, MousePointer::Hourglass);
      EXPECT_TRUE(bench.Shell.BulkTransferRunning) << "nothing else begins meanwhile";
      c.Disturb(bench);
    });
    bench.User.Click(bench.Window.cmdOK);
    const Texts begun(EverythingFrames.begin(), EverythingFrames.begin() + 2);
    EXPECT_EQ(bench.World.Log.Texts(), c.Lost ? begun : EverythingFrames);
    EXPECT_EQ(bench.TakeMessages(), Messages(c.Lost ? 1 : 0, LostLink));
    EXPECT_FALSE(bench.Window.Loaded || bench.Shell.BulkTransferRunning);
  }
}

}  // namespace
}  // namespace gainsmith::test
