// Form8, "Parameters": all rows of the parameter table in a grid, with the bulk operations on them.
//
// The rows on show are a copy in a row store, rebuilt after each change; no cell can be edited.
// Its buttons do nothing while a bulk transfer runs. The window may be closed by hand while one of
// its own runs: the transfer goes on to its end.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "link/link.h"
#include "params/bulk_transfer.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "shell/shell_state.h"

namespace gainsmith {

struct Form8 : Window {
  Form8(World& world, Link& link, ParameterStore& store, ShellState& shell, MDIForm1& main,
        BulkTransfer& transfer);

  // The heading.
  Label Label1;
  Grid MSFlexGrid1;
  Button readdata, writedata, EEProm, Command1, save, Command2;
  // Progress display in the place of the buttons, hidden when idle.
  Frame Frame1;
  ProgressBar ProgressBar1;
  Label Label3;
  // Timer1 and Timer3 start the display of a read and of a write, Timer2 ends it. dele clears rows
  // that an earlier run left behind.
  Timer Timer1, Timer2, Timer3, dele;
  // The grid's source; open from load to unload.
  std::unique_ptr<RowStore> Data2;

  // The grid holds rows from a read or a file.
  bool RowsValid = false;
  // The store holds rows of this stay of the window.
  bool RowsInDatabase = false;
  // The work of the running read or write has finished.
  bool ProgressDone = false;
  // 1 after the display of a read, 2 after that of a write.
  float ProgressPhase = 0;
  // Files loaded in this stay of the window.
  std::int16_t FilesOpened = 0;
  // The last store failed.
  bool EepromFailed = false;

  void Form_Load() override;
  bool Form_Unload() override;
  // Reads all settings into the table and the rows; a failure closes the window, and so does the
  // closing of the port under it.
  void readdata_Click();
  // Writes the table to the drive; without rows it only says what to do first.
  void writedata_Click();
  void EEProm_Click();
  // Loads a file into the table, silently where that fails. Nothing goes to the drive.
  void Command1_Click();
  // Writes the table to a file without asking whether to replace it, silently where that fails.
  void save_Click();
  void Command2_Click();
  void Timer1_Timer();
  void Timer2_Timer();
  void Timer3_Timer();
  void dele_Timer();

 private:
  void Design();
  std::array<Button*, 6> Buttons() {
    return {&readdata, &writedata, &EEProm, &Command1, &save, &Command2};
  }
  void ShowButtons(bool visible);
  void BeginWork(Timer& display);
  // False after the message, if there is one, of a download that ended early.
  bool Download();
  void CountUp(Timer& display, int last, float phase);
  void EndProgress();
  void AddRows();
  void DeleteRows();
  void RefreshGrid();
  void MoveToLastRow();
  void WriteMarker(bool clean);
  bool LoadFile(const ChosenFile& chosen);
  void Tell(const char* text, const char* title, MessageIcon icon);

  World& world_;
  Link& link_;
  ParameterStore& store_;
  ShellState& shell_;
  MDIForm1& main_;
  BulkTransfer& transfer_;
};

}  // namespace gainsmith
