// Widgets show what their records hold, whoever changed which of the two.
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QTabBar>
#include <QTableWidget>

#include "desk.h"

namespace gainsmith::test {
namespace {

// One control of each kind that a user can change, and what each holds and shows.
struct ShownTest : Desk {
  ShownTest() {
    Stack(window.Add(field, "Text1"));
    Stack(window.Add(digits, "Text2"));
    Stack(window.Add(box, "Check1"));
    Stack(window.Add(first, "Option1(0)"));
    Stack(window.Add(second, "Option1(1)"));
    Stack(window.Add(list, "Combo1"));
    Stack(window.Add(editable, "Combo2"));
    Stack(window.Add(tabs, "SSTab1"));
    Stack(window.Add(grid, "MSFlexGrid1"));
    list.Items = editable.Items = {{"one", 1, ""}, {"two", 2, ""}, {"three", 3, ""}};
    editable.Editable = true;
    tabs.Pages = {"A", "B", "C"};
    grid.Columns = {{"Name", 900}, {"Value", 900}};
    grid.Rows = {{"x", "1"}, {"y", "2"}, {"z", "3"}};
    digits.OnKeyPress = [](int key) { return key >= '0' && key <= '9'; };
    SetAll();
    window.ClientHeightTwips = nextTwips;
    Show();
  }
  ~ShownTest() override { world.EndProgram(); }
  void Stack(Control& control) {
    control.Place(150, nextTwips, 3000, control.Kind == ControlKind::Grid ? 1800 : 450);
    nextTwips += control.HeightTwips + 60;
  }
  void SetAll() {
    field.Text = "5";
    digits.Text = "-5";
    box.Ticked = second.Selected = false;
    first.Selected = true;
    list.Choose(0);
    editable.Choose(0);
    tabs.CurrentPage = 0;
    grid.CurrentRow = 0;
  }

  Lines Held() const {
    return {field.Text,
            digits.Text,
            box.Ticked ? "ticked" : "clear",
            first.Selected ? "first" : "",
            second.Selected ? "second" : "",
            list.Text + std::to_string(list.ListIndex),
            editable.Text,
            std::to_string(tabs.CurrentPage),
            std::to_string(grid.CurrentRow)};
  }
  template <typename Widget>
  Widget& The(const std::string& name) {
    return dynamic_cast<Widget&>(*driver.Find("Form." + name));
  }
  Lines Shown() {
    const auto& combo = The<QComboBox>("Combo1");
    const auto rows = The<QTableWidget>("MSFlexGrid1").selectionModel()->selectedRows();
    return {The<QLineEdit>("Text1").text().toStdString(),
            The<QLineEdit>("Text2").text().toStdString(),
            The<QCheckBox>("Check1").isChecked() ? "ticked" : "clear",
            The<QRadioButton>("Option1(0)").isChecked() ? "first" : "",
            The<QRadioButton>("Option1(1)").isChecked() ? "second" : "",
            combo.currentText().toStdString() + std::to_string(combo.currentIndex()),
            The<QComboBox>("Combo2").currentText().toStdString(),
            std::to_string(Bar().currentIndex()),
            std::to_string(rows.isEmpty() ? -1 : rows[0].row())};
  }
  QTabBar& Bar() { return *driver.Find("Form.SSTab1")->findChild<QTabBar*>(); }

  int nextTwips = 60;
  TextBox field, digits;
  CheckBox box;
  OptionButton first, second;
  ComboBox list, editable;
  Tabs tabs;
  Grid grid;
};

TEST_F(ShownTest, WhatAHandlerRefusesLeavesTheScreen) {
  const Lines initial = Held();
  int refusals = 0;
  const auto refuse = [&] {
    ++refusals;
    SetAll();
    WaitMs(2);
  };
  box.OnClick = second.OnClick = list.OnClick = editable.OnClick = refuse;
  field.OnKeyPress = [&](int key) {
    if (key == KeyEnter) refuse();
    return true;
  };
  const std::vector<std::function<void()>> acts{
      [&] {
        driver.Type("Form.Text1", "77");
        driver.Key("Form.Text1", Qt::Key_Return);
      },
      [&] { driver.Click("Form.Check1"); },
      [&] { driver.Click("Form.Option1(1)"); },
      [&] { driver.Choose("Form.Combo1", 2); },
      [&] { driver.Choose("Form.Combo2", 2); },
  };
  for (std::size_t i = 0; i < 2 * acts.size(); ++i) {
    acts[i / 2]();
    driver.Settle();
    EXPECT_EQ(refusals, i + 1);
    EXPECT_EQ(Held(), initial) << i;
    EXPECT_EQ(Shown(), initial) << i;
  }
  // These have no handlers; the record is set back before it was ever reflected.
  driver.TurnPage("Form.SSTab1", 2);
  The<QTableWidget>("MSFlexGrid1").setCurrentCell(2, 0);
  QCoreApplication::processEvents(QEventLoop::AllEvents);
  SetAll();
  driver.Settle();
  EXPECT_EQ(Shown(), initial);
}

TEST_F(ShownTest, AClosedListSaysWhatItsChosenEntryIs) {
  list.ToolTip = "A list";
  list.Items = {{"one", 1, "Adapter"}, {"two", 2, "", true}};
  const auto tip = [&](int chosen) {
    list.Choose(chosen);
    driver.Settle();
    return The<QComboBox>("Combo1").toolTip().toStdString();
  };
  EXPECT_EQ(tip(0), "Adapter");
  EXPECT_EQ(tip(1), "A list");
  const auto colour = [&](int item) {
    return The<QComboBox>("Combo1").itemData(item, Qt::ForegroundRole);
  };
  EXPECT_FALSE(colour(0).isValid());
  EXPECT_TRUE(colour(1).isValid()) << "grey";
  driver.Choose("Form.Combo1", 0);
  driver.Choose("Form.Combo1", 1);
  driver.Settle();
  EXPECT_EQ(list.Text, "two") << "and can be chosen";
}

// A screen reader or voice control works on the widgets without mouse and keys.
TEST_F(ShownTest, WhatIsChangedThroughTheAccessibilityInterfacesIsHeld) {
  const auto of = [](QWidget& widget) { return QAccessible::queryAccessibleInterface(&widget); };
  const auto set = [&](QWidget& widget, const char* text) {
    of(widget)->setText(QAccessible::Value, QString::fromUtf8(text));
  };
  const auto act = [](QAccessibleInterface* interface, const QString& action) {
    interface->actionInterface()->doAction(action);
  };
  const QString press = QAccessibleActionInterface::pressAction();
  const QString toggle = QAccessibleActionInterface::toggleAction();
  const auto handled = [&] { log.push_back("handled"); };
  box.OnClick = second.OnClick = first.OnClick = handled;

  struct Case {
    std::function<void()> Act;
    std::string Now;
    bool Handled = false;
  };
  const std::vector<Case> cases{
      {[&] { set(The<QLineEdit>("Text1"), "1300"); }, "1300"},
      {[&] { of(The<QLineEdit>("Text1"))->editableTextInterface()->insertText(0, "9"); }, "91300"},
      {[&] { of(The<QLineEdit>("Text1"))->editableTextInterface()->deleteText(1, 3); }, "900"},
      {[&] { of(The<QLineEdit>("Text1"))->editableTextInterface()->replaceText(0, 1, "8"); },
       "800"},
      // Letter by letter, as pasted text is; what stood there already is not asked about.
      {[&] { of(The<QLineEdit>("Text2"))->editableTextInterface()->insertText(2, "3x4"); }, "-534"},
      {[&] { set(The<QLineEdit>("Text2"), "1a2b"); }, "12"},
      {[&] { act(of(The<QCheckBox>("Check1")), toggle); }, "ticked", true},
      {[&] { act(of(The<QCheckBox>("Check1")), press); }, "clear", true},
      {[&] { act(of(The<QRadioButton>("Option1(1)")), toggle); }, "second", true},
      {[&] { act(of(The<QRadioButton>("Option1(0)")), press); }, "first", true},
      {[&] { set(*The<QComboBox>("Combo2").lineEdit(), "other"); }, "other"},
      {[&] { set(*The<QComboBox>("Combo2").lineEdit(), "two"); }, "two"},
      {[&] { act(of(Bar())->child(1), press); }, "1"},
      {[&] { of(The<QTableWidget>("MSFlexGrid1"))->tableInterface()->selectRow(2); }, "2"},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    log.clear();
    Lines before = Held();
    cases[i].Act();
    driver.WaitUntil([&] { return Held() != before; }, 1'000);
    driver.Settle();
    const Lines held = Held();
    EXPECT_NE(std::find(held.begin(), held.end(), cases[i].Now), held.end())
        << i << testing::PrintToString(held);
    EXPECT_EQ(Shown(), held) << i;
    EXPECT_EQ(log, cases[i].Handled ? Lines{"handled"} : Lines{}) << i;
  }
}

TEST_F(ShownTest, WhatIsOutOfReachDoesNotChangeByAccessibilityEither) {
  const Lines initial = Held();
  for (Control* control : window.Controls) control->Enabled = false;
  driver.Settle();
  QAccessible::queryAccessibleInterface(&The<QLineEdit>("Text1"))
      ->setText(QAccessible::Value, QStringLiteral("1300"));
  The<QCheckBox>("Check1").toggle();
  The<QRadioButton>("Option1(1)").toggle();
  The<QComboBox>("Combo1").setCurrentIndex(1);
  The<QComboBox>("Combo2").setEditText(QStringLiteral("other"));
  Bar().setCurrentIndex(1);
  The<QTableWidget>("MSFlexGrid1").selectRow(2);
  driver.Settle();
  EXPECT_EQ(Held(), initial);
  EXPECT_EQ(Shown(), initial);
}

}  // namespace
}  // namespace gainsmith::test
