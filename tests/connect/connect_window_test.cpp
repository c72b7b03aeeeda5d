// The connect dialog: what it sends, both roads of failure, and what it leaves behind.
#include "connect/connect_window.h"

#include <gtest/gtest.h>

#include "support/store_bench.h"

namespace gainsmith::test {
namespace {

using sim::Fault;
using sim::Hits;

const Message NoContact{
    "Unable to Communicate with the Drive. Check your connection and confirm you have selected the "
    "right serial port.",
    "Communication Error", MessageButtons::Ok, MessageIcon::Critical};

struct ConnectTest : testing::Test {
  StoreBench bench;
  Form2& form = bench.Connect;

  void SetUp() override { bench.User.Click(bench.Main.mnuConnect); }
  void ExpectDisconnected() {
    EXPECT_FALSE(bench.World.IsPortOpen());
    EXPECT_EQ(form.openPort.Caption, "Open");
    EXPECT_TRUE(form.openPort.Default);
    EXPECT_TRUE(form.openPort.Enabled && form.Visible);
    EXPECT_FALSE(bench.Shell.BulkTransferRunning);
    for (const ToolButton* button : bench.Main.ToolButtons) EXPECT_FALSE(button->Enabled);
    EXPECT_EQ(bench.Main.lblConnection.Caption, "Not connected");
  }
};

TEST_F(ConnectTest, ListsSetTheLink) {
  EXPECT_EQ(form.Combo1[Form2::PortList].Items[0].ToolTip, "simulated drive");
  bench.User.Choose(form.Combo1[Form2::PortList], 11);
  bench.User.Choose(form.Combo1[Form2::BaudList], 0);
  bench.User.Choose(form.Combo1[Form2::DeviceList], 0);
  EXPECT_EQ(bench.Line.PortNumber, 12);
  EXPECT_EQ(bench.Line.SerialSettings, "9600,n,8,2");
  EXPECT_EQ(bench.Line.DeviceAddress, 0);
  bench.User.Close(form);
  bench.User.Click(bench.Main.mnuConnect);
  EXPECT_EQ(bench.Line.PortNumber, 1) << "what the lists show";
}

TEST_F(ConnectTest, OpenMakesContactAndReadsAllSettingsWhateverIsPressedMeanwhile) {
  for (const int delay : {50, 300}) {
    bench.World.At(delay, [&] {
      bench.User.Close(form);
      bench.User.Click(bench.Main.mnuConnect);
      EXPECT_FALSE(bench.User.TryClick(form.openPort)) << "no way out of the first contact";
      bench.Main.ReadFromDrive.OnClick();
    });
  }
  bench.User.Click(form.openPort);

  EXPECT_EQ(bench.HexFrames().substr(0, 4 * 17),
            "010300FD000115FA 010300FE0001E5FA 010300FF0001B43A 010300000001840A ");
  // Sending, one wait for the reply and one wait after its bytes; only the third waits before it
  // looks.
  const auto& sent = bench.World.Log.Frames();
  ASSERT_EQ(sent.size(), 3U + 44U);
  EXPECT_EQ(sent[1].AtMs - sent[0].AtMs, 16 + 51 + 51);
  EXPECT_EQ(sent[2].AtMs - sent[1].AtMs, 16 + 51 + 51);
  EXPECT_EQ(sent[3].AtMs - sent[2].AtMs, 16 + 52 + 51 + 52);
  EXPECT_EQ(form.FirstIdentity, "518");
  EXPECT_EQ(form.SecondIdentity, "112");
  EXPECT_TRUE(form.openPort.Enabled);
  EXPECT_EQ(form.openPort.Caption, "Close");
  EXPECT_FALSE(form.openPort.Default) << "Enter never closes a connection";
  EXPECT_FALSE(form.Visible);
  EXPECT_TRUE(bench.Main.mnuPositionLoop.Enabled);
  EXPECT_TRUE(bench.Main.ErrCheck.Enabled);
  EXPECT_EQ(bench.Main.lblConnection.Caption, "Connected");
  EXPECT_EQ(bench.Main.lblConnectionDetail.Caption, "COM1 (simulated drive), 38400 baud, device 1");
  EXPECT_TRUE(bench.World.Messages.empty());
}

TEST_F(ConnectTest, OpensAFreePortAtEachRateAndClosesItOnALaterVisit) {
  for (const auto& [baud, bitsPerMs] : {std::pair{9600, 9}, {19200, 19}, {38400, 38}}) {
    SCOPED_TRACE(baud);
    bench.Device.Drive.SetBaud(baud);
    bench.User.Choose(form.Combo1[Form2::BaudList], baud / 19200);
    bench.User.Click(form.openPort);
    EXPECT_EQ(bench.Line.BitsPerMs, bitsPerMs);
    // A later visit shows what is in force, whatever was chosen since.
    bench.User.Click(bench.Main.mnuConnect);
    bench.User.Choose(form.Combo1[Form2::PortList], 4);
    bench.User.Choose(form.Combo1[Form2::DeviceList], 9);
    bench.User.Click(form.Command1);
    EXPECT_FALSE(form.Loaded);
    EXPECT_TRUE(bench.World.IsPortOpen());
    bench.User.Click(bench.Main.mnuConnect);
    EXPECT_EQ(bench.Line.DeviceAddress, 9);
    EXPECT_EQ(form.Combo1[Form2::PortList].Text, "COM1");
    EXPECT_EQ(form.Combo1[Form2::BaudList].Text, std::to_string(baud));
    EXPECT_EQ(form.Combo1[Form2::DeviceList].Text, "9");
    EXPECT_EQ(form.openPort.Caption, "Close");
    EXPECT_FALSE(form.Combo1[Form2::PortList].Enabled);
    bench.User.Click(form.openPort);
    ExpectDisconnected();
    // It opens with what is shown.
    bench.User.Choose(form.Combo1[Form2::DeviceList], 1);
  }
  EXPECT_TRUE(bench.World.Messages.empty());

  bench.World.PortsInUse = {1};
  bench.User.Click(form.openPort);
  EXPECT_EQ(bench.TakeMessages(), Messages{NoContact});
  ExpectDisconnected();
}

// Whether the first read failed is told by the reply of any earlier one.
TEST_F(ConnectTest, ASilentDriveFailsTheFirstReadAndLaterAllThree) {
  const auto openInVain = [&](const Texts& frames, int ms) {
    bench.Inject(Fault::Silent);
    const std::int64_t start = bench.World.NowMs();
    bench.User.Click(form.openPort);
    EXPECT_EQ(bench.World.TakeFrames(), frames);
    EXPECT_EQ(bench.World.NowMs() - start, ms);
    EXPECT_EQ(bench.Line.LinkErrorCount, 12);
    EXPECT_EQ(bench.TakeMessages(), Messages{NoContact});
    ExpectDisconnected();
    bench.Device.Drive.ClearFaults();
  };
  openInVain({"R 253"}, 16 + 11 * 51);
  bench.User.Click(form.openPort);
  EXPECT_EQ(form.openPort.Caption, "Close") << "a retry needs nothing but a drive that answers";
  EXPECT_EQ(bench.World.TakeFrames().size(), 3U + 44U);
  bench.User.Click(bench.Main.mnuConnect);
  bench.User.Click(form.openPort);
  openInVain({"R 253", "R 254", "R 255", "R 255", "R 255", "R 255"},
             2 * (16 + 11 * 51) + 4 * (16 + 52 + 11 * 51));
}

TEST_F(ConnectTest, ACompleteFlagsReplyThatFailsItsChecksDoesNotStopTheConnection) {
  bench.Inject(Fault::BadCrc, Hits::Next(6));
  bench.User.Click(form.openPort);
  EXPECT_EQ(form.openPort.Caption, "Close");
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_EQ(bench.World.Log.Frames().size(), 6U + 44U);
}

TEST_F(ConnectTest, AVelocityModeTakesThreeCommandsAwayUntilAllSettingsAreRead) {
  MDIForm1& main = bench.Main;
  bench.Register(0xFF) = 0x0010;
  main.EnableDriveMenus();
  main.EnableToolbarButtons();
  bench.World.At(1000, [&] {
    EXPECT_FALSE(main[Tool1::CurrentLoop].Enabled || main.MnuCurrentLoop.Enabled);
    EXPECT_FALSE(main.mnuPositionLoop.Enabled);
    EXPECT_TRUE(main[Tool1::PositionLoop].Enabled);
  });
  bench.User.Click(form.openPort);
  EXPECT_TRUE(main.MnuCurrentLoop.Enabled);
}

TEST_F(ConnectTest, TheReadBehindTheContactCanBeLeft) {
  bench.World.At(1000, [&] {
    bench.User.Click(bench.Main.mnuConnect);
    EXPECT_EQ(form.openPort.Caption, "Close");
    bench.User.Click(form.openPort);
    bench.World.Log.Clear();
  });
  bench.User.Click(form.openPort);
  EXPECT_TRUE(bench.World.Log.Frames().empty() && bench.World.Messages.empty());
  ExpectDisconnected();
  EXPECT_EQ(
      bench.Main.lblNotice.Caption,
      "The connection was closed while settings were read: 3 of 44 came in, the others are as "
      "they were.");
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
  EXPECT_EQ(bench.Main.lblConnection.Caption, "Port open");
  EXPECT_EQ(bench.TakeMessages(), Messages{LostLink});
}

}  // namespace
}  // namespace gainsmith::test
