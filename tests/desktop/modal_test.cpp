// Modal windows, message boxes and the life of windows under nested handlers.
#include <QApplication>

#include "desk.h"

namespace gainsmith::test {
namespace {

struct ModalTest : Desk {
  ModalTest() {
    window.Add(open, "Command1").Place(150, 150, 1500, 375);
    window.Add(field, "Text1").Place(150, 600, 1500, 300);
    window.Add(jog, "Command2").Place(150, 1050, 1500, 375);
    dialog.Add(done, "Command1").Place(150, 150, 1500, 375);
    open.OnClick = [&] { log.push_back("main"); };
    done.OnClick = [&] { log.push_back("dialog"); };
    Show();
  }
  const Message question{"Sure?", "Torvane", MessageButtons::YesNo, MessageIcon::Information,
                         MessageAnswer::No};
  Button open, done, jog;
  TextBox field;
  // Declared after the world: taken from the screen before it goes.
  PlainWindow dialog{"Box"};
  ~ModalTest() override { world.EndProgram(); }
};

TEST_F(ModalTest, OtherWindowsTakeNoInputFromTheStartOfTheLoad) {
  dialog.OnLoad = [&] {
    driver.Click("Form.Command1");
    driver.Type("Form.Text1", "9");
    driver.CloseWindow("Form");
    WaitMs(20);
  };
  world.ShowModal(dialog, [&] { log.push_back("closed"); });
  Click("Form.Command1");
  EXPECT_EQ(log, Lines{});
  EXPECT_EQ(field.Text, "");
  EXPECT_TRUE(driver.IsEnabled("Form.Command1"));

  Click("Box.Command1");
  dialog.OnUnload = [] { return false; };
  driver.CloseWindow("Box");
  driver.Settle();
  EXPECT_TRUE(driver.IsShown("Box")) << "a refused close keeps it";
  dialog.OnUnload = {};
  driver.CloseWindow("Box");
  driver.Settle();
  Click("Form.Command1");
  EXPECT_EQ(log, (Lines{"dialog", "closed", "main"}));
}

TEST_F(ModalTest, WindowThatUnloadsItselfInItsLoadIsNeverShown) {
  dialog.OnLoad = [&] { world.Unload(dialog); };
  world.ShowModal(dialog, [&] { log.push_back("closed"); });
  driver.Settle();
  EXPECT_FALSE(driver.IsShown("Box"));
  Click("Form.Command1");
  EXPECT_EQ(log, (Lines{"closed", "main"}));
}

TEST_F(ModalTest, MessagesGiveTheAnswerAndHoldBackEverythingElse) {
  Timer timer;
  timer.IntervalMs = 5;
  timer.OnTimer = [&] { log.push_back("tick"); };
  window.Timers.push_back(&timer);
  open.OnClick = [&] {
    log.push_back(world.ShowMessage(question) == MessageAnswer::Yes ? "yes" : "no");
  };
  driver.Dialogs.OnDialog = [&] {
    timer.Start();
    driver.Click("Form.Command1");
    const std::int64_t endMs = world.NowMs() + 30;
    while (world.NowMs() < endMs) QApplication::processEvents(QEventLoop::AllEvents, 1);
    log.push_back("answered");
    timer.Stop();
  };
  driver.Dialogs.Answers = {MessageAnswer::Yes};
  Click("Form.Command1");
  EXPECT_EQ(log, (Lines{"answered", "yes"}));
  // Without a script the default is pressed.
  EXPECT_EQ(world.ShowMessage(question), MessageAnswer::No);
  ASSERT_EQ(driver.Dialogs.Messages.size(), 2U);
  EXPECT_EQ(driver.Dialogs.Messages[0].Text, question.Text);
  EXPECT_EQ(driver.Dialogs.Messages[0].Title, question.Title);
  window.Timers.clear();
}

// A motor may turn as long as the button is held: its release does not wait for an answer.
TEST_F(ModalTest, ReleasesAreDeliveredBehindEveryDialog) {
  jog.OnPress = [&] { log.push_back("press"); };
  jog.OnRelease = [&] {
    log.push_back("release");
    WaitMs(5);
    world.ShowMessage({"Lost", "Torvane"});
    log.push_back("released");
  };
  const std::vector<std::function<void()>> dialogs{
      [&] { world.ShowMessage(question); },
      [&] { world.AskOpenFile("*.tvd|*.tvd"); },
      [&] { world.AskSaveFile("*.tvd|*.tvd"); },
      [&] { world.AskColour(0); },
  };
  int shown = 0;
  driver.Dialogs.OnDialog = [&] {
    if (++shown == 1) {
      driver.WaitUntil([&] { return !log.empty() && log.back() == "released"; }, 1'000);
      log.push_back("answered");
    }
  };
  world.SetScreenPointer(MousePointer::Hourglass);
  for (std::size_t i = 0; i < dialogs.size(); ++i) {
    log.clear();
    shown = 0;
    Press("Form.Command2");
    dialogs[i]();
    driver.Settle();
    EXPECT_EQ(log, (Lines{"press", "release", "released", "answered"})) << i;
  }
  world.SetScreenPointer(MousePointer::Default);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "put back as often as it was set aside";
}

TEST_F(ModalTest, PressThatADialogOvertookIsNotHeardAfterItsRelease) {
  jog.OnPress = [&] { log.push_back("press"); };
  jog.OnRelease = [&] { log.push_back("release"); };
  open.OnClick = [&] { world.ShowMessage(question); };
  driver.Click("Form.Command1");
  Press("Form.Command2");
  driver.Release("Form.Command2");
  driver.Settle();
  EXPECT_EQ(log, Lines{});
}

TEST_F(ModalTest, MessageOutlivesTheWindowThatAReleaseCloses) {
  jog.OnPress = [] {};
  jog.OnRelease = [&] { world.Unload(window); };
  driver.Dialogs.OnDialog = [&] {
    driver.Settle();
    log.push_back(driver.IsShown("Form") ? "open" : "closed");
  };
  driver.Dialogs.Answers = {MessageAnswer::Yes};
  Press("Form.Command2");
  EXPECT_EQ(world.ShowMessage(question), MessageAnswer::Yes);
  EXPECT_EQ(log, Lines{"closed"});
}

TEST_F(ModalTest, FileDialogsGiveThePathWithTheFirstFiltersExtension) {
  ASSERT_TRUE(world.WriteFile(Path("a.tvd"), "1"));
  driver.Dialogs.Files = {Path("a.tvd"), Path("b"), ""};
  EXPECT_EQ(world.AskOpenFile("*.tvd|*.tvd|").Path, Path("a.tvd"));
  EXPECT_EQ(world.AskSaveFile("*.tvd|*.tvd").Path, Path("b.tvd"));
  EXPECT_EQ(world.AskOpenFile("*.tvd|*.tvd|All Files (*.*)").Result,
            ChosenFile::Outcome::Cancelled);
  driver.Dialogs.Colours = {Rgb(1, 2, 3)};
  EXPECT_EQ(world.AskColour(Rgb(9, 9, 9)), Rgb(1, 2, 3));
  EXPECT_EQ(world.AskColour(Rgb(9, 9, 9)), std::nullopt);
}

TEST_F(ModalTest, AfterTheEndNothingIsShownAskedOrWaitedFor) {
  Timer timer;
  timer.IntervalMs = 5;
  timer.OnTimer = [&] { world.EndProgram(); };
  window.Timers.push_back(&timer);
  open.OnClick = [&] {
    const std::int64_t startMs = world.NowMs();
    timer.Start();
    WaitMs(60'000);
    EXPECT_LT(world.NowMs(), startMs + 20'000) << "the end wakes the wait that is under way";
    EXPECT_EQ(world.ShowMessage(question), MessageAnswer::No);
    world.Show(dialog);
    EXPECT_FALSE(world.WriteFile(Path("late"), "x"));
    log.push_back("unwound");
  };
  driver.Click("Form.Command1");
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_EQ(log, Lines{"unwound"});
  EXPECT_TRUE(driver.Dialogs.Messages.empty());
  EXPECT_FALSE(driver.IsShown("Form") || driver.IsShown("Box"));
  window.Timers.clear();
}

}  // namespace
}  // namespace gainsmith::test
