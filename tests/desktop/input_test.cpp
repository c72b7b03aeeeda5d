// User input: into the record first, then to the handler, and only what the handlers allow.
#include "desk.h"

namespace gainsmith::test {
namespace {

using Lines = std::vector<std::string>;

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
    button.Caption = "Go";
    world.Show(window);
  }
  const Message message{"A message", "T"};
  TextBox field, other;
  CheckBox box;
  OptionButton first, second;
  ComboBox list;
  Button button;
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
  driver.Key("Form.Text1(0)", Qt::Key_Backspace);
  driver.Settle();
  EXPECT_EQ(log, (Lines{"49:", "120:1", "50:1", "13:12", "8:12"}));
  EXPECT_EQ(field.Text, "1");
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
  button.OnPress = [&] { log.push_back("press"); };
  button.OnRelease = [&] { log.push_back("release"); };
  const auto ends = std::vector<std::function<void()>>{
      [&] { driver.Release("Form.Command1"); },
      [&] { driver.Find("Form.Text1(0)")->setFocus(); },
      [&] { button.Enabled = false; },
      [&] { world.ShowMessage(message); },
      [&] { world.Hide(window); },
      [&] { world.Unload(window); },
  };
  for (std::size_t i = 0; i < ends.size(); ++i) {
    log.clear();
    button.Enabled = true;
    Show();
    driver.Press("Form.Command1");
    driver.Settle();
    ASSERT_EQ(log, Lines{"press"}) << i;
    ends[i]();
    driver.Settle();
    EXPECT_EQ(log, (Lines{"press", "release"})) << i;
  }
}

TEST_F(InputTest, ReleaseDuringThePressHandlerRunsNested) {
  button.OnPress = [&] {
    log.push_back("press");
    driver.Release("Form.Command1");
    WaitMs(5);
    log.push_back("pressed");
  };
  button.OnRelease = [&] { log.push_back("release"); };
  driver.Press("Form.Command1");
  driver.Settle();
  EXPECT_EQ(log, (Lines{"press", "release", "pressed"}));
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
  driver.Key("Form.Text1(0)", Qt::Key_Return);
  driver.Settle();
  EXPECT_TRUE(driver.IsShown("Form.Text1(0)"));
}

}  // namespace
}  // namespace gainsmith::test
