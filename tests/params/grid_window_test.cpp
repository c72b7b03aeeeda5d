// The parameters grid: its bulk operations, its rows in the store, and its progress display.
#include "params/grid_window.h"

#include <gtest/gtest.h>

#include "params/config_text.h"
#include "params/golden_frames.h"
#include "support/store_bench.h"

namespace gainsmith::test {
namespace {

using sim::Fault;

constexpr const char* StorePath = "/program/QMX4400en.mdb";
constexpr const char* MarkerPath = "/program/del.tvr";
constexpr const char* FilePath = "/home/motor.tvd";

struct GridTest : testing::Test {
  StoreBench bench;
  Form8 form{bench.World, bench.Line, bench.Store, bench.Shell, bench.Main, bench.Transfer};

  void SetUp() override {
    bench.ConnectDrive();
    Open();
  }
  void Open() {
    bench.Shell.ChildWindowOpen = true;
    bench.World.Show(form);
  }
  // Presses a button and lets the progress display end.
  void Do(Button& button) {
    bench.User.Click(button);
    bench.World.RunFor(100);
  }
  void OpenFile(const std::string& text) {
    bench.World.Files[FilePath] = text;
    bench.Choose(FilePath);
    bench.User.Click(form.Command1);
  }
  std::vector<StoredRow>& Rows() { return bench.World.StoredRows[StorePath]; }
  bool ButtonsShown() const { return form.readdata.Visible && form.Command2.Visible; }
  void ExpectAtRest() {
    EXPECT_TRUE(ButtonsShown() && form.MSFlexGrid1.Enabled);
    EXPECT_FALSE(form.Frame1.Visible || form.Timer2.Enabled());
  }
  std::string Config(float value) {
    ParameterStore store;
    store.ParameterValues.fill(value);
    return FormatConfig(store).value();
  }
};

TEST_F(GridTest, AReadFillsTheRowsAndEndsItsDisplay) {
  bench.World.At(2000, [&] {
    EXPECT_FALSE(ButtonsShown() || form.MSFlexGrid1.Enabled || bench.Waiting.Loaded);
    EXPECT_TRUE(form.Frame1.Visible);
    EXPECT_EQ(form.ProgressBar1.Value, 37000);
    EXPECT_EQ(form.ProgressBar1.Max, 37000);
    EXPECT_EQ(form.Label3.Caption, "100%");
  });
  Do(form.readdata);
  EXPECT_EQ(bench.HexFrames(), BulkReadFrames);
  ExpectAtRest();
  ASSERT_EQ(Rows().size(), 51U);
  EXPECT_EQ(Rows()[30],
            (StoredRow{"Motor Phase Resistance", bench.Store[Slot::Resistance], "0.01~327ohms"}));
  ASSERT_EQ(form.MSFlexGrid1.Rows.size(), 51U);
  EXPECT_EQ(form.MSFlexGrid1.Rows[40][2], "0");
  EXPECT_EQ(form.MSFlexGrid1.CurrentRow, 50);
  EXPECT_EQ(bench.World.Files[MarkerPath], " 0 \r\n");

  Do(form.readdata);
  EXPECT_EQ(Rows().size(), 51U) << "rebuilt, not added to";
  // Closed by hand during a read it stays closed, and the read ends.
  bench.World.At(1000, [&] { bench.User.Close(form); });
  Do(form.readdata);
  EXPECT_EQ(bench.World.Log.Frames().size(), 3U * 44U);
  EXPECT_FALSE(form.Loaded || bench.Shell.ChildWindowOpen);
  EXPECT_TRUE(Rows().empty());
  EXPECT_EQ(bench.World.Files[MarkerPath], " 1 \r\n");
  EXPECT_TRUE(bench.World.Messages.empty());
}

TEST_F(GridTest, SaveAndWriteNeedRowsAndAskNothingMore) {
  const std::string rowsFirst =
      "Please read parameters from drive or open the configuration file first";
  bench.User.Click(form.save);
  bench.User.Click(form.writedata);
  EXPECT_EQ(bench.TakeMessages(),
            (Messages{Tell(rowsFirst, "Prompt! "), Tell(rowsFirst + "\uFF01", "Writing Status!")}));
  EXPECT_TRUE(bench.World.FileDialogs.empty());
  ExpectAtRest();

  OpenFile(Config(0));
  bench.World.Files[FilePath] = "old";
  bench.Choose(FilePath);
  bench.User.Click(form.save);
  EXPECT_EQ(bench.World.Files[FilePath], Config(0));
  EXPECT_EQ(bench.Main.Caption, MainTitle);
  EXPECT_TRUE(bench.World.Messages.empty());

  // The write sends the table and does not store it.
  Do(form.writedata);
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U);
  EXPECT_EQ(bench.World.Log.Frames().back().Text(), "W 246=0");
  const Message confirm = Tell(
      "Please confirm current parameters are conform with parameters in drive", "Writing Status");
  EXPECT_EQ(bench.TakeMessages(), (Messages{confirm, {"Write Completed!", "Prompt!"}}));
  EXPECT_EQ(form.ProgressBar1.Max, 47000);
  ExpectAtRest();

  // A table that can't be sent completes nothing.
  bench.Store[Slot::Inertia] = 9;
  Do(form.writedata);
  EXPECT_EQ(bench.TakeMessages().back().Title, MainTitle);
  ExpectAtRest();

  bench.User.Close(form);
  Open();
  bench.User.Click(form.writedata);
  EXPECT_EQ(bench.TakeMessages(), Messages{Tell(rowsFirst + "\uFF01", "Writing Status!")});
}

TEST_F(GridTest, TheStoreIsAskedForAndReported) {
  const Message ask{"Please confirm current parameters are conform with parameters in drive\uFF01",
                    "Prompt!", MessageButtons::YesNo, MessageIcon::Information, MessageAnswer::Yes};
  bench.World.Answers = {MessageAnswer::No};
  bench.User.Click(form.EEProm);
  EXPECT_EQ(bench.TakeMessages(), Messages{ask});
  EXPECT_TRUE(bench.World.Log.Frames().empty());

  bench.User.Click(form.EEProm);
  EXPECT_EQ(bench.HexFrames(), StoreFrame);
  EXPECT_EQ(bench.TakeMessages(), (Messages{ask, {"Write Completed EEprom!", "Prompt!"}}));

  bench.Inject(Fault::Silent);
  bench.User.Click(form.EEProm);
  EXPECT_EQ(bench.World.Log.Frames().size(), 1U + 12U);
  EXPECT_EQ(bench.TakeMessages(),
            (Messages{ask, LostLink, {"Fail in writing parameters to EEPROM !", "Prompt!"}}));
}

TEST_F(GridTest, OpenFileFailsSilentlyAndRebuildsOnlyOnceAFileWasGood) {
  bench.User.Click(form.Command1);
  OpenFile("0& 7 \r\n1& bad \r\n");
  EXPECT_EQ(bench.Store[Slot::CurrentKp], 7) << "the line before the bad one";
  EXPECT_TRUE(Rows().empty());
  EXPECT_TRUE(bench.Main.lblNotice.Caption.starts_with("motor.tvd could not be read to its end"));

  OpenFile(Config(3));
  EXPECT_TRUE(bench.Main.lblNotice.Caption.starts_with("The values shown are those of the opened"));
  ASSERT_EQ(Rows().size(), 51U);
  EXPECT_EQ(form.MSFlexGrid1.Rows[50][2], "3");
  OpenFile("0& 8 \r\n");
  ASSERT_EQ(Rows().size(), 51U);
  EXPECT_EQ(Rows()[0].Value, 8) << "the rows show what the table holds now";
  EXPECT_TRUE(bench.World.Messages.empty());
  EXPECT_TRUE(bench.World.Log.Frames().empty());
  EXPECT_EQ(bench.World.FileDialogs, Texts(4, "*.tvd|*.tvd|All Files (*.*)"));
}

TEST_F(GridTest, RowsLeftByAnEarlierRunAreClearedByTheirMarkerOnly) {
  const struct {
    const char* What;
    std::optional<std::string> Marker;
    bool FileOpened;
    float FirstValue;  // 0: no rows
  } cases[] = {
      {"missing", {}, false, 1},
      {"left over", " 0 \r\n", false, 0},
      {"left over, and a file opened before the clean-up", " 0 \r\n", true, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    bench.User.Click(form.Command2);
    Rows().assign(51, {"left over", 1, ""});
    bench.World.Files.erase(MarkerPath);
    if (c.Marker) bench.World.Files[MarkerPath] = *c.Marker;
    Open();
    if (c.FileOpened) OpenFile(Config(3));
    bench.World.RunFor(50);
    EXPECT_EQ(Rows().size(), c.FirstValue == 0 ? 0U : 51U);
    EXPECT_EQ(Rows().empty() ? 0 : Rows()[0].Value, c.FirstValue);
    EXPECT_EQ(form.MSFlexGrid1.Rows.size(), Rows().size());
    EXPECT_FALSE(form.dele.Enabled());
  }
}

TEST_F(GridTest, ItsButtonsDoNothingDuringAnotherTransfer) {
  bench.World.At(1000, [&] {
    for (Button* button :
         {&form.readdata, &form.writedata, &form.EEProm, &form.Command1, &form.save}) {
      bench.User.Click(*button);
    }
  });
  EXPECT_TRUE(bench.Transfer.readDrive());
  EXPECT_EQ(bench.World.Log.Frames().size(), 44U);
  EXPECT_TRUE(bench.World.Messages.empty() && bench.World.FileDialogs.empty());
  EXPECT_TRUE(ButtonsShown());
}

}  // namespace
}  // namespace gainsmith::test
