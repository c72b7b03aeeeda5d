// Helpers for the designs of the tuning windows.
#pragma once

#include <cmath>
#include <string>

#include "platform/number_text.h"
#include "platform/window.h"
#include "tuning/pulse_generator.h"

namespace gainsmith {

constexpr int FieldHeightTwips = 315;
// What a switched-off colour button shows.
constexpr Colour InactiveColour = SystemColour(11);

// A field with its caption to the left, on one line.
struct FieldPlace {
  int Index;
  const char* Caption;
  int LabelLeftTwips;
  int LabelWidthTwips;
  int FieldLeftTwips;
  int FieldWidthTwips;
  int TopTwips;
};

// Adds Text1(Index) and Label1(Index) of a window.
inline void AddField(Window& window, Label& label, TextBox& text, const FieldPlace& place,
                     Control* container, int page = 0) {
  window.Add(label, "Label1", place.Index, container, page).Caption = place.Caption;
  label.Place(place.LabelLeftTwips, place.TopTwips, place.LabelWidthTwips, FieldHeightTwips);
  window.Add(text, "Text1", place.Index, container, page).AccessibleName = place.Caption;
  text.Place(place.FieldLeftTwips, place.TopTwips, place.FieldWidthTwips, FieldHeightTwips);
}

// What a speed or an acceleration may be. `unitsPerWord` as for LargestFor; `counts` are the pulses
// per revolution, 0 where they are not known; `most` is what the window itself takes.
inline std::string AboveZero(double unitsPerWord, float counts, double most = HUGE_VAL) {
  if (counts == 0) return most == HUGE_VAL ? "Above 0" : "Above 0, up to " + FixedText(most, 0);
  const double largest = LargestFor(unitsPerWord, counts);
  if (largest >= most) return "Above 0, up to " + FixedText(most, 0);
  return "Above 0, up to " + FixedText(largest, 0) + " with " + PlainText(counts) +
         " pulses per revolution";
}

// The tool tip of a gain that a Start sends: what it takes, and when it goes to the drive.
inline void ExplainGain(TextBox& text, const std::string& takes) {
  text.ToolTip = takes + ".\nSent at Start if changed; Download to Drive stores it";
}

// A channel's check box with its colour button to the right.
struct ChannelPlace {
  int CheckIndex;
  int ButtonIndex;
  const char* Caption;
  int LeftTwips;
  int WidthTwips;
  int TopTwips;
};

inline void AddChannel(Window& window, CheckBox& check, Button& swatch, const ChannelPlace& place,
                       Control* container, int page = 0) {
  constexpr int SwatchTwips = 450;
  window.Add(check, "Check1", place.CheckIndex, container, page).Caption = place.Caption;
  check.Place(place.LeftTwips, place.TopTwips, place.WidthTwips, FieldHeightTwips);
  window.Add(swatch, "Command4", place.ButtonIndex, container, page).Caption = "...";
  swatch.Swatch = true;
  swatch.AccessibleName = std::string("Colour of ") + place.Caption;
  swatch.Place(place.LeftTwips + place.WidthTwips + 60, place.TopTwips, SwatchTwips,
               FieldHeightTwips);
}

// A channel that no drive records.
inline void SwitchOff(CheckBox& check, Button& swatch) {
  check.Ticked = false;
  check.Enabled = false;
  swatch.BackColor = InactiveColour;
  swatch.Enabled = false;
}

}  // namespace gainsmith
