// User input: into the record first, then to the handler, and only what the handlers allow.
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QPushButton>

#include "desk.h"

namespace gainsmith::test {
namespace {

struct InputTest : Desk {
  InputTest() {
    window.Add(field, "Text1(0)").Place(150, 150, 1500, 300);
    window.Add(other, "Text1(1)").Place(150, 600, 1500, 300);
    window.Add(box, "Check1").Place(150, 1050, 2000, 300);
    window.Add(first, "Option1(0)").Place(150, 1500, 2000, 300);
    window.Add(second, "Option1(1)").Place(150, 1950, 2000, 300);
    window.Add(list, "Combo1").Place(150, 2400, 2000, 330);
    window.Add(button, "Command1").Place(150, 3000, 1500, 375);
    list.Items = {{"9600", 1, ""}, {"38400", 3, ""}};
    window.Add(jog, "Command2").Place(2000, 3000, 1500, 375);
    window.Add(link, "lblLink").Place(150, 3600, 1500, 300);
    window.Add(group, "Frame1").Place(3000, 150, 2500, 1000);
    window.Add(inside, "Command3", &group).Place(150, 300, 1500, 375);
    button.Caption = "Go";
    link.OnClick = [&] { log.push_back("link"); };
    world.Show(window);
  }
  const Message message{"A message", "T"};
  TextBox field, other;
  CheckBox box;
  OptionButton first, second;
  ComboBox list;
  Button button, jog, inside;
  Frame group;
  Label link;
};

TEST_F(InputTest, RecordIsSetBeforeItsHandlerRuns) {
  box.OnClick = [&] { log.push_back(box.Ticked ? "ticked" : "clear"); };
  second.OnClick = [&] { log.push_back(second.Selected && !first.Selected ? "second" : "wrong"); };
  list.OnClick = [&] { log.push_back(list.Text + "/" + std::to_string(list.ChosenData())); };
  button.OnClick = [&] { log.push_back("click " + field.Text); };
  first.Selected = true;

  driver.Type("Form.Text1(0)", "12a");
  driver.Click("Form.Check1");
  driver.Click("Form.Option1(1)");
  driver.Choose("Form.Combo1", 1);
  Click("Form.Command1");
  EXPECT_EQ(log, (Lines{"ticked", "second", "38400/3", "click 12a"}));
  EXPECT_FALSE(first.Selected);
}

TEST_F(InputTest, KeyFilterIsAskedBeforeTheKeyTakesEffect) {
  field.OnKeyPress = [&](int key) {
    log.push_back(std::to_string(key) + ":" + field.Text);
    return key == KeyBackspace || key == KeyEnter || (key >= '0' && key <= '9');
  };
  driver.Type("Form.Text1(0)", "1x2");
  driver.Key("Form.Text1(0)", Qt::Key_Return);
  Key("Form.Text1(0)", Qt::Key_Backspace);
  EXPECT_EQ(log, (Lines{"49:", "120:1", "50:1", "8:12", "13:12"})) << "Enter is queued";
  EXPECT_EQ(field.Text, "1");
  QApplication::clipboard()->setText(QStringLiteral("2x\n3"));
  Key("Form.Text1(0)", Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(field.Text, "123") << "pasted letters are asked about one by one";
}

TEST_F(InputTest, EnterHeldDownCommitsOnceAndWhatStoodInTheField) {
  field.OnKeyPress = [&](int key) {
    if (key != KeyEnter) return true;
    log.push_back(field.Text);
    WaitMs(5);
    return true;
  };
  driver.Type("Form.Text1(0)", "12");
  driver.HoldKey("Form.Text1(0)", Qt::Key_Return, 20);
  Key("Form.Text1(0)", Qt::Key_3);
  EXPECT_EQ(log, Lines{"12"}) << "a letter typed behind Enter is not committed with it";
  EXPECT_EQ(field.Text, "123");
  driver.Find("Form.lblLink")->setFocus();
  driver.HoldKey("Form.lblLink", Qt::Key_Return, 20);
  driver.Settle();
  EXPECT_EQ(log, (Lines{"12", "link"}));
}

// X tells of a key that repeats as of releases and presses, each pair at one moment.
TEST_F(InputTest, AKeyThatRepeatsInPairsHoldsAButtonOrPressesItOnce) {
  jog.OnPress = [&] { log.push_back("press"); };
  jog.OnRelease = [&] { log.push_back("release"); };
  button.OnClick = [&] { log.push_back("click"); };
  const auto send = [&](const char* name, QEvent::Type type, int key, quint64 atMs) {
    QKeyEvent event(type, key, Qt::NoModifier);
    event.setTimestamp(atMs);
    QCoreApplication::sendEvent(driver.Find(name), &event);
  };
  const auto holdKey = [&](const char* name, int key, quint64 fromMs) {
    send(name, QEvent::KeyPress, key, fromMs);
    for (quint64 atMs = fromMs + 500; atMs < fromMs + 1000; atMs += 40) {
      send(name, QEvent::KeyRelease, key, atMs);
      send(name, QEvent::KeyPress, key, atMs);
      driver.Settle();
    }
    send(name, QEvent::KeyRelease, key, fromMs + 1010);
    driver.Settle();
  };
  driver.Find("Form.Command2")->setFocus();
  holdKey("Form.Command2", Qt::Key_Space, 1000);
  EXPECT_TRUE(driver.WaitUntil([&] { return log.back() == "release"; }));
  EXPECT_EQ(log, (Lines{"press", "release"}));
  log.clear();
  // Two presses, the second right behind the first one's release.
  holdKey("Form.Command1", Qt::Key_Return, 3000);
  holdKey("Form.Command1", Qt::Key_Space, 5000);
  holdKey("Form.Command1", Qt::Key_Space, 6020);
  EXPECT_TRUE(driver.WaitUntil([&] { return log.size() >= 3; }));
  field.OnKeyPress = [&](int) {
    log.push_back("commit");
    return true;
  };
  holdKey("Form.Text1(0)", Qt::Key_Return, 9000);
  EXPECT_TRUE(driver.WaitUntil([&] { return log.size() >= 4; }));
  EXPECT_EQ(log, (Lines{"click", "click", "click", "commit"}));
}

// Handlers that wait let in the next action; what waits for room is neither lost nor out of order.
TEST_F(InputTest, NestedActionsHaveABoundThatReleasesDoNotWaitFor) {
  constexpr int Clicks = 3 * InputQueue::MostNested;
  auto& go = dynamic_cast<QPushButton&>(*driver.Find("Form.Command1"));
  int depth = 0, deepest = 0, run = 0;
  jog.OnPress = [&] { log.push_back("press"); };
  jog.OnRelease = [&] { log.push_back("release at " + std::to_string(depth)); };
  box.OnClick = [&] { log.push_back("box after " + std::to_string(run)); };
  button.OnClick = [&] {
    deepest = std::max(deepest, ++depth);
    if (++run < Clicks) emit go.clicked();
    if (run == InputQueue::MostNested) driver.Release("Form.Command2");
    if (run == Clicks) driver.Click("Form.Check1");
    WaitMs(2);
    --depth;
  };
  Press("Form.Command2");
  emit go.clicked();
  driver.WaitUntil([&] { return box.Ticked; });
  EXPECT_EQ(deepest, InputQueue::MostNested);
  EXPECT_EQ(log, (Lines{"press", "release at 12", "box after 36"}));
}

// What the user does in the same breath as an action whose handler takes the control away.
TEST_F(InputTest, ActionsDoNotReachWhatWasTakenAwayBeforeTheirTurn) {
  PlainWindow dialog{"Box"};
  FrameWindow frame;
  frame.Name = "Main";
  MenuItem item;
  item.Name = "mnuGo";
  ToolButton tool{"Go", "open", true, {}};
  frame.Menus = {&item};
  frame.ToolButtons = {&tool};
  world.Show(frame);
  const auto click = [&](const char* name) { return [&, name] { driver.Click(name); }; };
  struct Case {
    std::function<void()> Act;
    std::function<void()>* Handler;
    std::function<void(bool)> SetThere;
  };
  const auto flag = [](bool& there) { return [&there](bool on) { there = on; }; };
  const std::vector<Case> cases{
      {click("Form.Command1"), &button.OnClick, flag(button.Enabled)},
      {click("Form.Check1"), &box.OnClick, flag(box.Enabled)},
      {click("Form.lblLink"), &link.OnClick, flag(link.Enabled)},
      {[&] { driver.Choose("Form.Combo1", 1); }, &list.OnClick, flag(list.Enabled)},
      {[&] { driver.Menu("Main.mnuGo"); }, &item.OnClick, flag(item.Enabled)},
      {click("Main.Toolbar1(1)"), &tool.OnClick, flag(tool.Enabled)},
      {click("Form.Command1"), &button.OnClick, flag(button.Visible)},
      {click("Form.Command3"), &inside.OnClick, flag(group.Enabled)},
      {click("Form.Command3"), &inside.OnClick, flag(group.Visible)},
      {click("Form.Command3"), &inside.OnClick,
       [&](bool there) { there ? world.Show(window) : world.Hide(window); }},
      {click("Form.Command1"), &button.OnClick,
       [&](bool there) { there ? void(world.Unload(dialog)) : world.ShowModal(dialog); }},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    int run = 0;
    *cases[i].Handler = [&] {
      ++run;
      cases[i].SetThere(false);
    };
    driver.Settle();
    cases[i].Act();
    cases[i].Act();
    driver.Settle();
    EXPECT_EQ(run, 1) << i;
    cases[i].SetThere(true);
  }
  world.EndProgram();
}

TEST_F(InputTest, LeavingAFieldIsToldOnceAndNotForMessagesOrCode) {
  field.OnLostFocus = [&] { log.push_back("left"); };
  Click("Form.Text1(0)");
  world.ShowMessage(message);
  driver.Settle();
  field.Enabled = false;
  driver.Settle();
  field.Enabled = true;
  driver.Settle();
  EXPECT_EQ(log, Lines{});
  driver.Click("Form.Text1(0)");
  Click("Form.Text1(1)");
  EXPECT_EQ(log, Lines{"left"});
}

// By its own handler, as buttons do that wait for the drive.
TEST_F(InputTest, FocusComesHomeToAButtonThatWasDisabled) {
  field.Text = other.Text = "500";
  for (TextBox* text : {&field, &other}) text->OnLostFocus = [&] { log.push_back("left"); };
  const auto has = [&](const char* name) { return driver.Find(name)->hasFocus(); };
  std::function<void()> meanwhile;
  button.OnClick = [&] {
    button.Enabled = false;
    WaitMs(2);
    EXPECT_FALSE(has("Form.Text1(0)") || has("Form.Text1(1)") || has("Form.Command2"));
    meanwhile();
    WaitMs(2);
    button.Enabled = true;
  };
  driver.Find("Form.Command1")->setFocus(Qt::TabFocusReason);
  meanwhile = [&] {
    driver.Key("Form", Qt::Key_Space);
    world.ShowMessage(message);
  };
  Key("Form", Qt::Key_Space);
  EXPECT_TRUE(has("Form.Command1"));
  EXPECT_EQ(field.Text + other.Text, "500500");
  meanwhile = [&] { world.SetFocus(other); };
  Key("Form", Qt::Key_Space);
  EXPECT_TRUE(has("Form.Text1(1)")) << "a handler gave it elsewhere";
  EXPECT_EQ(log, Lines{});

  // With what it lies in.
  driver.Find("Form.Command3")->setFocus();
  group.Enabled = false;
  driver.Settle();
  EXPECT_FALSE(has("Form.Command2"));
  group.Enabled = true;
  driver.Settle();
  EXPECT_TRUE(has("Form.Command3"));
}

TEST_F(InputTest, EnterAndEscPressTheirButtonsWhereTheyMeanNothingElse) {
  button.OnClick = [&] { log.push_back("default"); };
  jog.OnClick = [&] { log.push_back("cancel"); };
  inside.OnClick = [&] { log.push_back("own"); };
  field.OnKeyPress = [&](int key) {
    if (key == KeyEnter) log.push_back("committed");
    return true;
  };
  const auto keys = [&](const char* focus) {
    driver.Find(focus)->setFocus();
    log.clear();
    driver.Key("Form", Qt::Key_Escape);
    driver.HoldKey("Form", Qt::Key_Return, 3);
    driver.Settle();
    return log;
  };
  EXPECT_EQ(keys("Form.Combo1"), Lines{}) << "a window without such buttons";
  button.Default = jog.Cancel = true;
  driver.Settle();
  EXPECT_EQ(keys("Form.Combo1"), (Lines{"cancel", "default"}));
  EXPECT_EQ(keys("Form.Command3"), (Lines{"cancel", "own"}));
  EXPECT_EQ(keys("Form.Text1(0)"), (Lines{"cancel", "committed"}));
  button.Enabled = jog.Enabled = false;
  driver.Settle();
  EXPECT_EQ(keys("Form.Combo1"), Lines{});
}

TEST_F(InputTest, FocusGivenBeforeTheWindowIsShownOrTheFieldEnabled) {
  ASSERT_TRUE(world.Unload(window));
  other.Enabled = false;
  window.OnLoad = [&] {
    other.Enabled = true;
    world.SetFocus(other);
  };
  Show();
  EXPECT_TRUE(driver.Find("Form.Text1(1)")->hasFocus());
}

TEST_F(InputTest, EveryPressIsReleasedOnceHoweverItEnds) {
  const auto ends = std::vector<std::function<void()>>{
      [&] { driver.Release("Form.Command1"); },
      [&] { driver.Find("Form.Text1(0)")->setFocus(); },
      [&] { button.Enabled = false; },
      [&] { world.ShowMessage(message); },
      [&] { world.Hide(window); },
      [&] { world.Unload(window); },
  };
  // While its handler runs, and behind it.
  for (const bool nested : {true, false}) {
    for (std::size_t i = 0; i < (nested ? 1 : ends.size()); ++i) {
      button.OnPress = [&] {
        log = {"press"};
        if (nested) ends[i]();
        WaitMs(5);
        log.push_back("pressed");
      };
      button.OnRelease = [&] { log.push_back("release"); };
      button.Enabled = true;
      Show();
      Press("Form.Command1");
      if (!nested) ends[i]();
      driver.Settle();
      EXPECT_EQ(log, (nested ? Lines{"press", "release", "pressed"}
                             : Lines{"press", "pressed", "release"}))
          << i;
    }
  }
}

TEST_F(InputTest, WindowClosedAndShownAgainInsideAKeyHandler) {
  field.OnKeyPress = [&](int) {
    world.Unload(window);
    WaitMs(2);
    world.Show(window);
    WaitMs(2);
    return true;
  };
  driver.Settle();
  Key("Form.Text1(0)", Qt::Key_Return);
  EXPECT_TRUE(driver.IsShown("Form.Text1(0)"));
}

}  // namespace
}  // namespace gainsmith::test
