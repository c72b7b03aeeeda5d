// Form1: its behaviour.
#include "tuning/current_loop_window.h"

#include "platform/number_text.h"

namespace gainsmith {
namespace {

constexpr int BlockSamples = 50;
// The drive's share of the waits while the window loads: shorter than the usual one.
constexpr int LoadDriveMs = 30;
constexpr float CountsPerAmpere = 1024;
// The client area of a minimised window.
constexpr int MinimisedWidthTwips = 2400;
constexpr int MinimisedHeightTwips = 465;

}  // namespace

Form1::Form1(World& world, Link& link, ParameterStore& params, ShellState& shell)
    : world_(world), link_(link), params_(params), shell_(shell) {
  BuildDesign();
  ConnectEvents();
}

void Form1::ConnectEvents() {
  cmdTest.OnClick = [this] { cmdTest_Click(); };
  DataSource.OnTimer = [this] { DataSource_Timer(); };
  for (TextBox& text : Text1) text.OnLostFocus = [this] { Text1_LostFocus(); };
  Picture1.OnMouseDown = [this](int button, float x, float y) {
    if (link_.LinkIdle) Plot.MouseDown(button, x, y);
  };
  Picture1.OnMouseMove = [this](int button, float x, float y) {
    if (link_.LinkIdle) Plot.MouseMove(button, x, y);
  };
  Picture1.OnMouseUp = [this](int button, float x, float y) {
    if (link_.LinkIdle) Plot.MouseUp(button, x, y);
  };
}

double Form1::Number(Field field) const { return LeadingNumber(Text1[field].Text); }

void Form1::Form_Load() {
  LeftTwips = 3000;
  TopTwips = 2000;
  Pointer = MousePointer::Default;
  cmdTest.Enabled = true;
  Text1[Kp].Text.clear();
  Text1[Ki].Text.clear();
  Text1[TestCurrent].Text = "0.5";
  Label3[Height].Caption.clear();
  Label3[Width].Caption.clear();
  Plot.Reset(Picture1);
  shell_[OpenMark::CurrentLoop] = true;

  link_.LinkIdle = false;
  if (!ReadGain(Register::CurrentKp, Kp, Slot::CurrentKp)) return;
  if (!ReadGain(Register::CurrentKi, Ki, Slot::CurrentKi)) return;
  link_.LinkIdle = true;
}

bool Form1::ReadGain(Register reg, Field field, Slot slot) {
  if (!link_.Read(reg, {.DriveMs = LoadDriveMs})) {
    ReportFailure();
    return false;
  }
  params_[slot] = link_.Raw();
  Text1[field].Text = PlainText(params_[slot]);
  return true;
}

// The window closes in any case. What was written stays in the drive.
bool Form1::Form_Unload() {
  shell_[OpenMark::CurrentLoop] = false;
  shell_.ChildWindowOpen = false;
  if (!link_.Write(Register::CurrentStep, 0, {.ClosingWait = false})) ReportFailure();
  // A test that the closing broke off has left its mark.
  link_.LinkIdle = true;
  return true;
}

void Form1::Text1_LostFocus() { ValidateTestFields(); }

// The limits are those of the drive's loop, wider than the texts say.
bool Form1::ValidateTestFields() {
  constexpr const char* KpTitle = "Invalid Kp Value";
  constexpr const char* KpText = "Kp value should be 1-65535";
  constexpr const char* KiTitle = "Invalid Ki Value";
  constexpr const char* KiText = "Ki value should be 1-32767";
  constexpr const char* CurrentTitle = "Invalid Test Current Value";
  constexpr const char* CurrentText = "Test current value should be 1-5 A";
  if (Number(Kp) <= 0) return Refuse(Kp, KpTitle, KpText, "1");
  if (Number(Kp) > 65535) return Refuse(Kp, KpTitle, KpText, "65535");
  if (Number(Ki) < 0) return Refuse(Ki, KiTitle, KiText, "1");
  if (Number(Ki) > 32767) return Refuse(Ki, KiTitle, KiText, "32767");
  if (Number(TestCurrent) <= 0) return Refuse(TestCurrent, CurrentTitle, CurrentText, "0.5");
  if (Number(TestCurrent) > 5) return Refuse(TestCurrent, CurrentTitle, CurrentText, "5");
  return true;
}

bool Form1::Refuse(Field field, const char* title, const char* text, const char* corrected) {
  world_.ShowMessage({text, title, MessageButtons::Ok, MessageIcon::Critical});
  world_.SetFocus(Text1[field]);
  Text1[field].Text = corrected;
  return false;
}

// A refused field does not keep the corrected values from the drive, nor the step from being
// fired: only its picture is left out.
void Form1::cmdTest_Click() {
  if (Unloading) return;
  const Stay stay(*this);
  cmdTest.Enabled = false;
  Pointer = MousePointer::Hourglass;
  const bool valid = ValidateTestFields();
  const bool written = WriteTestSetup(stay);
  if (stay.Over()) return;
  if (valid && written) {
    Samples.fill(0);
    for (int first = 0; first < CurrentSamples; first += BlockSamples) {
      ReadCurrentBlock(stay, Register::Samples + first, BlockSamples - 1);
      if (stay.Over()) return;
    }
    Plot.ShowTrace(Samples, TestCurrentA, Picture1);
    DataSource.Start();
    link_.LinkIdle = true;
  }
  cmdTest.Enabled = true;
  Pointer = MousePointer::Default;
}

bool Form1::WriteTestSetup(const Stay& stay) {
  link_.LinkIdle = false;
  params_[Slot::CurrentKp] = static_cast<float>(Number(Kp));
  if (!WriteStep(stay, Register::CurrentKp, params_[Slot::CurrentKp])) return false;
  params_[Slot::CurrentKi] = static_cast<float>(Number(Ki));
  if (!WriteStep(stay, Register::CurrentKi, params_[Slot::CurrentKi])) return false;
  TestCurrentA = static_cast<float>(Number(TestCurrent));
  if (!WriteStep(stay, Register::TestCurrent, TestCurrentA * CountsPerAmpere)) return false;
  if (!WriteStep(stay, Register::CurrentStep, 1, false)) return false;
  link_.LinkIdle = true;
  return true;
}

bool Form1::WriteStep(const Stay& stay, Register reg, float value, bool closingWait) {
  // Closing the window ends the test mode: nothing may go out again behind that.
  const auto gone = [&] { return stay.Over(); };
  const bool taken = link_.Write(reg, value, {.ClosingWait = closingWait, .Abandon = gone});
  if (stay.Over()) return false;
  if (!taken) ReportFailure();
  return taken;
}

void Form1::ReadCurrentBlock(const Stay& stay, Register reg, int lastOffset) {
  const auto gone = [&] { return stay.Over(); };
  const auto count = static_cast<float>(lastOffset + 1);
  const bool answered =
      link_.Exchange(Function::Read, reg, count, {.ClosingWait = false, .Abandon = gone});
  if (stay.Over()) return;
  if (!answered) {
    ReportFailure();
    return;
  }
  const auto first = static_cast<std::size_t>(reg) - static_cast<std::size_t>(Register::Samples);
  for (int i = 0; i <= lastOffset; ++i) {
    Samples[first + static_cast<std::size_t>(i)] = link_.ReplyValues[static_cast<std::size_t>(i)];
  }
}

void Form1::ReportFailure() {
  world_.ShowMessage(LinkFailureMessage(link_));
  link_.LinkIdle = true;
  DataSource.Stop();
}

void Form1::DataSource_Timer() {
  if (ClientWidthTwips == MinimisedWidthTwips && ClientHeightTwips == MinimisedHeightTwips) return;
  if (!Plot.HasTrace()) return;
  Plot.Redraw(Picture1);
  const PictureScale view = Plot.View();
  Label3[Height].Caption = FixedText(static_cast<double>(-view.Height), 2);
  Label3[Width].Caption = FixedText(static_cast<double>(view.Width), 0);
}

}  // namespace gainsmith
