// The connect dialog: what it sends, both roads of failure, and what it leaves behind.
#include "link/connect_window.h"

#include <gtest/gtest.h>

#include "support/store_bench.h"

namespace gainsmith::test {
namespace {

using sim::Fault;
using sim::Hits;
using Texts = std::vector<std::string>;

constexpr const char* NoContact =
    "Unable to Communicate with the Drive. Check your connection and confirm you have selected the "
    "right serial port.";

struct ConnectTest : testing::Test {
  StoreBench bench;
  Form2& form = bench.Connect;

  void SetUp() override { bench.User.Click(bench.Main.mnuConnect); }
  void ExpectDisconnected() {
    EXPECT_FALSE(bench.World.IsPortOpen());
    EXPECT_EQ(form.openPort.Caption, "Open");
    EXPECT_TRUE(form.openPort.Enabled);
    EXPECT_TRUE(form.Visible);
    EXPECT_FALSE(bench.Shell.BulkTransferRunning);
    EXPECT_FALSE(bench.Main.mnuFileOpen.Enabled);
    EXPECT_EQ(bench.Main.lblConnection.Caption, "Not connected");
  }
  void ExpectOnlyMessage(const char* text, const char* title) {
    ASSERT_EQ(bench.World.Messages.size(), 1U);
    const Message& message = bench.World.Messages[0];
    EXPECT_EQ(message.Text, text);
    EXPECT_EQ(message.Title, title);
    EXPECT_EQ(message.Icon, MessageIcon::Critical);
    EXPECT_EQ(message.Buttons, MessageButtons::Ok);
  }
};

TEST_F(ConnectTest, ListsOfferPortsRatesAndDevicesAndPresetTheLink) {
  ASSERT_EQ(form.Combo1[Form2::PortList].Items.size(), 12U);
  EXPECT_EQ(form.Combo1[Form2::PortList].Items[11].Text, "COM12");
  EXPECT_EQ(form.Combo1[Form2::PortList].Items[0].ToolTip, "simulated drive");
  EXPECT_EQ(form.Combo1[Form2::PortList].Items[1].ToolTip, "");
  ASSERT_EQ(form.Combo1[Form2::DeviceList].Items.size(), 64U);
  EXPECT_EQ(form.Combo1[Form2::DeviceList].Items[63].Text, "63");
  EXPECT_EQ(bench.Line.PortNumber, 1);
  EXPECT_EQ(bench.Line.SerialSettings, "38400,n,8,2");
  EXPECT_EQ(bench.Line.DeviceAddress, 1);

  bench.User.Choose(form.Combo1[Form2::PortList], 11);
  bench.User.Choose(form.Combo1[Form2::BaudList], 0);
  bench.User.Choose(form.Combo1[Form2::DeviceList], 0);
  EXPECT_EQ(bench.Line.PortNumber, 12);
  EXPECT_EQ(bench.Line.SerialSettings, "9600,n,8,2");
  EXPECT_EQ(bench.Line.DeviceAddress, 0);
}

TEST_F(ConnectTest, OpenMakesContactHidesAndReadsAllSettings) {
  bool disabledMeanwhile = false;
  bench.World.At(200, [&] { disabledMeanwhile = !form.openPort.Enabled; });
  bench.User.Click(form.openPort);

  const Texts frames = bench.World.Log.Texts();
  ASSERT_EQ(frames.size(), 3U + 44U);
  // Sending, one wait for the reply and one wait after its bytes; only the third waits before it
  // looks.
  const auto& sent = bench.World.Log.Frames();
  EXPECT_EQ(sent[1].AtMs - sent[0].AtMs, 16 + 51 + 51);
  EXPECT_EQ(sent[2].AtMs - sent[1].AtMs, 16 + 51 + 51);
  EXPECT_EQ(sent[3].AtMs - sent[2].AtMs, 16 + 52 + 51 + 52);
  EXPECT_EQ(Texts(frames.begin(), frames.begin() + 4), (Texts{"R 253", "R 254", "R 255", "R 0"}));
  EXPECT_EQ(bench.HexFrames().substr(0, 16), "010300FD000115FA");
  EXPECT_EQ(form.FirstIdentity, "518");
  EXPECT_EQ(form.SecondIdentity, "112");
  EXPECT_TRUE(disabledMeanwhile);
  EXPECT_TRUE(form.openPort.Enabled);
  EXPECT_EQ(form.openPort.Caption, "Close");
  EXPECT_FALSE(form.Visible);
  EXPECT_TRUE(form.Loaded);
  EXPECT_TRUE(bench.Main.mnuPositionLoop.Enabled);
  EXPECT_TRUE(bench.Main.ErrCheck.Enabled);
  EXPECT_EQ(bench.Main.lblConnection.Caption, "Connected");
  EXPECT_EQ(bench.Main.lblConnectionDetail.Caption, "COM1 (simulated drive), 38400 baud, device 1");
  EXPECT_TRUE(bench.World.Messages.empty());
}

TEST_F(ConnectTest, EachRateSetsItsTruncatedBitsPerMs) {
  const int rates[] = {9, 19, 38};
  for (int i = 0; i < 3; ++i) {
    bench.Device.Drive.SetBaud(i == 0 ? 9600 : i == 1 ? 19200 : 38400);
    bench.User.Choose(form.Combo1[Form2::BaudList], i);
    bench.User.Click(form.openPort);
    EXPECT_EQ(bench.Line.BitsPerMs, rates[i]);
    bench.User.Click(bench.Main.mnuConnect);
    bench.User.Click(form.openPort);
    ExpectDisconnected();
  }
  EXPECT_TRUE(bench.World.Messages.empty());
}

TEST_F(ConnectTest, APortThatCannotBeOpenedLeavesTheWindowReady) {
  for (const int index : {0, 6}) {
    bench.World.PortsInUse = {1};
    bench.World.Messages.clear();
    bench.User.Choose(form.Combo1[Form2::PortList], index);
    bench.User.Click(form.openPort);
    ExpectOnlyMessage(NoContact, "Communication Error");
    ExpectDisconnected();
    EXPECT_TRUE(bench.World.Log.Frames().empty());
  }
}

TEST_F(ConnectTest, AFirstConnectToASilentDriveFailsAfterTheFirstRead) {
  bench.Inject(Fault::Silent);
  const std::int64_t start = bench.World.NowMs();
  bench.User.Click(form.openPort);
  EXPECT_EQ(bench.World.Log.Texts(), Texts{"R 253"});
  EXPECT_EQ(bench.World.NowMs() - start, 16 + 11 * 51);
  ExpectOnlyMessage(NoContact, "Communication Error");
  ExpectDisconnected();
}

TEST_F(ConnectTest, ALaterConnectToASilentDriveFailsAfterAllThreeReads) {
  bench.ConnectDrive();
  bench.User.Click(bench.Main.mnuConnect);
  bench.User.Click(form.openPort);
  bench.Inject(Fault::Silent);
  const std::int64_t start = bench.World.NowMs();
  bench.User.Click(form.openPort);
  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"R 253", "R 254", "R 255", "R 255", "R 255", "R 255"}));
  EXPECT_EQ(bench.World.NowMs() - start, 2 * (16 + 11 * 51) + 4 * (16 + 52 + 11 * 51));
  EXPECT_EQ(bench.Line.LinkErrorCount, 12);
  ExpectOnlyMessage(NoContact, "Communication Error");
  ExpectDisconnected();

  bench.Device.Drive.ClearFaults();
  bench.User.Click(form.openPort);
  EXPECT_EQ(form.openPort.Caption, "Close") << "a retry needs nothing but a drive that answers";
}

TEST_F(ConnectTest, ACompleteFlagsReplyThatFailsItsChecksDoesNotStopTheConnection) {
  bench.Inject(Fault::BadCrc, Hits::Next(6));
  bench.User.Click(form.openPort);
  EXPECT_EQ(form.openPort.Caption, "Close");
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_EQ(bench.World.Log.Frames().size(), 6U + 44U);
}

TEST_F(ConnectTest, AVelocityModeTakesThreeCommandsAwayUntilAllSettingsAreRead) {
  struct Case {
    std::uint16_t Flags;
    bool Taken;
  };
  for (const Case& c : {Case{0x0010, true}, Case{0x0020, false}, Case{0x0030, false}}) {
    StoreBench other;
    other.Register(0xFF) = c.Flags;
    other.Main.EnableDriveMenus();
    other.Main.EnableToolbarButtons();
    bool taken = false;
    other.World.At(1000, [&] {
      taken = !other.Main[Tool1::CurrentLoop].Enabled && !other.Main.MnuCurrentLoop.Enabled &&
              !other.Main.mnuPositionLoop.Enabled && other.Main[Tool1::PositionLoop].Enabled;
    });
    other.ConnectDrive();
    EXPECT_EQ(taken, c.Taken) << c.Flags;
    EXPECT_TRUE(other.Main.MnuCurrentLoop.Enabled);
    EXPECT_TRUE(other.Main[Tool1::CurrentLoop].Enabled);
  }
}

TEST_F(ConnectTest, ABulkReadThatFailsLeavesThePortOpenAndTwoCommandsEnabled) {
  // The drive falls silent behind the third read.
  bench.World.At(400, [&] { bench.Inject(Fault::Silent); });
  bench.User.Click(form.openPort);
  EXPECT_TRUE(bench.World.IsPortOpen());
  EXPECT_EQ(form.openPort.Caption, "Close");
  EXPECT_TRUE(bench.Main.mnuPositionLoop.Enabled);
  EXPECT_TRUE(bench.Main.ErrCheck.Enabled);
  EXPECT_FALSE(bench.Main.mnuFileOpen.Enabled);
  EXPECT_FALSE(bench.Main[Tool1::OpenFile].Enabled);
  EXPECT_EQ(bench.Main.lblConnection.Caption, "Port open");
  ExpectOnlyMessage(LostLinkText, "Cmmunication Error");
}

TEST_F(ConnectTest, CloseDisablesTheDriveCommandsAndSendsNothing) {
  bench.ConnectDrive();
  bench.User.Click(bench.Main.mnuConnect);
  bench.User.Click(form.Command1);
  EXPECT_FALSE(form.Loaded);
  EXPECT_TRUE(bench.World.IsPortOpen());
  // Loaded again over an open port.
  bench.User.Click(bench.Main.mnuConnect);
  EXPECT_EQ(form.openPort.Caption, "Close");
  EXPECT_FALSE(form.Combo1[Form2::PortList].Enabled);
  bench.User.Click(form.openPort);
  ExpectDisconnected();
  EXPECT_TRUE(form.Combo1[Form2::PortList].Enabled);
  for (const MenuItem* item :
       {&bench.Main.mnuFileOpen, &bench.Main.mnuSave, &bench.Main.mnuSaveAs, &bench.Main.sysConfig,
        &bench.Main.MnuCurrentLoop, &bench.Main.mnuPositionLoop, &bench.Main.mnuDownloadToDrive,
        &bench.Main.mnuReset, &bench.Main.mnuScope, &bench.Main.ErrCheck}) {
    EXPECT_FALSE(item->Enabled) << item->Name;
  }
  for (const ToolButton* button : bench.Main.ToolButtons) EXPECT_FALSE(button->Enabled);
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_TRUE(bench.World.Messages.empty());
}

TEST_F(ConnectTest, NothingPressedDuringTheOpeningStartsASecondConnection) {
  int reached = 0;
  for (const int delay : {50, 150, 300, 2000}) {
    bench.World.At(delay, [&] {
      reached += bench.User.TryClick(form.openPort) ? 1 : 0;
      bench.Main.mnuConnect.OnClick();
      bench.Main.ReadFromDrive.OnClick();
    });
  }
  bench.World.At(250, [&] { bench.User.Click(form.Command1); });
  bench.User.Click(form.openPort);
  EXPECT_EQ(reached, 0);
  EXPECT_EQ(bench.World.Log.Frames().size(), 3U + 44U);
  EXPECT_EQ(bench.World.Log.Fragments(), 0);
  EXPECT_TRUE(bench.Main.mnuFileOpen.Enabled) << "closing the window does not stop the opening";
}

}  // namespace
}  // namespace gainsmith::test
