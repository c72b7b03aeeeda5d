// A whole session with the tool on lines that spoil what passes in every way a real one does: what
// the user is told, in which state the tool is left, and that the next connect is as good as new.

#include "bench.h"

namespace gainsmith::test {
namespace {

// Connects, tests the current loop, runs a short position test, and resets the drive, as far as
// each leads.
void PlaySession(Bench& bench) {
  Tool& tool = bench.tool;
  bench.Connect();
  const auto open = [&](MenuItem& item) {
    if (bench.user.CanReach(item)) bench.user.Click(item);
    bench.world.RunFor(2000);
  };
  open(tool.mdiForm1.MnuCurrentLoop);
  if (tool.form1.Loaded) (void)bench.user.TryClick(tool.form1.cmdTest);
  if (tool.form1.Loaded) bench.user.Close(tool.form1);
  open(tool.mdiForm1.mnuPositionLoop);
  for (const int waitMs : {8000, 1000}) {
    if (tool.form3.Loaded) (void)bench.user.TryClick(tool.form3.Command1[Form3::MainStart]);
    bench.world.RunFor(waitMs);
  }
  if (tool.form3.Loaded) bench.user.Close(tool.form3);
  bench.world.Answers = {MessageAnswer::Yes};
  open(tool.mdiForm1.mnuReset);
}

TEST(LineFaults, ASessionIsToldOfWhatItCannotMendAndTheNextConnectIsAsNew) {
  const std::string lost = LostLinkText;
  const std::string noDrive =
      "Unable to Communicate with the Drive. Check your connection and confirm you have selected "
      "the right serial port.";
  const std::string reset = "All configurations in the connected KVT518 drive ";
  const std::string badKp = "The Kp value of Position Loop 1 should be an integer value of 0-65535";
  const Texts mended{reset, reset};
  const struct {
    const char *Fault, *Connection;
    Texts Told;  // their beginnings
    const char* Notice = "";
  } cases[] = {
      {"lost-byte:/5", "Connected", mended},
      {"doubled-byte:/5", "Connected", mended},
      {"late-by=250:/9", "Connected", mended},
      {"late-by:/9", "Connected", mended},
      {"unsolicited:/5", "Connected", mended},
      {"echo:/5", "Connected", mended},
      {"echo", "Not connected", {noDrive}},
      {"stuck-line=300:/9", "Connected", mended},
      {"stuck-line=2000:/30", "Port open", {lost, lost}},
      {"wrong-baud:/5", "Connected", mended},
      {"wrong-baud=115200", "Not connected", {noDrive}},
      {"refused-write:/5", "Connected", mended},
      {"refused-write", "Connected", {lost, lost, lost, reset, lost}, "The drive did not take: "},
      // No host can tell another register's value from its own.
      {"wrong-register:@20", "Connected", mended},
      {"wrong-register:/9", "Connected", {badKp, badKp, reset, reset}},
      {"power-loss-in-store:1", "Connected", mended},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Fault);
    Bench bench;
    const MDIForm1& main = bench.tool.mdiForm1;
    bench.device.Drive.Inject(*sim::ParseFault(test.Fault));
    PlaySession(bench);
    EXPECT_EQ(main.lblConnection.Caption, test.Connection);
    const Texts told = bench.TakeMessages();
    EXPECT_TRUE(std::ranges::equal(told, test.Told, [](auto& a, auto& b) {
      return a.starts_with(b);
    })) << testing::PrintToString(told);
    EXPECT_TRUE(main.lblNotice.Caption.starts_with(test.Notice)) << main.lblNotice.Caption;
    bench.ExpectAtRest();

    bench.Repair();
    bench.world.RunFor(3000);
    // An open port is closed by the first click.
    if (bench.world.IsPortOpen()) bench.Connect();
    bench.TakeFrames();
    bench.Connect();
    EXPECT_EQ(main.lblConnection.Caption, "Connected");
    EXPECT_EQ(bench.TakeFrames().size(), 3U + 44U);
    bench.ExpectSettingsInTheDrive();
    EXPECT_FALSE(bench.device.Drive.Moving());
  }
}

}  // namespace
}  // namespace gainsmith::test
