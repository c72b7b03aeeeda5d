// The main window's commands: what may start when, against every mark of an open window.
#include "shell/commands.h"

#include <gtest/gtest.h>

#include "support/messages.h"
#include "support/virtual_user.h"

namespace gainsmith::test {
namespace {

struct Shell {
  VirtualWorld World;
  VirtualUser User{World};
  ShellState State;
  MDIForm1 Main{World, State};
  Window Properties, CurrentLoop, PositionLoop, Scope, ErrorLog, Grid, Waiting;
  Timer ScopeCycle;
  std::string Calls;
  bool LineInUse = false;
  Commands Menu{World, State, Main, MakeRoutes()};
  DriveDevice Device;

  Shell() {
    World.Devices[1] = &Device;
    World.Show(Main);
  }

  void Connected() {
    ASSERT_TRUE(World.OpenPort(1, "38400,n,8,2"));
    Main.EnableDriveMenus();
    Main.EnableToolbarButtons();
  }
  // What of the menus and the tool bar the user can click.
  std::string Offered() const {
    std::string names;
    for (const MenuItem* menu : Main.Menus) {
      for (const MenuItem* item : menu->Items) {
        if (item->OnClick && item->Visible && item->Enabled) names += item->Name + ' ';
      }
    }
    for (const ToolButton* button : Main.ToolButtons) {
      if (button->Enabled) names += '[' + button->ToolTip + ']';
    }
    return names;
  }

  Routes MakeRoutes() {
    Routes routes;
    routes.Properties = &Properties;
    routes.CurrentLoop = &CurrentLoop;
    routes.PositionLoop = &PositionLoop;
    routes.Scope = &Scope;
    routes.ErrorLog = &ErrorLog;
    routes.ParametersGrid = &Grid;
    routes.Waiting = &Waiting;
    routes.ScopeCycle = &ScopeCycle;
    routes.LineInUse = [this] { return LineInUse; };
    routes.DownloadToDrive = [this] { Calls += "download"; };
    routes.ResetDrive = [this] { Calls += "reset"; };
    routes.ForgetClosingPositionWindow = [this] { Calls += "forget closing"; };
    return routes;
  }
};

TEST(MainWindow, OffersWhatNeedsADriveOnlyWithOne) {
  Shell shell;
  const std::string withoutDrive =
      "nmuExit mnuConnect mnuWebUserManual mnuSoftwareManualOnWeb mnuAbout ";
  EXPECT_EQ(shell.Offered(), withoutDrive);
  EXPECT_TRUE(shell.Main.Maximized && !shell.Main.MaximizeBox);
  EXPECT_EQ(shell.State.QuarterScreenWidth, 1366 * 15 / 4.0F);
  shell.Connected();
  EXPECT_EQ(shell.Offered(),
            "mnuFileOpen mnuSave mnuSaveAs nmuExit mnuConnect sysConfig MnuCurrentLoop "
            "mnuPositionLoop mnuDownloadToDrive mnuReset mnuScope ErrCheck mnuWebUserManual "
            "mnuSoftwareManualOnWeb mnuAbout [Open File][Save File][Properties][Current Loop]"
            "[Position Loop][Scope][Error Log]");
  shell.Main.mnuFileClose.Enabled = true;
  shell.User.Click(shell.Main.mnuFileClose);
  shell.Main.DisableDriveMenus();
  shell.Main.DisableToolbarButtons();
  EXPECT_EQ(shell.Offered(), withoutDrive);
}

TEST(MainWindow, EveryWayOutAsksOneQuestion) {
  Shell shell;
  shell.Connected();
  shell.World.Answers = {MessageAnswer::No, MessageAnswer::Yes};
  shell.User.Click(shell.Main.nmuExit);
  EXPECT_FALSE(shell.World.Ended());
  EXPECT_TRUE(shell.World.IsPortOpen());
  shell.User.Close(shell.Main);
  EXPECT_TRUE(shell.World.Ended());
  EXPECT_FALSE(shell.World.IsPortOpen());
  const Message question{"Exit Gainsmith for KVT518?", "Torvane Gainsmith for KVT518",
                         MessageButtons::YesNo, MessageIcon::Information, MessageAnswer::Yes};
  EXPECT_EQ(TakeMessages(shell.World), (Messages{question, question}));
}

// A row per command: what it says with the port closed, and with a window that holds the drive.
TEST(Commands, CommunicationAndExclusionTests) {
  struct Row {
    MenuItem MDIForm1::*Item;
    Window Shell::*Opens;  // nullptr: calls a routine
    const char* Calls;
    bool AsksForThePort;   // and opens its window modal
    const char* WhenHeld;  // nullptr: not looked at. A window that looks holds the drive itself.
  };
  const Row rows[] = {
      {&MDIForm1::sysConfig, &Shell::Properties, "", true, nullptr},
      {&MDIForm1::MnuCurrentLoop, &Shell::CurrentLoop, "", true, nullptr},
      {&MDIForm1::mnuPositionLoop, &Shell::PositionLoop, "forget closing", true,
       "Please close other opened window(s)"},
      {&MDIForm1::mnuScope, &Shell::Scope, "", true,
       "Please close opened window(s) before you can open scope"},
      {&MDIForm1::ErrCheck, &Shell::ErrorLog, "", true, "Please close opened window(s)"},
      {&MDIForm1::ParaDataLib, &Shell::Grid, "", false, "Please close opend windows"},
      {&MDIForm1::mnuDownloadToDrive, nullptr, "download", false,
       "Please close all other opened window(s)"},
      {&MDIForm1::mnuReset, nullptr, "reset", false, "Please close all other opened window(s)"},
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
      // As the menu does, reachable or not: its own tests must hold.
      item.OnClick();

      const bool lost = now == Now::PortClosed && row.AsksForThePort;
      const bool held = now == Now::Held && row.WhenHeld != nullptr;
      const MessageIcon icon = row.Opens != nullptr ? MessageIcon::None : MessageIcon::Critical;
      Messages expected;
      if (lost) expected = {LostLink};
      if (held) expected = {{row.WhenHeld, MainTitle, MessageButtons::Ok, icon}};
      EXPECT_EQ(TakeMessages(shell.World), expected);
      const bool runs = !lost && !held && now != Now::Transferring;
      const bool opens = runs && row.Opens != nullptr;
      EXPECT_EQ(shell.World.LoadedWindows().size(), opens ? 2U : 1U);
      EXPECT_EQ(shell.State.ChildWindowOpen,
                now == Now::Held || (opens && row.WhenHeld != nullptr));
      const bool calls = row.Opens != nullptr ? now != Now::Transferring : runs;
      EXPECT_EQ(shell.Calls, calls ? row.Calls : "");
      if (!opens) continue;
      EXPECT_TRUE((shell.*row.Opens).Visible);
      EXPECT_EQ((shell.*row.Opens).Modal, row.AsksForThePort);
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
  shell.Main.mnuPositionLoop.OnClick();
  shell.State[OpenMark::Scope] = true;
  shell.Main.mnuScope.OnClick();
  EXPECT_TRUE(shell.ScopeCycle.Enabled());
  shell.Main.mnuScope.OnClick();
  EXPECT_FALSE(shell.ScopeCycle.Enabled());
  EXPECT_TRUE(shell.World.Messages.empty());
  EXPECT_EQ(shell.World.LoadedWindows().size(), 1U);
}

TEST(Commands, TheNewestOneThatWaitsForTheLineStarts) {
  Shell shell;
  shell.Connected();
  shell.LineInUse = true;
  shell.Main.ErrCheck.OnClick();
  shell.Main.mnuScope.OnClick();
  EXPECT_FALSE(shell.State.ChildWindowOpen) << "a command that waits holds nothing";
  shell.World.RunFor(200);
  EXPECT_EQ(shell.Main.Pointer, MousePointer::Hourglass);
  EXPECT_EQ(shell.Main.lblActivity.Caption, "Waiting: a value is on its way");
  shell.LineInUse = false;
  shell.World.RunFor(200);
  EXPECT_EQ(shell.World.ModalWindow(), &shell.Scope);
  EXPECT_EQ(shell.Main.Pointer, MousePointer::Default);
  shell.User.Close(shell.Scope);
  EXPECT_FALSE(shell.ErrorLog.Loaded);
}

TEST(Commands, TwoButtonsOfTheToolBarDifferFromTheirMenuItems) {
  Shell shell;
  shell.Main.EnableToolbarButtons();
  shell.User.Click(shell.Main[Tool1::Properties]);
  EXPECT_TRUE(shell.Properties.Visible) << "without a look at the port";
  EXPECT_FALSE(shell.Properties.Modal);
  EXPECT_EQ(shell.Main.Pointer, MousePointer::Default);

  shell.Connected();
  shell.User.Click(shell.Main[Tool1::PositionLoop]);
  EXPECT_EQ(shell.Main.Pointer, MousePointer::Hourglass);
  shell.User.Close(shell.PositionLoop);
  EXPECT_EQ(shell.Main.Pointer, MousePointer::Default);
}

}  // namespace
}  // namespace gainsmith::test
