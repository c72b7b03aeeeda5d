// gainsmith-guide: does what the guide tells to do, step by step in the real windows, keeps its
// pictures, and prints the scores of its tests as Ctrl+C copies them.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <iostream>
#include <string>

#include "app/tool.h"
#include "desktop/desktop_world.h"
#include "desktop/look.h"
#include "drive_process.h"
#include "driver/desktop_driver.h"

namespace gainsmith::test {
namespace {

class Guide {
 public:
  Guide(DesktopWorld& world, Tool& tool, DriveProcess& drive, std::string directory)
      : driver_(world), tool_(tool), drive_(drive), directory_(std::move(directory)) {}

  // On the usual motor.
  void TuneTheLoops() {
    driver_.Play([this] {
      Connect();
      CurrentLoop();
      VelocityLoop();
      PositionLoop();
    });
  }

  // On the springy coupling.
  void TrapTheResonance() {
    driver_.Play([this] {
      Connect();
      Open("mnuPositionLoop", "Form3");
      Enter(Form3::VelocityKp, "1300");
      Move("");
      Close("Form3");
      driver_.OnGui([this] { drive_.Tell("move 5"); });
      Spectrum("guide-spectrum-resonance");
      LoadTrap();
      Spectrum("guide-spectrum-trapped");
    });
  }

 private:
  void Connect() {
    Open("mnuConnect", "Form2");
    Click("Form2.openPort");
    Wait("the settings", [this] { return driver_.IsMenuEnabled("MDIForm1.MnuCurrentLoop"); });
  }

  void CurrentLoop() {
    Open("MnuCurrentLoop", "Form1");
    Type("Form1.Text1(2)", "2");
    const struct {
      const char *Kp, *Ki, *Name;
    } cases[] = {{"400", "50", "guide-current-slow"},
                 {"2500", "500", "guide-current-ringing"},
                 {"60", "1000", "guide-current-swinging"},
                 {"400", "500", "guide-current-good"}};
    for (const auto& test : cases) {
      Type("Form1.Text1(0)", test.Kp);
      Type("Form1.Text1(1)", test.Ki);
      const auto before = tool_.form1.Picture1.Revision;
      Click("Form1.cmdTest");
      Wait("the step response", [&] {
        return tool_.form1.cmdTest.Enabled && tool_.form1.Picture1.Revision > before &&
               !tool_.form1.Picture1.Lines.empty() && tool_.link.LinkIdle;
      });
      Keep("Form1", test.Name);
    }
    Close("Form1");
  }

  void VelocityLoop() {
    Open("mnuVelocityLoop", "velocityModeTune");
    driver_.TurnPage("velocityModeTune.SSTab1", 2);
    ChooseTraceTime("velocityModeTune.Combo1", tool_.velocityMode.Combo1, "1000ms");
    const struct {
      const char *Vp, *Vi, *Name;
    } cases[] = {{"150", "2000", "guide-velocity-swinging"},
                 {"2700", "500", "guide-velocity-ringing"},
                 {"600", "500", "guide-velocity-good"}};
    for (const auto& test : cases) {
      driver_.TurnPage("velocityModeTune.SSTab1", 0);
      Commit("velocityModeTune.Text1(3)", test.Vp);
      Commit("velocityModeTune.Text1(14)", test.Vi);
      auto& window = tool_.velocityMode;
      Wait("the rest", [&] { return window.Run.MayStart() && !tool_.link.HandlerUnderWay(); });
      const auto before = window.Plot.Picture1.Revision;
      Click("velocityModeTune.Command1");
      WaitForTrace(window.Plot, before);
      WaitForEnd(window.DataSource);
      Stop("velocityModeTune.Command1");
      Keep("velocityModeTune", test.Name);
    }
    Close("velocityModeTune");
  }

  void PositionLoop() {
    Open("mnuPositionLoop", "Form3");
    ChooseTraceTime("Form3.Combo1", tool_.form3.Combo1, "1000ms");
    Type(Field(Form3::Distance), "10000");
    Enter(Form3::Kvff, "0");
    Move("guide-position-lag");
    Enter(Form3::Kvff, "1000");
    Enter(Form3::PositionKp, "4000");
    Move("guide-position-hard");
    Enter(Form3::PositionKp, "800");
    Move("guide-position-good");
    Close("Form3");
  }

  // One move there and back with what the fields say.
  void Move(const std::string& name) {
    Wait("the rest",
         [this] { return tool_.form3.Run.MayStart() && !tool_.link.HandlerUnderWay(); });
    const auto before = tool_.form3.Plot.Picture1.Revision;
    Click("Form3.Command1(3)");
    WaitForTrace(tool_.form3.Plot, before);
    WaitForEnd(tool_.form3.DataSource);
    Stop("Form3.Command1(3)");
    if (!name.empty()) Keep("Form3", name);
  }

  void Spectrum(const std::string& name) {
    Open("mnuScope", "Form5");
    ChooseTraceTime("Form5.Combo1", tool_.form5.Combo1, "100ms");
    const auto before = tool_.form5.Plot.Picture1.Revision;
    Click("Form5.Command1");
    WaitForTrace(tool_.form5.Plot, before);
    WaitForTrace(tool_.form5.Plot, tool_.form5.Plot.Picture1.Revision);
    Stop("Form5.Command1");
    Click("Form5.Check2");
    Wait("the spectrum", [this] { return tool_.form5.Plot.FrequencyMode; });
    Keep("Form5", name);
    Close("Form5");
  }

  // Saves the settings, puts the trap into the file, and opens it. By then the drive has switched
  // itself off for the overload.
  void LoadTrap() {
    const QString file = QDir(QDir::tempPath()).filePath("trap.tvd");
    QFile::remove(file);
    driver_.OnGui([&] { driver_.Dialogs.Files = {file.toStdString(), file.toStdString()}; });
    driver_.Menu("MDIForm1.mnuSaveAs");
    Wait("the file", [&] { return QFile::exists(file); });
    QFile lines(file);
    ASSERT_TRUE(lines.open(QFile::ReadOnly));
    QString text = QString::fromLatin1(lines.readAll());
    lines.close();
    text.replace(QRegularExpression("EE& [0-9]+ "), "EE& 20 ");
    text.replace(QRegularExpression("F0& [0-9]+ "), "F0& 266 ");
    ASSERT_TRUE(lines.open(QFile::WriteOnly));
    lines.write(text.toLatin1());
    lines.close();
    driver_.OnGui([this] { drive_.Tell("reset"); });
    driver_.Menu("MDIForm1.mnuFileOpen");
    Wait("the download", [this] {
      const auto& messages = driver_.Dialogs.Messages;
      return !messages.empty() && messages.back().Text.find("loaded") != std::string::npos;
    });
    QFile::remove(file);
    driver_.OnGui([this] { drive_.Tell("move 5"); });
  }

  void Keep(const std::string& window, const std::string& name) {
    driver_.Settle();
    const std::string path = directory_ + "/" + name + ".png";
    EXPECT_TRUE(driver_.Grab(window, path)) << path;
    driver_.Key(window + ".Picture1", Qt::Key_C, Qt::ControlModifier);
    driver_.Settle();
    driver_.OnGui([&] {
      const QString copied = QGuiApplication::clipboard()->text();
      std::cout << path << "\n" << copied.section("\n\n", 0, 0).toStdString() << "\n" << std::endl;
    });
  }

  static std::string Field(std::size_t index) {
    return "Form3.Text1(" + std::to_string(index) + ")";
  }
  void Enter(std::size_t index, const std::string& text) { Type(Field(index), text); }
  void Commit(const std::string& field, const std::string& text) {
    Type(field, text);
    driver_.Key(field, Qt::Key_Return);
    Wait("the drive", [this] { return tool_.link.LinkIdle; });
    driver_.Settle();
  }
  void ChooseTraceTime(const std::string& name, const ComboBox& list, const std::string& text) {
    for (std::size_t i = 0; i < list.Items.size(); ++i) {
      if (list.Items[i].Text == text) return driver_.Choose(name, static_cast<int>(i));
    }
    ADD_FAILURE() << name << " has no " << text;
  }
  void Wait(const std::string& what, const std::function<bool()>& done) {
    constexpr int LimitMs = 60'000;
    EXPECT_TRUE(driver_.WaitUntil(done, LimitMs)) << "waited in vain for " << what;
  }
  void WaitForTrace(const Plot& plot, std::uint64_t after) {
    Wait("a trace", [&] { return plot.Picture1.Revision > after && !plot.Picture1.Lines.empty(); });
  }
  void WaitForEnd(const Timer& plan) {
    Wait("the end of the plan", [&] { return plan.Starts() > 0 && !plan.Enabled(); });
  }
  void Click(const std::string& name) {
    Wait(name + " to be enabled", [&] { return driver_.IsEnabled(name); });
    driver_.Click(name);
  }
  void Type(const std::string& name, const std::string& text) {
    Wait(name + " to be enabled", [&] { return driver_.IsEnabled(name); });
    driver_.Type(name, text);
  }
  void Stop(const std::string& button) {
    Click(button);
    Wait("the stop", [&] { return driver_.TextOf(button) == "Start" && tool_.link.LinkIdle; });
  }
  void Open(const std::string& command, const std::string& window) {
    driver_.Menu("MDIForm1." + command);
    Wait(window, [&] { return driver_.IsShown(window); });
    Wait(window + " to be read", [this] { return tool_.link.LinkIdle; });
  }
  void Close(const std::string& window) {
    driver_.CloseWindow(window);
    Wait(window + " to close", [&] { return !driver_.IsShown(window); });
  }

  DesktopDriver driver_;
  Tool& tool_;
  DriveProcess& drive_;
  std::string directory_;
};

// One sitting at a drive with this motor.
bool Sit(const QString& motor, const std::string& directory, void (Guide::*work)()) {
  DriveProcess drive;
  if (!drive.Start(motor)) {
    std::cerr << "kvt518-sim does not start\n";
    return false;
  }
  DesktopWorld world(QCoreApplication::applicationDirPath().toStdString());
  Tool tool(world, Edition::ServiceBench);
  tool.Start();
  Guide guide(world, tool, drive, directory);
  (guide.*work)();
  world.EndProgram();
  return !testing::UnitTest::GetInstance()->Failed();
}

}  // namespace
}  // namespace gainsmith::test

int main(int argc, char** argv) {
  using namespace gainsmith::test;
  QApplication application(argc, argv);
  if (QApplication::arguments().size() != 3) {
    std::cerr << "usage: gainsmith-guide loops|resonance DIRECTORY\n";
    return 2;
  }
  const bool loops = QApplication::arguments()[1] == "loops";
  const std::string directory = QApplication::arguments()[2].toStdString();
  QDir().mkpath(QString::fromStdString(directory));
  gainsmith::ApplyLook(application);
  return loops ? !Sit("", directory, &Guide::TuneTheLoops)
               : !Sit("springy-coupling", directory, &Guide::TrapTheResonance);
}
