// Form3: its design, but for the pages.
#include "trace/plot_design.h"
#include "tuning/field_design.h"
#include "tuning/position_window.h"

namespace gainsmith {
namespace {

constexpr int GroupTopTwips = 300;
constexpr int GroupHeightTwips = 1860;

// Rows of a group of gains.
constexpr int GainRowTwips[] = {330, 840, 1350};
// Rows of a frame under the plot.
constexpr int RowTwips[] = {270, 615, 960};

constexpr FieldPlace Gain(int index, const char* caption, int row) {
  return {index, caption, 210, 690, 960, 1440, GainRowTwips[row]};
}

struct GroupedGain {
  Form3::GroupFrame Group;
  FieldPlace Place;
};
constexpr GroupedGain Gains[] = {
    {Form3::HighPosition, Gain(Form3::PositionKp, "Kp", 0)},
    {Form3::HighPosition, Gain(Form3::Kvff, "Kvff", 1)},
    {Form3::HighPosition, Gain(Form3::PositionKd, "Kd", 2)},
    {Form3::HighVelocity, Gain(Form3::VelocityKp, "Vp", 0)},
    {Form3::HighVelocity, Gain(Form3::VelocityKi, "Vi", 1)},
    {Form3::LowPosition, Gain(Form3::LowPositionKp, "Kp", 0)},
    {Form3::LowPosition, Gain(Form3::LowPositionKi, "Ki", 1)},
    {Form3::LowPosition, Gain(Form3::LowPositionKd, "Kd", 2)},
    {Form3::LowVelocity, Gain(Form3::LowVelocityKp, "Vp", 0)},
    {Form3::LowVelocity, Gain(Form3::LowVelocityKi, "Vi", 1)},
};
constexpr FieldPlace MotionFields[] = {
    {Form3::Velocity, "Veocity (rpm)", 180, 2190, 2430, 1200, RowTwips[0]},
    {Form3::Acceleration, "Acceleration (r/s^s)", 180, 2190, 2430, 1200, RowTwips[1]},
    {Form3::Distance, "Distance (p)", 180, 2190, 2430, 1200, RowTwips[2]},
    {Form3::Interval, "Interval (ms)", 3960, 1500, 5520, 1200, RowTwips[0]},
    {Form3::RepeatTimes, "Repeat times", 3960, 1500, 5520, 1200, RowTwips[1]},
};
constexpr ChannelPlace Channels[] = {
    {Form3::IBak, 7, "Curent", 1950, 1890, RowTwips[0]},
    {Form3::VBak, 4, "Velocity", 1950, 1890, RowTwips[1]},
    {Form3::PErr, 0, "Position Error", 1950, 1890, RowTwips[2]},
};

constexpr const char* AnyWord = "0 to 65535";
constexpr const char* PositiveWord = "Above 0, up to 65535";
constexpr const char* PositiveCount = "Above 0, up to 32767";
constexpr const char* WithStart = ".\nSent at Start";

constexpr Colour FirstRunColour = 0x00C000;
constexpr const char* PositionGroup = "Position Loop Settings";
constexpr const char* VelocityGroup = "Velocity Loop Settings";

}  // namespace

void Form3::BuildDesign() {
  Name = "Form3";
  Caption = "Position Mode";
  // Higher than its frames need, so that the pages are in sight.
  ClientWidthTwips = 12510;
  ClientHeightTwips = 9930;
  BackColor = SystemColour(13);

  Add(Frame2, "Frame2").Place(0, 0, 12510, 9570);
  Frame2.Border = false;
  DesignPlot(*this, Frame2, Plot, PositionPlotPlace);
  AddMotionAndScopeFrames();
  AddGainFrames();
  Add(Command1[MainStart], "Command1(3)", &Frame2).Place(10800, 8340, 1455, 615);
  AddPages();
  AddFieldTips(0);
  Add(StatusBar1, "StatusBar1");

  DataSource.IntervalMs = 50;
  err.IntervalMs = 1000;
  Timers = {&DataSource, &err};
}

// What each field takes, and when it goes to the drive.
void Form3::AddFieldTips(float counts) {
  for (const GroupedGain& gain : Gains) {
    const int index = gain.Place.Index;
    const bool positive = index == PositionKp || index == LowPositionKp;
    ExplainGain(Text1[static_cast<std::size_t>(index)], positive ? PositiveWord : AnyWord);
  }
  ExplainGain(Text5, AnyWord);
  const auto explain = [this](Field field, const std::string& what) {
    Text1[field].ToolTip = what + WithStart;
  };
  const std::string rpm = "Rpm. ";
  const std::string accel = "Revolutions per second, per second. ";
  const auto& [speedDivisor, accelFirst, accelSecond] = PositionUnits;
  explain(Velocity, rpm + AboveZero(speedDivisor, counts, LargestWord));
  explain(Acceleration, accel + AboveZero(accelFirst * accelSecond, counts, LargestWord));
  explain(Distance, "Pulses. 1 to 2147483647");
  explain(Interval, std::string("Milliseconds. ") + PositiveCount);
  explain(RepeatTimes, std::string("Moves forth and back. ") + PositiveCount);
  for (const Field field : {LowKvff, LowKaff}) {
    Text1[field].ToolTip = "The value in the drive.\nOnly shown: this window does not send it";
  }
  constexpr const char* JogSent = ".\nEnter sends it now; so does each press of CW and CCW";
  Text2.ToolTip = rpm + AboveZero(speedDivisor, counts) + JogSent;
  Text3.ToolTip = accel + AboveZero(accelFirst * accelSecond, counts) + JogSent;
  Combo1.ToolTip = std::string("How much time a recording of 200 samples spans") + WithStart;
}

void Form3::AddMotionAndScopeFrames() {
  Add(Frame3, "Frame3", &Frame2).Caption = "Gainsmith Pulse Generator Settings";
  Frame3.Place(480, 4080, 6975, 1335);
  for (const FieldPlace& place : MotionFields) {
    const auto index = static_cast<std::size_t>(place.Index);
    AddField(*this, Label1[index], Text1[index], place, &Frame3);
  }

  Add(Frame4, "Frame4", &Frame2).Caption = "Scope Settings";
  Frame4.Place(7560, 4080, 4455, 1335);
  Add(Label2, "Label2", &Frame4).Caption = "TraceTime";
  Label2.Place(180, RowTwips[0], 1320, FieldHeightTwips);
  Add(Combo1, "Combo1", &Frame4).AccessibleName = "TraceTime";
  Combo1.Place(180, RowTwips[1], 1320, 345);
  for (const ChannelPlace& place : Channels) {
    AddChannel(*this, Check1[static_cast<std::size_t>(place.CheckIndex)],
               Command4[static_cast<std::size_t>(place.ButtonIndex)], place, &Frame4);
  }
}

void Form3::AddGainFrames() {
  struct GroupPlace {
    GroupFrame Index;
    gainsmith::Frame* Container;
    const char* Caption;
    int LeftTwips;
    int WidthTwips;
  };
  Add(Frame5, "Frame5", &Frame2).Caption = "Position Loop 1";
  Frame5.Place(360, 5520, 5895, 2295);
  Add(Frame6, "Frame6", &Frame2).Caption = "Position Loop 2";
  Frame6.Place(6600, 5520, 5415, 2295);
  const GroupPlace groups[] = {
      {HighPosition, &Frame5, PositionGroup, 150, 2730},
      {HighVelocity, &Frame5, VelocityGroup, 3015, 2730},
      {LowPosition, &Frame6, PositionGroup, 120, 2535},
      {LowVelocity, &Frame6, VelocityGroup, 2760, 2535},
  };
  for (const GroupPlace& group : groups) {
    gainsmith::Frame& frame = Add(Frame1[group.Index], "Frame1", group.Index, group.Container);
    frame.Caption = group.Caption;
    frame.Place(group.LeftTwips, GroupTopTwips, group.WidthTwips, GroupHeightTwips);
    for (const GroupedGain& gain : Gains) {
      if (gain.Group != group.Index) continue;
      const auto index = static_cast<std::size_t>(gain.Place.Index);
      AddField(*this, Label1[index], Text1[index], gain.Place, &frame);
    }
    if (group.Index != HighVelocity) continue;
    Add(Label7, "Label7", &frame).Caption = "Kaff";
    Label7.Place(210, GainRowTwips[2], 690, FieldHeightTwips);
    Add(Text5, "Text5", &frame).AccessibleName = "Kaff";
    Text5.Place(960, GainRowTwips[2], 1440, FieldHeightTwips);
  }
}

void Form3::ResetDesign() {
  for (TextBox& text : Text1) text.Text.clear();
  Text5.Text.clear();
  Text2.Text = "50";
  Text3.Text = "300";
  Text1[RepeatTimes].Text = "1";
  for (std::size_t i = 0; i < ChannelCount; ++i) SwitchOff(Check1[i], Command4[i]);
  struct StartState {
    Channel Index;
    std::size_t Button;
    bool Ticked;
    Colour Swatch;
  };
  constexpr StartState states[] = {
      {IBak, 7, true, 0x0000FF},  {VBak, 4, true, 0x80FF80},  {PErr, 0, true, 0xFFC0FF},
      {PBak, 1, false, 0x800080}, {PRef, 2, false, 0xFF8080},
  };
  for (const StartState& state : states) {
    Check1[state.Index].Enabled = true;
    Check1[state.Index].Ticked = state.Ticked;
    Command4[state.Button].Enabled = true;
    Command4[state.Button].BackColor = state.Swatch;
  }
  SSTab1.CurrentPage = 0;
  JogState = {};
  ShowCaption(RunScheme::StartCaption);
  ShowRunColour(FirstRunColour);
  EnableFields(true);
  Plot.Open();
}

}  // namespace gainsmith
