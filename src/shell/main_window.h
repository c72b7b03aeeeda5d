// MDIForm1: the main window, with the menu bar, the tool bar, a strip along its bottom edge that
// says how things stand, and an area that says what to do first and, later, what the drive is set
// to. What its commands do when they may start is in shell/commands.h; what the strip says of link
// and motor is told by app/drive_watch.h, what the area says of the settings by
// params/drive_page.h.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "platform/world.h"
#include "shell/shell_state.h"
#include "shell/trouble_log.h"

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

// Fields of the strip, from left to right.
enum class StripField : std::size_t { Link, Motor, Settings, Activity, Trouble };

// What a field of the strip says. An alarm is seen by more than its colour.
struct StripText {
  std::string Text;
  // More of it, for the tool tip; empty: the text itself.
  std::string More = {};
  bool Alarm = false;
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

  // --- The client area: what the tool is connected to and what to do first.
  Label lblConnection, lblConnectionDetail, lblHint, lblNotice;
  // The drive's page, once settings have been read: a row for each of them.
  TextBox txtFilter;
  CheckBox chkDifferences;
  Label lblFilter, lblPageNote;
  Grid grdSettings;
  // The strip. lblActivity and prgActivity say how far a long operation is.
  std::array<Label, 5> lblStrip;
  std::array<Frame, 5> linStrip;
  Label& lblActivity = lblStrip[static_cast<std::size_t>(StripField::Activity)];
  ProgressBar prgActivity;

  // Looks whether the line is free, for a command that waits.
  Timer LineWatch;

  // What went wrong lately, the newest first.
  TroubleLog Troubles;

  // Full path of the configuration file that Save writes to; empty when there is none.
  std::string CurrentConfigFile;

  void Form_Load() override { MDIForm_Load(); }
  bool Form_Unload() override;
  // Places what depends on the size of the window, shows the newest trouble, and calls OnRefresh.
  void Refresh() override;
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
  // A long operation has done `done` of `total`; `what` says what it does ("Reading settings"). A
  // total of 0: nobody knows how much there is to do.
  void ShowActivity(const std::string& what, int done = 0, int total = 0);
  void EndActivity();
  void ShowStrip(StripField field, const StripText& text);
  // Notes what went wrong, in words that say what happened and, where it helps, what to do.
  void TellTrouble(const std::string& text);
  [[nodiscard]] bool PageShown() const { return pageShown_; }
  // Something the user should know that no message box tells; it stays until another text takes
  // its place, or an empty one.
  void ShowNotice(Notice about, const std::string& text);

  // Raised when the table is about to be filled anew, or when the connection ends or goes to
  // another drive: what the properties window shows, if it is open, no longer holds. `why` is as "a
  // file was opened".
  std::function<void(const std::string& why)> OnSettingsReplaced = [](const std::string&) {};
  // Brings strip and page up to date.
  std::function<void()> OnRefresh = [] {};
  // Opens the list of what went wrong.
  std::function<void()> OnTroubleClick = [] {};

 private:
  void DesignMenus();
  void DesignClientArea();
  void DesignStrip();
  void PlaceClientArea();
  void PlacePage(int widthTwips, int topTwips, int bottomTwips);
  void PlaceStrip(int widthTwips, int topTwips);
  void ShowPage(bool shown);
  void SetDriveMenus(bool enabled);
  void SetToolbarButtons(bool enabled);

  // The items that need a connected drive.
  std::vector<MenuItem*> driveItems_;
  World& world_;
  ShellState& shell_;
  std::array<std::string, 4> notices_;
  bool pageShown_ = false;
};

// Says in the strip what goes on, for as long as it lives; then what was said before.
class ActivityScope {
 public:
  ActivityScope(MDIForm1& main, const std::string& what)
      : main_(main),
        captionBefore_(main.lblActivity.Caption),
        barBefore_(main.prgActivity.Visible) {
    main_.ShowActivity(what);
  }
  ActivityScope(const ActivityScope&) = delete;
  ActivityScope& operator=(const ActivityScope&) = delete;
  ~ActivityScope() {
    main_.lblActivity.Caption = captionBefore_;
    main_.prgActivity.Visible = barBefore_;
  }

 private:
  MDIForm1& main_;
  const std::string captionBefore_;
  const bool barBefore_;
};

}  // namespace gainsmith
