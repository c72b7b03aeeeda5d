// sysConfigFrm: its events, and what acts at once on a choice or a click. The load, OK and the
// fields that commit on Enter have files of their own.
#include "properties/properties_window.h"

#include "params/bulk_transfer.h"

namespace gainsmith {

sysConfigFrm::sysConfigFrm(World& world, Link& link, ParameterStore& values, ShellState& shell,
                           MDIForm1& main)
    : world_(world), link_(link), values_(values), shell_(shell), main_(main) {
  Design();
  Wire();
}

void sysConfigFrm::Wire() {
  for (TextBox* field : {&Text3, &Text4, &Text5, &Text6, &Text7, &Text9, &Text10, &Text11}) {
    field->OnKeyPress = [this, field](int key) { return NumberField_KeyPress(*field, key); };
  }
  for (const CheckIndex index : {TwoAxesInterpolation, ReversePolarity}) {
    Check1[index].OnClick = [this, index] { Check1_Click(index); };
  }
  Combo1.OnClick = [this] { Combo1_Click(); };
  Combo2.OnClick = [this] { Combo2_Click(); };
  Check2.OnClick = [this] { Check2_Click(); };
  cmdOK.OnClick = [this] { cmdOK_Click(); };
  Command2.OnClick = [this] { Command2_Click(); };
  err.OnTimer = [this] { err_Timer(); };
  main_.OnSettingsReplaced = [this](const std::string& why) { CloseOutdated(why); };
}

void sysConfigFrm::Command2_Click() { world_.Unload(*this); }

void sysConfigFrm::err_Timer() {
  if (link_.ReadFailed) {
    ReportFailure(Errand(link_, *this));
  } else {
    err.Stop();
  }
}

void sysConfigFrm::ReportFailure(const Errand& errand) {
  link_.TellFailure(errand);
  link_.ReadFailed = false;
  link_.WriteFailed = false;
  if (errand.Over()) return;
  err.Stop();
  world_.Unload(*this);
}

void sysConfigFrm::CloseOutdated(const std::string& why) {
  if (!Loaded) return;
  main_.ShowNotice(Notice::Window, "The Properties window was closed: " + why + ".");
  world_.Unload(*this);
}

void sysConfigFrm::Combo1_Click() {
  const TransferMark mark(shell_);
  const Errand errand(link_, *this);
  const auto watts = static_cast<float>(Combo1.ChosenData());
  values_[Slot::RatedPower] = watts;
  if (link_.Write(errand, Register::RatedPower, watts) != Sent::Lost) return;
  link_.TellFailure(errand);
  link_.LinkIdle = true;
}

void sysConfigFrm::Combo2_Click() {
  const auto mode = static_cast<float>(Combo2.ChosenData());
  values_[Slot::InputSmoothing] = mode;
  WriteAtOnce(Register::InputSmoothing, mode);
}

void sysConfigFrm::Check1_Click(CheckIndex index) {
  const Register reg =
      index == TwoAxesInterpolation ? Register::Interpolation : Register::AnalogReverse;
  WriteAtOnce(reg, Check1[index].Ticked ? 1 : 0);
}

void sysConfigFrm::Check2_Click() {
  const TransferMark mark(shell_);
  const Errand errand(link_, *this);
  link_.LinkIdle = false;
  const Sent sent = link_.Write(errand, Register::FilterSwitch, Check2.Ticked ? 0 : 1);
  if (sent == Sent::Lost) link_.TellFailure(errand);
  link_.LinkIdle = true;
}

void sysConfigFrm::WriteAtOnce(Register reg, float value) {
  const TransferMark mark(shell_);
  const Errand errand(link_, *this);
  if (link_.WriteRegisterRetry(errand, link_.DeviceAddress, reg, value) != Sent::Lost) return;
  link_.TellFailure(errand);
  link_.LinkIdle = true;
}

}  // namespace gainsmith
