// The design of the main window: menus, tool bar and client area.
#include <utility>

#include "shell/main_window.h"

namespace gainsmith {
namespace {

void Describe(MenuItem& item, std::string name, std::string caption, bool enabled = true,
              std::string shortcut = "") {
  item.Name = std::move(name);
  item.Caption = std::move(caption);
  item.Enabled = enabled;
  item.Shortcut = std::move(shortcut);
}

void Hidden(MenuItem& item, std::string name, std::string caption) {
  Describe(item, std::move(name), std::move(caption));
  item.Visible = false;
}

}  // namespace

void MDIForm1::DesignMenus() {
  Describe(mnuFile, "mnuFile", "File");
  Describe(mnuFileOpen, "mnuFileOpen", "&Open", false, "Ctrl+O");
  Describe(mnuSave, "mnuSave", "Save", false, "Ctrl+S");
  Describe(mnuSaveAs, "mnuSaveAs", "&Save As", false);
  Describe(mnuFileClose, "mnuFileClose", "Close", false);
  Describe(fileSeperator1, "fileSeperator1", "-");
  Describe(nmuExit, "nmuExit", "E&xit", true, "Ctrl+X");
  mnuFile.Items = {&mnuFileOpen, &mnuSave, &mnuSaveAs, &mnuFileClose, &fileSeperator1, &nmuExit};

  Describe(mnuDrive, "mnuDrive", "Drive");
  Describe(mnuConnect, "mnuConnect", "Co&nnect", true, "Ctrl+N");
  Describe(DrivePeperator0, "DrivePeperator0", "-");
  Describe(sysConfig, "sysConfig", "Properties", false);
  Describe(DriveSeperator1, "DriveSeperator1", "-");
  Describe(MnuCurrentLoop, "MnuCurrentLoop", "Current Loop", false);
  Describe(mnuPositionLoop, "mnuPositionLoop", "Position Loop", false);
  Describe(DriveSeperator2, "DriveSeperator2", "-");
  Hidden(ReadFromDrive, "ReadFromDrive", "Read From Drive");
  Describe(mnuDownloadToDrive, "mnuDownloadToDrive", "Download to Drive", false);
  Describe(mnuReset, "mnuReset", "Reset Drive", false);
  Hidden(ParaDataLib, "ParaDataLib", "Parameters -To beremoved");
  mnuDrive.Items = {&mnuConnect,         &DrivePeperator0, &sysConfig,       &DriveSeperator1,
                    &MnuCurrentLoop,     &mnuPositionLoop, &DriveSeperator2, &ReadFromDrive,
                    &mnuDownloadToDrive, &mnuReset,        &ParaDataLib};

  Describe(mnuTools, "mnuTools", "Tools");
  Describe(mnuScope, "mnuScope", "Scope", false);
  Describe(ErrCheck, "ErrCheck", "Error Log", false);
  mnuTools.Items = {&mnuScope, &ErrCheck};

  Describe(mnuHelp, "mnuHelp", "Help");
  Hidden(mnuContents, "mnuContents", "Contents...");
  Describe(mnuWebUserManual, "mnuWebUserManual", "User Manual on Web");
  Describe(mnuSoftwareManualOnWeb, "mnuSoftwareManualOnWeb", "Software Manual on Web");
  Describe(HelpSeperator1, "HelpSeperator1", "-");
  Describe(mnuAbout, "mnuAbout", "About Torvane Gainsmith...");
  mnuHelp.Items = {&mnuContents, &mnuWebUserManual, &mnuSoftwareManualOnWeb, &HelpSeperator1,
                   &mnuAbout};

  Menus = {&mnuFile, &mnuDrive, &mnuTools, &mnuHelp};

  const std::array<std::pair<const char*, const char*>, 8> buttons{
      {{"", ""},
       {"Open File", "open"},
       {"Save File", "save"},
       {"Properties", "properties"},
       {"Current Loop", "current-loop"},
       {"Position Loop", "position-loop"},
       {"Scope", "scope"},
       {"Error Log", "error-log"}}};
  for (std::size_t i = 1; i < Toolbar1.size(); ++i) {
    Toolbar1[i].ToolTip = buttons[i].first;
    Toolbar1[i].Icon = buttons[i].second;
    Toolbar1[i].Enabled = false;
    ToolButtons.push_back(&Toolbar1[i]);
  }
}

void MDIForm1::DesignClientArea() {
  Add(lblConnection, "lblConnection").Heading = true;
  Add(lblConnectionDetail, "lblConnectionDetail");
  Add(lblHint, "lblHint");
  Add(lblActivity, "lblActivity");
  Add(prgActivity, "prgActivity").AccessibleName = "Progress of the transfer";
  Add(lblNotice, "lblNotice").WordWrap = true;
}

void MDIForm1::PlaceClientArea() {
  constexpr int BlockTwips = 9000;
  const int left = (world_.ScreenWidthTwips() - BlockTwips) / 2;
  const int top = world_.ScreenHeightTwips() / 4;
  lblConnection.Place(left, top, BlockTwips, 480);
  lblConnectionDetail.Place(left, top + 540, BlockTwips, 300);
  lblHint.Place(left, top + 900, BlockTwips, 300);
  lblActivity.Place(left, top + 1500, BlockTwips, 300);
  prgActivity.Place(left, top + 1830, BlockTwips, 120);
  lblNotice.Place(left, top + 2280, BlockTwips, 2400);
  for (Label* label : {&lblConnection, &lblConnectionDetail, &lblHint, &lblActivity, &lblNotice}) {
    label->Alignment = TextAlignment::Centre;
  }
}

}  // namespace gainsmith
