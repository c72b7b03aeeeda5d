// MDIForm1: start, end, and what the main window shows of the connection.
#include "shell/main_window.h"

#include "platform/common_texts.h"

namespace gainsmith {

MDIForm1::MDIForm1(World& world, ShellState& shell) : world_(world), shell_(shell) {
  Name = "MDIForm1";
  Caption = MainTitle;
  Timers = {&LineWatch};
  LineWatch.IntervalMs = 50;
  DesignMenus();
  DesignClientArea();
}

void MDIForm1::MDIForm_Load() {
  MaximizeBox = false;
  Maximized = true;
  TopTwips = 0;
  ClientWidthTwips = world_.ScreenWidthTwips();
  ClientHeightTwips = world_.ScreenHeightTwips();
  shell_.QuarterScreenWidth = static_cast<float>(world_.ScreenWidthTwips()) / 4;
  shell_.QuarterScreenHeight = static_cast<float>(world_.ScreenHeightTwips()) / 4;
  shell_.ChildWindowOpen = false;
  shell_.WindowOpenFlags.fill(false);
  ErrCheck.Enabled = false;
  PlaceClientArea();
  ShowPort("");
  EndActivity();
  notices_.fill("");
  ShowNotice(Notice::Table, "");
}

bool MDIForm1::Form_Unload() {
  if (!MDIForm_QueryUnload()) return false;
  MDIForm_Unload();
  return true;
}

bool MDIForm1::MDIForm_QueryUnload() {
  return world_.ShowMessage({"Exit Gainsmith for KVT518?", MainTitle, MessageButtons::YesNo,
                             MessageIcon::Information, MessageAnswer::Yes}) == MessageAnswer::Yes;
}

void MDIForm1::MDIForm_Unload() { world_.EndProgram(); }

void MDIForm1::SetDriveMenus(bool enabled) {
  for (MenuItem* item : driveItems_) item->Enabled = enabled;
}

void MDIForm1::SetToolbarButtons(bool enabled) {
  for (ToolButton* button : ToolButtons) button->Enabled = enabled;
}

void MDIForm1::TakeTestCommandsAway() {
  (*this)[Tool1::CurrentLoop].Enabled = false;
  MnuCurrentLoop.Enabled = false;
  mnuPositionLoop.Enabled = false;
}

void MDIForm1::ShowFileInCaption(const std::string& fileName) {
  Caption = std::string(MainTitle) + " - [" + fileName + "]";
}

void MDIForm1::ShowBaseCaption() { Caption = MainTitle; }

void MDIForm1::Refresh() {
  PlaceClientArea();
  // Its words would be wrong while the settings are being read.
  lblHint.Visible = !pageShown_ && !(world_.IsPortOpen() && shell_.BulkTransferRunning);
  const auto& troubles = Troubles.Entries();
  if (troubles.empty()) {
    ShowStrip(StripField::Trouble, {"No trouble so far"});
  } else {
    const Trouble& last = troubles.front();
    ShowStrip(StripField::Trouble,
              {last.Time + "  " + last.Text, last.Text + "\nClick for the last ones."});
  }
  OnRefresh();
  constexpr std::array Names{"Link", "Motor", "Settings", "Activity", "Last trouble"};
  for (std::size_t i = 0; i < lblStrip.size(); ++i) {
    const std::string& text = lblStrip[i].Caption;
    const std::string spoken = text.empty() ? "nothing to say" : text;
    const bool named = spoken.starts_with(Names[i]);
    lblStrip[i].AccessibleName = named ? spoken : Names[i] + (": " + spoken);
  }
}

void MDIForm1::ShowPort(const std::string& where) {
  const bool open = !where.empty();
  lblConnection.Caption = open ? "Port open" : "Not connected";
  lblConnectionDetail.Caption = where;
  lblHint.Caption = open ? "The drive's settings have not been read. Close and open the connection "
                           "to read them."
                         : "";
  ShowPage(false);
}

void MDIForm1::ShowConnected() {
  lblConnection.Caption = "Connected";
  lblHint.Caption = "";
  ShowPage(true);
}

void MDIForm1::ShowPage(bool shown) {
  pageShown_ = shown;
  for (Control* control :
       {static_cast<Control*>(&grdSettings), static_cast<Control*>(&txtFilter),
        static_cast<Control*>(&chkDifferences), static_cast<Control*>(&lblFilter),
        static_cast<Control*>(&lblPageNote)}) {
    control->Visible = shown;
  }
  lblConnection.Visible = lblConnectionDetail.Visible = lblHint.Visible = !shown;
  PlaceClientArea();
}

void MDIForm1::ShowActivity(const std::string& what, int done, int total) {
  const bool counted = total > 0;
  lblActivity.Caption =
      counted ? what + " " + std::to_string(done) + " of " + std::to_string(total) : what;
  prgActivity.Max = total;
  prgActivity.Value = done;
  prgActivity.Visible = counted;
}

void MDIForm1::EndActivity() {
  lblActivity.Caption.clear();
  prgActivity.Visible = false;
}

void MDIForm1::ShowStrip(StripField field, const StripText& text) {
  constexpr Colour AlarmGround = Rgb(0xB7, 0x1C, 0x1C);
  Label& label = lblStrip[static_cast<std::size_t>(field)];
  label.Caption = text.Alarm ? "⚠ " + text.Text : text.Text;
  label.ToolTip = text.More;
  label.BackColor = text.Alarm ? AlarmGround : DefaultColour;
  label.ForeColor = text.Alarm ? Rgb(0xFF, 0xFF, 0xFF) : DefaultColour;
}

void MDIForm1::TellTrouble(const std::string& text) { Troubles.Add(world_.TimeOfDay(), text); }

void MDIForm1::ShowNotice(Notice about, const std::string& text) {
  notices_[static_cast<std::size_t>(about)] = text;
  lblNotice.Caption.clear();
  for (const std::string& notice : notices_) {
    if (notice.empty()) continue;
    lblNotice.Caption += (lblNotice.Caption.empty() ? "" : "\n") + notice;
  }
  lblNotice.Visible = !lblNotice.Caption.empty();
  PlaceClientArea();
}

}  // namespace gainsmith
