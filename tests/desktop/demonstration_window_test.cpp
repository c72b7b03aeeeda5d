// One window with each kind of control and a main window with bars: on the screen as a whole,
// reachable, named, nothing clipped, light and dark.
#include <QDir>
#include <QImage>
#include <QPixmap>
#include <cmath>

#include "desk.h"
#include "desktop/look.h"
#include "support/layout_check.h"

namespace gainsmith::test {
namespace {

struct DemonstrationWindow : Window {
  DemonstrationWindow() {
    Name = "Demo";
    Caption = "Each Kind of Control";
    LeftTwips = 3000;
    TopTwips = 900;
    ClientWidthTwips = 12000;
    ClientHeightTwips = 8400;
    BuildPlot();
    BuildFields();
    BuildChoices();
    BuildPages();
    Add(status, "StatusBar1");
    status.Panels = {"Ready", "T: 120.00 ms", "V: 300 rpm", ""};
  }
  void BuildPlot() {
    Add(plotFrame, "Frame1").Place(120, 60, 11760, 3700);
    plotFrame.Caption = "Trace";
    Add(picture, "Picture1", &plotFrame).Place(840, 360, 9015, 3000);
    picture.Scale = {0, 400, 200, -800};
    for (int i = 0; i < 199; ++i) {
      const auto wave = [](int x) {
        return static_cast<float>(300 * std::exp(-x / 80.0) * std::sin(x / 8.0));
      };
      const auto x = static_cast<float>(i);
      picture.Line(x, wave(i), x + 1, wave(i + 1), Rgb(255, 60, 60));
    }
    picture.Overlay = {{60, 200, 120, 200, Rgb(255, 255, 255), 1, true, picture.Scale},
                       {60, -200, 120, -200, Rgb(255, 255, 255), 1, true, picture.Scale}};
    for (int i = 0; i < 3; ++i) {
      Add(axis[i], "Label3(" + std::to_string(i) + ")", &plotFrame)
          .Place(60, 3240 - i * 1440, 720, 240);
      axis[i].Caption = i == 0 ? "-2.000" : i == 1 ? "0" : "2.000";
      axis[i].Alignment = TextAlignment::Right;
      axis[i].ForeColor = i == 2 ? 32768 : 255;
    }
    Add(lamp, "Shape1(0)", &plotFrame).Place(10080, 360, 300, 300);
    lamp.BackColor = Rgb(0, 200, 60);
    Add(darkLamp, "Shape1(1)", &plotFrame).Place(10500, 360, 300, 300);
    darkLamp.BackColor = Rgb(220, 30, 30);
    Add(swatch, "Command4(1)", &plotFrame).Place(10080, 840, 480, 300);
    swatch.Swatch = true;
    swatch.BackColor = Rgb(128, 255, 128);
    swatch.AccessibleName = "Colour of Velocity";
  }
  void BuildFields() {
    Add(heading, "Label7").Place(180, 3900, 4200, 300);
    heading.Caption = "Read and Write Parameters";
    heading.Heading = true;
    Add(device, "Label2").Place(180, 4320, 1650, 255);
    device.Caption = "Device Number：";
    Add(field, "Text1(0)").Place(1860, 4300, 1140, 315);
    field.Text = "40000";
    field.AccessibleName = "Device Number";
    Add(disabled, "Text1(1)").Place(3120, 4300, 1200, 315);
    disabled.Text = "1.25";
    disabled.Enabled = false;
    Add(link, "lblLink").Place(180, 4740, 2400, 255);
    link.Caption = "www.torvane.example";
    link.OnClick = [] {};
    Add(progress, "ProgressBar1").Place(180, 5100, 4140, 240);
    progress.Value = 40;
    Add(start, "Command1(3)").Place(180, 5460, 1300, 420);
    start.Caption = "&Start";
    start.BackColor = Rgb(0, 192, 0);
    Add(stop, "Command1(4)").Place(1600, 5460, 1300, 420);
    stop.Caption = "Cancel";
    Add(greyed, "Command1(5)").Place(3020, 5460, 1300, 420);
    greyed.Caption = "Disabled";
    greyed.Enabled = false;
    Add(about, "Image1").Place(180, 6000, 1900, 1900);
    about.Picture = "about";
    Add(notice, "Label8").Place(2200, 6300, 2100, 1000);
    notice.WordWrap = true;
    notice.Caption = "A longer text that takes several lines and is wrapped where it must be.";
  }
  void BuildChoices() {
    Add(choices, "Frame2").Place(4560, 3900, 3000, 3900);
    choices.Caption = "Control Mode";
    Add(ticked, "Check1(0)", &choices).Place(180, 360, 2500, 270);
    ticked.Caption = "Position Error";
    ticked.Ticked = true;
    Add(option1, "Option1(0)", &choices).Place(180, 720, 2500, 270);
    option1.Caption = "Pulse + Direction";
    option1.Selected = true;
    Add(option2, "Option1(1)", &choices).Place(180, 1080, 2500, 270);
    option2.Caption = "CW / CCW";
    Add(combo, "Combo1(0)", &choices).Place(180, 1500, 2500, 330);
    combo.Items = {{"COM1", 1, "/dev/pts/3"}, {"COM2", 2, ""}};
    combo.Choose(0);
    Add(editable, "Combo1(1)", &choices).Place(180, 1980, 2500, 330);
    editable.Editable = true;
    editable.Items = {{"100", 1, ""}, {"2000", 2, ""}};
    editable.Text = "1500";
  }
  void BuildPages() {
    Add(tabs, "SSTab1").Place(7740, 3900, 4140, 3900);
    tabs.Pages = {"Parameters", "JOG"};
    Add(grid, "MSFlexGrid1", &tabs, 0).Place(90, 450, 3960, 3360);
    grid.Columns = {{"", 0}, {"Parameter", 1700}, {"Value", 700}, {"Setting Range", 1200}};
    for (int i = 0; i < 20; ++i) {
      grid.Rows.push_back({"", "Parameter " + std::to_string(i), std::to_string(i * 10), "0-1000"});
    }
    grid.CurrentRow = 1;
    Add(jog, "Command2", &tabs, 1).Place(200, 700, 1695, 375);
    jog.Caption = "CW";
    Add(parked, "Text9", &tabs, 1);
    parked.Parked = true;
  }

  Frame plotFrame, choices;
  PictureBox picture;
  Label axis[3], heading, device, link, notice;
  Lamp lamp, darkLamp;
  Button swatch, start, stop, greyed, jog;
  TextBox field, disabled, parked;
  ProgressBar progress;
  Image about;
  CheckBox ticked;
  OptionButton option1, option2;
  ComboBox combo, editable;
  Tabs tabs;
  Grid grid;
  StatusBar status;
};

struct DemonstrationFrame : FrameWindow {
  DemonstrationFrame() {
    Name = "Main";
    Caption = "Torvane Gainsmith for KVT518";
    Maximized = true;
    MaximizeBox = false;
    SetItem(open, "mnuFileOpen", "&Open");
    open.Shortcut = "Ctrl+O";
    open.OnClick = [this] { ++opened; };
    SetItem(hidden, "ReadFromDrive", "Read");
    hidden.Visible = false;
    SetItem(separator, "fileSeperator1", "-");
    SetItem(file, "mnuFile", "&File");
    file.Items = {&open, &separator, &hidden};
    Menus = {&file};
    const char* icons[] = {"open",          "save",  "properties", "current-loop",
                           "position-loop", "scope", "error-log"};
    for (int i = 0; i < 7; ++i) {
      tools[i].ToolTip = icons[i];
      tools[i].Icon = icons[i];
      tools[i].Enabled = i % 3 != 2;
      ToolButtons.push_back(&tools[i]);
    }
    Add(hint, "Label1").Place(600, 600, 6000, 300);
    hint.Caption = "Not connected. Choose Drive, Connect.";
  }
  static void SetItem(MenuItem& item, const char* name, const char* caption) {
    item.Name = name;
    item.Caption = caption;
  }
  int opened = 0;
  MenuItem file, open, hidden, separator;
  ToolButton tools[7];
  Label hint;
};

struct DemonstrationTest : Desk {
  ~DemonstrationTest() override {
    world.EndProgram();
    ApplyScheme(Scheme::Light);
  }
  DemonstrationWindow demo;
  DemonstrationFrame frame;
};

TEST_F(DemonstrationTest, ShowsEachKindWithNothingClipped) {
  world.Show(frame);
  world.Show(demo);
  QDir().mkpath("pictures");
  for (const Scheme scheme : {Scheme::Light, Scheme::Dark}) {
    ApplyScheme(scheme);
    driver.Settle();
    for (const int page : {1, 0}) {
      driver.TurnPage("Demo.SSTab1", page);
      driver.Settle();
      EXPECT_EQ(demo.tabs.CurrentPage, page);
      EXPECT_EQ(LayoutFaults(*driver.Find("Demo")), std::vector<std::string>{});
    }
    const std::string name = scheme == Scheme::Light ? "light" : "dark";
    for (const int scale : {1, 2}) {
      const std::string suffix = name + std::to_string(scale) + ".png";
      EXPECT_TRUE(driver.Grab("Demo", "pictures/demo_" + suffix, scale));
      EXPECT_TRUE(driver.Grab("Main", "pictures/main_" + suffix, scale));
    }
    QImage picture("pictures/demo_" + QString::fromStdString(name) + "2.png");
    EXPECT_EQ(picture.width(), 1600);
    EXPECT_EQ(picture.pixelColor(6, 200).lightness() > 128, scheme == Scheme::Light);
  }
}

TEST_F(DemonstrationTest, FindsWhatIsClippedOrOverlaps) {
  demo.start.Caption = "A caption that is far too long for its button";
  demo.stop.LeftTwips = 1000;
  demo.combo.WidthTwips = 3000;
  world.Show(demo);
  driver.Settle();
  const auto faults = LayoutFaults(*driver.Find("Demo"));
  ASSERT_EQ(faults.size(), 3U) << testing::PrintToString(faults);
}

TEST_F(DemonstrationTest, EveryControlIsNamedAndReachableByTab) {
  world.Show(demo);
  driver.Settle();
  EXPECT_EQ(driver.Find("Demo.Text1(0)")->accessibleName(), "Device Number");
  EXPECT_EQ(driver.Find("Demo.Text9"), nullptr) << "parked";
  world.SetFocus(demo.swatch);
  const std::vector<std::string> order{"Demo.Text1(0)",    "Demo.lblLink",   "Demo.Command1(3)",
                                       "Demo.Command1(4)", "Demo.Check1(0)", "Demo.Option1(0)",
                                       "Demo.Combo1(0)",   "Demo.Combo1(1)"};
  for (const std::string& name : order) {
    driver.Key("Demo", Qt::Key_Tab);
    driver.Settle();
    EXPECT_TRUE(driver.Find(name)->hasFocus()) << name;
  }
}

TEST_F(DemonstrationTest, FocusTurnsThePage) {
  world.Show(demo);
  driver.Settle();
  world.SetFocus(demo.jog);
  driver.Settle();
  EXPECT_EQ(demo.tabs.CurrentPage, 1);
  EXPECT_TRUE(driver.Find("Demo.Command2")->hasFocus());
}

TEST_F(DemonstrationTest, BarsFollowTheirRecords) {
  world.Show(frame);
  driver.Settle();
  EXPECT_TRUE(driver.IsMenuEnabled("Main.mnuFileOpen"));
  EXPECT_FALSE(driver.IsMenuEnabled("Main.ReadFromDrive"));
  driver.Key("Main", Qt::Key_O, Qt::ControlModifier);
  driver.Settle();
  EXPECT_EQ(frame.opened, 1);
  frame.open.Enabled = false;
  driver.Settle();
  EXPECT_FALSE(driver.IsMenuEnabled("Main.mnuFileOpen"));
  driver.Key("Main", Qt::Key_O, Qt::ControlModifier);
  driver.Settle();
  EXPECT_EQ(frame.opened, 1);
  frame.tools[0].OnClick = [&] { log.push_back("tool"); };
  driver.Click("Main.Toolbar1(1)");
  driver.Settle();
  EXPECT_EQ(log, std::vector<std::string>{"tool"});
  EXPECT_FALSE(driver.IsEnabled("Main.Toolbar1(3)"));
  frame.Caption = "Torvane Gainsmith for KVT518 - [a.tvd]";
  driver.Settle();
  EXPECT_EQ(driver.TextOf("Main"), frame.Caption);
}

}  // namespace
}  // namespace gainsmith::test
