// gainsmith-tour: works the tool's real windows through the main job, against a simulated drive
// that it starts behind COM1, and keeps pictures of them. Fails where a person would: a button that
// is not there, a test that does not come to its end.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPixmap>
#include <QScreen>
#include <algorithm>
#include <iostream>
#include <string>
#include <utility>

#include "app/tool.h"
#include "desktop/desktop_world.h"
#include "desktop/look.h"
#include "drive_process.h"
#include "driver/desktop_driver.h"
#include "driver/layout_check.h"
#include "host/sql_row_store.h"

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

  // The windows with which motors are moved, on a screen that they are too large for.
  void RunOnSmallScreen() {
    driver_.Play([this] {
      Connect();
      CurrentLoop();
      Open("mnuPositionLoop", "Form3");
      SingleMove();
      Picture("Form3", "position-loop");
      Pages("Form3", tool_.form3.SSTab1, 0, "position-loop");
      Close("Form3");
      Open("mnuScope", "Form5");
      Picture("Form5", "scope");
      Close("Form5");
      Open("sysConfig", "sysConfigFrm");
      Picture("sysConfigFrm", "properties");
      Close("sysConfigFrm");
      ErrorLog();
      Open("mnuVelocityLoop", "velocityModeTune");
      Picture("velocityModeTune", "velocity-loop");
      Close("velocityModeTune");
    });
  }

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
      ChangedAndStored();
      SilenceInATest();
      Disconnect();
      UnpluggedInARead();
      Troubles();
    });
  }

 private:
  void Connect() {
    Wait("a look for ports",
         [this] { return tool_.mdiForm1.lblHint.Caption.find("COM1:") != std::string::npos; });
    Picture("MDIForm1", "main-disconnected");
    Open("mnuConnect", "Form2");
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
    Open("MnuCurrentLoop", "Form1");
    Type("Form1.Text1(2)", "1");
    Click("Form1.cmdTest");
    Wait("the step response", [this] {
      return tool_.form1.cmdTest.Enabled && tool_.form1.Plot.HasTrace() &&
             !tool_.form1.Picture1.Lines.empty();
    });
    Picture("Form1", "current-loop");
    Close("Form1");
  }

  void PositionLoop() {
    Open("mnuPositionLoop", "Form3");
    Picture("Form3", "position-loop-start");
    SingleMove();
    Type("Form3.Text1(13)", "5");
    Click("Form3.Command1(3)");
    Wait("an empty picture", [this] { return tool_.form3.Plot.Picture1.Lines.empty(); });
    Wait("the first trace", [this] { return !tool_.form3.Plot.Picture1.Lines.empty(); });
    WaitForNextTrace(tool_.form3.Plot);
    Picture("Form3", "position-loop");
    Picture("MDIForm1", "main-test-running");
    Stop("Form3.Command1(3)");
    ZoomIn();
    Pages("Form3", tool_.form3.SSTab1, 0, "position-loop");
    Jog();
    Close("Form3");
  }

  void Jog() {
    constexpr int JogPage = 2;
    driver_.TurnPage("Form3.SSTab1", JogPage);
    driver_.Press("Form3.Command2");
    WaitForStrip(StripField::Motor, "Motor: jogging");
    Picture("MDIForm1", "main-jogging");
    driver_.Release("Form3.Command2");
    WaitForStrip(StripField::Motor, "Motor: at rest");
  }

  // On the dip of the position error behind the begin of the move, which is negative: there the
  // labels are longest.
  void ZoomIn() {
    const Plot& plot = tool_.form3.Plot;
    const auto& error = tool_.trace.Plots[Signal::PErr];
    const auto dip = std::min_element(error.begin(), error.end());
    for (int level = 1; level <= 7; ++level) {
      const PictureScale view = plot.Picture1.Scale;
      const double x = (static_cast<double>(dip - error.begin()) - view.Left) / view.Width;
      const double y = (static_cast<double>(*dip) - view.Top) / view.Height;
      driver_.Drag("Form3.Picture1", std::clamp(x - 0.35, 0.0, 0.5), std::clamp(y - 0.3, 0.0, 0.7),
                   std::clamp(x + 0.35, 0.5, 1.0), std::clamp(y + 0.3, 0.3, 1.0));
      driver_.Settle();
      EXPECT_EQ(plot.ZoomLevel, level);
      if (level == 3) Picture("Form3", "position-loop-zoomed");
      if (level % 2 == 1) CheckLayout("Form3");
    }
    while (plot.ZoomLevel > 0) {
      Click("Form3.Picture1");
      driver_.Settle();
    }
  }

  // The plan of one repeat leaves room for a single picture; the drive ends the move by itself.
  void SingleMove() {
    Click("Form3.Command1(3)");
    Wait("the picture of the move", [this] { return !tool_.form3.Plot.Picture1.Lines.empty(); });
    Wait("the end of the plan", [this] {
      return tool_.form3.DataSource.Starts() > 0 && !tool_.form3.DataSource.Enabled();
    });
    Stop("Form3.Command1(3)");
  }

  void Scope() {
    TellDrive("move 5");
    Open("mnuScope", "Form5");
    constexpr int OneSecond = 9;
    driver_.Choose("Form5.Combo1", OneSecond);
    Click("Form5.Command1");
    Wait("the first trace", [this] { return tool_.form5.Plot.CaptureHaveData; });
    WaitForNextTrace(tool_.form5.Plot);
    Picture("Form5", "scope");
    Stop("Form5.Command1");
    Click("Form5.Check2");
    Wait("the spectrum", [this] { return tool_.form5.Plot.FrequencyMode; });
    Picture("Form5", "scope-spectrum");
    Click("Form5.Check2");
    Wait("the traces", [this] { return !tool_.form5.Plot.FrequencyMode; });
    Close("Form5");
    TellDrive("stop");
  }

  void Properties() {
    Open("sysConfig", "sysConfigFrm");
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
    Open("ErrCheck", "Form4");
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
    Close("Form4");
  }

  void VelocityLoop() {
    Open("mnuVelocityLoop", "velocityModeTune");
    driver_.TurnPage("velocityModeTune.SSTab1", 1);
    Type("velocityModeTune.Text1(1)", "5");
    Click("velocityModeTune.Command1");
    Wait("the first trace", [this] { return !tool_.velocityMode.Plot.Picture1.Lines.empty(); });
    driver_.TurnPage("velocityModeTune.SSTab1", 0);
    Type("velocityModeTune.Text1(3)", "900");
    driver_.Key("velocityModeTune.Text1(3)", Qt::Key_Return);
    WaitForNextTrace(tool_.velocityMode.Plot);
    Picture("velocityModeTune", "velocity-loop");
    Stop("velocityModeTune.Command1");
    Pages("velocityModeTune", tool_.velocityMode.SSTab1, 1, "velocity-loop");
    Close("velocityModeTune");
  }

  void ParametersGrid() {
    Open("mnuParameters", "Form8");
    Click("Form8.readdata");
    Wait("the rows",
         [this] { return !tool_.form8.MSFlexGrid1.Rows.empty() && tool_.form8.readdata.Visible; });
    Picture("Form8", "parameters-grid");
    Click("Form8.Command2");
    WaitForClosing("Form8");
  }

  void SmallWindows() {
    Open("mnuTestConsole", "Form110");
    Click("Form110.Command1");
    Wait("the console to be ready", [this] { return driver_.TextOf("Form110.Command1") == "Ok?"; });
    Click("Form110.Command1");
    Wait("the watched values", [this] { return driver_.TextOf("Form110.Text1(4)") != "0xcc"; });
    Picture("Form110", "test-console");
    Click("Form110.Command1");
    driver_.CloseWindow("Form110");
    Open("mnuAbout", "Dialog");
    Picture("Dialog", "about");
    Click("Dialog.Command1");
    WaitForClosing("Dialog");
  }

  void Files() {
    const std::string file = directory_ + "/axis.tvd";
    QFile::remove(QString::fromStdString(file));
    driver_.OnGui([&] { driver_.Dialogs.Files = {file, file}; });
    driver_.Menu("MDIForm1.mnuSaveAs");
    Wait("the file", [&] { return QFile::exists(QString::fromStdString(file)); });
    driver_.Menu("MDIForm1.mnuFileOpen");
    WaitForMessage("Configuration settings from the source file have been loaded successfully.");
    WaitForTitle("Torvane Gainsmith for KVT518 - [axis.tvd]");
    Picture("MDIForm1", "main-file-open");
    driver_.OnGui([this] { driver_.Dialogs.Answers = {MessageAnswer::Yes}; });
    driver_.Menu("MDIForm1.mnuReset");
    WaitForMessage(
        "All configurations in the connected KVT518 drive have been reset to factory default "
        "successfully!");
    WaitForTitle("Torvane Gainsmith for KVT518");
  }

  void Disconnect() {
    ClosePort();
    EXPECT_FALSE(driver_.IsMenuEnabled("MDIForm1.MnuCurrentLoop"));
  }

  void ClosePort() {
    Open("mnuConnect", "Form2");
    EXPECT_EQ(driver_.TextOf("Form2.openPort"), "Close");
    Click("Form2.openPort");
    Wait("the port to close", [this] { return driver_.TextOf("Form2.openPort") == "Open"; });
  }

  std::string Strip(StripField field) {
    std::string text;
    driver_.OnGui([&] { text = tool_.mdiForm1.lblStrip[static_cast<std::size_t>(field)].Caption; });
    return text;
  }
  void WaitForStrip(StripField field, const std::string& begin) {
    Wait("the strip: " + begin, [&] { return Strip(field).starts_with(begin); });
  }

  // A test whose drive falls silent: its Stop is not heard, and the strip says what nobody knows.
  void SilenceInATest() {
    Open("mnuPositionLoop", "Form3");
    Click("Form3.Command1(3)");
    WaitForStrip(StripField::Motor, "Motor: test running");
    TellDrive("fault silent");
    Click("Form3.Command1(3)");
    WaitForStrip(StripField::Motor, "⚠ emergency stop: commanded to run");
    WaitForStrip(StripField::Link, "⚠ no answer for ");
    Wait("the end of the exchanges", [this] { return tool_.link.LinkIdle; });
    TellDrive("fault none");
    // A lost link closes it.
    WaitForClosing("Form3");
    Picture("MDIForm1", "main-motor-unknown");
    // Once the drive answers, a test that is started and stopped tells that it stands.
    Open("mnuPositionLoop", "Form3");
    Click("Form3.Command1(3)");
    Wait("Stop", [this] { return driver_.TextOf("Form3.Command1(3)") == "Stop"; });
    Stop("Form3.Command1(3)");
    WaitForStrip(StripField::Motor, "Motor: at rest");
    Close("Form3");
  }

  void ChangedAndStored() {
    Open("mnuPositionLoop", "Form3");
    Type("Form3.Text1(0)", "900");
    Click("Form3.Command1(3)");
    Wait("Stop", [this] { return driver_.TextOf("Form3.Command1(3)") == "Stop"; });
    Stop("Form3.Command1(3)");
    Close("Form3");
    WaitForStrip(StripField::Settings, "changed, not stored");
    driver_.Click("MDIForm1.chkDifferences");
    Picture("MDIForm1", "main-changed");
    driver_.Click("MDIForm1.chkDifferences");
    driver_.OnGui([this] { driver_.Dialogs.Answers = {MessageAnswer::Yes}; });
    PictureOfNextMessage("message-question");
    driver_.Menu("MDIForm1.mnuDownloadToDrive");
    WaitForMessage("New configurations have been downloaded to drive successfully");
    WaitForStrip(StripField::Settings, "stored");
    Picture("MDIForm1", "main-stored");
  }

  void Troubles() {
    driver_.Click("MDIForm1.lblStrip(4)");
    Wait("the troubles", [this] { return driver_.IsShown("frmTroubles"); });
    Picture("frmTroubles", "troubles");
    Click("frmTroubles.cmdClose");
    WaitForClosing("frmTroubles");
  }

  void UnpluggedInARead() {
    Click("Form2.openPort");
    Wait("the read to begin", [this] {
      const ProgressBar& progress = tool_.mdiForm1.prgActivity;
      return progress.Visible && progress.Value >= 3;
    });
    driver_.OnGui([this] { driver_.Dialogs.Messages.clear(); });
    PictureOfNextMessage("message-lost-link");
    TellDrive("fault hang-up:1");
    WaitForMessage("Unable to communicate with the connected drive. Check your connection");
    Wait("the error log", [this] { return driver_.IsMenuEnabled("MDIForm1.ErrCheck"); });
    // The drive is back under the same name a moment later.
    ClosePort();
    Click("Form2.openPort");
    Wait("the settings", [this] { return driver_.IsMenuEnabled("MDIForm1.MnuCurrentLoop"); });
    driver_.OnGui([this] { EXPECT_EQ(driver_.Dialogs.Messages.size(), 1U) << "told once"; });
  }

  void TellDrive(const QByteArray& command) {
    driver_.OnGui([&] { drive_.Tell(command); });
  }

  // What a handler does behind its message shows when it has ended.
  void WaitForTitle(const std::string& title) {
    Wait(title, [&] { return driver_.TextOf("MDIForm1") == title; });
  }
  void WaitForMessage(const std::string& text) {
    Wait(text, [&] {
      const auto& messages = driver_.Dialogs.Messages;
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
  void Open(const std::string& command, const std::string& window) {
    driver_.Menu("MDIForm1." + command);
    Wait(window, [&] { return driver_.IsShown(window); });
  }
  void Close(const std::string& window) {
    driver_.CloseWindow(window);
    WaitForClosing(window);
  }
  void WaitForClosing(const std::string& name) {
    Wait(name + " to close", [&] { return !driver_.IsShown(name); });
  }

  void WaitForNextTrace(const Plot& plot) {
    const auto present = plot.Picture1.Revision;
    Wait("the next trace", [&] { return plot.Picture1.Revision > present; });
  }
  // By the button that has turned into Stop; until a person could go on.
  void Stop(const std::string& button) {
    EXPECT_EQ(driver_.TextOf(button), "Stop");
    Click(button);
    Wait("the stop", [&] { return driver_.TextOf(button) == "Start" && tool_.link.LinkIdle; });
  }
  void Pages(const std::string& window, const Tabs& tabs, int first, const std::string& file) {
    for (int page = first; page < static_cast<int>(tabs.Pages.size()); ++page) {
      driver_.TurnPage(window + ".SSTab1", page);
      Picture(window, file + "-page-" + std::to_string(page + 1));
    }
  }

  void CheckLayout(const std::string& window) {
    driver_.Settle();
    driver_.OnGui([&] {
      const QWidget* shown = driver_.Find(window);
      if (shown == nullptr) return;
      for (const std::string& fault : LayoutFaults(*shown)) {
        ADD_FAILURE() << window << ": " << fault;
      }
      EXPECT_TRUE(
          QGuiApplication::primaryScreen()->availableGeometry().contains(shown->frameGeometry()))
          << window << " is not on the screen as a whole";
    });
  }

  // A picture at 100 % in the light scheme; with all variants also at 200 %, and in the dark one.
  void Picture(const std::string& window, const std::string& file) {
    // The service bench's menu is not the customers'.
    ShowBenchMenu(window != "MDIForm1");
    CheckLayout(window);
    Save(window, file, 1);
    if (allVariants_) SaveVariants(window, file);
    ShowBenchMenu(true);
  }
  // Of the message that comes up next, before it is answered.
  void PictureOfNextMessage(const std::string& file) {
    driver_.OnGui([&] {
      nextMessage_ = directory_ + "/" + file;
      driver_.Dialogs.OnDialog = [this] { SaveMessage(std::exchange(nextMessage_, "")); };
    });
  }
  void SaveMessage(const std::string& path) const {
    if (path.empty()) return;
    SaveActiveDialog(path + ".png", 1);
    if (!allVariants_) return;
    SaveActiveDialog(path + "-200.png", 2);
    ApplyScheme(Scheme::Dark);
    QCoreApplication::sendPostedEvents();
    SaveActiveDialog(path + "-dark.png", 1);
    ApplyScheme(Scheme::Light);
  }
  static void SaveActiveDialog(const std::string& path, int scale) {
    QWidget* dialog = QApplication::activeModalWidget();
    ASSERT_NE(dialog, nullptr);
    QPixmap picture(dialog->size() * scale);
    picture.setDevicePixelRatio(scale);
    dialog->render(&picture);
    EXPECT_TRUE(picture.save(QString::fromStdString(path))) << path;
    std::cout << path << std::endl;
  }
  void SaveVariants(const std::string& window, const std::string& file) {
    Save(window, file + "-200", 2);
    driver_.OnGui([] { ApplyScheme(Scheme::Dark); });
    driver_.Settle();
    Save(window, file + "-dark", 1);
    driver_.OnGui([] { ApplyScheme(Scheme::Light); });
    driver_.Settle();
  }
  void ShowBenchMenu(bool shown) {
    driver_.OnGui([&] { tool_.benchMenu->mnuBench.Visible = shown; });
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
  // Where the picture of the next message goes; empty: there is none to make.
  std::string nextMessage_;
};

}  // namespace
}  // namespace gainsmith::test

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::cerr << "usage: gainsmith-tour DIRECTORY [--all-variants | --small-screen]\n";
    return 2;
  }
  QDir().mkpath(arguments[1]);
  gainsmith::ApplyLook(application);
  gainsmith::test::DriveProcess drive;
  if (!drive.Start()) {
    std::cerr << "kvt518-sim does not start\n";
    return 1;
  }
  gainsmith::DesktopWorld world(QCoreApplication::applicationDirPath().toStdString(),
                                gainsmith::OpenRowStore);
  gainsmith::Tool tool(world, gainsmith::Edition::ServiceBench);
  tool.Start();
  gainsmith::test::Tour tour(world, tool, drive, arguments[1].toStdString(),
                             arguments.contains("--all-variants"));
  if (arguments.contains("--small-screen")) {
    tour.RunOnSmallScreen();
  } else {
    tour.Run();
  }
  world.EndProgram();
  return testing::UnitTest::GetInstance()->Failed() ? 1 : 0;
}
