// The design of the main window: menus, tool bar and client area.
#include <algorithm>
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
  const auto forDrive = [this](MenuItem& item, const char* name, const char* caption,
                               const char* shortcut = "") {
    Describe(item, name, caption, false, shortcut);
    driveItems_.push_back(&item);
  };
  Describe(mnuFile, "mnuFile", "File");
  forDrive(mnuFileOpen, "mnuFileOpen", "&Open", "Ctrl+O");
  forDrive(mnuSave, "mnuSave", "Save", "Ctrl+S");
  forDrive(mnuSaveAs, "mnuSaveAs", "&Save As");
  Describe(mnuFileClose, "mnuFileClose", "Close", false);
  Describe(fileSeperator1, "fileSeperator1", "-");
  Describe(nmuExit, "nmuExit", "E&xit", true, "Ctrl+X");
  mnuFile.Items = {&mnuFileOpen, &mnuSave, &mnuSaveAs, &mnuFileClose, &fileSeperator1, &nmuExit};

  Describe(mnuDrive, "mnuDrive", "Drive");
  Describe(mnuConnect, "mnuConnect", "Co&nnect", true, "Ctrl+N");
  Describe(DrivePeperator0, "DrivePeperator0", "-");
  forDrive(sysConfig, "sysConfig", "Properties");
  Describe(DriveSeperator1, "DriveSeperator1", "-");
  forDrive(MnuCurrentLoop, "MnuCurrentLoop", "Current Loop");
  forDrive(mnuPositionLoop, "mnuPositionLoop", "Position Loop");
  Describe(DriveSeperator2, "DriveSeperator2", "-");
  Hidden(ReadFromDrive, "ReadFromDrive", "Read From Drive");
  forDrive(mnuDownloadToDrive, "mnuDownloadToDrive", "Download to Drive");
  forDrive(mnuReset, "mnuReset", "Reset Drive");
  Hidden(ParaDataLib, "ParaDataLib", "Parameters -To beremoved");
  mnuDrive.Items = {&mnuConnect,         &DrivePeperator0, &sysConfig,       &DriveSeperator1,
                    &MnuCurrentLoop,     &mnuPositionLoop, &DriveSeperator2, &ReadFromDrive,
                    &mnuDownloadToDrive, &mnuReset,        &ParaDataLib};

  Describe(mnuTools, "mnuTools", "Tools");
  forDrive(mnuScope, "mnuScope", "Scope");
  forDrive(ErrCheck, "ErrCheck", "Error Log");
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
  Add(lblHint, "lblHint").WordWrap = true;
  Add(lblNotice, "lblNotice").WordWrap = true;
  for (Label* label : {&lblConnection, &lblConnectionDetail}) {
    label->Alignment = TextAlignment::Centre;
  }

  Add(lblPageNote, "lblPageNote").Heading = true;
  Add(lblFilter, "lblFilter").Caption = "Filter:";
  Add(txtFilter, "txtFilter").AccessibleName = "Filter of the settings";
  txtFilter.ToolTip = "Shows the settings whose name, group or value contains this";
  Add(chkDifferences, "chkDifferences").Caption = "Differences only";
  chkDifferences.ToolTip =
      "Shows the settings that differ from the factory values or from the open file";
  Add(grdSettings, "grdSettings").AccessibleName = "Settings of the drive";
  grdSettings.ToolTip = "Ctrl+C copies the selected rows, or all of them";
  grdSettings.ManySelected = true;
  DesignStrip();
}

void MDIForm1::DesignStrip() {
  StripTwips = 390;
  constexpr Colour LineColour = Rgb(0x8A, 0x92, 0x9B);
  for (std::size_t i = 0; i < lblStrip.size(); ++i) {
    Add(linStrip[i], "linStrip", i).Border = false;
    linStrip[i].BackColor = LineColour;
    Add(lblStrip[i], "lblStrip", i).Elided = true;
  }
  lblStrip[static_cast<std::size_t>(StripField::Trouble)].OnClick = [this] { OnTroubleClick(); };
  Add(prgActivity, "prgActivity").AccessibleName = "Progress";
}

void MDIForm1::PlaceClientArea() {
  const int width = AreaWidthTwips > 0 ? AreaWidthTwips : ClientWidthTwips;
  const int height = AreaHeightTwips > 0 ? AreaHeightTwips : ClientHeightTwips;
  const int bottom = height - StripTwips;
  PlaceStrip(width, bottom);
  if (pageShown_) {
    PlacePage(width, 0, bottom);
    return;
  }
  const int block = std::min(width - 360, 10800);
  const int left = (width - block) / 2;
  const int top = std::max(bottom / 6, 120);
  lblConnection.Place(left, top, block, 480);
  lblConnectionDetail.Place(left, top + 540, block, 300);
  lblHint.Place(left, top + 1020, block, 3000);
  lblNotice.Place(left, top + 4140, block, 2400);
  lblNotice.Alignment = TextAlignment::Centre;
  lblHint.Alignment = world_.IsPortOpen() ? TextAlignment::Centre : TextAlignment::Left;
}

void MDIForm1::PlacePage(int widthTwips, int topTwips, int bottomTwips) {
  constexpr int Margin = 150;
  constexpr int RowTwips = 360;
  constexpr int FilterTwips = 3000;
  int top = topTwips + Margin;
  const int inside = widthTwips - 2 * Margin;
  lblPageNote.Place(Margin, top, inside - FilterTwips - 3300, RowTwips);
  const int right = Margin + inside;
  chkDifferences.Place(right - FilterTwips - 2940, top, 2100, RowTwips);
  lblFilter.Place(right - FilterTwips - 690, top, 600, RowTwips);
  txtFilter.Place(right - FilterTwips, top, FilterTwips, RowTwips);
  top += RowTwips + 120;
  if (lblNotice.Visible) {
    const auto lines = 1 + std::count(lblNotice.Caption.begin(), lblNotice.Caption.end(), '\n') +
                       static_cast<int>(lblNotice.Caption.size()) / 140;
    const int notice = static_cast<int>(lines) * 240 + 60;
    lblNotice.Alignment = TextAlignment::Left;
    lblNotice.Place(Margin, top, inside, notice);
    top += notice + 60;
  }
  grdSettings.Place(Margin, top, inside, std::max(bottomTwips - top - 120, 600));
}

// The shares, in thousandths, are those of the longest texts of the first four fields; the last one
// opens a list. The bar lies below its text.
void MDIForm1::PlaceStrip(int widthTwips, int topTwips) {
  constexpr int LineTwips = 15;
  constexpr int TextTwips = 345;
  constexpr int BarTwips = 60;
  constexpr std::array<int, 5> Shares{280, 256, 243, 129, 92};
  linStrip[0].Place(0, topTwips, widthTwips, LineTwips);
  int share = 0;
  for (std::size_t i = 0; i < lblStrip.size(); ++i) {
    const int left = widthTwips * share / 1000;
    share += Shares[i];
    const int right = widthTwips * share / 1000;
    if (i > 0) linStrip[i].Place(left, topTwips + 60, LineTwips, TextTwips - 60);
    const bool activity = &lblStrip[i] == &lblActivity;
    lblStrip[i].Place(left + LineTwips, topTwips + LineTwips, right - left - LineTwips,
                      activity ? TextTwips - BarTwips - LineTwips : TextTwips);
    if (!activity) continue;
    prgActivity.Place(left + 90, topTwips + TextTwips - BarTwips, right - left - 180, BarTwips);
  }
}

}  // namespace gainsmith
