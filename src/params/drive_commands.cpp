// The road of each command: its question, the transfer, the store and what is told at the end.
#include "params/drive_commands.h"

namespace gainsmith {

bool DriveCommands::Confirm(const char* text, const char* title) {
  return world_.ShowMessage({text, title, MessageButtons::YesNo, MessageIcon::Warning,
                             MessageAnswer::No}) == MessageAnswer::Yes;
}

void DriveCommands::mnuDownloadToDrive_Click() {
  const TransferMark mark(shell_);
  if (!Confirm("All configurations in the connected KVT518 drive will be overwritten by new "
               "configurations. Do you want to continue?",
               "KVT518 Download Confirmation")) {
    return;
  }
  world_.SetScreenPointer(MousePointer::Hourglass);
  waiting_.ShowWaitingMessage("Downloading New Settings to Drive");
  if (!transfer_.DownloadAllParameters()) return;
  waiting_.CloseWaitingMessage();
  transfer_.ReportWriteResult(true);
  world_.SetScreenPointer(MousePointer::Default);
}

void DriveCommands::mnuReset_Click() {
  const TransferMark mark(shell_);
  if (!Confirm("All configurations in the connected KVT518 drive will be reset to factory default. "
               "Do you want to continue?",
               "KVT518 Reset Confirmation")) {
    return;
  }
  world_.SetScreenPointer(MousePointer::Hourglass);
  waiting_.ShowWaitingMessage("Resetting Drive");
  if (!files_.LoadDefaultSettings() || !transfer_.DownloadAllParameters()) {
    world_.SetScreenPointer(MousePointer::Default);
    return;
  }
  waiting_.CloseWaitingMessage();
  transfer_.ReportWriteResult(false);
  world_.SetScreenPointer(MousePointer::Default);
  if (transfer_.Closed()) return;
  main_.ShowBaseCaption();
  main_.CurrentConfigFile.clear();
}

void DriveCommands::ReadFromDrive_Click() {
  const TransferMark mark(shell_);
  main_.Pointer = MousePointer::Hourglass;
  if (transfer_.readDrive()) {
    world_.ShowMessage({"Read from driver successfully", "Read Parameters", MessageButtons::Ok,
                        MessageIcon::Information});
  }
  main_.Pointer = MousePointer::Default;
}

}  // namespace gainsmith
