// Form1, "Current Loop": the current loop tuning window.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "link/link.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "shell/shell_state.h"
#include "tuning/current_plot.h"

namespace gainsmith {

// Writes both gains and a test current, fires the drive's current step and plots the 200 samples
// that the drive recorded. A failed exchange is reported and leaves the window open. Shown modal.
struct Form1 : Window {
  enum Field : std::size_t { Kp, Ki, TestCurrent, FieldCount };
  enum ReadOut : std::size_t { HeightCaption, WidthCaption, Height, Width, ReadOutCount };

  Form1(World& world, Link& link, ParameterStore& params, ShellState& shell);

  // --- Controls.
  std::array<Label, FieldCount> Label1;
  std::array<TextBox, FieldCount> Text1;
  Button cmdTest;
  PictureBox Picture1;
  std::array<Label, ReadOutCount> Label3;
  Timer DataSource;

  // --- State.
  CurrentPlot Plot;
  // The raw samples of the last upload, as signed counts; 0 where a block was not read.
  std::array<float, CurrentSamples> Samples{};
  // Amperes, as the last test took them from the field.
  float TestCurrentA = 0;

  // --- Events.
  void Form_Load() override;
  bool Form_Unload() override;
  void cmdTest_Click();
  void DataSource_Timer();
  void Text1_LostFocus();

 private:
  void BuildDesign();
  void ConnectEvents();

  // The fields at one moment: they stay open to the user while the words go out.
  struct Entries {
    float Kp;
    float Ki;
    float TestCurrentA;
  };
  [[nodiscard]] Entries TakeEntries() const;
  // The trace with what it was made with, for a spreadsheet; empty without one.
  [[nodiscard]] std::string CopiedText() const;

  bool ReadGain(const Errand& errand, Register reg, Field field, Slot slot);
  // Reports the first bad field, corrects it and gives false.
  bool ValidateTestFields();
  bool Refuse(Field field, const char* title, const char* text, const char* corrected);
  // Writes gains and current and fires the step. False on failure, which it has reported, and when
  // the window was closed meanwhile.
  bool WriteTestSetup(const Errand& errand, const Entries& entries);
  bool WriteStep(const Errand& errand, Register reg, float value, bool closingWait = true);
  // The samples from `offset` on.
  void ReadCurrentBlock(const Errand& errand, int offset, int lastOffset);
  void ReportFailure(const Errand& errand);
  // The number in a field.
  [[nodiscard]] double Number(Field field) const;

  World& world_;
  Link& link_;
  ParameterStore& params_;
  ShellState& shell_;
  // Of the trace that is shown.
  Entries tested_{};
};

}  // namespace gainsmith
