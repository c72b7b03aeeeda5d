// gainsmith-tour: works the tool's real windows through the main job, against a simulated drive
// that it starts behind COM1, and keeps pictures of them. Fails where a person would: a button that
// is not there, a test that does not come to its end.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <iostream>
#include <string>

#include "app/tool.h"
#include "desktop/desktop_world.h"
#include "desktop/look.h"
#include "drive_process.h"
#include "support/desktop_driver.h"
#include "support/layout_check.h"

namespace gainsmith::test {
namespace {

class Tour {
 public:
  Tour(DesktopWorld& world, Tool& tool, DriveProcess& drive, std::string directory,
       bool allVariants)
      : driver_(world),
        tool_(tool),
        drive_(drive),
        directory_(std::move(directory)),
        allVariants_(allVariants) {}

  void Run() {
    driver_.Play([this] {
      Connect();
      CurrentLoop();
      PositionLoop();
      Scope();
      Properties();
      ErrorLog();
      VelocityLoop();
      ParametersGrid();
      SmallWindows();
      Files();
      Disconnect();
      UnpluggedInARead();
    });
  }

 private:
  void Connect() {
    Picture("MDIForm1", "main-disconnected");
    driver_.Menu("MDIForm1.mnuConnect");
    Picture("Form2", "connect");
    Click("Form2.openPort");
    Wait("the read to begin", [this] { return driver_.IsShown("frmWaitingMessage"); });
    Wait("a dozen settings", [this] { return tool_.mdiForm1.prgActivity.Value >= 12; });
    Picture("frmWaitingMessage", "waiting");
    Picture("MDIForm1", "main-reading");
    Wait("the settings", [this] { return !tool_.shell.BulkTransferRunning; });
    EXPECT_TRUE(driver_.IsMenuEnabled("MDIForm1.MnuCurrentLoop"));
    Picture("MDIForm1", "main-connected");
  }

  void CurrentLoop() {
    driver_.Menu("MDIForm1.MnuCurrentLoop");
    WaitForWindow("Form1");
    Type("Form1.Text1(2)", "1");
    Click("Form1.cmdTest");
    Wait("the step response", [this] {
      return tool_.form1.cmdTest.Enabled && tool_.form1.Plot.HasTrace() &&
             !tool_.form1.Picture1.Lines.empty();
    });
    Picture("Form1", "current-loop");
    driver_.CloseWindow("Form1");
    WaitForClosing("Form1");
  }

  void PositionLoop() {
    driver_.Menu("MDIForm1.mnuPositionLoop");
    WaitForWindow("Form3");
    Picture("Form3", "position-loop-start");
    SingleMove();
    Type("Form3.Text1(13)", "5");
    Click("Form3.Command1(3)");
    Wait("an empty picture", [this] { return tool_.form3.Plot.Picture1.Lines.empty(); });
    Wait("the first trace", [this] { return !tool_.form3.Plot.Picture1.Lines.empty(); });
    const auto first = tool_.form3.Plot.Picture1.Revision;
    Wait("a second trace", [&] { return tool_.form3.Plot.Picture1.Revision > first; });
    Picture("Form3", "position-loop");
    Click("Form3.Command1(3)");
    Wait("the stop",
         [this] { return tool_.form3.Command1[3].Caption == "Start" && tool_.link.LinkIdle; });
    driver_.Drag("Form3.Picture1", 0.1, 0.2, 0.5, 0.7);
    driver_.Settle();
    driver_.Drag("Form3.Picture1", 0.2, 0.2, 0.7, 0.7);
    driver_.Settle();
    EXPECT_EQ(tool_.form3.Plot.ZoomLevel, 2);
    Picture("Form3", "position-loop-zoomed");
    for (int page = 0; page < static_cast<int>(tool_.form3.SSTab1.Pages.size()); ++page) {
      driver_.TurnPage("Form3.SSTab1", page);
      driver_.Settle();
      Picture("Form3", "position-loop-page-" + std::to_string(page + 1));
    }
    driver_.CloseWindow("Form3");
    WaitForClosing("Form3");
  }

  // The plan of one repeat leaves room for a single picture; the drive ends the move by itself.
  void SingleMove() {
    Click("Form3.Command1(3)");
    Wait("the picture of the move", [this] { return !tool_.form3.Plot.Picture1.Lines.empty(); });
    Wait("the end of the plan", [this] {
      return tool_.form3.DataSource.Starts() > 0 && !tool_.form3.DataSource.Enabled();
    });
    EXPECT_EQ(driver_.TextOf("Form3.Command1(3)"), "Stop");
    Click("Form3.Command1(3)");
    Wait("the stop", [this] {
      return tool_.form3.Command1[3].Caption == "Start" && tool_.link.LinkIdle &&
             driver_.IsEnabled("Form3.Text1(13)");
    });
  }

  void Scope() {
    TellDrive("move 5");
    driver_.Menu("MDIForm1.mnuScope");
    WaitForWindow("Form5");
    constexpr int OneSecond = 9;
    driver_.Choose("Form5.Combo1", OneSecond);
    Click("Form5.Command1");
    Wait("the first trace", [this] { return tool_.form5.Plot.CaptureHaveData; });
    const auto first = tool_.form5.Plot.Picture1.Revision;
    Wait("a second trace", [&] { return tool_.form5.Plot.Picture1.Revision > first; });
    Picture("Form5", "scope");
    Click("Form5.Command1");
    Wait("the stop", [this] { return tool_.form5.Check2.Enabled && tool_.link.LinkIdle; });
    Click("Form5.Check2");
    Wait("the spectrum", [this] { return tool_.form5.Plot.FrequencyMode; });
    Picture("Form5", "scope-spectrum");
    Click("Form5.Check2");
    Wait("the traces", [this] { return !tool_.form5.Plot.FrequencyMode; });
    driver_.CloseWindow("Form5");
    WaitForClosing("Form5");
    TellDrive("stop");
  }

  void Properties() {
    driver_.Menu("MDIForm1.sysConfig");
    WaitForWindow("sysConfigFrm");
    Picture("sysConfigFrm", "properties");
    Type("sysConfigFrm.Text1(1)", "2");
    Click("sysConfigFrm.cmdOK");
    WaitForClosing("sysConfigFrm");
    EXPECT_EQ(tool_.parameters[Slot::GearDenominator], 2);
  }

  void ErrorLog() {
    for (const char* error : {"encoder", "over-current", "following-error"}) {
      TellDrive(QByteArray("error ") + error);
    }
    driver_.Menu("MDIForm1.ErrCheck");
    WaitForWindow("Form4");
    Wait("three errors in the log", [this] {
      constexpr Colour Red = 255;
      return tool_.form4.Shape1[16 * 0 + 5].BackColor == Red &&
             tool_.form4.Shape1[16 * 1 + 0].BackColor == Red &&
             tool_.form4.Shape1[16 * 2 + 4].BackColor == Red;
    });
    Wait("the newest error to shine between two blinks",
         [this] { return tool_.form4.Shape1[5].Visible; });
    Picture("Form4", "error-log");
    Click("Form4.Command1(1)");
    Wait("an empty log", [this] { return tool_.form4.Shape1[5].BackColor != 255; });
    driver_.CloseWindow("Form4");
    WaitForClosing("Form4");
  }

  void VelocityLoop() {
    driver_.Menu("MDIForm1.mnuVelocityLoop");
    WaitForWindow("velocityModeTune");
    driver_.TurnPage("velocityModeTune.SSTab1", 1);
    Type("velocityModeTune.Text1(1)", "5");
    Click("velocityModeTune.Command1");
    Wait("the first trace", [this] { return !tool_.velocityMode.Plot.Picture1.Lines.empty(); });
    driver_.TurnPage("velocityModeTune.SSTab1", 0);
    Type("velocityModeTune.Text1(3)", "900");
    driver_.Key("velocityModeTune.Text1(3)", Qt::Key_Return);
    const auto first = tool_.velocityMode.Plot.Picture1.Revision;
    Wait("a second trace", [&] { return tool_.velocityMode.Plot.Picture1.Revision > first; });
    Picture("velocityModeTune", "velocity-loop");
    Click("velocityModeTune.Command1");
    Wait("the stop",
         [this] { return tool_.velocityMode.Command1.Caption == "Start" && tool_.link.LinkIdle; });
    for (int page = 1; page < static_cast<int>(tool_.velocityMode.SSTab1.Pages.size()); ++page) {
      driver_.TurnPage("velocityModeTune.SSTab1", page);
      driver_.Settle();
      Picture("velocityModeTune", "velocity-loop-page-" + std::to_string(page + 1));
    }
    driver_.CloseWindow("velocityModeTune");
    WaitForClosing("velocityModeTune");
  }

  void ParametersGrid() {
    driver_.Menu("MDIForm1.mnuParameters");
    WaitForWindow("Form8");
    Click("Form8.readdata");
    Wait("the rows",
         [this] { return !tool_.form8.MSFlexGrid1.Rows.empty() && tool_.form8.readdata.Visible; });
    Picture("Form8", "parameters-grid");
    Click("Form8.Command2");
    WaitForClosing("Form8");
  }

  void SmallWindows() {
    driver_.Menu("MDIForm1.mnuTestConsole");
    WaitForWindow("Form110");
    Click("Form110.Command1");
    Wait("the console to be ready", [this] { return driver_.TextOf("Form110.Command1") == "Ok?"; });
    Click("Form110.Command1");
    Wait("the watched values", [this] { return driver_.TextOf("Form110.Text1(4)") != "0xcc"; });
    Picture("Form110", "test-console");
    Click("Form110.Command1");
    driver_.CloseWindow("Form110");
    driver_.Menu("MDIForm1.mnuAbout");
    WaitForWindow("Dialog");
    Picture("Dialog", "about");
    Click("Dialog.Command1");
    WaitForClosing("Dialog");
  }

  void Files() {
    const std::string file = directory_ + "/axis.tvd";
    QFile::remove(QString::fromStdString(file));
    driver_.AnswerFile(file);
    driver_.Menu("MDIForm1.mnuSaveAs");
    Wait("the file", [&] { return QFile::exists(QString::fromStdString(file)); });
    driver_.AnswerFile(file);
    driver_.Menu("MDIForm1.mnuFileOpen");
    WaitForMessage("Configuration settings from the source file have been loaded successfully.");
    EXPECT_EQ(driver_.TextOf("MDIForm1"), "Torvane Gainsmith for KVT518 - [axis.tvd]");
    Picture("MDIForm1", "main-file-open");
    driver_.Answer(MessageAnswer::Yes);
    driver_.Menu("MDIForm1.mnuReset");
    WaitForMessage(
        "All configurations in the connected KVT518 drive have been reset to factory default "
        "successfully!");
    EXPECT_EQ(driver_.TextOf("MDIForm1"), "Torvane Gainsmith for KVT518");
  }

  void Disconnect() {
    driver_.Menu("MDIForm1.mnuConnect");
    WaitForWindow("Form2");
    EXPECT_EQ(driver_.TextOf("Form2.openPort"), "Close");
    Click("Form2.openPort");
    Wait("the port to close", [this] { return driver_.TextOf("Form2.openPort") == "Open"; });
    EXPECT_FALSE(driver_.IsMenuEnabled("MDIForm1.MnuCurrentLoop"));
  }

  void UnpluggedInARead() {
    Click("Form2.openPort");
    Wait("the read to begin", [this] {
      const ProgressBar& progress = tool_.mdiForm1.prgActivity;
      return progress.Visible && progress.Value >= 3;
    });
    const std::size_t before = driver_.Messages().size();
    TellDrive("fault hang-up:1");
    WaitForMessage("Unable to communicate with the connected drive. Check your connection");
    EXPECT_EQ(driver_.Messages().size(), before + 1);
    EXPECT_TRUE(driver_.IsMenuEnabled("MDIForm1.ErrCheck"));
    // The drive is back under the same name a moment later.
    driver_.Menu("MDIForm1.mnuConnect");
    WaitForWindow("Form2");
    Click("Form2.openPort");
    Wait("the port to close", [this] { return driver_.TextOf("Form2.openPort") == "Open"; });
    Click("Form2.openPort");
    Wait("the settings", [this] { return driver_.IsMenuEnabled("MDIForm1.MnuCurrentLoop"); });
    EXPECT_EQ(driver_.Messages().size(), before + 1);
  }

  void TellDrive(const QByteArray& command) {
    driver_.OnGui([&] { drive_.Tell(command); });
  }

  void WaitForMessage(const std::string& text) {
    Wait(text, [&] {
      const auto messages = driver_.Messages();
      return !messages.empty() && messages.back().Text == text;
    });
  }

  void Wait(const std::string& what, const std::function<bool()>& done) {
    constexpr int LimitMs = 60'000;
    EXPECT_TRUE(driver_.WaitUntil(done, LimitMs)) << "waited in vain for " << what;
  }
  // As a person does: when it can be clicked.
  void Click(const std::string& name) {
    WaitUntilEnabled(name);
    driver_.Click(name);
  }
  void Type(const std::string& name, const std::string& text) {
    WaitUntilEnabled(name);
    driver_.Type(name, text);
  }
  void WaitUntilEnabled(const std::string& name) {
    Wait(name + " to be enabled", [&] { return driver_.IsEnabled(name); });
  }
  void WaitForWindow(const std::string& name) {
    Wait(name, [&] { return driver_.IsShown(name); });
  }
  void WaitForClosing(const std::string& name) {
    Wait(name + " to close", [&] { return !driver_.IsShown(name); });
  }

  // A picture at 100 % in the light scheme; with all variants also at 200 %, and in the dark one.
  void Picture(const std::string& window, const std::string& file) {
    driver_.Settle();
    driver_.OnGui([&] {
      const QWidget* shown = driver_.Find(window);
      if (shown == nullptr) return;
      for (const std::string& fault : LayoutFaults(*shown)) {
        ADD_FAILURE() << window << ": " << fault;
      }
    });
    Save(window, file, 1);
    if (!allVariants_) return;
    Save(window, file + "-200", 2);
    driver_.OnGui([] { ApplyScheme(Scheme::Dark); });
    driver_.Settle();
    Save(window, file + "-dark", 1);
    driver_.OnGui([] { ApplyScheme(Scheme::Light); });
    driver_.Settle();
  }

  void Save(const std::string& window, const std::string& file, int scale) {
    const std::string path = directory_ + "/" + file + ".png";
    EXPECT_TRUE(driver_.Grab(window, path, scale)) << path;
    std::cout << path << std::endl;
  }

  DesktopDriver driver_;
  Tool& tool_;
  DriveProcess& drive_;
  std::string directory_;
  bool allVariants_;
};

}  // namespace
}  // namespace gainsmith::test

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::cerr << "usage: gainsmith-tour DIRECTORY [--all-variants]\n";
    return 2;
  }
  QDir().mkpath(arguments[1]);
  gainsmith::ApplyLook(application);
  gainsmith::test::DriveProcess drive;
  if (!drive.Start()) {
    std::cerr << "kvt518-sim does not start\n";
    return 1;
  }
  gainsmith::DesktopWorld world(QCoreApplication::applicationDirPath().toStdString());
  gainsmith::Tool tool(world, gainsmith::Edition::ServiceBench);
  tool.Start();
  gainsmith::test::Tour tour(world, tool, drive, arguments[1].toStdString(),
                             arguments.contains("--all-variants"));
  tour.Run();
  world.EndProgram();
  return testing::UnitTest::GetInstance()->Failed() ? 1 : 0;
}
