// sysConfigFrm: the fields that go to the drive on Enter.
#include <algorithm>

#include "params/bulk_transfer.h"
#include "params/parameter_table.h"
#include "platform/number_text.h"
#include "properties/properties_fields.h"
#include "properties/properties_window.h"

namespace gainsmith {
namespace {

// The row of a table that stands for `field`; nullptr when none does.
template <typename Rows>
auto FindRow(const Rows& rows, const sysConfigFrm& window, const TextBox& field) {
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [&](const auto& r) { return &(window.*r.Field) == &field; });
  return row == rows.end() ? nullptr : &*row;
}

}  // namespace

bool sysConfigFrm::NumberField_KeyPress(TextBox& field, int key) {
  if (key == KeyEnter) {
    if (FindRow(MotorFields, *this, field) != nullptr) {
      CommitField(field);
    } else {
      CommitAnalogField(field);
    }
    return false;
  }
  // '.', '/' and the digits.
  return key == KeyBackspace || (key >= '.' && key <= '9');
}

void sysConfigFrm::CommitField(TextBox& field) {
  const MotorField& row = *FindRow(MotorFields, *this, field);
  double value = LeadingNumber(field.Text);
  if (value >= row.Limit || value < 0) {
    world_.ShowMessage({field.Text + row.LimitText, "Invalid Value"});
    value = 0;
    field.Text = "0";
  }
  const Commit commit(field);
  if (commit.Repeats()) return;
  const TransferMark mark(shell_);
  const Errand errand(link_, *this);
  const int scale = RowOf(row.Kept).Scale;
  const double raw = RoundHalfToEven(value, row.WrittenDecimals) * scale;
  values_[row.Kept] = static_cast<float>(raw / scale);
  if (link_.Write(errand, RowOf(row.Kept).Source, static_cast<float>(raw)) == Sent::Lost) {
    ReportFailure(errand);
  }
}

void sysConfigFrm::CommitAnalogField(TextBox& field) {
  const Commit commit(field);
  if (commit.Repeats()) return;
  const TransferMark mark(shell_);
  const Errand errand(link_, *this);
  const AnalogField& row = *FindRow(AnalogFields, *this, field);
  double value = LeadingNumber(field.Text);
  if (row.Decimals > 0) value = RoundHalfToEven(value, row.Decimals);
  const auto raw = static_cast<float>(value * RowOf(row.Kept).Scale);
  // A value that can't be sent stays out of the table too.
  if (PackWord(raw)) values_[row.Kept] = static_cast<float>(value);
  if (link_.Write(errand, RowOf(row.Kept).Source, raw) == Sent::Lost) link_.TellFailure(errand);
}

}  // namespace gainsmith
