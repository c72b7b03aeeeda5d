// Commands: what the menus and the tool bar of the main window do, and when they may.
//
// A command looks, in this order, at a bulk transfer under way (then it does nothing, unless it is
// Connect, Exit or Help), at the port (communication test) and at the mark of a window that holds
// the drive (exclusion test).
#pragma once

#include <functional>

#include "platform/world.h"
#include "shell/main_window.h"
#include "shell/shell_state.h"

namespace gainsmith {

// Where the commands lead. All windows outlive the commands.
struct Routes {
  Window* Connect = nullptr;
  Window* Properties = nullptr;
  Window* CurrentLoop = nullptr;
  Window* PositionLoop = nullptr;
  Window* VelocityLoop = nullptr;
  Window* Scope = nullptr;
  Window* ErrorLog = nullptr;
  Window* ParametersGrid = nullptr;
  Window* TestConsole = nullptr;
  Window* About = nullptr;
  Window* Waiting = nullptr;
  // The scope's capture cycle.
  Timer* ScopeCycle = nullptr;
  std::function<void()> OpenConfigFile;
  std::function<void()> Save;
  std::function<void()> SaveAs;
  std::function<void()> DownloadToDrive;
  std::function<void()> ResetDrive;
  std::function<void()> ReadFromDrive;
  // A handler is at work on the line.
  std::function<bool()> LineInUse = [] { return false; };
  // Clears the mark by which a closing position window ends its upload.
  std::function<void()> ForgetClosingPositionWindow;
};

class Commands {
 public:
  // Puts the handlers on the main window's items and buttons.
  Commands(World& world, ShellState& shell, MDIForm1& main, Routes routes);
  Commands(const Commands&) = delete;
  Commands& operator=(const Commands&) = delete;

  void mnuFileClose_Click();
  // The menu item opens the window modal; the tool bar modeless and without a look at the port.
  void sysConfig_Click();
  void PropertiesButton_Click();
  void MnuCurrentLoop_Click();
  void mnuPositionLoop_Click(std::function<void()> afterClosing = {});
  void PositionLoopButton_Click();
  void mnuScope_Click();
  void ErrCheck_Click();
  void ParaDataLib_Click();
  void mnuDownloadToDrive_Click();
  void mnuReset_Click();
  // Reached from the service bench's menu only.
  void VelocityLoop_Click();
  void ReadFromDrive_Click();
  void TestConsole_Click();

 private:
  void RouteFileMenu();
  void RouteDriveMenu();
  void RouteHelpMenu();
  void RouteToolBar();
  // The handler `action`, kept from starting while a bulk transfer runs.
  std::function<void()> WhenNoTransferRuns(std::function<void()> action);
  // The same for an action that reads the drive or writes to it. While a handler, perhaps of a
  // window that is closed by now, is at work on the line it waits under the hourglass: what it
  // reads would be about to change. Of several that wait the newest starts.
  std::function<void()> WhenLineIsFree(std::function<void()> action);
  void StartOnceLineIsFree(std::function<void()> action);
  void LineWatch_Timer();
  // False after the message of a lost link when the port is closed.
  bool CommunicationTest();
  void Refuse(const char* text, MessageIcon icon);

  World& world_;
  ShellState& shell_;
  MDIForm1& main_;
  Routes routes_;
  // The command that waits for the line.
  std::function<void()> waiting_;
};

}  // namespace gainsmith
