// Form3: the design of its pages.
#include "tuning/field_design.h"
#include "tuning/position_window.h"

namespace gainsmith {
namespace {

enum Page { HighGainPage, LowGainPage, JogPage, MotionPage, CurvePage };

constexpr int StartLeftTwips = 8700;

constexpr FieldPlace FeedforwardFields[] = {
    {Form3::LowKaff, "Kaff_L:", 240, 870, 1170, 1440, 420},
    {Form3::LowKvff, "Kvff_L:", 3240, 870, 4170, 1440, 420},
};
// Two of the position series, and four channels that no drive records.
constexpr ChannelPlace Channels[] = {
    {Form3::PBak, 1, "P_Bak", 240, 1050, 540},  {Form3::PRef, 2, "P_Ref", 240, 1050, 1020},
    {Form3::IErr, 6, "I_Err", 2940, 1050, 540}, {Form3::IRef, 8, "I_Ref", 2940, 1050, 1020},
    {Form3::VErr, 3, "V_Err", 5640, 1050, 540}, {Form3::VRef, 5, "V_Ref", 5640, 1050, 1020},
};

}  // namespace

void Form3::AddPages() {
  Add(SSTab1, "SSTab1", &Frame2).Place(120, 7920, 10440, 1560);
  SSTab1.Pages = {"P_H_parameter", "P_L_parameter", "JOG", "T_Speed_par", "CurveSetting"};

  const auto addStart = [this](RunButton index, Page page) {
    Add(Command1[index], "Command1", index, &SSTab1, page).Place(StartLeftTwips, 660, 1455, 495);
  };
  addStart(GainStart, HighGainPage);

  gainsmith::Frame& feedforward =
      Add(Frame1[Feedforward], "Frame1", Feedforward, &SSTab1, LowGainPage);
  feedforward.Caption = "Feedforward control";
  feedforward.Place(240, 450, 6000, 990);
  for (const FieldPlace& place : FeedforwardFields) {
    const auto index = static_cast<std::size_t>(place.Index);
    AddField(*this, Label1[index], Text1[index], place, &feedforward);
  }

  const auto addJogField = [this](Label& label, const char* labelName, TextBox& text,
                                  const char* textName, const char* caption, int labelLeftTwips,
                                  int fieldLeftTwips) {
    Add(label, labelName, &SSTab1, JogPage).Caption = caption;
    label.Place(labelLeftTwips, 480, fieldLeftTwips - labelLeftTwips - 60, 360);
    Add(text, textName, &SSTab1, JogPage).AccessibleName = caption;
    text.Place(fieldLeftTwips, 480, 1695, 360);
  };
  addJogField(Label1[8], "Label1(8)", Text2, "Text2", "Jog_V(rpm):", 1080, 2520);
  addJogField(Label1[7], "Label1(7)", Text3, "Text3", "Jog_Accel(r/s/s):", 5700, 7680);
  Add(Command2, "Command2", &SSTab1, JogPage).Caption = "CW";
  Command2.Place(1800, 1020, 1695, 375);
  Add(Command3, "Command3", &SSTab1, JogPage).Caption = "CCW";
  Command3.Place(7080, 1020, 1695, 375);
  for (Button* button : {&Command2, &Command3}) {
    button->ToolTip = "The motor turns while the button is held";
  }

  addStart(MotionStart, MotionPage);

  for (const ChannelPlace& place : Channels) {
    AddChannel(*this, Check1[static_cast<std::size_t>(place.CheckIndex)],
               Command4[static_cast<std::size_t>(place.ButtonIndex)], place, &SSTab1, CurvePage);
  }
  addStart(CurveStart, CurvePage);
}

}  // namespace gainsmith
