// Configuration files through the File menu.
#include "params/config_file.h"

#include <gtest/gtest.h>

#include "params/config_text.h"
#include "support/store_bench.h"

namespace gainsmith::test {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* Path = "/home/engineer/line 4/motor.tvd";
constexpr const char* FatalOpen = "Fatal error(s) happened when opening the source file.";
constexpr const char* Loaded =
    "Configuration settings from the source file have been loaded successfully.";
constexpr const char* SaveFailed = "Error(s) happened when saving to the target file";
constexpr const char* AskOverwrite = "Target file already exists. Are you sure to overwrite it?";

struct ConfigFileTest : testing::Test {
  StoreBench bench;

  void SetUp() override { bench.ConnectDrive(); }
  void Choose(const std::string& path) {
    bench.World.ChosenFiles.push_back({ChosenFile::Outcome::Chosen, path});
  }
  void ExpectMessage(const char* text, MessageIcon icon) {
    ASSERT_EQ(bench.MessageTexts(), Texts{text});
    EXPECT_EQ(bench.World.Messages[0].Title, MainTitle);
    EXPECT_EQ(bench.World.Messages[0].Icon, icon);
    bench.World.Messages.clear();
  }
  std::string Present() { return FormatConfig(bench.Store).value(); }
};

TEST_F(ConfigFileTest, OpenLoadsDownloadsAndDoesNotStore) {
  ParameterStore other = bench.Store;
  other[Slot::CurrentKp] = 777;
  other[Slot::Inertia] = 0.00013F;
  other[Slot::Trap2Width] = 8;
  bench.World.Files[Path] = FormatConfig(other).value();
  Choose(Path);
  std::string title;
  bench.World.At(500, [&] { title = bench.Waiting.Caption; });
  bench.User.Click(bench.Main.mnuFileOpen);

  EXPECT_EQ(bench.World.FileDialogs, Texts{"*.tvd|*.tvd|"});
  EXPECT_EQ(title, "Openning Source Configuration File");
  EXPECT_EQ(bench.Store.ParameterValues, other.ParameterValues);
  EXPECT_EQ(bench.Register(0), 777);
  EXPECT_EQ(bench.Register(0xFB), 13);
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U);
  EXPECT_TRUE(bench.World.Log.Writes(12).empty());
  EXPECT_TRUE(bench.World.Log.Writes(0xEF).empty());
  EXPECT_EQ(bench.Main.Caption, "Torvane Gainsmith for KVT518 - [motor.tvd]");
  EXPECT_EQ(bench.Main.CurrentConfigFile, Path);
  EXPECT_TRUE(bench.Main.mnuFileClose.Enabled);
  EXPECT_FALSE(bench.Waiting.Loaded);
  EXPECT_EQ(bench.World.ScreenPointer, MousePointer::Default);
  ExpectMessage(Loaded, MessageIcon::Information);
}

TEST_F(ConfigFileTest, AFileThatCannotBeLoadedDownloadsNothing) {
  const std::string good = Present();
  bench.World.Files[Path] = "0& 5 \r\n12 \r\n";
  Choose(Path);
  Choose("/home/engineer/none.tvd");
  bench.World.ChosenFiles.push_back({ChosenFile::Outcome::Failed, ""});
  for (int i = 0; i < 3; ++i) {
    bench.User.Click(bench.Main.mnuFileOpen);
    ExpectMessage(FatalOpen, MessageIcon::Critical);
  }
  EXPECT_EQ(bench.Store[Slot::CurrentKp], 5);
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_EQ(bench.Main.Caption, MainTitle);
  EXPECT_TRUE(bench.Main.CurrentConfigFile.empty());
  EXPECT_FALSE(bench.Main.mnuFileClose.Enabled);
  EXPECT_FALSE(bench.Waiting.Loaded);
}

TEST_F(ConfigFileTest, AFileWithAValueThatCannotBeSentIsRefused) {
  ParameterStore other = bench.Store;
  other[Slot::Inertia] = 2;
  bench.World.Files[Path] = FormatConfig(other).value();
  Choose(Path);
  bench.User.Click(bench.Main.mnuFileOpen);
  ASSERT_EQ(bench.World.Messages.size(), 1U);
  EXPECT_NE(bench.World.Messages[0].Text.find("Motor Inertia: 2"), std::string::npos);
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_FALSE(bench.Waiting.Loaded);
  EXPECT_EQ(bench.World.ScreenPointer, MousePointer::Default);
  EXPECT_FALSE(bench.Shell.BulkTransferRunning);
  EXPECT_TRUE(bench.Main.CurrentConfigFile.empty());
}

TEST_F(ConfigFileTest, CancelledDialogsSayNothing) {
  bench.User.Click(bench.Main.mnuFileOpen);
  bench.User.Click(bench.Main.mnuSaveAs);
  EXPECT_EQ(bench.World.FileDialogs, (Texts{"*.tvd|*.tvd|", "*.tvd|*.tvd"}));
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_TRUE(bench.World.Files.empty());
}

TEST_F(ConfigFileTest, SaveAsAsksBeforeItReplacesAndLeavesTheDriveAlone) {
  Choose(Path);
  bench.User.Click(bench.Main.mnuSaveAs);
  EXPECT_EQ(bench.World.Files[Path], Present());
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_EQ(bench.Main.Caption, "Torvane Gainsmith for KVT518 - [motor.tvd]");
  EXPECT_EQ(bench.Main.CurrentConfigFile, Path);
  EXPECT_TRUE(bench.Main.mnuFileClose.Enabled);

  const std::string old = bench.World.Files[Path];
  bench.Store[Slot::CurrentKp] = 4321;
  for (const MessageAnswer answer : {MessageAnswer::No, MessageAnswer::Yes}) {
    Choose(Path);
    bench.World.Answers.push_back(answer);
    bench.User.Click(bench.Main.mnuSaveAs);
    ASSERT_EQ(bench.World.Messages.size(), 1U);
    EXPECT_EQ(bench.World.Messages[0].Default, MessageAnswer::No);
    ExpectMessage(AskOverwrite, MessageIcon::Information);
    EXPECT_EQ(bench.World.Files[Path], answer == MessageAnswer::Yes ? Present() : old);
  }
  EXPECT_TRUE(bench.World.Log.Frames().empty());
}

TEST_F(ConfigFileTest, SaveWritesToTheFileInUseOrAsksForOne) {
  Choose("C:\\drives\\motor.tvd");
  bench.User.Click(bench.Main.mnuSave);
  EXPECT_EQ(bench.World.FileDialogs.size(), 1U) << "no file in use: as Save As";
  EXPECT_EQ(bench.Main.Caption, "Torvane Gainsmith for KVT518 - [motor.tvd]");

  bench.Store[Slot::CurrentKp] = 4321;
  bench.User.Click(bench.Main.mnuSave);
  EXPECT_EQ(bench.World.Files["C:\\drives\\motor.tvd"], Present());
  EXPECT_TRUE(bench.World.Messages.empty());

  bench.Files.WriteConfigFile("/copy.tvd", false);
  EXPECT_EQ(bench.World.Files["/copy.tvd"], Present());
  EXPECT_EQ(bench.Main.CurrentConfigFile, "C:\\drives\\motor.tvd") << "a copy is not in use";

  bench.User.Click(bench.Main.mnuFileClose);
  EXPECT_EQ(bench.Main.Caption, MainTitle);
  bench.User.Click(bench.Main.mnuSave);
  EXPECT_EQ(bench.World.FileDialogs.size(), 2U);
}

TEST_F(ConfigFileTest, AFailedSaveKeepsTheOldFileAndTheFileInUse) {
  bench.World.Files[Path] = "old";
  bench.World.Unwritable = {Path};
  Choose(Path);
  bench.World.Answers = {MessageAnswer::Yes};
  bench.User.Click(bench.Main.mnuSaveAs);
  EXPECT_EQ(bench.MessageTexts(), (Texts{AskOverwrite, SaveFailed}));
  EXPECT_EQ(bench.World.Messages[1].Icon, MessageIcon::Critical);
  EXPECT_EQ(bench.World.Files[Path], "old");
  EXPECT_TRUE(bench.Main.CurrentConfigFile.empty());

  bench.World.Messages.clear();
  bench.World.ChosenFiles.push_back({ChosenFile::Outcome::Failed, ""});
  bench.User.Click(bench.Main.mnuSaveAs);
  ExpectMessage(SaveFailed, MessageIcon::Critical);
  Choose("");
  bench.User.Click(bench.Main.mnuSaveAs);
  ExpectMessage("File name can't be empty", MessageIcon::Information);
}

}  // namespace
}  // namespace gainsmith::test
