// sysConfigFrm: OK, which checks, puts the options into the flags word and writes.
#include "params/bulk_transfer.h"
#include "params/parameter_table.h"
#include "platform/number_text.h"
#include "properties/properties_fields.h"
#include "properties/properties_window.h"

namespace gainsmith {

void sysConfigFrm::cmdOK_Click() {
  if (!ValidateProperties()) return;
  const Stay stay(*this);
  cmdOK.Enabled = false;
  Pointer = MousePointer::Hourglass;
  ApplyFlagOptions();
  if (WriteProperties() && !stay.Over()) world_.Unload(*this);
  cmdOK.Enabled = true;
  Pointer = MousePointer::Default;
}

bool sysConfigFrm::Refuse(Control& field, const char* text) {
  world_.ShowMessage({text, "Invalid Value", MessageButtons::Ok, MessageIcon::Critical});
  world_.SetFocus(field);
  return false;
}

bool sysConfigFrm::ValidateProperties() {
  const double polePairs = LeadingNumber(cboMotorPolePair.Text);
  if (polePairs <= 1) {
    return Refuse(cboMotorPolePair,
                  " Motor Pole Pair value should be an integer value great than 1");
  }
  for (const PlainField& row : PlainFields) {
    const double value = LeadingNumber(Text1[row.Index].Text);
    const bool fits = value <= row.Most && (row.LeastFits ? value >= row.Least : value > row.Least);
    if (!fits) return Refuse(Text1[row.Index], row.Message);
  }
  for (const LimitField& row : LimitFields) {
    TextBox& field = this->*row.Field;
    if (!field.Visible) continue;
    const double value = LeadingNumber(field.Text);
    if (value < row.Least || value > row.Most) return Refuse(field, row.Message);
  }
  // All other fields have a range that a register can hold.
  if (!PackWord(static_cast<float>(polePairs))) {
    return Refuse(cboMotorPolePair,
                  "Motor Pole Pair value can't be sent: the drive takes 2-65,535");
  }
  return true;
}

void sysConfigFrm::ApplyFlagOptions() {
  auto word = static_cast<unsigned>(values_.DriveFlagsWord);
  for (const FlagOption& row : FlagOptions) {
    if (!row.Applied) continue;
    if (Option1[row.WhenSet].Selected) {
      word |= row.Mask;
    } else if (Option1[row.WhenClear].Selected || row.Mask == flags::Direction) {
      word &= ~unsigned{row.Mask};
    }
  }
  values_.DriveFlagsWord = static_cast<float>(word);
}

std::vector<sysConfigFrm::Setting> sysConfigFrm::TakeSettings() {
  std::vector<Setting> settings;
  const double polePairs = LeadingNumber(cboMotorPolePair.Text);
  if (polePairs != polePairs_) {
    polePairs_ = polePairs;
    settings.push_back({Slot::PolePairs, polePairs, polePairs});
  }
  for (const LimitField& row : LimitFields) {
    const TextBox& field = this->*row.Field;
    if (!field.Visible) continue;
    const int scale = RowOf(row.Kept).Scale;
    const double raw = RoundHalfToEven(LeadingNumber(field.Text), 2) * scale;
    settings.push_back({row.Kept, raw / scale, raw});
  }
  for (const PlainField& row : PlainFields) {
    const double value = LeadingNumber(Text1[row.Index].Text);
    if (value != text1_[row.Index]) settings.push_back({row.Kept, value, value});
  }
  return settings;
}

bool sysConfigFrm::WriteProperties() {
  const TransferMark mark(shell_);
  const ActivityScope activity(main_, "Writing " + Caption);
  const Errand errand(link_, *this);
  const auto word = static_cast<std::uint16_t>(values_.DriveFlagsWord);
  for (const Setting& setting : TakeSettings()) {
    values_[setting.Kept] = static_cast<float>(setting.Value);
    const auto raw = static_cast<float>(setting.Raw);
    if (link_.Write(errand, RowOf(setting.Kept).Source, raw) == Sent::Lost) {
      ReportFailure(errand);
      return false;
    }
  }
  TakeWholeDriveFlags(values_, word);
  if (link_.WriteRegisterRetry(errand, link_.DeviceAddress, Register::Flags, word) == Sent::Lost) {
    ReportFailure(errand);
    return false;
  }
  return true;
}

}  // namespace gainsmith
