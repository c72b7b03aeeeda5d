// frmTroubles: the rows of the trouble log, and their copy.
#include "shell/trouble_window.h"

namespace gainsmith {

frmTroubles::frmTroubles(World& world, const MDIForm1& main) : world_(world), main_(main) {
  Name = "frmTroubles";
  Caption = "What went wrong";
  ClientWidthTwips = 12000;
  ClientHeightTwips = 5700;
  Add(grdTroubles, "grdTroubles").AccessibleName = "What went wrong, the newest first";
  grdTroubles.Place(180, 180, 11640, 4740);
  grdTroubles.Columns = {{"Time", 1080}, {"Times", 780}, {"What", 9600}};
  grdTroubles.ManySelected = true;
  Add(cmdCopy, "cmdCopy").Caption = "&Copy";
  cmdCopy.ToolTip = "Copies the whole list";
  cmdCopy.Place(8880, 5100, 1380, 420);
  cmdCopy.OnClick = [this] { cmdCopy_Click(); };
  Add(cmdClose, "cmdClose").Caption = "Close";
  cmdClose.Place(10440, 5100, 1380, 420);
  cmdClose.OnClick = [this] { world_.Unload(*this); };
}

void frmTroubles::Form_Load() {
  LeftTwips = (world_.ScreenWidthTwips() - ClientWidthTwips) / 2;
  TopTwips = (world_.ScreenHeightTwips() - ClientHeightTwips) / 2;
  shown_ = 0;
  Refresh();
}

void frmTroubles::Refresh() {
  const TroubleLog& log = main_.Troubles;
  cmdCopy.Enabled = !log.Entries().empty();
  if (shown_ == log.Revision()) return;
  shown_ = log.Revision();
  grdTroubles.Rows.clear();
  for (const Trouble& trouble : log.Entries()) {
    grdTroubles.Rows.push_back({trouble.Time, std::to_string(trouble.Count), trouble.Text});
  }
}

void frmTroubles::cmdCopy_Click() { world_.CopyText(main_.Troubles.AsText()); }

}  // namespace gainsmith
