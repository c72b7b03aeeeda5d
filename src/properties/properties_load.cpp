// sysConfigFrm: the load path.
#include <array>
#include <string>

#include "params/parameter_table.h"
#include "platform/number_text.h"
#include "properties/properties_fields.h"
#include "properties/properties_window.h"

namespace gainsmith {

void sysConfigFrm::Form_Load() {
  const Errand errand(link_, *this);
  LeftTwips = 3000;
  TopTwips = 2000;
  ResetControls();
  const bool whole = LoadMotor(errand) && LoadGearAndOthers(errand) && LoadDeadBand(errand) &&
                     LoadFlags(errand) && LoadAnalog(errand) && LoadCurrentLimits(errand);
  // `err` has reported and closed the window in the middle of a read; the failure of that read is
  // not to be reported again by the next visit.
  if (!whole && !Loaded) link_.ReadFailed = false;
  // The connection was closed under the load: there is nothing left to show.
  if (!world_.IsPortOpen()) world_.Unload(*this);
  // A read that failed has left its mark. A tuning window that was opened under the load would not
  // close any more.
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

// False when the window was closed while it waited.
bool sysConfigFrm::Read(Register reg, const Errand& errand) {
  const Sent sent = link_.ReadRegistersRetry(errand, link_.DeviceAddress, reg, 1);
  return sent != Sent::Off && !errand.Over();
}

// Of the last reply, whatever it was a reply to.
std::uint16_t sysConfigFrm::LastRaw() const {
  return link_.RxBuffer.empty() ? std::uint16_t{0} : link_.Raw();
}

bool sysConfigFrm::LoadMotor(const Errand& errand) {
  if (!Read(Register::RatedPower, errand)) return false;
  values_[Slot::RatedPower] = LastRaw();
  const std::string watts = std::to_string(LastRaw());
  for (std::size_t i = 0; i < Combo1.Items.size(); ++i) {
    if (Combo1.Items[i].Text == watts) Combo1.Choose(static_cast<int>(i));
  }
  for (const MotorField& row : MotorFields) {
    if (!Read(RowOf(row.Kept).Source, errand)) return false;
    const float value = RawToValue(row.Kept, LastRaw());
    (this->*row.Field).Text = FixedText(value, row.ShownDecimals);
    values_[row.Kept] = value;
  }

  if (!Read(Register::PolePairs, errand)) return false;
  polePairs_ = LastRaw();
  values_[Slot::PolePairs] = LastRaw();
  cboMotorPolePair.ListIndex = -1;
  cboMotorPolePair.Text = std::to_string(LastRaw());
  for (std::size_t i = 0; i < cboMotorPolePair.Items.size(); ++i) {
    const bool listed = cboMotorPolePair.Items[i].Text == cboMotorPolePair.Text;
    if (listed) cboMotorPolePair.ListIndex = static_cast<int>(i);
  }
  return true;
}

bool sysConfigFrm::LoadGearAndOthers(const Errand& errand) {
  for (const PlainField& row : PlainFields) {
    if (!Read(RowOf(row.Kept).Source, errand)) return false;
    text1_[row.Index] = LastRaw();
    values_[row.Kept] = LastRaw();
    Text1[row.Index].Text = std::to_string(LastRaw());
  }
  return true;
}

bool sysConfigFrm::LoadDeadBand(const Errand& errand) {
  if (!Read(Register::AnalogDeadBand, errand)) return false;
  values_[Slot::AnalogDeadBand] = LastRaw();
  Text1[DeadBand].Text = std::to_string(LastRaw());
  return true;
}

bool sysConfigFrm::LoadFlags(const Errand& errand) {
  if (!Read(Register::Flags, errand)) return false;
  if (link_.ReadFailed) {
    err.Start();
  } else {
    TakeWholeDriveFlags(values_, LastRaw());
    SelectOptions(LastRaw());
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
      main_[Tool1::CurrentLoop].Enabled = false;
      main_.MnuCurrentLoop.Enabled = false;
      main_.mnuPositionLoop.Enabled = false;
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
    if (!Read(RowOf(row.Kept).Source, errand)) return false;
    const float value = RawToValue(row.Kept, LastRaw());
    (this->*row.Field).Text = FixedText(value, row.Decimals);
    values_[row.Kept] = value;
  }
  if (!Read(Register::InputSmoothing, errand)) return false;
  values_[Slot::InputSmoothing] = LastRaw();
  if (LastRaw() < Combo2.Items.size()) Combo2.Choose(LastRaw());
  return LoadSwitch(TwoAxesInterpolation, errand) && LoadSwitch(ReversePolarity, errand);
}

bool sysConfigFrm::LoadSwitch(CheckIndex index, const Errand& errand) {
  const Slot slot = index == TwoAxesInterpolation ? Slot::Interpolation : Slot::AnalogReverse;
  if (!Read(RowOf(slot).Source, errand)) return false;
  values_[slot] = LastRaw();
  if (LastRaw() == 0) return true;
  // A box that becomes ticked is a click, also from here: it writes back what was read.
  Check1[index].Ticked = true;
  Check1_Click(index);
  return !errand.Over();
}

bool sysConfigFrm::LoadCurrentLimits(const Errand& errand) {
  for (const LimitField& row : LimitFields) {
    if (!Read(RowOf(row.Kept).Source, errand)) return false;
    const float value = RawToValue(row.Kept, LastRaw());
    const bool shown = value > 0;
    (this->*row.Field).Visible = shown;
    (this->*row.Caption).Visible = shown;
    if (shown) (this->*row.Field).Text = PlainText(value);
    values_[row.Kept] = value;
  }
  return true;
}

}  // namespace gainsmith
