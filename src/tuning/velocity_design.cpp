// velocityModeTune: its design.
#include <string>

#include "trace/plot_design.h"
#include "tuning/field_design.h"
#include "tuning/velocity_window.h"

namespace gainsmith {
namespace {

enum Page { GainPage, MotionPage, CurvePage };

constexpr Colour RunButtonColour = 0x0080FF;
constexpr Colour CurrentSwatch = 0x0000FF;
constexpr Colour VelocitySwatch = 0x00FF00;

constexpr FieldPlace GainFields[] = {
    {velocityModeTune::Vp, "Vp:", 360, 450, 870, 1440, 930},
    {velocityModeTune::Vi, "Vi:", 3060, 450, 3570, 1440, 930},
    {velocityModeTune::Kaff, "Kaff:", 5760, 690, 6510, 1440, 930},
};
constexpr FieldPlace MotionFields[] = {
    {velocityModeTune::TopSpeed, "V_top(rpm):", 240, 1680, 1980, 1020, 690},
    {velocityModeTune::Acceleration, "Accel (r/s/s):", 240, 1680, 1980, 1020, 1230},
    {velocityModeTune::RunningTime, "Running Time(ms):", 3300, 2070, 5430, 1020, 690},
    {velocityModeTune::Interval, "Interval(ms):", 3300, 2070, 5430, 1020, 1230},
    {velocityModeTune::RepeatTimes, "Repeat_times:", 6660, 1500, 8190, 720, 690},
};
constexpr ChannelPlace Channels[] = {
    {velocityModeTune::IErr, velocityModeTune::IErr, "I_Err", 3300, 1050, 690},
    {velocityModeTune::IBak, velocityModeTune::IBak, "I_Bak", 5220, 1050, 690},
    {velocityModeTune::IRef, velocityModeTune::IRef, "I_Ref", 7140, 1050, 690},
    {velocityModeTune::VErr, velocityModeTune::VErr, "V_Err", 3300, 1050, 1230},
    {velocityModeTune::VBak, velocityModeTune::VBak, "V_Bak", 5220, 1050, 1230},
    {velocityModeTune::VRef, velocityModeTune::VRef, "V_Ref", 7140, 1050, 1230},
};

}  // namespace

void velocityModeTune::BuildDesign() {
  Name = "velocityModeTune";
  Caption = "Velocity Mode";
  ClientWidthTwips = 10845;
  ClientHeightTwips = 6915;
  BackColor = 0xFF8080;

  Add(Frame2, "Frame2").Place(0, 0, 10815, 4575);
  Frame2.Border = false;
  DesignPlot(*this, Frame2, Plot, VelocityPlotPlace);

  // Narrower than the window, so that the run button stands beside the pages.
  Add(SSTab1, "SSTab1").Place(45, 4575, 9060, 1935);
  SSTab1.Pages = {"V_parameter", "T_Speed_par", "Curve Setting"};
  const auto addField = [this](const FieldPlace& place, Page page) {
    const auto index = static_cast<std::size_t>(place.Index);
    AddField(*this, Label1[index], Text1[index], place, &SSTab1, page);
  };
  for (const FieldPlace& place : GainFields) addField(place, GainPage);
  for (const FieldPlace& place : MotionFields) addField(place, MotionPage);

  Add(Label2, "Label2", &SSTab1, CurvePage).Caption = "TraceTime:";
  Label2.Place(240, 690, 1260, FieldHeightTwips);
  Add(Combo1, "Combo1", &SSTab1, CurvePage).AccessibleName = "TraceTime:";
  Combo1.Place(1560, 675, 1320, 345);
  for (const ChannelPlace& place : Channels) {
    AddChannel(*this, Check1[static_cast<std::size_t>(place.CheckIndex)],
               Command4[static_cast<std::size_t>(place.ButtonIndex)], place, &SSTab1, CurvePage);
  }

  for (const Field field : {Vp, Vi, Kaff}) {
    Text1[field].ToolTip = std::string(field == Vp ? "1 to 65535" : "0 to 65535") +
                           ".\nEnter sends it now, Start if changed; Download to Drive stores it";
  }
  ExplainMotion(0);
  Combo1.ToolTip = "How much time a recording of 200 samples spans.\nSent at Start";

  Add(Command1, "Command1").Place(9240, 5280, 1335, 495);
  Add(StatusBar1, "StatusBar1");

  DataSource.IntervalMs = 50;
  err.IntervalMs = 1000;
  Timers = {&DataSource, &err};
}

void velocityModeTune::ExplainMotion(float counts) {
  const auto& [speedDivisor, accelFirst, accelSecond] = VelocityUnits;
  const auto explain = [this](Field field, const std::string& what) {
    Text1[field].ToolTip = what + ".\nSent at Start; Enter keeps it for the next opening";
  };
  explain(TopSpeed, "Rpm. " + AboveZero(speedDivisor, counts));
  explain(Acceleration,
          "Revolutions per second, per second. " + AboveZero(accelFirst * accelSecond, counts));
  explain(RunningTime, "Milliseconds, 1 to 2147483647");
  explain(Interval, "Milliseconds, 1 to 32767");
  explain(RepeatTimes, "Runs forth and back, 1 to 32767");
}

void velocityModeTune::ResetDesign() {
  SSTab1.CurrentPage = GainPage;
  for (TextBox& text : Text1) text.Text.clear();
  for (std::size_t i = 0; i < ChannelCount; ++i) SwitchOff(Check1[i], Command4[i]);
  for (const Channel recorded : {IBak, VBak}) {
    Check1[recorded].Ticked = true;
    Check1[recorded].Enabled = true;
    Command4[recorded].Enabled = true;
  }
  Command4[IBak].BackColor = CurrentSwatch;
  Command4[VBak].BackColor = VelocitySwatch;
  Command1.BackColor = RunButtonColour;
  ShowCaption(RunScheme::StartCaption);
  EnableMotionFields(true);
  Plot.Open();
}

}  // namespace gainsmith
