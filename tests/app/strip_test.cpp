// What the main window says: the strip along its bottom edge, and the drive's page.

#include "bench.h"
#include "simulator/bank/registers.h"

namespace gainsmith::test {
namespace {

struct Screen : Bench {
  Screen() : Bench({}, Edition::ServiceBench) {}
  std::string Says(StripField field) {
    tool.mdiForm1.Refresh();
    return tool.mdiForm1.lblStrip[static_cast<std::size_t>(field)].Caption;
  }
  std::string Link() { return Says(StripField::Link); }
  std::string Motor() { return Says(StripField::Motor); }
  std::string Settings() { return Says(StripField::Settings); }
  std::string Newest() {
    const auto& entries = tool.mdiForm1.Troubles.Entries();
    return entries.empty() ? "" : entries.front().Text;
  }
  void StartPositionTest() {
    user.Click(tool.mdiForm1.mnuPositionLoop);
    user.Click(tool.form3.Command1[Form3::MainStart]);
  }
  // Runs a test with this gain, which goes to the drive with it.
  void UseGain(const std::string& text) {
    user.Click(tool.mdiForm1.mnuPositionLoop);
    user.Type(tool.form3.Text1[Form3::PositionKp], text);
    user.Leave(tool.form3.Text1[Form3::PositionKp]);
    user.Click(tool.form3.Command1[Form3::MainStart]);
    user.Click(tool.form3.Command1[Form3::MainStart]);
    world.RunFor(1000);
    user.Close(tool.form3);
  }
};

constexpr const char* Unknown = "⚠ emergency stop: commanded to run, state unknown";
constexpr const char* Changed = "changed, not stored: Download to Drive stores them";

TEST(Strip, LinkTellsWhereHowLongAgoAndWhatWasLost) {
  Screen bench;
  EXPECT_EQ(bench.Link(), "Not connected");
  bench.Connect();
  bench.world.RunFor(3000);
  EXPECT_EQ(bench.Link(), "COM1 (simulated drive), 38400 baud, device 1, answered 3 s ago");
  bench.device.Drive.Inject(sim::Fault::Silent, sim::Hits::Next(1));
  bench.tool.mdiForm1.ReadFromDrive.OnClick();
  EXPECT_FALSE(bench.Link().starts_with("⚠"));
  EXPECT_NE(bench.tool.mdiForm1.lblStrip[0].ToolTip.find("1 resend, 1 lost reply"),
            std::string::npos);
  bench.device.Drive.Inject(sim::Fault::Silent);
  bench.tool.mdiForm1.ReadFromDrive.OnClick();
  EXPECT_TRUE(bench.Link().starts_with("⚠ no answer for "));
  EXPECT_EQ(bench.Newest(),
            "The drive did not answer: reading Proportional gain Kp (register 0), sent 12 times.");
  bench.Repair();
  bench.tool.mdiForm1.ReadFromDrive.OnClick();
  EXPECT_TRUE(bench.Link().ends_with("answered 0 s ago"));
  bench.user.Click(bench.tool.mdiForm1.mnuConnect);
  bench.user.Click(bench.tool.form2.openPort);
  EXPECT_EQ(bench.Link(), "Not connected");
  // What was counted belongs to the connection that was.
  bench.user.Click(bench.tool.form2.openPort);
  bench.Link();
  EXPECT_NE(bench.tool.mdiForm1.lblStrip[0].ToolTip.find("0 resends, 0 lost replies"),
            std::string::npos);
}

TEST(Strip, MotorIsUnknownFromALostLinkUntilAStopWasAcknowledged) {
  Screen bench;
  bench.Connect();
  bench.StartPositionTest();
  EXPECT_EQ(bench.Motor(), "Motor: test running");
  // Stop, and the drive hears nothing of it: known when the message comes, not when it is read.
  std::string behindMessage;
  bench.world.OnMessage = [&](const Message&) { behindMessage = bench.Motor(); };
  bench.device.Drive.Inject(sim::Fault::Silent);
  std::string whileResent;
  bench.world.At(1000, [&] { whileResent = bench.Motor(); });
  bench.user.Click(bench.tool.form3.Command1[Form3::MainStart]);
  bench.world.RunFor(5000);
  EXPECT_EQ(whileResent, "Motor: stopping") << "nobody has said that it stands";
  EXPECT_EQ(behindMessage, Unknown);
  EXPECT_EQ(bench.Motor(), Unknown);
  // Neither a closed port nor a new connection tells that it stands.
  bench.world.Unload(bench.tool.form3);
  bench.user.Click(bench.tool.mdiForm1.mnuConnect);
  bench.user.Click(bench.tool.form2.openPort);
  EXPECT_EQ(bench.Motor(), Unknown);
  bench.Repair();
  bench.user.Click(bench.tool.form2.openPort);
  EXPECT_EQ(bench.Motor(), Unknown);
  bench.StartPositionTest();
  bench.user.Click(bench.tool.form3.Command1[Form3::MainStart]);
  bench.world.RunFor(2000);
  EXPECT_EQ(bench.Motor(), "Motor: at rest");
}

TEST(Strip, AnotherDriveThatStandsSaysNothingOfTheOneThatWasLost) {
  Screen bench;
  sim::DriveOptions options;
  options.Address = 2;
  DriveDevice second(options);
  Bus bus({&bench.device, &second});
  bench.world.Devices[1] = &bus;
  bench.Connect();
  bench.StartPositionTest();
  bench.device.Drive.Inject(sim::Fault::Silent);
  bench.user.Click(bench.tool.form3.Command1[Form3::MainStart]);
  bench.world.RunFor(5000);
  EXPECT_EQ(bench.Motor(), Unknown);
  for (const int device : {2, 1}) {
    bench.Repair();
    bench.world.Unload(bench.tool.form3);
    bench.user.Click(bench.tool.mdiForm1.mnuConnect);
    bench.user.Click(bench.tool.form2.openPort);
    bench.user.Choose(bench.tool.form2.Combo1[Form2::DeviceList], device);
    bench.user.Click(bench.tool.form2.openPort);
    bench.StartPositionTest();
    bench.user.Click(bench.tool.form3.Command1[Form3::MainStart]);
    bench.world.RunFor(2000);
    EXPECT_EQ(bench.Motor(), device == 2 ? Unknown : "Motor: at rest");
  }
}

TEST(Strip, MotorJogsWhileTheButtonIsHeldAndStandsOnceTheStopWasTaken) {
  Screen bench;
  bench.Connect();
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  Button& jog = bench.tool.form3.Command2;
  jog.OnPress();
  bench.world.RunFor(500);
  EXPECT_EQ(bench.Motor(), "Motor: jogging");
  jog.OnRelease();
  bench.world.RunFor(500);
  EXPECT_EQ(bench.Motor(), "Motor: at rest");
  // The stop word of a release that nobody answers.
  jog.OnPress();
  bench.world.RunFor(500);
  bench.device.Drive.Inject(sim::Fault::HangUp);
  jog.OnRelease();
  bench.world.RunFor(500);
  EXPECT_EQ(bench.Motor(), Unknown);
}

TEST(Strip, ACurrentTestRunsUntilItsWindowIsClosed) {
  Screen bench;
  bench.Connect();
  bench.user.Click(bench.tool.mdiForm1.MnuCurrentLoop);
  EXPECT_EQ(bench.Motor(), "Motor: at rest");
  bench.user.Click(bench.tool.form1.cmdTest);
  bench.world.RunFor(1000);
  EXPECT_EQ(bench.Motor(), "Motor: test running");
  bench.user.Close(bench.tool.form1);
  EXPECT_EQ(bench.Motor(), "Motor: at rest");
  // The word that should have ended it was lost.
  bench.user.Click(bench.tool.mdiForm1.MnuCurrentLoop);
  bench.user.Click(bench.tool.form1.cmdTest);
  bench.device.Drive.Inject(sim::Fault::Silent);
  bench.user.Close(bench.tool.form1);
  EXPECT_EQ(bench.Motor(), Unknown);
}

TEST(Strip, AVelocityTestLeftInForceIsUnknown) {
  Screen bench;
  bench.Connect();
  bench.user.Click(bench.tool.benchMenu->mnuVelocityLoop);
  bench.user.Click(bench.tool.velocityMode.Command1);
  EXPECT_EQ(bench.Motor(), "Motor: test running");
  bench.device.Drive.Inject(sim::Fault::Silent);
  bench.world.RunFor(60000);
  bench.world.Unload(bench.tool.velocityMode);
  EXPECT_EQ(bench.Motor(), Unknown);
}

TEST(Strip, SettingsAreChangedByAGoodWriteAndStoredByAStoreOnly) {
  Screen bench;
  bench.Connect();
  EXPECT_EQ(bench.Settings(), "");
  bench.UseGain("123");
  EXPECT_EQ(bench.Settings(), Changed);
  bench.world.Answers.push_back(MessageAnswer::Yes);
  bench.user.Click(bench.tool.mdiForm1.mnuDownloadToDrive);
  EXPECT_EQ(bench.Settings(), "stored");
  // A test writes the encoder's counts, as they are.
  bench.UseGain("123");
  EXPECT_EQ(bench.Settings(), "stored");
  // Another number may be another drive.
  bench.user.Click(bench.tool.mdiForm1.mnuConnect);
  bench.user.Choose(bench.tool.form2.Combo1[Form2::DeviceList], 5);
  EXPECT_EQ(bench.Settings(), "");
  EXPECT_NE(bench.Link().find("device 5"), std::string::npos);
}

TEST(Strip, TroublesSayWhyAPortDidNotOpenAndStandInAListToCopy) {
  Screen bench;
  bench.user.Click(bench.tool.mdiForm1.mnuConnect);
  bench.user.Choose(bench.tool.form2.Combo1[Form2::PortList], 2);
  bench.user.Click(bench.tool.form2.openPort);
  bench.user.Click(bench.tool.form2.openPort);
  bench.user.Choose(bench.tool.form2.Combo1[Form2::PortList], 0);
  bench.device.Drive.Inject(sim::Fault::Silent);
  bench.user.Click(bench.tool.form2.openPort);
  bench.tool.mdiForm1.OnTroubleClick();
  EXPECT_EQ(bench.tool.troubles.grdTroubles.Rows.size(), 2U);
  EXPECT_EQ(bench.tool.troubles.grdTroubles.Rows.back()[1], "2");
  bench.user.Click(bench.tool.troubles.cmdCopy);
  EXPECT_TRUE(bench.world.Clipboard.starts_with("12:00:00\tCOM1: no drive"));
  for (int i = 0; i < 30; ++i) bench.tool.mdiForm1.TellTrouble(std::to_string(i));
  bench.tool.troubles.Refresh();
  EXPECT_EQ(bench.tool.troubles.grdTroubles.Rows.size(), 20U);
}

TEST(Page, ShowsAllSettingsWhereTheyDifferAndWhatIsAskedFor) {
  Screen bench;
  MDIForm1& main = bench.tool.mdiForm1;
  main.Refresh();
  EXPECT_EQ(main.lblHint.Caption.find("COM1"), std::string::npos) << "the start waits for ports";
  bench.Connect();
  main.Refresh();
  EXPECT_EQ(main.grdSettings.Rows.size(), ParameterCount + main.grdSettings.HeadingRows.size());
  const Grid& grid = main.grdSettings;
  const int gridTop = grid.TopTwips;
  main.ShowNotice(Notice::Transfer, std::string(300, 'x') + "\nx");
  EXPECT_EQ(main.lblNotice.HeightTwips, 4 * 240 + 60);
  EXPECT_EQ(grid.TopTwips, gridTop + main.lblNotice.HeightTwips + 60);
  main.ShowNotice(Notice::Transfer, "");
  EXPECT_LE(grid.TopTwips + grid.HeightTwips, main.linStrip[0].TopTwips);
  // A gain that was changed, and a file in use that holds the old one.
  bench.world.ChosenFiles = {{ChosenFile::Outcome::Chosen, "/a.tvd"}};
  bench.user.Click(main.mnuSaveAs);
  bench.UseGain("123");
  bench.user.Click(main.chkDifferences);
  main.Refresh();
  const std::vector<std::vector<std::string>> differing{
      {"Position loop", "", "", "", "", ""},
      {"    Proportional gain Kp, high speed", "123", "", "800", "800", "≠ factory, ≠ file"}};
  EXPECT_EQ(main.grdSettings.Rows, differing);
  bench.user.Click(main.chkDifferences);
  bench.user.Type(main.txtFilter, "ALARM");
  main.Refresh();
  EXPECT_EQ(main.grdSettings.Rows.size(), 2U);
  EXPECT_EQ(main.lblPageNote.Caption, "Settings of the drive: 1 of 51");
}

}  // namespace
}  // namespace gainsmith::test
