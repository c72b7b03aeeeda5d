// Windows as a whole: every control named and in reach, nothing clipped, light and dark; a main
// window with bars.
#include <QApplication>
#include <QImage>
#include <QScreen>

#include "desk.h"
#include "desktop/look.h"
#include "driver/layout_check.h"

namespace gainsmith::test {
namespace {

struct WindowTest : Desk {
  WindowTest() {
    Stack(window.Add(field, "Text1(0)"));
    field.AccessibleName = "Device Number";
    Stack(window.Add(disabled, "Text1(1)"));
    disabled.Enabled = false;
    Stack(window.Add(link, "lblLink"));
    link.Caption = "www.torvane.example";
    link.OnClick = [] {};
    Stack(window.Add(note, "lblNote"));
    note.WordWrap = true;
    Stack(window.Add(start, "Command1"));
    start.Caption = "&Start";
    Stack(window.Add(tabs, "SSTab1"));
    tabs.Pages = {"Parameters", "JOG"};
    tabs.HeightTwips = 1500;
    window.Add(jog, "Command2", &tabs, 1).Place(150, 600, 1500, 375);
    window.Add(parked, "Text9").Parked = true;
  }
  ~WindowTest() override {
    world.EndProgram();
    ApplyScheme(Scheme::Light);
  }
  // One below the other.
  void Stack(Control& control) {
    control.Place(150, nextTwips, 2400, 330);
    nextTwips += 420;
  }

  int nextTwips = 150;
  TextBox field, disabled, parked;
  Label link, note;
  Button start, jog;
  Tabs tabs;
};

TEST_F(WindowTest, PicturesFollowTheSchemeAndTheScale) {
  world.Show(window);
  for (const Scheme scheme : {Scheme::Dark, Scheme::Light}) {
    ApplyScheme(scheme);
    driver.Settle();
    for (const int scale : {1, 2}) {
      ASSERT_TRUE(driver.Grab("Form", Path("form.png"), scale));
      const QImage picture(QString::fromStdString(Path("form.png")));
      EXPECT_EQ(picture.size(), QSize(400, 300) * scale);
      EXPECT_EQ(picture.pixelColor(6, 200).lightness() > 128, scheme == Scheme::Light);
    }
  }
}

// Gains are read while a test runs and their fields are disabled.
TEST_F(WindowTest, DisabledTextsCanBeReadInEitherScheme) {
  for (const Scheme scheme : {Scheme::Dark, Scheme::Light}) {
    ApplyScheme(scheme);
    const QPalette palette = QApplication::palette();
    const QColor text = palette.color(QPalette::Disabled, QPalette::Text);
    for (const auto ground : {QPalette::Window, QPalette::Base, QPalette::Button}) {
      EXPECT_EQ(Readable(text, palette.color(QPalette::Disabled, ground)), text) << ground;
    }
    EXPECT_NE(text, palette.color(QPalette::Active, QPalette::Text));
  }
}

TEST_F(WindowTest, WhatIsClippedOrOverlapsIsFound) {
  Show();
  EXPECT_EQ(LayoutFaults(*driver.Find("Form")), Lines{});
  start.Caption = "A caption that is far too long for its button";
  field.HeightTwips = 600;
  link.WidthTwips = 1000;
  note.Caption = "One line of room, and more words than fit on one line of it.";
  tabs.WidthTwips = 7000;
  driver.Settle();
  const Lines faults = LayoutFaults(*driver.Find("Form"));
  const Lines expected{"Form.Text1(0) and Form.Text1(1) overlap",
                       "Form.SSTab1: reaches out of what it lies in",
                       "Form.lblLink: ", "Form.lblNote: ", "Form.Command1: "};
  ASSERT_EQ(faults.size(), expected.size()) << testing::PrintToString(faults);
  for (std::size_t i = 0; i < faults.size(); ++i) EXPECT_TRUE(faults[i].starts_with(expected[i]));
}

TEST_F(WindowTest, AWindowLargerThanTheScreenIsDrawnSmallerAndWhole) {
  const QRect screen = QApplication::primaryScreen()->availableGeometry();
  // The controls fill it once more as high as the screen is.
  window.LeftTwips = 9000;
  window.ClientWidthTwips = 12000;
  window.ClientHeightTwips = 2 * 15 * screen.height();
  for (Control* control : window.Controls) {
    if (control->Container != nullptr) continue;
    control->Place(control->LeftTwips, control->TopTwips * 5, 3000, control->HeightTwips);
  }
  start.Place(9900, window.ClientHeightTwips - 600, 1500, 450);
  Show();
  const QWidget& form = *driver.Find("Form");
  EXPECT_TRUE(screen.contains(form.frameGeometry())) << "moved, too";
  EXPECT_NEAR(form.height(), screen.height(), 60);
  EXPECT_NEAR(form.width(), 400, 24);
  EXPECT_EQ(LayoutFaults(form), Lines{});
  EXPECT_EQ(window.ClientHeightTwips, 2 * 15 * screen.height()) << "the record keeps its size";
  bool clicked = false;
  start.OnClick = [&] { clicked = true; };
  Click("Form.Command1");
  EXPECT_TRUE(clicked);
}

TEST_F(WindowTest, EveryControlIsNamedAndReachableByTab) {
  start.Caption = "&Copy";
  link.Visible = false;
  Show();
  EXPECT_EQ(driver.Find("Form.lblLink"), nullptr) << "has not been seen";
  link.Visible = true;
  driver.Settle();
  const QObjectList& onForm = driver.Find("Form")->children();
  EXPECT_LT(onForm.indexOf(driver.Find("Form.lblLink")),
            onForm.indexOf(driver.Find("Form.Command1")))
      << "lies below what comes behind it";
  EXPECT_EQ(driver.Find("Form.Text1(0)")->accessibleName(), "Device Number");
  EXPECT_EQ(driver.Find("Form.Command1")->accessibleName(), "Copy");
  EXPECT_EQ(driver.Find("Form.Text9"), nullptr) << "parked";
  world.SetFocus(field);
  for (const char* name : {"lblLink", "Command1"}) {
    Key("Form", Qt::Key_Tab);
    EXPECT_TRUE(driver.Find(std::string("Form.") + name)->hasFocus()) << name;
  }
}

TEST_F(WindowTest, AUserAndTheFocusTurnPages) {
  Show();
  for (const int page : {1, 0}) {
    driver.TurnPage("Form.SSTab1", page);
    driver.Settle();
    EXPECT_EQ(tabs.CurrentPage, page);
    EXPECT_EQ(driver.IsShown("Form.Command2"), page == 1);
  }
  world.SetFocus(jog);
  driver.Settle();
  EXPECT_EQ(tabs.CurrentPage, 1);
  ASSERT_TRUE(driver.IsShown("Form.Command2"));
  EXPECT_TRUE(driver.Find("Form.Command2")->hasFocus());
}

TEST_F(WindowTest, BarsFollowTheirRecords) {
  FrameWindow frame;
  frame.Name = "Main";
  MenuItem file, open, hidden;
  file.Name = "mnuFile";
  open.Name = "mnuFileOpen";
  open.Shortcut = "Ctrl+O";
  open.OnClick = [&] { log.push_back("open"); };
  hidden.Name = "ReadFromDrive";
  hidden.Visible = false;
  file.Items = {&open, &hidden};
  frame.Menus = {&file};
  ToolButton tools[] = {{"Open", "open", true, [&] { log.push_back("tool"); }},
                        {"Save", "save", false, {}}};
  frame.ToolButtons = {&tools[0], &tools[1]};
  world.Show(frame);
  driver.Settle();
  EXPECT_FALSE(driver.IsMenuEnabled("Main.ReadFromDrive"));
  EXPECT_FALSE(driver.IsEnabled("Main.Toolbar1(2)"));
  driver.Click("Main.Toolbar1(1)");
  for (const bool enabled : {true, false}) {
    open.Enabled = enabled;
    driver.Settle();
    EXPECT_EQ(driver.IsMenuEnabled("Main.mnuFileOpen"), enabled);
    Key("Main", Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(log, (Lines{"tool", "open"}));
  }
  // From a window that was opened over it, too, unless that one takes all input.
  open.Enabled = true;
  for (const bool modal : {false, true}) {
    log.clear();
    if (modal) {
      world.ShowModal(window);
    } else {
      world.Show(window);
    }
    driver.Settle();
    Key("Form", Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(log.size(), modal ? 0U : 1U);
    world.Unload(window);
    driver.Settle();
  }
  Key("Main", Qt::Key_F10);
  EXPECT_TRUE(driver.IsShown("Main.mnuFile"));
  QApplication::activePopupWidget()->close();
  frame.Caption = "Torvane Gainsmith for KVT518 - [a.tvd]";
  driver.Settle();
  EXPECT_EQ(driver.TextOf("Main"), frame.Caption);
  world.EndProgram();
}

}  // namespace
}  // namespace gainsmith::test
