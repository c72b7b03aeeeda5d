// A whole session with the tool on lines that spoil what passes in every way a real one does: what
// the user is told, in which state the tool is left, and that the next connect is as good as new.

#include "bench.h"

namespace gainsmith::test {
namespace {

// Connects, tests the current loop, runs a short position test, looks at the error log, writes the
// factory settings and stores them, as far as each leads.
void PlaySession(Bench& bench) {
  Tool& tool = bench.tool;
  bench.Connect();
  const auto open = [&](MenuItem& item) {
    if (bench.user.CanReach(item)) bench.user.Click(item);
  };
  open(tool.mdiForm1.MnuCurrentLoop);
  if (tool.form1.Loaded) {
    if (!tool.form1.Text1[Form1::Kp].Text.empty()) (void)bench.user.TryClick(tool.form1.cmdTest);
    bench.user.Close(tool.form1);
  }
  open(tool.mdiForm1.mnuPositionLoop);
  if (tool.form3.Loaded) {
    bench.world.RunFor(2000);
    for (const int waitMs : {8000, 1000}) {
      (void)bench.user.TryClick(tool.form3.Command1[Form3::MainStart]);
      bench.world.RunFor(waitMs);
    }
    if (tool.form3.Loaded) bench.user.Close(tool.form3);
    bench.world.RunFor(1000);
  }
  open(tool.mdiForm1.ErrCheck);
  bench.world.RunFor(1000);
  if (tool.form4.Loaded) bench.user.Close(tool.form4);
  bench.world.RunFor(1000);
  bench.world.Answers = {MessageAnswer::Yes};
  open(tool.mdiForm1.mnuReset);
  bench.world.Answers.clear();
  bench.world.RunFor(1000);
}

TEST(LineFaults, ASessionIsToldOfWhatItCannotMendAndTheNextConnectIsAsNew) {
  const std::string done =
      "All configurations in the connected KVT518 drive have been reset to factory default "
      "successfully!";
  const std::string ask =
      "All configurations in the connected KVT518 drive will be reset to factory default. Do you "
      "want to continue?";
  const std::string noDrive =
      "Unable to Communicate with the Drive. Check your connection and confirm you have selected "
      "the right serial port.";
  const std::string lost = LostLinkText;
  const std::string badKp = "The Kp value of Position Loop 1 should be an integer value of 0-65535";
  const Texts mended{ask, done};
  const struct {
    const char* Fault;
    const char* Connection;
    Texts Told;
    const char* Notice = "";
  } cases[] = {
      {"lost-byte:/5", "Connected", mended},
      {"lost-byte=1:/5", "Connected", mended},
      {"doubled-byte:/5", "Connected", mended},
      {"late-by=250:/9", "Connected", mended},
      {"late-by:/9", "Connected", mended},
      {"unsolicited:/5", "Connected", mended},
      {"echo:/5", "Connected", mended},
      {"echo", "Not connected", {noDrive}},
      {"stuck-line=300:/9", "Connected", mended, "The drive did not take: "},
      {"stuck-line=2000:/30", "Port open", {lost, lost}},
      {"wrong-baud:/5", "Connected", mended},
      {"wrong-baud=115200", "Not connected", {noDrive}},
      {"refused-write:/5", "Connected", mended},
      {"refused-write", "Connected", {lost, lost, lost, ask, lost}, "The drive did not take: "},
      // No host can tell another register's value from its own; it sees it with the next reading.
      {"wrong-register:@20", "Connected", mended},
      {"wrong-register:/9", "Connected", {badKp, badKp, ask, done}},
      {"power-loss-in-store:1", "Connected", mended},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Fault);
    Bench bench;
    Tool& tool = bench.tool;
    bench.device.Drive.Inject(*sim::ParseFault(test.Fault));
    PlaySession(bench);
    EXPECT_EQ(tool.mdiForm1.lblConnection.Caption, test.Connection);
    EXPECT_EQ(bench.TakeMessages(), test.Told);
    EXPECT_TRUE(tool.mdiForm1.lblNotice.Caption.starts_with(test.Notice));
    EXPECT_FALSE(tool.form3.Loaded);
    EXPECT_FALSE(bench.device.Drive.Moving());
    bench.ExpectAtRest();

    bench.Repair();
    bench.world.RunFor(3000);
    // An open port is closed by the first click.
    if (bench.world.IsPortOpen()) bench.Connect();
    bench.TakeFrames();
    bench.TakeMessages();
    bench.Connect();
    EXPECT_EQ(tool.mdiForm1.lblConnection.Caption, "Connected");
    EXPECT_EQ(bench.TakeFrames().size(), 3U + 44U);
    EXPECT_EQ(bench.TakeMessages(), Texts{});
    bench.ExpectSettingsInTheDrive();
  }
}

}  // namespace
}  // namespace gainsmith::test
