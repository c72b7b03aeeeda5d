// The design of the error log: ten rows of ten lamps, their captions and two buttons.
#include <string>

#include "diagnostics/error_log_window.h"

namespace gainsmith {
namespace {

constexpr std::array<const char*, Form4::ErrorKinds> KindCaptions{
    "Over Current",    "Over Voltage", "Low Voltage",   "Phase Error",    "Encoder Error",
    "Following Error", "Limit  Error", "Brake   Error", "Sampling Error", "EEprom  Error"};

constexpr int CaptionLeftTwips = 240;
constexpr int CaptionWidthTwips = 1740;
constexpr int BoardLeftTwips = 2100;
constexpr int BoardTopTwips = 240;
constexpr int ColumnPitchTwips = 480;
constexpr int RowPitchTwips = 405;
constexpr int LampTwips = 300;
constexpr int ColumnCaptionTopTwips = BoardTopTwips + Form4::ErrorKinds * RowPitchTwips + 30;
constexpr int ButtonTopTwips = ColumnCaptionTopTwips + 540;
constexpr int ButtonWidthTwips = 2400;
constexpr int ButtonHeightTwips = 420;

}  // namespace

void Form4::Design() {
  Name = "Form4";
  Caption = "Error Log";
  ClientWidthTwips = BoardLeftTwips + ErrorLogEntries * ColumnPitchTwips + 240;
  ClientHeightTwips = ButtonTopTwips + ButtonHeightTwips + 240;
  DesignBoard();

  Command1[EraseCurrentError].Caption = "Erase Current Error";
  Command1[EraseAllErrors].Caption = "Erase All Errors";
  for (std::size_t i = 0; i < Command1.size(); ++i) {
    Add(Command1[i], "Command1", i);
    const int left = ClientWidthTwips - (2 - static_cast<int>(i)) * (ButtonWidthTwips + 240);
    Command1[i].Place(left, ButtonTopTwips, ButtonWidthTwips, ButtonHeightTwips);
  }
  Timer1.IntervalMs = 200;
  Timers = {&Timer1};
}

void Form4::DesignBoard() {
  for (std::size_t kind = 0; kind < Label1.size(); ++kind) {
    Add(Label1[kind], "Label1", kind).Caption = KindCaptions[kind];
    const int top = BoardTopTwips + static_cast<int>(kind) * RowPitchTwips;
    Label1[kind].Place(CaptionLeftTwips, top, CaptionWidthTwips, LampTwips);
  }
  for (std::size_t i = 0; i < Shape1.size(); ++i) {
    const int entry = static_cast<int>(i) / BitsPerEntry;
    const int bit = static_cast<int>(i) % BitsPerEntry;
    Lamp& lamp = Add(Shape1[i], "Shape1", i);
    lamp.Parked = bit >= ErrorKinds;
    lamp.State = NotRead;
    if (lamp.Parked) continue;
    lamp.AccessibleName = std::string(KindCaptions[static_cast<std::size_t>(bit)]) + ", entry " +
                          std::to_string(entry) + (entry == 0 ? ", the newest" : "");
    lamp.Place(BoardLeftTwips + entry * ColumnPitchTwips, BoardTopTwips + bit * RowPitchTwips,
               LampTwips, LampTwips);
  }
  for (std::size_t entry = 0; entry < ErrorLogEntries; ++entry) {
    Label& label = Add(Label2[entry], "Label2", entry);
    label.Caption = std::to_string(entry);
    label.Alignment = TextAlignment::Centre;
    if (entry == 0) label.ToolTip = "The newest entry";
    if (entry + 1 == ErrorLogEntries) label.ToolTip = "The oldest entry";
    label.Place(BoardLeftTwips + static_cast<int>(entry) * ColumnPitchTwips, ColumnCaptionTopTwips,
                LampTwips, 300);
  }
  Add(Label2[ErrorCounter], "Label2", ErrorCounter).Caption = "Error Counter:";
  Label2[ErrorCounter].Place(CaptionLeftTwips, ColumnCaptionTopTwips, CaptionWidthTwips, 300);
}

}  // namespace gainsmith
