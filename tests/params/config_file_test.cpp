// Configuration files through the File menu.
#include "params/config_file.h"

#include <gtest/gtest.h>

#include "params/config_text.h"
#include "support/store_bench.h"

namespace gainsmith::test {
namespace {

using Outcome = ChosenFile::Outcome;

constexpr const char* Path = "/home/engineer/line 4/motor.tvd";
constexpr const char* CaptionWithFile = "Torvane Gainsmith for KVT518 - [motor.tvd]";

struct ConfigFileTest : testing::Test {
  StoreBench bench;

  void SetUp() override { bench.ConnectDrive(); }
  std::string Present() { return FormatConfig(bench.Store).value(); }
};

TEST_F(ConfigFileTest, OpenLoadsDownloadsAndDoesNotStore) {
  ParameterStore other = bench.Store;
  other[Slot::CurrentKp] = 777;
  other[Slot::Inertia] = 0.00013F;
  other[Slot::Trap2Width] = 8;
  bench.World.Files[Path] = FormatConfig(other).value();
  bench.Choose(Path);
  std::string title;
  bench.World.At(500, [&] { title = bench.Waiting.Caption; });
  bench.User.Click(bench.Main.mnuFileOpen);

  EXPECT_EQ(title, "Openning Source Configuration File");
  EXPECT_EQ(bench.Store.ParameterValues, other.ParameterValues);
  EXPECT_EQ(bench.Register(0), 777);
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U);
  EXPECT_TRUE(bench.World.Log.Writes(12).empty());
  EXPECT_EQ(bench.Main.Caption, CaptionWithFile);
  EXPECT_EQ(bench.Main.CurrentConfigFile, Path);
  EXPECT_FALSE(bench.Waiting.Loaded);
  EXPECT_EQ(bench.TakeMessages(),
            Messages{Tell("Configuration settings from the source file have been loaded "
                          "successfully.",
                          MainTitle)});
}

TEST_F(ConfigFileTest, AFileWithAValueThatNoRegisterHoldsIsLoadedAndNotSent) {
  ParameterStore other = bench.Store;
  other[Slot::CurrentKp] = 70000;
  bench.World.Files[Path] = FormatConfig(other).value();
  bench.Choose(Path);
  bench.User.Click(bench.Main.mnuFileOpen);
  EXPECT_EQ(bench.Store[Slot::CurrentKp], 70000);
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_EQ(bench.Main.CurrentConfigFile, "");
  const Messages told = bench.TakeMessages();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_TRUE(told[0].Text.starts_with("Nothing was sent to the drive.")) << told[0].Text;
}

TEST_F(ConfigFileTest, AFileThatCannotBeUsedDownloadsNothing) {
  const Message fatal = Tell("Fatal error(s) happened when opening the source file.", MainTitle,
                             MessageIcon::Critical);
  const struct {
    const char* What;
    ChosenFile Chosen;
    std::string Text;
    Messages Told;
  } cases[] = {
      {"cancelled", {}, "", {}},
      {"a dialog that fails", {Outcome::Failed, ""}, "", {fatal}},
      {"a missing file", {Outcome::Chosen, "/none.tvd"}, "", {fatal}},
      {"a bad first line", {Outcome::Chosen, Path}, "0& 5x \r\n", {fatal}},
      {"a bad second line", {Outcome::Chosen, Path}, "0& 5 \r\n12 \r\n", {fatal}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    bench.World.Files[Path] = c.Text;
    bench.World.ChosenFiles = {c.Chosen};
    bench.User.Click(bench.Main.mnuFileOpen);
    EXPECT_EQ(bench.TakeMessages(), c.Told);
    EXPECT_TRUE(bench.World.Log.Frames().empty());
    EXPECT_TRUE(bench.Main.CurrentConfigFile.empty());
    EXPECT_FALSE(bench.Main.mnuFileClose.Enabled);
    EXPECT_EQ(bench.Main.lblNotice.Visible, bench.Store[Slot::CurrentKp] == 5);
  }
  EXPECT_EQ(bench.World.FileDialogs, Texts(std::size(cases), "*.tvd|*.tvd|"));

  // What the table holds is said until it is whole again, whatever else is done with it.
  const std::string mixture =
      "motor.tvd could not be read to its end: the tool now holds a mixture of its settings and "
      "the "
      "earlier ones. Do not save or download it. Open a whole file, or close the connection and "
      "open "
      "it again to read the drive.";
  EXPECT_EQ(bench.Main.lblNotice.Caption, mixture);
  bench.World.At(1000, [&] { bench.Line.ClosePort(); });
  bench.Main.ReadFromDrive.OnClick();
  EXPECT_TRUE(bench.Main.lblNotice.Caption.starts_with(mixture + "\nThe connection was closed"));
  bench.ConnectDrive();
  EXPECT_EQ(bench.Main.lblNotice.Caption, "");
}

TEST_F(ConfigFileTest, AFileOpenedWithADeadDriveSaysSoWhileItLasts) {
  bench.World.Files[Path] = Present();
  bench.Choose(Path);
  bench.Inject(sim::Fault::Silent, sim::Hits::Next(8));
  const std::string& notice = bench.Main.lblNotice.Caption;
  bench.World.At(4000, [&] {
    EXPECT_EQ(notice,
              "The drive is not answering. To end this, choose Drive, Connect and press "
              "Close.");
  });
  bench.World.At(7000, [&] { EXPECT_EQ(notice, "") << "it answers again"; });
  bench.User.Click(bench.Main.mnuFileOpen);
  EXPECT_EQ(notice,
            "The drive did not take: Current Loop Proportional Gain, Current Loop Integral Gain");
  EXPECT_EQ(bench.TakeMessages().size(), 1U) << "the words of success are fixed";
}

TEST_F(ConfigFileTest, SaveAsAsksBeforeItReplacesAndKeepsTheOldFileWhereItFails) {
  const Message ask{"Target file already exists. Are you sure to overwrite it?", MainTitle,
                    MessageButtons::YesNo, MessageIcon::Information, MessageAnswer::No};
  const Message failed =
      Tell("Error(s) happened when saving to the target file", MainTitle, MessageIcon::Critical);
  const Message noName = Tell("File name can't be empty", MainTitle);
  const struct {
    const char* What;
    ChosenFile Chosen;
    MessageAnswer Answer;
    bool Writable;
    Messages Told;
    bool Saved;
  } cases[] = {
      {"cancelled", {}, {}, true, {}, false},
      {"a dialog that fails", {Outcome::Failed, ""}, {}, true, {failed}, false},
      {"no name", {Outcome::Chosen, ""}, {}, true, {noName}, false},
      {"No", {Outcome::Chosen, Path}, MessageAnswer::No, true, {ask}, false},
      {"a full disk", {Outcome::Chosen, Path}, MessageAnswer::Yes, false, {ask, failed}, false},
      {"Yes", {Outcome::Chosen, Path}, MessageAnswer::Yes, true, {ask}, true},
      {"a new file", {Outcome::Chosen, "C:\\new\\motor.tvd"}, {}, true, {}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    bench.World.Files = {{Path, "old"}};
    bench.World.Unwritable.clear();
    if (!c.Writable) bench.World.Unwritable = {Path};
    bench.World.ChosenFiles = {c.Chosen};
    bench.World.Answers = {c.Answer};
    bench.User.Click(bench.Main.mnuSaveAs);
    EXPECT_EQ(bench.TakeMessages(), c.Told);
    EXPECT_EQ(bench.World.Files[c.Saved ? c.Chosen.Path : Path], c.Saved ? Present() : "old");
    EXPECT_EQ(bench.Main.CurrentConfigFile, c.Saved ? c.Chosen.Path : "");
    EXPECT_EQ(bench.Main.Caption, c.Saved ? CaptionWithFile : MainTitle);
    EXPECT_EQ(bench.Main.mnuFileClose.Enabled, c.Saved);
  }
  EXPECT_EQ(bench.World.FileDialogs, Texts(std::size(cases), "*.tvd|*.tvd"));
  EXPECT_TRUE(bench.World.Log.Frames().empty());
}

TEST_F(ConfigFileTest, SaveWritesToTheFileInUseOrAsksForOne) {
  bench.Choose(Path);
  bench.User.Click(bench.Main.mnuSave);
  EXPECT_EQ(bench.World.FileDialogs.size(), 1U) << "no file in use: as Save As";
  EXPECT_EQ(bench.Main.CurrentConfigFile, Path);

  bench.Store[Slot::CurrentKp] = 4321;
  bench.User.Click(bench.Main.mnuSave);
  EXPECT_EQ(bench.World.Files[Path], Present());
  EXPECT_TRUE(bench.World.Messages.empty());

  bench.User.Click(bench.Main.mnuFileClose);
  bench.User.Click(bench.Main.mnuSave);
  EXPECT_EQ(bench.World.FileDialogs.size(), 2U);
}

}  // namespace
}  // namespace gainsmith::test
