// Bulk transfers: their frames to the byte, their waits, and what a failure leaves behind.
#include "params/bulk_transfer.h"

#include <gtest/gtest.h>

#include "params/config_text.h"
#include "params/golden_frames.h"
#include "support/store_bench.h"

namespace gainsmith::test {
namespace {

using sim::Fault;
using sim::Hits;
using Texts = std::vector<std::string>;

constexpr int ReadExchangeMs = 16 + 52 + 51 + 52;
constexpr int WriteExchangeMs = 16 + 53 + 51 + 53;
constexpr const char* ConfirmDownload =
    "All configurations in the connected KVT518 drive will be overwritten by new configurations. "
    "Do you want to continue?";
constexpr const char* ConfirmReset =
    "All configurations in the connected KVT518 drive will be reset to factory default. Do you "
    "want to continue?";
constexpr const char* Downloaded = "New configurations have been downloaded to drive successfully";
constexpr const char* ResetDone =
    "All configurations in the connected KVT518 drive have been reset to factory default "
    "successfully!";
constexpr const char* DefaultsCrashed =
    "Default settings have been crashed. Contact Torvane or your distributor";

struct BulkTest : testing::Test {
  StoreBench bench;
  ParameterStore& store = bench.Store;

  void SetUp() override {
    FillRegisters();
    bench.ConnectDrive();
  }

  // As DownloadFrames tells.
  void FillRegisters() {
    for (const ParameterRow& row : ParameterRows()) {
      const int number = static_cast<int>(row.Source);
      bench.Register(number) = static_cast<std::uint16_t>(1000 + number);
    }
    bench.Register(0xFF) = 0x01C7;
  }
  // Raises every parameter of the drive, so that a read shows.
  void ChangeRegisters() {
    for (const Slot slot : ReadOrder()) ++bench.Register(static_cast<int>(RowOf(slot).Source));
    bench.Register(0xFF) = 0x0028;
  }
  void Answer(MessageAnswer answer) { bench.World.Answers.push_back(answer); }
  void ClickDownload() {
    Answer(MessageAnswer::Yes);
    bench.User.Click(bench.Main.mnuDownloadToDrive);
  }
  void ExpectAtRest() {
    EXPECT_FALSE(bench.Shell.BulkTransferRunning);
    EXPECT_FALSE(bench.Waiting.Loaded);
    EXPECT_FALSE(bench.Main.lblActivity.Visible);
    EXPECT_EQ(bench.World.ScreenPointer, MousePointer::Default);
  }
};

TEST_F(BulkTest, AReadSendsItsFramesInOrderAndFillsTheTable) {
  ChangeRegisters();
  store.ParameterValues[40] = 9;
  bench.Register(0xEF) = 20;
  const std::int64_t start = bench.World.NowMs();
  EXPECT_TRUE(bench.Transfer.readDrive());
  EXPECT_EQ(bench.HexFrames(), Texts(BulkReadFrames.begin(), BulkReadFrames.end()));
  EXPECT_EQ(bench.World.NowMs() - start, 44 * ReadExchangeMs);

  EXPECT_EQ(store[Slot::CurrentKp], 1001);
  EXPECT_EQ(store[Slot::KaffHigh], 1014);
  EXPECT_EQ(store[Slot::Resistance], 12.48F);
  EXPECT_EQ(store[Slot::TorqueConstant], 1.251F);
  EXPECT_EQ(store[Slot::Inertia], 0.01252F);
  EXPECT_EQ(store[Slot::AnalogPeakCurrent], 104.1F);
  EXPECT_EQ(store[Slot::RatedCurrentLimit], 12.47F);
  EXPECT_EQ(store[Slot::Trap2Width], 0);
  EXPECT_EQ(store.DriveFlagsWord, 0x0028);
  EXPECT_EQ(store[Slot::OperatingMode], 1);
  EXPECT_EQ(store[Slot::EndLimitPolarity], 1);
  EXPECT_EQ(store[Slot::PulseEdge], 0);
  ExpectAtRest();
}

TEST_F(BulkTest, AReadThatFailsInTheMiddleKeepsWhatItHas) {
  ChangeRegisters();
  bench.Main.DisableDriveMenus();
  // The 30th register is the flags word: from it on the drive gives bad checksums only.
  bench.World.At(29 * ReadExchangeMs + 1, [&] { bench.Inject(Fault::BadCrc); });
  EXPECT_FALSE(bench.Transfer.readDrive());
  EXPECT_EQ(bench.World.Log.Frames().size(), 29U + 12U);
  EXPECT_EQ(store[Slot::RatedPower], 1253) << "step 29";
  EXPECT_EQ(store.DriveFlagsWord, 0x01C7);
  EXPECT_EQ(store[Slot::PulseEdge], 1);
  EXPECT_EQ(store[Slot::InPosition], 1049) << "step 31";
  EXPECT_TRUE(bench.World.IsPortOpen());
  EXPECT_FALSE(bench.Main.mnuFileOpen.Enabled);
  EXPECT_EQ(bench.Main.Pointer, MousePointer::ArrowQuestion);
  EXPECT_EQ(bench.MessageTexts(), Texts{LostLinkText});
  ExpectAtRest();
}

TEST_F(BulkTest, EachRegisterHasItsOwnTwelveFrames) {
  // Ten bad replies to the first register and eleven to the second: no register uses up its twelve.
  bench.Inject(Fault::WrongAddress, Hits::Next(11));
  bench.World.At(10 * (16 + 52 + 51) + 10 + ReadExchangeMs * 2,
                 [&] { bench.Inject(Fault::WrongAddress, Hits::Next(11)); });
  EXPECT_TRUE(bench.Transfer.readDrive());
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U + 22U);
}

TEST_F(BulkTest, ADownloadWritesBackWhatWasReadAndStoresIt) {
  const std::int64_t start = bench.World.NowMs();
  ClickDownload();
  Texts expected(DownloadFrames.begin(), DownloadFrames.end());
  expected.push_back(StoreFrame);
  EXPECT_EQ(bench.HexFrames(), expected);
  EXPECT_EQ(bench.World.NowMs() - start,
            44 * WriteExchangeMs + 43 * 51 + (16 + 53 + 1001 + 51 + 501 + 53));
  EXPECT_EQ(bench.MessageTexts(), (Texts{ConfirmDownload, Downloaded}));
  EXPECT_EQ(bench.World.Messages[0].Title, "KVT518 Download Confirmation");
  EXPECT_EQ(bench.World.Messages[0].Icon, MessageIcon::Warning);
  EXPECT_EQ(bench.World.Messages[0].Default, MessageAnswer::No);
  EXPECT_EQ(bench.World.Messages[1].Icon, MessageIcon::Information);
  EXPECT_EQ(bench.World.ScreenPointers,
            (std::vector{MousePointer::Hourglass, MousePointer::Default}));
  ExpectAtRest();
}

TEST_F(BulkTest, NoMeansNo) {
  const auto before = store.ParameterValues;
  bench.User.Click(bench.Main.mnuDownloadToDrive);
  bench.User.Click(bench.Main.mnuReset);
  EXPECT_EQ(bench.MessageTexts(), (Texts{ConfirmDownload, ConfirmReset}));
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_TRUE(bench.World.ScreenPointers.empty());
  EXPECT_EQ(store.ParameterValues, before);
  ExpectAtRest();
}

TEST_F(BulkTest, ASettingThatTheDriveDoesNotTakeIsSkippedAndNamed) {
  // The third setting fails its four frames.
  bench.World.At(2 * (WriteExchangeMs + 51) - 20,
                 [&] { bench.Inject(Fault::WrongEcho, Hits::Next(4)); });
  ClickDownload();
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U + 3U + 1U);
  EXPECT_EQ(bench.MessageTexts(), (Texts{ConfirmDownload, Downloaded}));
  EXPECT_TRUE(bench.Line.WriteFailed);
  EXPECT_EQ(bench.Main.lblNotice.Caption,
            "The drive did not take: Velocity Loop High Speed Proportional Gain");
  EXPECT_TRUE(bench.Main.lblNotice.Visible);

  ClickDownload();
  EXPECT_FALSE(bench.Main.lblNotice.Visible) << "a later download begins anew";
  EXPECT_TRUE(bench.Line.WriteFailed);
}

TEST_F(BulkTest, ATableWithValuesThatCannotBePackedIsNotSent) {
  store[Slot::Resistance] = 655.36F;
  store[Slot::CurrentKi] = -1;
  store[Slot::Trap2Width] = -5;  // never travels
  store[Slot::AlarmPolarity] = 70000;
  ClickDownload();
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  ASSERT_EQ(bench.World.Messages.size(), 2U);
  const std::string& text = bench.World.Messages[1].Text;
  EXPECT_NE(text.find("\nCurrent Loop Integral Gain: -1\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nAlarm Output Polarity: 70000\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nMotor Phase Resistance: 655.36"), std::string::npos) << text;
  EXPECT_EQ(text.find("2nd Trap"), std::string::npos) << text;
  ExpectAtRest();

  // A whole flags word goes out alone: the flags' own slots no longer matter.
  store[Slot::Resistance] = 1;
  store[Slot::CurrentKi] = 1;
  store[Slot::PulseEdge] = 0x0142;
  bench.World.Messages.clear();
  ClickDownload();
  EXPECT_EQ(bench.World.Log.Writes(0xFF), std::vector<int>{0x0142});
  EXPECT_EQ(bench.MessageTexts(), (Texts{ConfirmDownload, Downloaded}));
}

struct ResetTest : BulkTest {
  std::string Defaults(float value) {
    ParameterStore defaults;
    defaults.ParameterValues.fill(value);
    defaults[Slot::Inertia] = 0.00001F;
    return FormatConfig(defaults).value();
  }
  void ClickReset() {
    Answer(MessageAnswer::Yes);
    bench.User.Click(bench.Main.mnuReset);
  }
};

TEST_F(ResetTest, AResetLoadsDownloadsAndStoresTheFactoryValues) {
  bench.World.Files["/program/default.ini"] = Defaults(1);
  bench.Main.CurrentConfigFile = "/home/motor.tvd";
  bench.Main.ShowFileInCaption("motor.tvd");
  bench.Main.mnuFileClose.Enabled = true;
  ClickReset();
  EXPECT_EQ(store[Slot::Resistance], 1);
  EXPECT_EQ(bench.Register(0xF7), 100);
  EXPECT_EQ(bench.Register(0x00), 1);
  // Mode 1 is 20 hexadecimal; bit 0, which has no slot, is the drive's own.
  EXPECT_EQ(bench.Register(0xFF), 0x01EF);
  EXPECT_EQ(bench.World.Log.Frames().size(), 45U);
  EXPECT_EQ(bench.World.Log.Texts().back(), "W 12=1");
  EXPECT_EQ(bench.MessageTexts(), (Texts{ConfirmReset, ResetDone}));
  EXPECT_EQ(bench.World.Messages[0].Title, "KVT518 Reset Confirmation");
  EXPECT_EQ(bench.Main.Caption, MainTitle);
  EXPECT_TRUE(bench.Main.CurrentConfigFile.empty());
  EXPECT_TRUE(bench.Main.mnuFileClose.Enabled);
  ExpectAtRest();
}

TEST_F(ResetTest, BadFactoryValuesEndTheResetBeforeTheDrive) {
  const std::string unreadable[] = {"", "0& 5 \r\nno line\r\n"};
  for (const std::string& text : unreadable) {
    bench.World.Messages.clear();
    bench.World.Files["/program/default.ini"] = text;
    if (text.empty()) bench.World.Unreadable.insert("/program/default.ini");
    bench.Main.CurrentConfigFile = "/home/motor.tvd";
    ClickReset();
    bench.World.Unreadable.clear();
    EXPECT_TRUE(bench.World.Log.Frames().empty());
    EXPECT_EQ(bench.MessageTexts(), (Texts{ConfirmReset, DefaultsCrashed}));
    EXPECT_EQ(bench.World.Messages[1].Icon, MessageIcon::Critical);
    EXPECT_EQ(bench.Main.CurrentConfigFile, "/home/motor.tvd");
    ExpectAtRest();
  }
  EXPECT_EQ(store[Slot::CurrentKp], 5) << "the line before the bad one";
  EXPECT_EQ(store[Slot::CurrentKi], 1001);
}

TEST_F(BulkTest, TheHiddenReadTellsSuccessOnlyOnSuccess) {
  bench.Main.ReadFromDrive.OnClick();
  EXPECT_EQ(bench.MessageTexts(), Texts{"Read from driver successfully"});
  EXPECT_EQ(bench.World.Messages[0].Title, "Read Parameters");
  bench.World.Messages.clear();
  bench.Inject(Fault::HangUp);
  bench.Main.ReadFromDrive.OnClick();
  EXPECT_EQ(bench.MessageTexts(), Texts{LostLinkText});
  EXPECT_EQ(bench.Main.Pointer, MousePointer::Default);
  ExpectAtRest();
}

}  // namespace
}  // namespace gainsmith::test
