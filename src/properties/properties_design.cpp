// The design of the properties window: which controls, where, and what they say.
#include <string>

#include "properties/properties_window.h"

namespace gainsmith {
namespace {

constexpr int MarginTwips = 180;
constexpr int RowHeightTwips = 330;
constexpr int FirstRowTwips = 360;
constexpr int SecondRowTwips = 2280;
constexpr int ButtonRowTwips = 4560;

void Park(std::initializer_list<Control*> controls) {
  for (Control* control : controls) control->Parked = true;
}

}  // namespace

void sysConfigFrm::Design() {
  Name = "sysConfigFrm";
  Caption = "Properties";
  ClientWidthTwips = 9945;
  ClientHeightTwips = 5415;
  DesignSignals();
  DesignMotor();
  DesignMotorConstants();
  DesignGearAndOthers();
  DesignAnalog();
  ExplainFields();

  Add(cmdOK, "cmdOK").Caption = "OK";
  cmdOK.Place(6900, ButtonRowTwips, 1350, 420);
  Add(Command2, "Command2").Caption = "Cancel";
  Command2.Cancel = true;
  Command2.Place(8415, ButtonRowTwips, 1350, 420);
  err.IntervalMs = 500;
  Timers = {&err};
}

void sysConfigFrm::DesignSignals() {
  struct Choice {
    OptionIndex Index;
    const char* Caption;
  };
  struct Group {
    gainsmith::Frame& Box;
    const char* Name = nullptr;
    const char* Caption = nullptr;
    bool Parked = false;
    std::initializer_list<Choice> Choices;
  };
  const Group groups[] = {
      {Frame1,
       "Frame1",
       "Active Edge",
       false,
       {{UpRisingEdge, "Up-rising Edge"}, {FallingEdge, "Falling Edge"}}},
      {Frame2[DirectionFrame],
       "Frame2(1)",
       "Direction",
       false,
       {{DirectionPositive, "Positive"}, {DirectionNegative, "Negative"}}},
      {Frame2[EnableFrame],
       "Frame2(5)",
       "Enable  Signal",
       false,
       {{EnableHigh, "High Level"}, {EnableLow, "Low Level"}}},
      {Frame2[AlarmFrame],
       "Frame2(4)",
       "Alarm Signal",
       false,
       {{AlarmActiveHigh, "Active High"}, {AlarmActiveLow, "Active Low"}}},
      {Frame2[PulseModeFrame], "Frame2(0)", "Pulse Mode", true, {{PulseAndDirection, "PUL/DIR"}}},
      {Frame2[EndLimitFrame],
       "Frame2(2)",
       "End Limit",
       true,
       {{EndLimitHigh, "High Level"}, {EndLimitLow, "Low Level"}}},
      {Frame5,
       "Frame5",
       "In-position Signal",
       true,
       {{InPositionHigh, "High Level"}, {InPositionLow, "Low Level"}}},
      {Frame2[OperatingModeFrame],
       "Frame2(3)",
       "Operating Mode",
       true,
       {{TorqueMode, "Torque   Mode"},
        {VelocityMode, "Velocity Mode"},
        {PositionMode, "Position Mode"}}},
  };
  constexpr int WidthTwips = 2310;
  constexpr int PitchTwips = 2425;
  int left = MarginTwips;
  for (const Group& group : groups) {
    Add(group.Box, group.Name).Caption = group.Caption;
    group.Box.Parked = group.Parked;
    group.Box.Place(left, FirstRowTwips, WidthTwips, 1740);
    int top = 480;
    for (const Choice& choice : group.Choices) {
      OptionButton& option = Option1[choice.Index];
      Add(option, "Option1", choice.Index, &group.Box).Caption = choice.Caption;
      option.Parked = group.Parked;
      option.Place(MarginTwips, top, WidthTwips - 2 * MarginTwips, RowHeightTwips);
      top += 540;
    }
    if (!group.Parked) left += PitchTwips;
  }
}

void sysConfigFrm::DesignMotor() {
  Add(Frame6, "Frame6").Caption = "Motor Parameters";
  Frame6.Place(MarginTwips, SecondRowTwips, 3720, 2100);
  struct Row {
    Label& Text;
    const char* LabelName;
    const char* Caption;
    Control& Field;
    const char* FieldName;
  };
  const Row rows[] = {
      {lblMotorPolePair, "lblMotorPolePair", "Motor Pole Pairs", cboMotorPolePair,
       "cboMotorPolePair"},
      {Label16, "Label16", "Peak Current Limit", txtMaxCurrent, "txtMaxCurrent"},
      {Label18, "Label18", "Continuous Current Limit", txtRatedCurrent, "txtRatedCurrent"},
  };
  int top = 420;
  for (const Row& row : rows) {
    Add(row.Text, row.LabelName, &Frame6).Caption = row.Caption;
    row.Text.Place(MarginTwips, top, 2400, RowHeightTwips);
    Add(row.Field, row.FieldName, &Frame6).AccessibleName = row.Caption;
    row.Field.Place(2610, top, 930, RowHeightTwips);
    top += 540;
  }
  cboMotorPolePair.Editable = true;
  Add(Label17, "Label17", &Frame6).Caption = "A";
  Add(Label19, "Label19", &Frame6).Caption = "A";
  Park({&Label17, &Label19});
}

void sysConfigFrm::DesignMotorConstants() {
  struct Row {
    const char* Caption;
    Control& Field;
    const char* FieldName;
    const char* Unit;
  };
  const Row rows[] = {
      {"Motor Rated Power:", Combo1, "Combo1", "W"},
      {"Motor Phase Resistance:", Text3, "Text3", "ohms"},
      {"Motor Phase Inductance:", Text4, "Text4", "mH"},
      {"Motor Back EMF Constant:", Text7, "Text7", "V/Krpm"},
      {"Motor Torque Constant:", Text5, "Text5", "Nm/A"},
      {"Motor Inertia:", Text6, "Text6", "Kg·m^2"},
  };
  std::size_t i = 0;
  for (const Row& row : rows) {
    Add(lblMotor[i], "lblMotor", i, &Frame6).Caption = row.Caption;
    Add(row.Field, row.FieldName, &Frame6).AccessibleName = row.Caption;
    Add(lblMotorUnit[i], "lblMotorUnit", i, &Frame6).Caption = row.Unit;
    Park({&lblMotor[i], &row.Field, &lblMotorUnit[i]});
    ++i;
  }
  for (const int watts : {400, 750, 1000, 1500}) {
    Combo1.Items.push_back({std::to_string(watts), watts, ""});
  }
}

void sysConfigFrm::DesignGearAndOthers() {
  Add(Frame7, "Frame7").Caption = "Electronic Gear";
  Frame7.Place(4020, SecondRowTwips, 2370, 2100);
  int top = 420;
  for (const TextIndex index : {Numerator, Denominator}) {
    Label& label = Add(lblText1[index], "lblText1", index, &Frame7);
    label.Caption = index == Numerator ? "Numerator" : "Denominator";
    label.Place(MarginTwips, top, 1290, RowHeightTwips);
    TextBox& field = Add(Text1[index], "Text1", index, &Frame7);
    field.AccessibleName = label.Caption;
    field.Place(1500, top, 690, RowHeightTwips);
    top += 540;
  }

  Add(Frame4, "Frame4").Caption = "Other Settings";
  Frame4.Place(6510, SecondRowTwips, 3255, 2100);
  top = 390;
  for (const TextIndex index : {EncoderResolution, FollowingErrorLimit}) {
    Label& label = Add(lblText1[index], "lblText1", index, &Frame4);
    label.Caption =
        index == EncoderResolution ? "Encoder Resolution" : "Position Following Error Limit";
    label.Place(MarginTwips, top, 2895, 300);
    TextBox& field = Add(Text1[index], "Text1", index, &Frame4);
    field.AccessibleName = label.Caption;
    field.Place(MarginTwips, top + 330, 1200, RowHeightTwips);
    top += 810;
  }
  Add(Check2, "Check2", &Frame4).Caption = "  滤波使能";
  Park({&Check2});
}

// What each field in sight takes; the parked ones commit on their own.
void sysConfigFrm::ExplainFields() {
  const std::string withOk = "OK writes it; Download to Drive stores it";
  const auto explain = [&](Control& field, const std::string& takes) {
    field.ToolTip = takes + ".\n" + withOk;
  };
  explain(cboMotorPolePair, "2 to 65535");
  explain(txtMaxCurrent, "Amperes, 1 to 16");
  explain(txtRatedCurrent, "Amperes, 0.35 to 6");
  explain(Text1[Numerator], "1 to 255");
  explain(Text1[Denominator], "1 to 255");
  explain(Text1[EncoderResolution], "Pulses per motor revolution, 400 to 60000");
  explain(Text1[FollowingErrorLimit], "Pulses, 0 to 65535");
  for (OptionButton& option : Option1) option.ToolTip = withOk;
}

void sysConfigFrm::DesignAnalog() {
  Add(Frame3, "Frame3").Caption = "Analog Input";
  struct Row {
    const char* Caption;
    Control& Field;
    const char* FieldName;
  };
  const Row rows[] = {
      {"Input Smoother", Combo2, "Combo2"},      {"Deadband(mv):", Text1[DeadBand], "Text1(7)"},
      {"Offset(mv):", Text9, "Text9"},           {"Peak Current(A):", Text10, "Text10"},
      {"MAX Velocity (RPM):", Text11, "Text11"},
  };
  std::size_t i = 0;
  for (const Row& row : rows) {
    Add(lblAnalog[i], "lblAnalog", i, &Frame3).Caption = row.Caption;
    Add(row.Field, row.FieldName, &Frame3).AccessibleName = row.Caption;
    Park({&lblAnalog[i], &row.Field});
    ++i;
  }
  Add(Check1[TwoAxesInterpolation], "Check1(0)", &Frame3).Caption = "Enable two axes interpolation";
  Add(Check1[ReversePolarity], "Check1(1)", &Frame3).Caption = "Reverse analog input polarity";
  Add(analogInputCalibrateCommand1, "analogInputCalibrateCommand1", &Frame3).Caption = "offect";
  Park({&Frame3, &Check1[TwoAxesInterpolation], &Check1[ReversePolarity],
        &analogInputCalibrateCommand1});
}

}  // namespace gainsmith
