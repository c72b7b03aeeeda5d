// Form1: its behaviour.
#include "tuning/current_loop_window.h"

#include "platform/number_text.h"
#include "trace/capture.h"
#include "trace/copy_text.h"

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
  Picture1.OnCopy = [this] { return CopiedText(); };
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

std::string Form1::CopiedText() const {
  if (!Plot.HasTrace()) return {};
  RunNotes notes{{{"Kp", PlainText(tested_.Kp), ""},
                  {"Ki", PlainText(tested_.Ki), ""},
                  {"Test Current", PlainText(tested_.TestCurrentA), "A"}},
                 {}};
  if (Plot.TestCurrent != 0) {
    notes.Score =
        ScoreLines(ScoreStep(Plot.MeasuredCurrent, 0, Plot.TestCurrent, 1), "A", "samples");
  }
  const SampleColumn column{"Current (A)", Plot.MeasuredCurrent};
  return CopyText(notes, "Sample", 1, {&column, 1});
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
  const Errand errand(link_, *this);
  if (!ReadGain(errand, Register::CurrentKp, Kp, Slot::CurrentKp)) return;
  if (!ReadGain(errand, Register::CurrentKi, Ki, Slot::CurrentKi)) return;
  link_.LinkIdle = true;
}

bool Form1::ReadGain(const Errand& errand, Register reg, Field field, Slot slot) {
  const Sent sent = link_.Read(errand, reg, {.DriveMs = LoadDriveMs});
  if (sent == Sent::Lost) ReportFailure(errand);
  if (sent != Sent::Taken) return false;
  params_[slot] = link_.Raw();
  Text1[field].Text = PlainText(params_[slot]);
  return true;
}

// The window closes in any case. What was written stays in the drive.
bool Form1::Form_Unload() {
  shell_[OpenMark::CurrentLoop] = false;
  shell_.ChildWindowOpen = false;
  const Errand errand(link_, *this, Errand::Of::Motor);
  const Sent sent = link_.Write(errand, Register::CurrentStep, 0, {.ClosingWait = false});
  if (sent == Sent::Lost) ReportFailure(errand);
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
  const Errand errand(link_, *this, Errand::Of::Motor);
  cmdTest.Enabled = false;
  Pointer = MousePointer::Hourglass;
  const bool valid = ValidateTestFields();
  const Entries entries = TakeEntries();
  const bool written = WriteTestSetup(errand, entries);
  if (errand.Over()) return;
  if (valid && written) {
    Samples.fill(0);
    for (int first = 0; first < CurrentSamples; first += BlockSamples) {
      ReadCurrentBlock(errand, first, BlockSamples - 1);
      if (errand.Over()) return;
    }
    Plot.ShowTrace(Samples, TestCurrentA, Picture1);
    tested_ = entries;
    DataSource.Start();
    link_.LinkIdle = true;
  }
  cmdTest.Enabled = true;
  Pointer = MousePointer::Default;
}

Form1::Entries Form1::TakeEntries() const {
  return {static_cast<float>(Number(Kp)), static_cast<float>(Number(Ki)),
          static_cast<float>(Number(TestCurrent))};
}

bool Form1::WriteTestSetup(const Errand& errand, const Entries& entries) {
  link_.LinkIdle = false;
  params_[Slot::CurrentKp] = entries.Kp;
  if (!WriteStep(errand, Register::CurrentKp, entries.Kp)) return false;
  params_[Slot::CurrentKi] = entries.Ki;
  if (!WriteStep(errand, Register::CurrentKi, entries.Ki)) return false;
  TestCurrentA = entries.TestCurrentA;
  if (!WriteStep(errand, Register::TestCurrent, TestCurrentA * CountsPerAmpere)) return false;
  if (!WriteStep(errand, Register::CurrentStep, 1, false)) return false;
  link_.LinkIdle = true;
  return true;
}

bool Form1::WriteStep(const Errand& errand, Register reg, float value, bool closingWait) {
  const Sent sent = link_.Write(errand, reg, value, {.ClosingWait = closingWait});
  if (sent == Sent::Lost) ReportFailure(errand);
  return Stands(sent) && !errand.Over();
}

void Form1::ReadCurrentBlock(const Errand& errand, int offset, int lastOffset) {
  const Sent sent = ReadTraceBlock(link_, errand, offset, lastOffset, Samples);
  if (sent == Sent::Lost) ReportFailure(errand);
}

void Form1::ReportFailure(const Errand& errand) {
  link_.TellFailure(errand);
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
