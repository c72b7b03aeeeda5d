// The main window's commands: what may start when, against every mark of an open window.
#include "shell/commands.h"

#include <gtest/gtest.h>

#include <array>

#include "support/virtual_user.h"

namespace gainsmith::test {
namespace {

constexpr const char* LostLink =
    "Unable to communicate with the connected drive. Check your connection";

struct ChildWindow : Window {
  explicit ChildWindow(std::string name) { Name = std::move(name); }
};

struct Shell {
  VirtualWorld World;
  VirtualUser User{World};
  ShellState State;
  MDIForm1 Main{World, State};
  ChildWindow Connect{"Form2"}, Properties{"sysConfigFrm"}, CurrentLoop{"Form1"},
      PositionLoop{"Form3"}, VelocityLoop{"velocityModeTune"}, Scope{"Form5"}, ErrorLog{"Form4"},
      Grid{"Form8"}, Console{"Form110"}, About{"Dialog"}, Waiting{"frmWaitingMessage"};
  Timer ScopeCycle;
  std::vector<std::string> Calls;
  Commands Menu{World, State, Main, MakeRoutes()};
  ScriptedDevice Device{
      [](int, const std::vector<std::uint8_t>&) { return std::vector<ScriptedDevice::Reply>{}; }};

  Shell() {
    World.Devices[1] = &Device;
    World.Show(Main);
  }

  void Connected() {
    ASSERT_TRUE(World.OpenPort(1, "38400,n,8,2"));
    Main.EnableDriveMenus();
    Main.EnableToolbarButtons();
  }

  // Calls the command as the menu does, reachable or not: its own tests must hold.
  void Do(MenuItem& item) { item.OnClick(); }

  Routes MakeRoutes() {
    Routes routes;
    routes.Connect = &Connect;
    routes.Properties = &Properties;
    routes.CurrentLoop = &CurrentLoop;
    routes.PositionLoop = &PositionLoop;
    routes.VelocityLoop = &VelocityLoop;
    routes.Scope = &Scope;
    routes.ErrorLog = &ErrorLog;
    routes.ParametersGrid = &Grid;
    routes.TestConsole = &Console;
    routes.About = &About;
    routes.Waiting = &Waiting;
    routes.ScopeCycle = &ScopeCycle;
    routes.OpenConfigFile = [this] { Calls.push_back("open"); };
    routes.Save = [this] { Calls.push_back("save"); };
    routes.SaveAs = [this] { Calls.push_back("save as"); };
    routes.DownloadToDrive = [this] { Calls.push_back("download"); };
    routes.ResetDrive = [this] { Calls.push_back("reset"); };
    routes.ReadFromDrive = [this] { Calls.push_back("read"); };
    routes.ForgetClosingPositionWindow = [this] { Calls.push_back("forget closing"); };
    return routes;
  }
};

TEST(MainWindow, StartsDisconnectedAndMaximised) {
  Shell shell;
  const MDIForm1& main = shell.Main;
  for (const MenuItem* item :
       {&main.mnuFileOpen, &main.mnuSave, &main.mnuSaveAs, &main.sysConfig, &main.MnuCurrentLoop,
        &main.mnuPositionLoop, &main.mnuDownloadToDrive, &main.mnuReset, &main.mnuScope,
        &main.ErrCheck, &main.mnuFileClose}) {
    EXPECT_FALSE(item->Enabled) << item->Name;
  }
  for (const ToolButton* button : main.ToolButtons) EXPECT_FALSE(button->Enabled);
  for (const MenuItem* item : {&main.mnuConnect, &main.nmuExit, &main.mnuAbout}) {
    EXPECT_TRUE(item->Enabled) << item->Name;
  }
  for (const MenuItem* item : {&main.ReadFromDrive, &main.ParaDataLib, &main.mnuContents}) {
    EXPECT_FALSE(item->Visible) << item->Name;
  }
  EXPECT_TRUE(main.Maximized);
  EXPECT_FALSE(main.MaximizeBox);
  EXPECT_EQ(shell.State.QuarterScreenWidth, 1366 * 15 / 4.0F);
}

TEST(MainWindow, EveryWayOutAsksOneQuestion) {
  Shell shell;
  shell.Connected();
  shell.World.Answers = {MessageAnswer::No};
  shell.User.Click(shell.Main.nmuExit);
  EXPECT_FALSE(shell.World.Ended());
  EXPECT_TRUE(shell.World.IsPortOpen());

  shell.World.Answers = {MessageAnswer::Yes};
  shell.User.Close(shell.Main);
  EXPECT_TRUE(shell.World.Ended());
  EXPECT_FALSE(shell.World.IsPortOpen());
  ASSERT_EQ(shell.World.Messages.size(), 2U);
  const Message& question = shell.World.Messages[1];
  EXPECT_EQ(question.Text, "Exit Gainsmith for KVT518?");
  EXPECT_EQ(question.Title, "Torvane Gainsmith for KVT518");
  EXPECT_EQ(question.Icon, MessageIcon::Information);
  EXPECT_EQ(question.Default, MessageAnswer::Yes);
}

// A row per command: what it says with the port closed, and with a window that holds the drive.
TEST(Commands, CommunicationAndExclusionTests) {
  struct Row {
    MenuItem MDIForm1::*Item;
    ChildWindow Shell::*Opens;  // nullptr: calls a routine
    const char* Calls;
    bool AsksForThePort;
    const char* WhenHeld;  // nullptr: not looked at
    MessageIcon Icon;
    bool SetsMark;
    bool Modal;
  };
  const Row rows[] = {
      {&MDIForm1::sysConfig, &Shell::Properties, "", true, nullptr, {}, false, true},
      {&MDIForm1::MnuCurrentLoop, &Shell::CurrentLoop, "", true, nullptr, {}, false, true},
      {&MDIForm1::mnuPositionLoop, &Shell::PositionLoop, "forget closing", true,
       "Please close other opened window(s)", MessageIcon::None, true, true},
      {&MDIForm1::mnuScope, &Shell::Scope, "", true,
       "Please close opened window(s) before you can open scope", MessageIcon::None, true, true},
      {&MDIForm1::ErrCheck, &Shell::ErrorLog, "", true, "Please close opened window(s)",
       MessageIcon::None, true, true},
      {&MDIForm1::ParaDataLib, &Shell::Grid, "", false, "Please close opend windows",
       MessageIcon::None, true, false},
      {&MDIForm1::mnuDownloadToDrive, nullptr, "download", false,
       "Please close all other opened window(s)", MessageIcon::Critical, false, false},
      {&MDIForm1::mnuReset, nullptr, "reset", false, "Please close all other opened window(s)",
       MessageIcon::Critical, false, false},
  };
  enum class Now { PortClosed, Free, Held, Transferring };
  for (const Row& row : rows) {
    for (const Now now : {Now::PortClosed, Now::Free, Now::Held, Now::Transferring}) {
      Shell shell;
      MenuItem& item = shell.Main.*row.Item;
      SCOPED_TRACE(item.Name + " " + std::to_string(static_cast<int>(now)));
      if (now != Now::PortClosed) shell.Connected();
      shell.State.ChildWindowOpen = now == Now::Held;
      shell.State.BulkTransferRunning = now == Now::Transferring;
      shell.Do(item);

      const bool lost = now == Now::PortClosed && row.AsksForThePort;
      const bool held = now == Now::Held && row.WhenHeld != nullptr;
      ASSERT_EQ(shell.World.Messages.size(), lost || held ? 1U : 0U);
      if (lost || held) {
        const Message& message = shell.World.Messages[0];
        EXPECT_EQ(message.Text, lost ? LostLink : row.WhenHeld);
        EXPECT_EQ(message.Title, lost ? "Cmmunication Error" : MainTitle);
        EXPECT_EQ(message.Icon, lost ? MessageIcon::Critical : row.Icon);
      }
      const bool runs = !lost && !held && now != Now::Transferring;
      const bool opens = runs && row.Opens != nullptr;
      EXPECT_EQ(shell.World.LoadedWindows().size(), opens ? 2U : 1U);
      EXPECT_EQ(shell.State.ChildWindowOpen, now == Now::Held || (runs && row.SetsMark));
      if (runs && *row.Calls != 0) {
        EXPECT_EQ(shell.Calls, std::vector<std::string>{row.Calls});
      }
      if (!opens) continue;
      EXPECT_TRUE((shell.*row.Opens).Visible);
      EXPECT_EQ((shell.*row.Opens).Modal, row.Modal);
      shell.User.Close(shell.*row.Opens);
      EXPECT_EQ(shell.Main.Pointer, MousePointer::Default);
    }
  }
}

TEST(Commands, TheOwnMarkOfPositionLoopAndScopeChangesTheirAnswer) {
  Shell shell;
  shell.Connected();
  shell.State.ChildWindowOpen = true;
  shell.State[OpenMark::PositionLoop] = true;
  shell.Do(shell.Main.mnuPositionLoop);
  shell.State[OpenMark::Scope] = true;
  shell.Do(shell.Main.mnuScope);
  EXPECT_TRUE(shell.ScopeCycle.Enabled());
  shell.Do(shell.Main.mnuScope);
  EXPECT_FALSE(shell.ScopeCycle.Enabled());
  EXPECT_TRUE(shell.World.Messages.empty());
  EXPECT_EQ(shell.World.LoadedWindows().size(), 1U);
}

TEST(Commands, ThePropertiesButtonAsksForNoPortAndOpensModeless) {
  Shell shell;
  shell.Connected();
  shell.User.Click(shell.Main[Tool1::Properties]);
  EXPECT_TRUE(shell.Properties.Visible);
  EXPECT_FALSE(shell.Properties.Modal);
  EXPECT_EQ(shell.Main.Pointer, MousePointer::Default);
  EXPECT_TRUE(shell.User.CanReach(shell.Main));
}

TEST(Commands, ThePositionLoopButtonKeepsTheHourglassWhileItsWindowIsOpen) {
  Shell shell;
  shell.Connected();
  shell.User.Click(shell.Main[Tool1::PositionLoop]);
  EXPECT_EQ(shell.Main.Pointer, MousePointer::Hourglass);
  shell.User.Close(shell.PositionLoop);
  EXPECT_EQ(shell.Main.Pointer, MousePointer::Default);
}

TEST(Commands, CloseForgetsTheFile) {
  Shell shell;
  shell.Connected();
  shell.Main.CurrentConfigFile = "/home/anna/axis 1.tvd";
  shell.Main.ShowFileInCaption(shell.Main.CurrentConfigFile);
  shell.Main.mnuFileClose.Enabled = true;
  EXPECT_EQ(shell.Main.Caption, "Torvane Gainsmith for KVT518 - [axis 1.tvd]");
  shell.User.Click(shell.Main.mnuFileClose);
  EXPECT_EQ(shell.Main.Caption, "Torvane Gainsmith for KVT518");
  EXPECT_EQ(shell.Main.CurrentConfigFile, "");
  EXPECT_FALSE(shell.Main.mnuFileClose.Enabled);
}

TEST(Commands, HelpHandsAddressesToTheDesktop) {
  Shell shell;
  shell.User.Click(shell.Main.mnuWebUserManual);
  shell.User.Click(shell.Main.mnuSoftwareManualOnWeb);
  shell.Do(shell.Main.mnuContents);
  EXPECT_EQ(
      shell.World.Documents,
      (std::vector<std::string>{"http://www.torvane.example/uploadfile/kvt518m.pdf",
                                "http://www.torvane.example/uploadfile/GainsmithForKVT518.pdf",
                                "/program/help.chm"}));
}

}  // namespace
}  // namespace gainsmith::test
