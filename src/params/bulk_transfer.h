// Bulk transfers: the read of all settings, their download, and the store into the EEPROM.
//
// Always one register at a time, in the orders of the parameter table. Each operation runs to its
// end inside the call; its waits let events run, and while it runs commands that use the drive are
// shut out (TransferMark). What ends it before its time is the closing of the port: it sends and
// shows no more then, and the main window says how far it came (Closed).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "link/link.h"
#include "params/parameter_store.h"
#include "params/parameter_table.h"
#include "platform/world.h"
#include "shell/main_window.h"
#include "shell/shell_state.h"
#include "shell/waiting_window.h"

namespace gainsmith {

// How a download ended.
struct DownloadResult {
  // Each setting was offered to the drive.
  bool Whole = false;
  // What the caller tells where it was not; nothing where it was Closed.
  std::optional<Message> Trouble = {};
};

class BulkTransfer {
 public:
  BulkTransfer(World& world, Link& link, ParameterStore& store, ShellState& shell, MDIForm1& main,
               frmWaitingMessage& waiting)
      : world_(world), link_(link), store_(store), shell_(shell), main_(main), waiting_(waiting) {}
  BulkTransfer(const BulkTransfer&) = delete;
  BulkTransfer& operator=(const BulkTransfer&) = delete;

  // Reads all settings into the table under the waiting window. True enables the drive menus and
  // the tool bar; false after ReportReadFailure or when it was Closed, with the settings read so
  // far in the table and the menus as they were.
  bool readDrive();

  // The exchanges of readDrive and nothing around them: no window, no message, no menu. At most 12
  // frames a register. False at the first register that does not answer.
  bool ReadAllParameters(const Errand& errand);

  // Leaves the main window under a question mark pointer until a command changes it. The caller has
  // closed the waiting window.
  void ReportReadFailure(const Errand& errand);

  // Writes all settings but those that never travel, at most four frames each; a setting that the
  // drive does not take is skipped (Link::WriteFailed is set) and named in the main window. Not
  // whole when it was Closed, or, with nothing sent and a message that names the rows, when the
  // table holds a value that cannot be packed: the caller ends then. The waiting window and the
  // hourglass, where there are any, are the caller's.
  DownloadResult DownloadAllParameters();

  // Stores the drive's working values in its EEPROM, at most 12 frames. False after the message of
  // a lost link, or when it was Closed.
  bool SaveToEeprom();

  // The port was closed under the operation that ended last.
  [[nodiscard]] bool Closed() const { return closed_; }

  // Stores, and tells the success of a download (true) or a reset (false).
  void ReportWriteResult(bool isDownload);

 private:
  // The rows whose values cannot be packed, one a line; empty: the table can be sent.
  [[nodiscard]] std::string UnpackableRows() const;
  [[nodiscard]] float ValueToSend(Slot slot) const;
  // Of an operation that ends: whether the port was closed under it, which began with the port
  // `wasOpen`. The main window says `howFar` then.
  bool EndsClosed(bool wasOpen, const std::string& howFar);

  World& world_;
  Link& link_;
  ParameterStore& store_;
  ShellState& shell_;
  MDIForm1& main_;
  frmWaitingMessage& waiting_;
  // Counts the resends of the present register in a read and in a store; tells when to say that
  // the drive is silent.
  ExchangeOptions CountingRetries();
  void ShowSilence(bool silent);
  std::int16_t ReadRetryCount = 0;
  bool closed_ = false;
};

}  // namespace gainsmith
