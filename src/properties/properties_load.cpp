// sysConfigFrm: the load path.
#include <array>
#include <string>

#include "params/bulk_transfer.h"
#include "params/parameter_table.h"
#include "platform/number_text.h"
#include "properties/properties_fields.h"
#include "properties/properties_window.h"

namespace gainsmith {

void sysConfigFrm::Form_Load() {
  const TransferMark mark(shell_);
  const Errand errand(link_, *this);
  LeftTwips = 3000;
  TopTwips = 2000;
  main_.ShowNotice(Notice::Window, "");
  // What an earlier window or a connect left there is no failure of this load.
  link_.ReadFailed = false;
  ResetControls();
  const bool whole = LoadMotor(errand) && LoadGearAndOthers(errand) && LoadDeadBand(errand) &&
                     LoadFlags(errand) && LoadAnalog(errand) && LoadCurrentLimits(errand);
  // The connection was closed under the load: there is nothing left to show.
  if (!world_.IsPortOpen()) world_.Unload(*this);
  if (whole && link_.ReadFailed) ReportFailure(errand);
  // A read that failed has left its mark, under which no tuning window would close.
  link_.LinkIdle = true;
}

void sysConfigFrm::ResetControls() {
  for (OptionButton& option : Option1) option.Selected = false;
  for (CheckBox& box : Check1) box.Ticked = false;
  Check2.Ticked = false;
  cboMotorPolePair.Items = {{"2", 2, ""}, {"4", 4, ""}};
  cboMotorPolePair.Choose(1);
  Combo2.Items.clear();
  for (int mode = 0; mode <= 7; ++mode) {
    Combo2.Items.push_back({"Mode " + std::to_string(mode), mode, ""});
  }
  for (ComboBox* combo : {&Combo1, &Combo2}) {
    combo->ListIndex = -1;
    combo->Text.clear();
  }
}

std::optional<sysConfigFrm::Reading> sysConfigFrm::Read(Register reg, const Errand& errand) {
  const Sent sent = link_.ReadRegistersRetry(errand, link_.DeviceAddress, reg, 1);
  if (sent == Sent::Off || errand.Over()) return std::nullopt;
  const std::uint16_t raw = link_.RxBuffer.empty() ? std::uint16_t{0} : link_.Raw();
  return Reading{raw, sent == Sent::Taken};
}

std::optional<sysConfigFrm::Reading> sysConfigFrm::ReadSlot(Slot slot, const Errand& errand) {
  const std::optional<Reading> read = Read(RowOf(slot).Source, errand);
  if (read && read->Good) values_[slot] = RawToValue(slot, read->Raw);
  return read;
}

bool sysConfigFrm::LoadMotor(const Errand& errand) {
  const auto power = ReadSlot(Slot::RatedPower, errand);
  if (!power) return false;
  const std::string watts = std::to_string(power->Raw);
  for (std::size_t i = 0; i < Combo1.Items.size(); ++i) {
    if (Combo1.Items[i].Text == watts) Combo1.Choose(static_cast<int>(i));
  }
  for (const MotorField& row : MotorFields) {
    const auto read = ReadSlot(row.Kept, errand);
    if (!read) return false;
    (this->*row.Field).Text = FixedText(RawToValue(row.Kept, read->Raw), row.ShownDecimals);
  }

  const auto poles = ReadSlot(Slot::PolePairs, errand);
  if (!poles) return false;
  polePairs_ = poles->Raw;
  cboMotorPolePair.ListIndex = -1;
  cboMotorPolePair.Text = std::to_string(poles->Raw);
  for (std::size_t i = 0; i < cboMotorPolePair.Items.size(); ++i) {
    const bool listed = cboMotorPolePair.Items[i].Text == cboMotorPolePair.Text;
    if (listed) cboMotorPolePair.ListIndex = static_cast<int>(i);
  }
  return true;
}

bool sysConfigFrm::LoadGearAndOthers(const Errand& errand) {
  for (const PlainField& row : PlainFields) {
    const auto read = ReadSlot(row.Kept, errand);
    if (!read) return false;
    text1_[row.Index] = read->Raw;
    Text1[row.Index].Text = std::to_string(read->Raw);
  }
  return true;
}

bool sysConfigFrm::LoadDeadBand(const Errand& errand) {
  const auto read = ReadSlot(Slot::AnalogDeadBand, errand);
  if (read) Text1[DeadBand].Text = std::to_string(read->Raw);
  return read.has_value();
}

bool sysConfigFrm::LoadFlags(const Errand& errand) {
  const auto read = Read(Register::Flags, errand);
  if (!read) return false;
  if (link_.ReadFailed) {
    err.Start();
  } else {
    TakeWholeDriveFlags(values_, read->Raw);
    SelectOptions(read->Raw);
  }
  FollowOperatingMode();
  return true;
}

void sysConfigFrm::SelectOptions(std::uint16_t word) {
  for (const FlagOption& row : FlagOptions) {
    const OptionIndex option = (word & row.Mask) != 0 ? row.WhenSet : row.WhenClear;
    if (option != NoOption) Option1[option].Selected = true;
  }
}

// Both mode bits set select nothing and steer nothing.
void sysConfigFrm::FollowOperatingMode() {
  switch (static_cast<std::uint16_t>(values_.DriveFlagsWord) & flags::ModeMask) {
    case flags::VelocityMode:
      Option1[VelocityMode].Selected = true;
      main_.TakeTestCommandsAway();
      break;
    case flags::TorqueMode:
      Option1[TorqueMode].Selected = true;
      break;
    case flags::PositionMode:
      Option1[PositionMode].Selected = true;
      // The connection may have been closed under the load: its commands are gone with it.
      if (!world_.IsPortOpen()) break;
      main_[Tool1::CurrentLoop].Enabled = true;
      main_.mnuPositionLoop.Enabled = true;
      break;
    default:
      break;
  }
}

bool sysConfigFrm::LoadAnalog(const Errand& errand) {
  if (!LoadDeadBand(errand)) return false;
  for (const AnalogField& row : AnalogFields) {
    const auto read = ReadSlot(row.Kept, errand);
    if (!read) return false;
    (this->*row.Field).Text = FixedText(RawToValue(row.Kept, read->Raw), row.Decimals);
  }
  const auto mode = ReadSlot(Slot::InputSmoothing, errand);
  if (!mode) return false;
  if (mode->Raw < Combo2.Items.size()) Combo2.Choose(mode->Raw);
  return LoadSwitch(TwoAxesInterpolation, errand) && LoadSwitch(ReversePolarity, errand);
}

bool sysConfigFrm::LoadSwitch(CheckIndex index, const Errand& errand) {
  const Slot slot = index == TwoAxesInterpolation ? Slot::Interpolation : Slot::AnalogReverse;
  const auto read = ReadSlot(slot, errand);
  if (!read) return false;
  if (!read->Good || read->Raw == 0) return true;
  // A box that becomes ticked is a click, also from here: it writes back what was read.
  Check1[index].Ticked = true;
  Check1_Click(index);
  return !errand.Over();
}

bool sysConfigFrm::LoadCurrentLimits(const Errand& errand) {
  for (const LimitField& row : LimitFields) {
    const auto read = ReadSlot(row.Kept, errand);
    if (!read) return false;
    const float value = RawToValue(row.Kept, read->Raw);
    const bool shown = value > 0;
    (this->*row.Field).Visible = shown;
    (this->*row.Caption).Visible = shown;
    if (shown) (this->*row.Field).Text = PlainText(value);
  }
  return true;
}

}  // namespace gainsmith
