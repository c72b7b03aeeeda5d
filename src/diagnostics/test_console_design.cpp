// The design of the test console: five fields and two buttons.
#include <string>

#include "diagnostics/test_console_window.h"

namespace gainsmith {

void Form110::Design() {
  Name = "Form110";
  Caption = "110";
  ClientWidthTwips = 4440;
  ClientHeightTwips = 2700;

  constexpr std::array<const char*, WatchCount> registers{"0x66", "0x99", "0xaa", "0xbb", "0xcc"};
  for (std::size_t i = 0; i < WatchCount; ++i) {
    TextBox& field = Add(Text1[i], "Text1(" + std::to_string(i) + ")");
    field.AccessibleName = std::string("Location ") + registers[i];
    field.ToolTip = field.AccessibleName;
    field.Place(240, 240 + static_cast<int>(i) * 450, 1800, 345);
  }
  Add(Command1, "Command1").Place(2400, 240, 1800, 420);
  Add(Command2, "Command2").Place(2400, 840, 1800, 420);
  Command2.Caption = "Command2";
  Timer1.IntervalMs = 1200;
  Timers = {&Timer1};
}

}  // namespace gainsmith
