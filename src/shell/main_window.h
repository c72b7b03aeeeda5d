// MDIForm1: the main window, with the menu bar, the tool bar and a quiet line or two about the
// connection. What its commands do when they may start is in shell/commands.h.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "platform/world.h"
#include "shell/shell_state.h"

namespace gainsmith {

// Tool bar buttons by their number, which counts from 1.
enum class Tool1 : std::size_t {
  OpenFile = 1,
  SaveFile = 2,
  Properties = 3,
  CurrentLoop = 4,
  PositionLoop = 5,
  Scope = 6,
  ErrorLog = 7,
};

// What a notice of the main window is about; it shows one of each, in this order.
enum class Notice : std::size_t {
  Table,     // the settings that the tool holds
  Silence,   // a drive that does not answer a transfer that is under way
  Transfer,  // how the last bulk transfer ended
  Window,    // a window that was closed
};

struct MDIForm1 : FrameWindow {
  MDIForm1(World& world, ShellState& shell);

  // --- Menus.
  MenuItem mnuFile, mnuFileOpen, mnuSave, mnuSaveAs, mnuFileClose, fileSeperator1, nmuExit;
  MenuItem mnuDrive, mnuConnect, DrivePeperator0, sysConfig, DriveSeperator1, MnuCurrentLoop,
      mnuPositionLoop, DriveSeperator2, ReadFromDrive, mnuDownloadToDrive, mnuReset, ParaDataLib;
  MenuItem mnuTools, mnuScope, ErrCheck;
  MenuItem mnuHelp, mnuContents, mnuWebUserManual, mnuSoftwareManualOnWeb, HelpSeperator1, mnuAbout;

  // --- Tool bar. Button n of the system is Toolbar1[n]; entry 0 is no button.
  std::array<ToolButton, 8> Toolbar1;
  ToolButton& operator[](Tool1 button) { return Toolbar1[static_cast<std::size_t>(button)]; }

  // --- The client area: what the tool is connected to, what to do, how far a transfer is.
  Label lblConnection, lblConnectionDetail, lblHint, lblActivity, lblNotice;
  ProgressBar prgActivity;

  // Looks whether the line is free, for a command that waits.
  Timer LineWatch;

  // Full path of the configuration file that Save writes to; empty when there is none.
  std::string CurrentConfigFile;

  void Form_Load() override { MDIForm_Load(); }
  bool Form_Unload() override;
  // Forgets which windows are open, takes the whole screen and waits for the user.
  void MDIForm_Load();
  // Asks whether to exit; true on Yes.
  bool MDIForm_QueryUnload();
  // Closes the port and ends the program.
  void MDIForm_Unload();

  // The ten items and seven buttons that need a connected drive.
  void EnableDriveMenus() { SetDriveMenus(true); }
  void DisableDriveMenus() { SetDriveMenus(false); }
  void EnableToolbarButtons() { SetToolbarButtons(true); }
  void DisableToolbarButtons() { SetToolbarButtons(false); }

  // In velocity mode neither the current loop nor the position loop can be tested.
  void TakeTestCommandsAway();

  // Title bar: the base caption, or with the name of the file in use, without its folder.
  void ShowFileInCaption(const std::string& fileName);
  void ShowBaseCaption();

  // `where` names an open port, line speed and device ("COM1 (/dev/ttyUSB0), 38400 baud, device
  // 1"); empty: no port is open.
  void ShowPort(const std::string& where);
  // All settings of the drive behind the open port have been read.
  void ShowConnected();
  // A bulk transfer has done `done` of `total`; `what` says what it does ("Reading settings").
  void ShowActivity(const std::string& what, int done, int total);
  void EndActivity();
  // Something the user should know that no message box tells; it stays until another text takes
  // its place, or an empty one.
  void ShowNotice(Notice about, const std::string& text);

  // Raised when the table is about to be filled anew, or when the connection ends or goes to
  // another drive: what the properties window shows, if it is open, no longer holds. `why` is as "a
  // file was opened".
  std::function<void(const std::string& why)> OnSettingsReplaced = [](const std::string&) {};

 private:
  void DesignMenus();
  void DesignClientArea();
  void PlaceClientArea();
  void SetDriveMenus(bool enabled);
  void SetToolbarButtons(bool enabled);

  World& world_;
  ShellState& shell_;
  std::array<std::string, 4> notices_;
};

}  // namespace gainsmith
