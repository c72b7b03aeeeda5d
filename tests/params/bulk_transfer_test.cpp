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

constexpr int ReadExchangeMs = 16 + 52 + 51 + 52;
constexpr int WriteExchangeMs = 16 + 53 + 51 + 53;
const Message AskDownload{
    "All configurations in the connected KVT518 drive will be overwritten by new configurations. "
    "Do you want to continue?",
    "KVT518 Download Confirmation", MessageButtons::YesNo, MessageIcon::Warning, MessageAnswer::No};
const Message AskReset{
    "All configurations in the connected KVT518 drive will be reset to factory default. Do you "
    "want to continue?",
    "KVT518 Reset Confirmation", MessageButtons::YesNo, MessageIcon::Warning, MessageAnswer::No};
const Message Downloaded =
    Tell("New configurations have been downloaded to drive successfully", MainTitle);
const Message ResetDone = Tell(
    "All configurations in the connected KVT518 drive have been reset to factory default "
    "successfully!",
    MainTitle);
const Message DefaultsCrashed =
    Tell("Default settings have been crashed. Contact Torvane or your distributor", MainTitle,
         MessageIcon::Critical);

// Connected to the drive that DownloadFrames tells of.
struct BulkTest : testing::Test {
  StoreBench bench;
  ParameterStore& store = bench.Store;

  void SetUp() override {
    for (const ParameterRow& row : ParameterRows()) {
      const int number = static_cast<int>(row.Source);
      bench.Register(number) = static_cast<std::uint16_t>(1000 + number);
    }
    bench.Register(0xFF) = 0x01C7;
    bench.ConnectDrive();
  }
  void Confirm(MenuItem& item) {
    bench.World.Answers.push_back(MessageAnswer::Yes);
    bench.User.Click(item);
  }
  void ExpectAtRest() {
    EXPECT_FALSE(bench.Shell.BulkTransferRunning);
    EXPECT_FALSE(bench.Waiting.Loaded);
    EXPECT_EQ(bench.Main.lblActivity.Caption, "");
    EXPECT_EQ(bench.World.ScreenPointer, MousePointer::Default);
  }
};

TEST_F(BulkTest, AReadSendsItsFramesInOrderAndFillsTheTable) {
  store.ParameterValues.fill(9);
  bench.Register(0xFF) = 0x0028;
  bench.Register(0xEF) = 20;
  bench.Register(0xF6) = 1247;
  const std::int64_t start = bench.World.NowMs();
  bench.Main.ReadFromDrive.OnClick();
  EXPECT_EQ(bench.HexFrames(), BulkReadFrames);
  EXPECT_EQ(bench.World.NowMs() - start, 44 * ReadExchangeMs);
  EXPECT_EQ(bench.TakeMessages(),
            Messages{Tell("Read from driver successfully", "Read Parameters")});
  EXPECT_EQ(store.DriveFlagsWord, 0x0028);
  const std::pair<Slot, float> values[] = {
      {Slot::CurrentKp, 1000},          {Slot::KaffHigh, 1013},      {Slot::Resistance, 12.47F},
      {Slot::PeakCurrentLimit, 12.45F}, {Slot::Trap2Width, 0},       {Slot::PulseEdge, 0},
      {Slot::OperatingMode, 1},         {Slot::EndLimitPolarity, 1},
  };
  for (const auto& [slot, value] : values) EXPECT_EQ(store[slot], value) << RowOf(slot).Name;
  ExpectAtRest();
}

TEST_F(BulkTest, AReadThatFailsInTheMiddleKeepsWhatItHas) {
  store.ParameterValues.fill(9);
  // From the 30th register on, the flags word, the drive gives bad checksums only.
  bench.World.At(29 * ReadExchangeMs + 1, [&] { bench.Inject(Fault::BadCrc); });
  EXPECT_FALSE(bench.Transfer.readDrive());
  EXPECT_EQ(bench.World.Log.Frames().size(), 29U + 12U);
  EXPECT_EQ(store[Slot::RatedPower], 1252) << "step 29";
  EXPECT_EQ(store[Slot::PulseEdge], 9);
  EXPECT_EQ(store[Slot::InPosition], 9) << "step 31";
  EXPECT_EQ(store.DriveFlagsWord, 0x01C7);
  EXPECT_EQ(bench.Main.Pointer, MousePointer::ArrowQuestion);
  ExpectAtRest();

  bench.Main.ReadFromDrive.OnClick();
  EXPECT_EQ(bench.TakeMessages(), (Messages{LostLink, LostLink})) << "no word of success";
  EXPECT_EQ(bench.Main.Pointer, MousePointer::Default);
}

TEST_F(BulkTest, ADownloadWritesBackWhatWasReadAndStoresIt) {
  bench.User.Click(bench.Main.mnuDownloadToDrive);
  EXPECT_EQ(bench.TakeMessages(), Messages{AskDownload}) << "No means no";
  EXPECT_TRUE(bench.World.ScreenPointers.empty());

  const std::int64_t start = bench.World.NowMs();
  Confirm(bench.Main.mnuDownloadToDrive);
  EXPECT_EQ(bench.HexFrames(), std::string(DownloadFrames) + " " + StoreFrame);
  EXPECT_EQ(bench.World.NowMs() - start,
            44 * WriteExchangeMs + 43 * 51 + (16 + 53 + 1001 + 51 + 501 + 53));
  EXPECT_EQ(bench.TakeMessages(), (Messages{AskDownload, Downloaded}));
  EXPECT_EQ(bench.World.ScreenPointers,
            (std::vector{MousePointer::Hourglass, MousePointer::Default}));
  ExpectAtRest();
}

TEST_F(BulkTest, WhatTheDriveDoesNotTakeIsSkippedAndNamed) {
  // The third setting fails its four frames.
  bench.World.At(2 * (WriteExchangeMs + 51) - 20,
                 [&] { bench.Inject(Fault::WrongEcho, Hits::Next(4)); });
  Confirm(bench.Main.mnuDownloadToDrive);
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U + 3U + 1U);
  EXPECT_EQ(bench.TakeMessages(), (Messages{AskDownload, Downloaded}));
  EXPECT_TRUE(bench.Line.WriteFailed);
  EXPECT_EQ(bench.Main.lblNotice.Caption,
            "The drive did not take: Velocity Loop High Speed Proportional Gain");
  EXPECT_TRUE(bench.Main.lblNotice.Visible);

  // A later download begins anew. A table with values that cannot be packed is not sent.
  bench.World.Log.Clear();
  store[Slot::Resistance] = 655.36F;
  store[Slot::CurrentKi] = -1;
  store[Slot::Trap2Width] = -5;  // never travels
  store[Slot::AlarmPolarity] = 70000;
  Confirm(bench.Main.mnuDownloadToDrive);
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  const Message notSent = Tell(
      "Nothing was sent to the drive. These settings have values that it can't take:\nCurrent Loop "
      "Integral Gain: -1\nAlarm Output Polarity: 70000\nMotor Phase Resistance: 655.36",
      MainTitle, MessageIcon::Critical);
  EXPECT_EQ(bench.TakeMessages(), (Messages{AskDownload, notSent}));
  EXPECT_EQ(bench.Main.lblNotice.Caption,
            "Nothing was sent: the values shown are the tool's, not the drive's. Close the "
            "connection and open it again to read the drive.")
      << "the page would show them as the drive's";
  ExpectAtRest();
}

TEST_F(BulkTest, AResetLoadsDownloadsAndStoresTheFactoryValues) {
  const std::string path = "/program/default.ini";
  bench.Main.CurrentConfigFile = "/home/motor.tvd";
  bench.Main.ShowFileInCaption("motor.tvd");
  bench.User.Click(bench.Main.mnuReset);
  EXPECT_EQ(bench.TakeMessages(), Messages{AskReset}) << "No means no";

  // Factory values that are missing, or half there, end the reset before the drive.
  for (const bool half : {false, true}) {
    if (half) bench.World.Files[path] = "0& 7 \r\n";
    Confirm(bench.Main.mnuReset);
    EXPECT_EQ(bench.TakeMessages(), (Messages{AskReset, DefaultsCrashed}));
    ExpectAtRest();
    EXPECT_TRUE(bench.World.Log.Frames().empty());
    EXPECT_EQ(bench.Main.CurrentConfigFile, "/home/motor.tvd");
    EXPECT_EQ(bench.Main.lblNotice.Caption.starts_with("default.ini could not be read"), half);
  }

  ParameterStore factory;
  factory.ParameterValues.fill(1);
  factory[Slot::Inertia] = 0.00001F;
  bench.World.Files[path] = FormatConfig(factory).value();
  Confirm(bench.Main.mnuReset);
  EXPECT_EQ(bench.TakeMessages(), (Messages{AskReset, ResetDone}));
  EXPECT_EQ(bench.World.Log.Frames().size(), 45U);
  EXPECT_EQ(bench.World.Log.Texts().back(), "W 12=1");
  EXPECT_EQ(bench.Register(0xF7), 100);
  // Mode 1 is 20 hexadecimal; bit 0, which has no slot, is the drive's own.
  EXPECT_EQ(bench.Register(0xFF), 0x01EF);
  EXPECT_EQ(store.DriveFlagsWord, 0x01EF);
  EXPECT_EQ(bench.Main.Caption, MainTitle);
  EXPECT_TRUE(bench.Main.CurrentConfigFile.empty());
  ExpectAtRest();
}

}  // namespace
}  // namespace gainsmith::test
