// Whole sessions with the tool: what passes on the wire and what the user sees, in order.

#include "bench.h"
#include "simulator/bank/factory_values.h"

namespace gainsmith::test {
namespace {

// Frames of a connection with its bulk read, and of a bulk download.
constexpr std::size_t ConnectFrames = 3 + 44;
constexpr std::size_t DownloadFrames = 44;

TEST(Session, FromConnectToExit) {
  Bench bench;
  Tool& tool = bench.tool;
  bench.Connect();
  EXPECT_EQ(bench.TakeFrames().size(), ConnectFrames);
  EXPECT_EQ(tool.mdiForm1.lblConnection.Caption, "Connected");

  bench.user.Click(tool.mdiForm1.MnuCurrentLoop);
  EXPECT_EQ(bench.TakeFrames(), (Texts{"R 0", "R 1"}));
  bench.user.Type(tool.form1.Text1[Form1::Kp], "900");
  bench.user.Type(tool.form1.Text1[Form1::TestCurrent], "1.5");
  bench.user.Click(tool.form1.cmdTest);
  EXPECT_EQ(bench.TakeFrames(), (Texts{"W 0=900", "W 1=500", "W 4=1536", "W 2=1", "R 256x50",
                                       "R 306x50", "R 356x50", "R 406x50"}));
  bench.user.Close(tool.form1);
  EXPECT_EQ(bench.TakeFrames(), (Texts{"W 2=0"}));
  EXPECT_EQ(tool.parameters[Slot::CurrentKp], 900);

  bench.world.ChosenFiles = {{ChosenFile::Outcome::Chosen, "/home/axis.tvd"}};
  bench.user.Click(tool.mdiForm1.mnuSaveAs);
  EXPECT_TRUE(bench.TakeFrames().empty());

  bench.device.Drive.Registers()[sim::Reg::CurrentKp] = 1;
  bench.world.ChosenFiles = {{ChosenFile::Outcome::Chosen, "/home/axis.tvd"}};
  bench.user.Click(tool.mdiForm1.mnuFileOpen);
  EXPECT_EQ(bench.TakeFrames().size(), DownloadFrames);
  EXPECT_EQ(bench.device.Drive.Registers()[sim::Reg::CurrentKp], 900);
  EXPECT_EQ(bench.TakeMessages(),
            (Texts{"Configuration settings from the source file have been loaded successfully."}));

  bench.world.Answers = {MessageAnswer::Yes};
  bench.user.Click(tool.mdiForm1.mnuReset);
  EXPECT_EQ(bench.world.Log.Frames().size(), DownloadFrames + 1);
  EXPECT_EQ(bench.TakeFrames().back(), "W 12=1");
  EXPECT_EQ(bench.device.Drive.Registers()[sim::Reg::CurrentKp],
            sim::FactoryValues()[sim::Reg::CurrentKp]);

  bench.user.Click(tool.mdiForm1.nmuExit);
  EXPECT_TRUE(bench.world.Ended());
  EXPECT_FALSE(bench.world.IsPortOpen());
}

}  // namespace
}  // namespace gainsmith::test
