// Form8: its buttons, the progress that counts by itself, and the rows on show.
#include "params/grid_window.h"

#include "params/config_file.h"
#include "params/config_text.h"
#include "params/parameter_table.h"
#include "platform/number_text.h"

namespace gainsmith {
namespace {

// The progress display counts to these by itself; it does not follow the work.
constexpr int LastReadStep = 37000;
constexpr int LastWriteStep = 47000;
constexpr float ReadPhase = 1;
constexpr float WritePhase = 2;

constexpr int AllRows = static_cast<int>(ParameterCount);

}  // namespace

Form8::Form8(World& world, Link& link, ParameterStore& store, ShellState& shell, MDIForm1& main,
             BulkTransfer& transfer)
    : world_(world), link_(link), store_(store), shell_(shell), main_(main), transfer_(transfer) {
  Design();
}

void Form8::Form_Load() {
  LeftTwips = 3000;
  TopTwips = 0;
  link_.LoadFailed = false;
  MSFlexGrid1.Columns = {{"", 0}, {"Parameter", 4200}, {"Value", 700}, {"Setting Range", 5500}};
  MSFlexGrid1.Enabled = true;
  ShowButtons(true);
  Frame1.Visible = false;
  RowsValid = RowsInDatabase = ProgressDone = EepromFailed = false;
  ProgressPhase = 0;
  FilesOpened = 0;
  Data2 = world_.OpenRows(world_.ProgramDirectory() + "/QMX4400en.mdb", "QMX4400");
  RefreshGrid();
  // A marker that is missing says that nothing was left behind.
  const std::string marker = world_.ReadFile(world_.ProgramDirectory() + "/del.tvr").value_or("1");
  if (LeadingNumber(marker) == 0) dele.Start();
}

bool Form8::Form_Unload() {
  if (RowsValid) {
    DeleteRows();
    WriteMarker(true);
  }
  Data2.reset();
  shell_[OpenMark::ParametersGrid] = false;
  shell_.ChildWindowOpen = false;
  return true;
}

void Form8::readdata_Click() {
  if (shell_.BulkTransferRunning) return;
  const Stay stay(*this);
  BeginWork(Timer1);
  if (RowsInDatabase) DeleteRows();
  const Errand errand(link_);
  if (!transfer_.ReadAllParameters(errand)) {
    if (!transfer_.Closed()) link_.TellFailure(errand);
    link_.LoadFailed = true;
  }
  if (stay.Over()) return;
  if (link_.LoadFailed) {
    RowsValid = false;
    world_.Unload(*this);
    return;
  }
  AddRows();
  RowsValid = RowsInDatabase = ProgressDone = true;
}

void Form8::writedata_Click() {
  if (shell_.BulkTransferRunning) return;
  if (!RowsValid) {
    Tell("Please read parameters from drive or open the configuration file first\uFF01",
         "Writing Status!", MessageIcon::Information);
    return;
  }
  Tell("Please confirm current parameters are conform with parameters in drive", "Writing Status",
       MessageIcon::Information);
  const Stay stay(*this);
  BeginWork(Timer3);
  const bool sent = Download();
  if (!stay.Over()) ProgressDone = true;
  if (sent) Tell("Write Completed!", "Prompt!", MessageIcon::None);
}

bool Form8::Download() {
  const TransferMark mark(shell_);
  const DownloadResult sent = transfer_.DownloadAllParameters();
  if (sent.Trouble) world_.ShowMessage(*sent.Trouble);
  return sent.Whole;
}

void Form8::EEProm_Click() {
  if (shell_.BulkTransferRunning) return;
  if (world_.ShowMessage(
          {"Please confirm current parameters are conform with parameters in drive\uFF01",
           "Prompt!", MessageButtons::YesNo, MessageIcon::Information, MessageAnswer::Yes}) !=
      MessageAnswer::Yes) {
    return;
  }
  const bool stored = transfer_.SaveToEeprom();
  if (transfer_.Closed()) return;
  EepromFailed = !stored;
  Tell(EepromFailed ? "Fail in writing parameters to EEPROM !" : "Write Completed EEprom!",
       "Prompt!", MessageIcon::None);
  EepromFailed = false;
}

bool Form8::LoadFile(const ChosenFile& chosen) {
  return chosen.Result == ChosenFile::Outcome::Chosen &&
         LoadConfigFile(world_, chosen.Path, store_, main_);
}

void Form8::Command1_Click() {
  if (shell_.BulkTransferRunning) return;
  if (LoadFile(world_.AskOpenFile(std::string(OpenFilter) + "All Files (*.*)"))) {
    ++FilesOpened;
    RowsInDatabase = true;
    // The page shows what the tool holds.
    main_.ShowNotice(Notice::Transfer,
                     "The values shown are those of the opened file: they have not been sent to "
                     "the drive. Write RAM sends them.");
  }
  // Also after a failure: it may have changed the slots before its bad line.
  if (FilesOpened < 1) return;
  if (RowsValid) DeleteRows();
  AddRows();
  RefreshGrid();
  MoveToLastRow();
  RowsValid = true;
}

void Form8::save_Click() {
  if (shell_.BulkTransferRunning) return;
  if (!RowsValid) {
    Tell("Please read parameters from drive or open the configuration file first", "Prompt! ",
         MessageIcon::Information);
    return;
  }
  const ChosenFile chosen = world_.AskSaveFile(SaveFilter);
  if (chosen.Result != ChosenFile::Outcome::Chosen) return;
  if (const std::optional<std::string> text = FormatConfig(store_)) {
    world_.WriteFile(chosen.Path, *text);
  }
}

void Form8::Command2_Click() { world_.Unload(*this); }

void Form8::Tell(const char* text, const char* title, MessageIcon icon) {
  world_.ShowMessage({text, title, MessageButtons::Ok, icon});
}

void Form8::ShowButtons(bool visible) {
  for (Button* button : Buttons()) button->Visible = visible;
}

void Form8::BeginWork(Timer& display) {
  display.Start();
  MSFlexGrid1.Enabled = false;
  ShowButtons(false);
}

void Form8::Timer1_Timer() { CountUp(Timer1, LastReadStep, ReadPhase); }

void Form8::Timer3_Timer() { CountUp(Timer3, LastWriteStep, WritePhase); }

void Form8::CountUp(Timer& display, int last, float phase) {
  Frame1.Visible = true;
  ProgressBar1.Min = 0;
  ProgressBar1.Max = last;
  const double perPercent = last / 100.0;
  int shown = -1;
  for (int step = 0; step <= last; ++step) {
    ProgressBar1.Value = step;
    const int percent = static_cast<int>(RoundHalfToEven(step / perPercent));
    if (percent == shown) continue;
    shown = percent;
    Label3.Caption = std::to_string(percent) + "%";
    world_.Repaint(*this);
  }
  ProgressPhase = phase;
  display.Stop();
  if (ProgressDone) {
    EndProgress();
  } else {
    Timer2.Start();
  }
}

void Form8::Timer2_Timer() {
  if (ProgressDone) EndProgress();
}

void Form8::EndProgress() {
  const bool read = ProgressPhase == ReadPhase;
  ProgressBar1.Value = read ? LastReadStep : LastWriteStep;
  if (read) {
    RefreshGrid();
    MoveToLastRow();
  }
  Timer2.Stop();
  Label3.Caption = "100%";
  MSFlexGrid1.Enabled = true;
  ShowButtons(true);
  Frame1.Visible = false;
  ProgressDone = false;
}

void Form8::dele_Timer() {
  DeleteRows();
  RefreshGrid();
  dele.Stop();
}

void Form8::AddRows() {
  // Otherwise the clean-up that is still to come would take the new rows.
  if (dele.Enabled()) dele_Timer();
  std::vector<StoredRow> rows;
  for (const ParameterRow& row : ParameterRows()) {
    rows.push_back({std::string(row.Name), store_[row.Index], std::string(row.Range)});
  }
  Data2->Append(rows);
  WriteMarker(false);
}

// It changes the store, which is this window's own.
// NOLINTNEXTLINE(readability-make-member-function-const)
void Form8::DeleteRows() { Data2->DeleteLast(AllRows); }

void Form8::RefreshGrid() {
  MSFlexGrid1.Rows.clear();
  for (const StoredRow& row : Data2->Rows()) {
    MSFlexGrid1.Rows.push_back({"", row.Parameter, PlainText(row.Value), row.SettingRange});
  }
  if (MSFlexGrid1.CurrentRow >= static_cast<int>(MSFlexGrid1.Rows.size())) MoveToLastRow();
}

void Form8::MoveToLastRow() {
  MSFlexGrid1.CurrentRow = static_cast<int>(MSFlexGrid1.Rows.size()) - 1;
}

void Form8::WriteMarker(bool clean) {
  world_.WriteFile(world_.ProgramDirectory() + "/del.tvr", clean ? " 1 \r\n" : " 0 \r\n");
}

}  // namespace gainsmith
