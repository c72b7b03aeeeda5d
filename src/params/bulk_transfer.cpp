// The loops of read, download and store, and what the main window says of them.
#include "params/bulk_transfer.h"

#include <algorithm>

#include "params/drive_flags.h"
#include "platform/common_texts.h"
#include "platform/number_text.h"

namespace gainsmith {
namespace {

bool IsFlagSlot(Slot slot) { return RowOf(slot).Source == Register::Flags; }

std::string OutOf(int done) {
  return std::to_string(done) + " of " + std::to_string(TransferSteps);
}

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
  const Errand errand(link_);
  waiting_.ShowWaitingMessage("Reading Current Drive Settings");
  const bool whole = ReadAllParameters(errand);
  waiting_.CloseWaitingMessage();
  if (!whole) {
    if (!closed_) ReportReadFailure(errand);
    return false;
  }
  main_.EnableDriveMenus();
  main_.EnableToolbarButtons();
  main_.ShowConnected();
  return true;
}

bool BulkTransfer::ReadAllParameters(const Errand& errand) {
  const TransferMark mark(shell_);
  const bool wasOpen = world_.IsPortOpen();
  main_.ShowNotice(Notice::Transfer, "");
  main_.OnSettingsReplaced("the drive's settings were read anew");
  int done = 0;
  for (const Slot slot : ReadOrder) {
    main_.ShowActivity("Reading settings", done, TransferSteps);
    if (link_.Read(errand, RowOf(slot).Source, CountingRetries()) != Sent::Taken) break;
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
  if (done == TransferSteps) main_.ShowNotice(Notice::Table, "");
  const bool closed = EndsClosed(wasOpen, "while settings were read: " + OutOf(done) +
                                              " came in, the others are as they were.");
  return !closed && done == TransferSteps;
}

void BulkTransfer::ReportReadFailure(const Errand& errand) {
  main_.Pointer = MousePointer::ArrowQuestion;
  link_.TellFailure(errand);
}

bool BulkTransfer::EndsClosed(bool wasOpen, const std::string& howFar) {
  closed_ = wasOpen && !world_.IsPortOpen();
  ShowSilence(false);
  if (closed_) main_.ShowNotice(Notice::Transfer, "The connection was closed " + howFar);
  return closed_;
}

void BulkTransfer::ShowSilence(bool silent) {
  main_.ShowNotice(Notice::Silence,
                   silent ? "The drive is not answering. To end this, choose Drive, Connect and "
                            "press Close."
                          : "");
}

ExchangeOptions BulkTransfer::CountingRetries() {
  // One spoilt reply is no silence.
  constexpr int Patience = 3;
  return {.Withdrawn = [this](int framesSent) {
    ReadRetryCount = static_cast<std::int16_t>(framesSent);
    ShowSilence(ReadRetryCount >= Patience);
    return false;
  }};
}

float BulkTransfer::ValueToSend(Slot slot) const {
  return slot == Slot::PulseEdge ? FlagsToSend(store_) : ValueToRaw(slot, store_[slot]);
}

std::string BulkTransfer::UnpackableRows() const {
  // A whole flags word goes out alone; otherwise each flag's slot has its part in the word.
  const bool wholeWord = store_.HoldsFlagsWord;
  std::string rows;
  for (const ParameterRow& row : ParameterRows()) {
    const bool sent = Travels(row.Index) || (IsFlagSlot(row.Index) && !wholeWord);
    if (!sent || PackWord(ValueToRaw(row.Index, store_[row.Index]))) continue;
    rows += "\n" + std::string(Trimmed(row.Name)) + ": " + PlainText(store_[row.Index]);
  }
  return rows;
}

DownloadResult BulkTransfer::DownloadAllParameters() {
  const TransferMark mark(shell_);
  main_.ShowNotice(Notice::Transfer, "");
  closed_ = false;
  const std::string unpackable = UnpackableRows();
  if (!unpackable.empty()) {
    main_.ShowNotice(Notice::Transfer,
                     "Nothing was sent: the values shown are the tool's, not the "
                     "drive's. Close the connection and open it again to read "
                     "the drive.");
    return {.Trouble = Message{
                "Nothing was sent to the drive. These settings have values that it can't take:" +
                    unpackable,
                MainTitle, MessageButtons::Ok, MessageIcon::Critical}};
  }

  const Errand errand(link_);
  const bool wasOpen = world_.IsPortOpen();
  constexpr std::int32_t BetweenWritesMs = 50;
  std::vector<Slot> notTaken;
  int done = 0;
  for (const Slot slot : WriteOrder()) {
    if (done > 0) link_.WaitMs(BetweenWritesMs);
    if (wasOpen && !world_.IsPortOpen()) break;
    main_.ShowActivity("Writing settings", done, TransferSteps);
    const float value = ValueToSend(slot);
    const Sent sent =
        link_.WriteRegisterRetry(errand, link_.DeviceAddress, RowOf(slot).Source, value);
    if (wasOpen && !world_.IsPortOpen()) break;
    if (!Stands(sent)) notTaken.push_back(slot);
    if (sent == Sent::Taken && slot == Slot::PulseEdge) {
      store_.DriveFlagsWord = static_cast<float>(RoundHalfToEven(value));
    }
    ShowSilence(!Stands(sent));
    ++done;
  }
  main_.EndActivity();
  const int taken = done - static_cast<int>(notTaken.size());
  if (EndsClosed(wasOpen, "while settings were written: " + OutOf(taken) +
                              " reached the drive. Nothing was stored.")) {
    return {};
  }
  if (!notTaken.empty()) {
    main_.ShowNotice(Notice::Transfer, "The drive did not take: " + NamesOf(notTaken));
  }
  return {.Whole = true};
}

bool BulkTransfer::SaveToEeprom() {
  const TransferMark mark(shell_);
  const Errand errand(link_);
  const bool wasOpen = world_.IsPortOpen();
  const ActivityScope activity(main_, "Storing settings");
  ExchangeOptions store = CountingRetries();
  store.BeforeReplyMs = 1000;
  store.AfterReplyMs = 500;
  const Sent sent = link_.Write(errand, Register::StoreEeprom, 1, store);
  if (EndsClosed(wasOpen,
                 "while the drive stored its settings: it may lose them when it is "
                 "switched off.")) {
    return false;
  }
  if (sent == Sent::Taken) return true;
  link_.TellFailure(errand);
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
