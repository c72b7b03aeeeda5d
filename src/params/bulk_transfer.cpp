// Bulk transfers: see the header.
#include "params/bulk_transfer.h"

#include <algorithm>

#include "params/drive_flags.h"
#include "platform/number_text.h"

namespace gainsmith {
namespace {

bool IsFlagSlot(Slot slot) { return RowOf(slot).Source == Register::Flags; }

// As many names as fit a line or two; the rest as a number.
std::string NamesOf(const std::vector<Slot>& slots) {
  constexpr std::size_t Most = 6;
  std::string names;
  for (std::size_t i = 0; i < std::min(slots.size(), Most); ++i) {
    names += (i == 0 ? "" : ", ") + std::string(Trimmed(RowOf(slots[i]).Name));
  }
  if (slots.size() > Most) names += " and " + std::to_string(slots.size() - Most) + " more";
  return names;
}

}  // namespace

bool BulkTransfer::readDrive() {
  const TransferMark mark(shell_);
  waiting_.ShowWaitingMessage("Reading Current Drive Settings");
  if (!ReadAllParameters()) {
    ReportReadFailure();
    return false;
  }
  waiting_.CloseWaitingMessage();
  main_.EnableDriveMenus();
  main_.EnableToolbarButtons();
  main_.ShowConnected();
  return true;
}

bool BulkTransfer::ReadAllParameters() {
  const TransferMark mark(shell_);
  const Errand errand(link_);
  constexpr const char* What = "Reading settings";
  main_.ShowNotice("");
  int done = 0;
  for (const Slot slot : ReadOrder()) {
    main_.ShowActivity(What, done, TransferSteps);
    if (link_.Read(errand, RowOf(slot).Source) != Sent::Taken) break;
    if (slot == Slot::PulseEdge) {
      TakeDriveFlags(store_, link_.Raw());
    } else {
      store_[slot] = RawToValue(slot, link_.Raw());
    }
    // No register feeds this one; it is cleared in the place that its row has in the table.
    if (slot == Slot::Trap1Width) store_[Slot::Trap2Width] = 0;
    ++done;
  }
  main_.EndActivity();
  return done == TransferSteps;
}

void BulkTransfer::ReportReadFailure() {
  main_.Pointer = MousePointer::ArrowQuestion;
  waiting_.CloseWaitingMessage();
  world_.ShowMessage(LinkFailureMessage(link_));
}

float BulkTransfer::ValueToSend(Slot slot) const {
  return slot == Slot::PulseEdge ? FlagsToSend(store_) : ValueToRaw(slot, store_[slot]);
}

std::string BulkTransfer::UnpackableRows() const {
  // A whole flags word goes out alone; otherwise each flag's slot has its part in the word.
  const bool wholeWord = RoundHalfToEven(store_[Slot::PulseEdge]) > 1;
  std::string rows;
  for (const ParameterRow& row : ParameterRows()) {
    const bool sent = row.WriteStep != 0 || (IsFlagSlot(row.Index) && !wholeWord);
    if (!sent || PackWord(ValueToRaw(row.Index, store_[row.Index]))) continue;
    rows += "\n" + std::string(Trimmed(row.Name)) + ": " + PlainText(store_[row.Index]);
  }
  return rows;
}

bool BulkTransfer::DownloadAllParameters() {
  const TransferMark mark(shell_);
  main_.ShowNotice("");
  const std::string unpackable = UnpackableRows();
  if (!unpackable.empty()) {
    waiting_.CloseWaitingMessage();
    world_.SetScreenPointer(MousePointer::Default);
    world_.ShowMessage(
        {"Nothing was sent to the drive. These settings have values that it can't "
         "take:" +
             unpackable,
         MainTitle, MessageButtons::Ok, MessageIcon::Critical});
    return false;
  }

  const Errand errand(link_);
  constexpr std::int32_t BetweenWritesMs = 50;
  std::vector<Slot> notTaken;
  int done = 0;
  for (const Slot slot : WriteOrder()) {
    if (done > 0) link_.WaitMs(BetweenWritesMs);
    main_.ShowActivity("Writing settings", done, TransferSteps);
    const Sent sent = link_.WriteRegisterRetry(errand, link_.DeviceAddress, RowOf(slot).Source,
                                               ValueToSend(slot));
    if (!Stands(sent)) notTaken.push_back(slot);
    ++done;
  }
  main_.EndActivity();
  ShowSettingsNotTaken(notTaken);
  return true;
}

void BulkTransfer::ShowSettingsNotTaken(const std::vector<Slot>& slots) {
  if (!slots.empty()) main_.ShowNotice("The drive did not take: " + NamesOf(slots));
}

bool BulkTransfer::SaveToEeprom() {
  const TransferMark mark(shell_);
  constexpr std::int32_t StoringMs = 1000;
  constexpr std::int32_t AfterReplyMs = 500;
  constexpr std::int16_t RetryLimit = ExchangeOptions::Standard - 2;
  for (ReadRetryCount = 0;; ++ReadRetryCount) {
    const auto frame =
        link_.SendFrame(link_.DeviceAddress, Function::Write, Register::StoreEeprom, 1);
    link_.WaitMs(link_.ReplyWaitMs());
    link_.WaitMs(StoringMs);
    link_.ReceiveReply(link_.DeviceAddress, Function::Write, frame.value());
    // Taken before the wait: another window's exchange may run inside it.
    const bool stored = link_.LinkErrorCount == 0;
    link_.WaitMs(AfterReplyMs);
    if (stored) {
      link_.WaitMs(link_.ReplyWaitMs());
      return true;
    }
    if (ReadRetryCount > RetryLimit) break;
  }
  world_.ShowMessage(LinkFailureMessage(link_));
  return false;
}

void BulkTransfer::ReportWriteResult(bool isDownload) {
  const TransferMark mark(shell_);
  if (!SaveToEeprom()) return;
  world_.ShowMessage({isDownload ? "New configurations have been downloaded to drive successfully"
                                 : "All configurations in the connected KVT518 drive have been "
                                   "reset to factory default successfully!",
                      MainTitle, MessageButtons::Ok, MessageIcon::Information});
}

}  // namespace gainsmith
