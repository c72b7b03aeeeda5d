// The parameters grid: its bulk operations, its rows in the store, and its progress display.
#include "params/grid_window.h"

#include <gtest/gtest.h>

#include "params/config_text.h"
#include "params/golden_frames.h"
#include "support/store_bench.h"

namespace gainsmith::test {
namespace {

using sim::Fault;
using Texts = std::vector<std::string>;

constexpr const char* StorePath = "/program/QMX4400en.mdb";
constexpr const char* MarkerPath = "/program/del.tvr";
constexpr const char* FilePath = "/home/motor.tvd";

struct GridTest : testing::Test {
  StoreBench bench;
  Form8 form{bench.World, bench.Line, bench.Store, bench.Shell, bench.Transfer};

  void SetUp() override { bench.ConnectDrive(); }
  void Open() {
    bench.Shell.ChildWindowOpen = true;
    bench.World.Show(form);
  }
  // Presses a button and lets the progress display end.
  void Do(Button& button) {
    bench.User.Click(button);
    bench.World.RunFor(100);
  }
  std::vector<StoredRow>& Rows() { return bench.World.StoredRows[StorePath]; }
  std::string Marker() { return bench.World.Files[MarkerPath]; }
  bool ButtonsShown() const { return form.readdata.Visible && form.Command2.Visible; }
  void Choose(const std::string& text) {
    bench.World.Files[FilePath] = text;
    bench.World.ChosenFiles.push_back({ChosenFile::Outcome::Chosen, FilePath});
  }
  std::string Config(float value) {
    ParameterStore store;
    store.ParameterValues.fill(value);
    return FormatConfig(store).value();
  }
};

TEST_F(GridTest, AReadFillsTheRowsAndEndsItsDisplay) {
  Open();
  bool hidden = false;
  bool counted = false;
  bench.World.At(2000, [&] {
    hidden = !ButtonsShown() && !form.MSFlexGrid1.Enabled;
    counted = form.Frame1.Visible && form.ProgressBar1.Value == 37000 &&
              form.ProgressBar1.Max == 37000 && form.Label3.Caption == "100%";
    EXPECT_FALSE(bench.Waiting.Loaded);
  });
  bench.User.Click(form.readdata);
  EXPECT_EQ(bench.HexFrames(), Texts(BulkReadFrames.begin(), BulkReadFrames.end()));
  EXPECT_TRUE(hidden);
  EXPECT_TRUE(counted);
  bench.World.RunFor(100);
  EXPECT_TRUE(ButtonsShown());
  EXPECT_TRUE(form.MSFlexGrid1.Enabled);
  EXPECT_FALSE(form.Frame1.Visible);
  EXPECT_FALSE(form.Timer2.Enabled());

  ASSERT_EQ(Rows().size(), 51U);
  EXPECT_EQ(Rows()[30],
            (StoredRow{"Motor Phase Resistance", bench.Store[Slot::Resistance], "0.01~327ohms"}));
  ASSERT_EQ(form.MSFlexGrid1.Rows.size(), 51U);
  EXPECT_EQ(form.MSFlexGrid1.Rows[35][1], "Input Smoothing ");
  EXPECT_EQ(form.MSFlexGrid1.Rows[40][2], "0");
  EXPECT_EQ(form.MSFlexGrid1.CurrentRow, 50);
  EXPECT_EQ(Marker(), " 0 \r\n");
  EXPECT_TRUE(bench.World.Messages.empty());

  Do(form.readdata);
  EXPECT_EQ(Rows().size(), 51U) << "rebuilt, not added to";
  bench.User.Click(form.Command2);
  EXPECT_TRUE(Rows().empty());
  EXPECT_EQ(Marker(), " 1 \r\n");
  EXPECT_FALSE(bench.Shell.ChildWindowOpen);
}

TEST_F(GridTest, AReadThatFailsClosesTheWindow) {
  Open();
  bench.World.At(1000, [&] { bench.Inject(Fault::Silent); });
  bench.User.Click(form.readdata);
  EXPECT_EQ(bench.MessageTexts(), Texts{LostLinkText});
  EXPECT_FALSE(form.Loaded);
  EXPECT_FALSE(bench.Shell.ChildWindowOpen);
  EXPECT_FALSE(bench.Shell.BulkTransferRunning);
  EXPECT_TRUE(bench.World.IsPortOpen());

  bench.Device.Drive.ClearFaults();
  Open();
  EXPECT_TRUE(ButtonsShown());
  Do(form.readdata);
  EXPECT_EQ(Rows().size(), 51U);
}

TEST_F(GridTest, NothingIsWrittenBeforeThereAreRows) {
  Open();
  bench.User.Click(form.writedata);
  bench.User.Click(form.save);
  EXPECT_EQ(bench.MessageTexts(),
            (Texts{"Please read parameters from drive or open the configuration file first\uFF01",
                   "Please read parameters from drive or open the configuration file first"}));
  EXPECT_EQ(bench.World.Messages[0].Title, "Writing Status!");
  EXPECT_EQ(bench.World.Messages[1].Title, "Prompt! ");
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_TRUE(bench.World.FileDialogs.empty());
  EXPECT_TRUE(ButtonsShown());
}

TEST_F(GridTest, AWriteSendsTheTableWithoutAStore) {
  Open();
  Choose(Config(0));
  bench.User.Click(form.Command1);
  Do(form.writedata);
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U);
  EXPECT_EQ(bench.World.Log.Frames().back().Text(), "W 246=0");
  EXPECT_EQ(bench.MessageTexts(),
            (Texts{"Please confirm current parameters are conform with parameters in drive",
                   "Write Completed!"}));
  EXPECT_EQ(form.ProgressBar1.Max, 47000);
  EXPECT_EQ(form.ProgressPhase, 2);
  EXPECT_TRUE(ButtonsShown());

  // A table that can't be sent completes nothing.
  bench.World.Messages.clear();
  bench.Store[Slot::Inertia] = 9;
  Do(form.writedata);
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U);
  EXPECT_NE(bench.World.Messages.back().Text, "Write Completed!");
  EXPECT_TRUE(ButtonsShown());
}

TEST_F(GridTest, TheStoreIsAskedForAndReported) {
  Open();
  bench.World.Answers = {MessageAnswer::No};
  bench.User.Click(form.EEProm);
  EXPECT_TRUE(bench.World.Log.Frames().empty());

  bench.World.Messages.clear();
  bench.User.Click(form.EEProm);
  EXPECT_EQ(bench.HexFrames(), Texts{StoreFrame});
  EXPECT_EQ(bench.World.Messages[1].Text, "Write Completed EEprom!");

  bench.World.Messages.clear();
  bench.Inject(Fault::Silent);
  bench.User.Click(form.EEProm);
  ASSERT_EQ(bench.World.Messages.size(), 3U);
  EXPECT_EQ(bench.World.Messages[1].Text, LostLinkText);
  EXPECT_EQ(bench.World.Messages[2].Text, "Fail in writing parameters to EEPROM !");
  EXPECT_FALSE(form.EepromFailed);
}

TEST_F(GridTest, OpenFileFailsSilentlyAndRebuildsOnlyOnceAFileWasGood) {
  Open();
  bench.User.Click(form.Command1);
  Choose("0& 7 \r\n1& bad \r\n");
  bench.User.Click(form.Command1);
  EXPECT_EQ(bench.Store[Slot::CurrentKp], 7) << "the line before the bad one";
  EXPECT_TRUE(Rows().empty());
  EXPECT_FALSE(form.RowsValid);

  Choose(Config(3));
  bench.User.Click(form.Command1);
  ASSERT_EQ(Rows().size(), 51U);
  EXPECT_EQ(form.MSFlexGrid1.Rows[50][2], "3");
  EXPECT_EQ(form.MSFlexGrid1.CurrentRow, 50);

  Choose("0& 8 \r\n");
  bench.User.Click(form.Command1);
  ASSERT_EQ(Rows().size(), 51U);
  EXPECT_EQ(Rows()[0].Value, 8) << "the rows show what the table holds now";
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_EQ(bench.World.FileDialogs, Texts(4, "*.tvd|*.tvd|All Files (*.*)"));
}

TEST_F(GridTest, SaveToFileReplacesWithoutAQuestion) {
  Open();
  Do(form.readdata);
  Choose("old");
  bench.User.Click(form.save);
  EXPECT_EQ(bench.World.Files[FilePath], FormatConfig(bench.Store).value());
  bench.World.Unwritable = {FilePath};
  Choose("old");
  bench.User.Click(form.save);
  EXPECT_EQ(bench.World.Files[FilePath], "old");
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_EQ(bench.Main.Caption, MainTitle);
}

TEST_F(GridTest, RowsLeftByAnEarlierRunAreClearedByTheirMarkerOnly) {
  const std::vector<StoredRow> left(51, {"left over", 1, ""});
  struct Case {
    const char* What;
    std::optional<std::string> Marker;
    std::size_t Rows;
  };
  const Case cases[] = {{"clean", " 1 \r\n", 51}, {"missing", {}, 51}, {"left over", " 0 \r\n", 0}};
  for (const Case& c : cases) {
    Rows() = left;
    bench.World.Files.erase(MarkerPath);
    if (c.Marker) bench.World.Files[MarkerPath] = *c.Marker;
    Open();
    bench.World.RunFor(50);
    EXPECT_EQ(Rows().size(), c.Rows) << c.What;
    EXPECT_EQ(form.MSFlexGrid1.Rows.size(), c.Rows) << c.What;
    EXPECT_FALSE(form.dele.Enabled());
    bench.User.Close(form);
  }

  // A file opened before the clean-up has come keeps its rows.
  Rows() = left;
  bench.World.Files[MarkerPath] = " 0 \r\n";
  Open();
  Choose(Config(3));
  bench.User.Click(form.Command1);
  bench.World.RunFor(50);
  ASSERT_EQ(Rows().size(), 51U);
  EXPECT_EQ(Rows()[0].Value, 3);
}

TEST_F(GridTest, ClosedByHandDuringAReadItStaysClosedAndTheReadEnds) {
  Open();
  Do(form.readdata);
  bench.World.Log.Clear();
  bench.World.At(1000, [&] { bench.User.Close(form); });
  bench.User.Click(form.readdata);
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U);
  EXPECT_FALSE(form.Loaded);
  EXPECT_TRUE(Rows().empty());
  EXPECT_EQ(Marker(), " 1 \r\n");
}

TEST_F(GridTest, ItsButtonsDoNothingDuringAnotherTransfer) {
  Open();
  bench.World.At(1000, [&] {
    for (Button* button :
         {&form.readdata, &form.writedata, &form.EEProm, &form.Command1, &form.save}) {
      bench.User.Click(*button);
    }
  });
  EXPECT_TRUE(bench.Transfer.readDrive());
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U);
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_TRUE(ButtonsShown());
}

}  // namespace
}  // namespace gainsmith::test
