// The road of each command: its question, the transfer, the store and what is told at the end.
#include "params/drive_commands.h"

namespace gainsmith {

bool DriveCommands::Confirm(const char* text, const char* title) {
  return world_.ShowMessage({text, title, MessageButtons::YesNo, MessageIcon::Warning,
                             MessageAnswer::No}) == MessageAnswer::Yes;
}

bool DriveCommands::Download(BusyScreen& busy) {
  const DownloadResult sent = transfer_.DownloadAllParameters();
  busy.CloseWaitingMessage();
  if (sent.Whole) return true;
  busy.End();
  if (sent.Trouble) world_.ShowMessage(*sent.Trouble);
  return false;
}

void DriveCommands::mnuDownloadToDrive_Click() {
  const TransferMark mark(shell_);
  if (!Confirm("All configurations in the connected KVT518 drive will be overwritten by new "
               "configurations. Do you want to continue?",
               "KVT518 Download Confirmation")) {
    return;
  }
  BusyScreen busy(world_, waiting_, "Downloading New Settings to Drive");
  if (Download(busy)) transfer_.ReportWriteResult(true);
}

void DriveCommands::mnuReset_Click() {
  const TransferMark mark(shell_);
  if (!Confirm("All configurations in the connected KVT518 drive will be reset to factory default. "
               "Do you want to continue?",
               "KVT518 Reset Confirmation")) {
    return;
  }
  BusyScreen busy(world_, waiting_, "Resetting Drive");
  if (const std::optional<Message> trouble = files_.LoadDefaultSettings()) {
    busy.CloseWaitingMessage();
    main_.Pointer = MousePointer::Default;
    world_.ShowMessage(*trouble);
    return;
  }
  if (!Download(busy)) return;
  transfer_.ReportWriteResult(false);
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
