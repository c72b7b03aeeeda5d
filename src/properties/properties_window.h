// sysConfigFrm, "Properties": the drive's motor, gear and signal settings.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "link/link.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "shell/main_window.h"
#include "shell/shell_state.h"

namespace gainsmith {

// Reads its registers from the drive each time it opens and refreshes the parameter table on the
// way. Some settings go to the drive with OK, others at once: on Enter, a choice or a click.
// Nothing is stored in the EEPROM. Many controls are parked: they are loaded and act as any other,
// and are never on show.
//
// Its load and each of its handlers that write count as a bulk transfer while they run: nothing
// else begins that would change what they work on. A handler that writes comes to its end also when
// the window is closed under it. The window closes by itself, and the main window says why, when
// what it shows no longer holds (MDIForm1::OnSettingsReplaced).
struct sysConfigFrm : Window {
  sysConfigFrm(World& world, Link& link, ParameterStore& values, ShellState& shell, MDIForm1& main);

  // Option1. There is no Option1(3): a set pulse mode bit has no option.
  enum OptionIndex : std::size_t {
    UpRisingEdge = 0,
    FallingEdge = 1,
    PulseAndDirection = 2,
    DirectionNegative = 4,
    DirectionPositive = 5,
    EndLimitHigh = 6,
    EndLimitLow = 7,
    TorqueMode = 8,
    VelocityMode = 9,
    PositionMode = 10,
    AlarmActiveHigh = 11,
    AlarmActiveLow = 12,
    InPositionLow = 13,
    InPositionHigh = 14,
    EnableLow = 15,
    EnableHigh = 16,
    NoOption = 3,
  };
  // Text1; entries without a name are no controls.
  enum TextIndex : std::size_t {
    Denominator = 0,
    Numerator = 1,
    FollowingErrorLimit = 2,
    EncoderResolution = 3,
    DeadBand = 7,
  };
  enum CheckIndex : std::size_t { TwoAxesInterpolation = 0, ReversePolarity = 1 };
  enum FrameIndex : std::size_t {
    PulseModeFrame = 0,
    DirectionFrame = 1,
    EndLimitFrame = 2,
    OperatingModeFrame = 3,
    AlarmFrame = 4,
    EnableFrame = 5,
  };

  // --- Signals. Frame1 "Active Edge", Frame5 "In-position Signal" (parked).
  gainsmith::Frame Frame1, Frame5;
  std::array<gainsmith::Frame, 6> Frame2;
  std::array<OptionButton, 17> Option1;

  // --- Frame6 "Motor Parameters".
  gainsmith::Frame Frame6;
  Label lblMotorPolePair, Label16, Label17, Label18, Label19;
  ComboBox cboMotorPolePair;
  TextBox txtMaxCurrent, txtRatedCurrent;
  // Parked, as are their labels and units.
  ComboBox Combo1;
  TextBox Text3, Text4, Text5, Text6, Text7;
  std::array<Label, 6> lblMotor, lblMotorUnit;

  // --- Frame7 "Electronic Gear", Frame4 "Other Settings".
  gainsmith::Frame Frame7, Frame4;
  std::array<Label, 4> lblText1;
  std::array<TextBox, 8> Text1;
  CheckBox Check2;  // parked

  // --- Frame3 "Analog Input", parked.
  gainsmith::Frame Frame3;
  std::array<Label, 5> lblAnalog;
  ComboBox Combo2;
  TextBox Text9, Text10, Text11;
  std::array<CheckBox, 2> Check1;
  Button analogInputCalibrateCommand1;  // does nothing

  Button cmdOK, Command2;
  Timer err;

  // --- Load and failure.

  // Reads all registers of the window. After a read that failed its field shows the reply that
  // stood last, and its slot keeps its value. The failure is looked at twice: at the flags word,
  // where it starts `err`, and at the end, where it is reported at once.
  void Form_Load() override;
  void err_Timer();
  // Undoes nothing.
  void Command2_Click();

  // --- OK.

  void cmdOK_Click();
  // False after a message, with the focus on the field that failed; nothing is written then.
  bool ValidateProperties();
  // Puts the options of the shown frames into DriveFlagsWord; all other bits stay.
  void ApplyFlagOptions();
  // Writes what changed, the two current limits (where they are shown) and the flags word, as they
  // stand at its beginning. False when a write failed, after its report: earlier settings are in
  // the drive then, later ones not.
  bool WriteProperties();

  // --- What acts at once.

  // Drops the keys that a number has no use for; Enter commits the field.
  bool NumberField_KeyPress(TextBox& field, int key);
  // Text3 to Text7. A value out of range is told and 0 is written in its place.
  void CommitField(TextBox& field);
  // Text9 to Text11, which have no range but what a register can hold.
  void CommitAnalogField(TextBox& field);
  void Combo1_Click();
  void Combo2_Click();
  void Check1_Click(CheckIndex index);
  void Check2_Click();

 private:
  void Design();
  void DesignSignals();
  void DesignMotor();
  void DesignMotorConstants();
  void DesignGearAndOthers();
  void DesignAnalog();
  void ExplainFields();
  void Wire();

  // What a read of the load gave.
  struct Reading {
    // Of the reply that stood last, whatever it was a reply to.
    std::uint16_t Raw;
    bool Good;
  };
  // A setting that OK is to write.
  struct Setting {
    Slot Kept;
    double Value;
    double Raw;
  };

  void ResetControls();
  // Nothing when the window or the port was closed: the load ends.
  std::optional<Reading> Read(Register reg, const Errand& errand);
  // The same of the slot's register; a good value goes into the slot.
  std::optional<Reading> ReadSlot(Slot slot, const Errand& errand);
  bool LoadMotor(const Errand& errand);
  bool LoadGearAndOthers(const Errand& errand);
  bool LoadDeadBand(const Errand& errand);
  bool LoadFlags(const Errand& errand);
  void SelectOptions(std::uint16_t word);
  void FollowOperatingMode();
  bool LoadAnalog(const Errand& errand);
  bool LoadSwitch(CheckIndex index, const Errand& errand);
  bool LoadCurrentLimits(const Errand& errand);

  bool Refuse(Control& field, const char* text);
  // What OK has to write, in order, but for the flags word.
  std::vector<Setting> TakeSettings();
  void WriteAtOnce(Register reg, float value);
  void ReportFailure(const Errand& errand);
  void CloseOutdated(const std::string& why);

  World& world_;
  Link& link_;
  ParameterStore& values_;
  ShellState& shell_;
  MDIForm1& main_;
  // As read at the load (and, of the pole pairs, as written since), so that OK sees a change.
  double polePairs_ = 0;
  std::array<double, 4> text1_{};
};

}  // namespace gainsmith
