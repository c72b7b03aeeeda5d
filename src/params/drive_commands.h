// Commands of the Drive menu that move the whole table: Download to Drive, Reset Drive and the
// hidden Read From Drive. The gates stand before them (shell/commands.h).
#pragma once

#include "params/bulk_transfer.h"
#include "params/config_file.h"

namespace gainsmith {

class DriveCommands {
 public:
  DriveCommands(World& world, ShellState& shell, MDIForm1& main, frmWaitingMessage& waiting,
                BulkTransfer& transfer, ConfigFiles& files)
      : world_(world),
        shell_(shell),
        main_(main),
        waiting_(waiting),
        transfer_(transfer),
        files_(files) {}
  DriveCommands(const DriveCommands&) = delete;
  DriveCommands& operator=(const DriveCommands&) = delete;

  // After a question: the table goes to the drive and is stored there.
  void mnuDownloadToDrive_Click();
  // After a question: the factory values go to the table and the drive and are stored there; the
  // configuration file in use is forgotten. Ends without download, store or success when the
  // factory values can't be read.
  void mnuReset_Click();
  // Reads the drive into the table, and tells when that succeeded.
  void ReadFromDrive_Click();

 private:
  bool Confirm(const char* text, const char* title);
  // Closes the waiting window. False after the message, if there is one, of a download that ended
  // early.
  bool Download(BusyScreen& busy);

  World& world_;
  ShellState& shell_;
  MDIForm1& main_;
  frmWaitingMessage& waiting_;
  BulkTransfer& transfer_;
  ConfigFiles& files_;
};

}  // namespace gainsmith
