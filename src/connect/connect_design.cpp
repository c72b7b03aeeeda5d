// The design of Form2: controls, captions, places, tab order.
#include "connect/connect_window.h"

namespace gainsmith {

void Form2::Design() {
  constexpr int LeftTwipsOfLabels = 300;
  constexpr int LeftTwipsOfLists = 2700;
  constexpr int RowTwips = 480;
  constexpr int FirstRowTwips = 1020;

  Name = "Form2";
  Caption = "Connect to Drive";
  ClientWidthTwips = 5100;
  ClientHeightTwips = 3360;

  Add(Label3, "Label3").Caption =
      "Please select the right serial port to connect the drive to your computer";
  Label3.WordWrap = true;
  Label3.Place(LeftTwipsOfLabels, 240, 4500, 600);

  Add(Label1[PortList], "Label1(0)").Caption = "Choose Serial Port:";
  Add(Label1[BaudList], "Label1(1)").Caption = "Choose Baudrate:";
  Add(Label2, "Label2").Caption = "Device Number\uFF1A";

  const std::array<Label*, 3> labels{&Label1[PortList], &Label1[BaudList], &Label2};
  for (std::size_t i = 0; i < Combo1.size(); ++i) {
    const int top = FirstRowTwips + static_cast<int>(i) * RowTwips;
    labels[i]->Place(LeftTwipsOfLabels, top + 30, 2300, 300);
    ComboBox& list = Add(Combo1[i], "Combo1(" + std::to_string(i) + ")");
    list.Place(LeftTwipsOfLists, top, 2100, 360);
    list.AccessibleName = labels[i]->Caption;
    list.OnClick = [this, i] { Combo1_Click(i); };
  }

  Add(openPort, "openPort").Caption = "Open";
  openPort.Place(1620, 2640, 1500, 420);
  openPort.OnClick = [this] { openPort_Click(); };
  Add(Command1, "Command1").Caption = "Cancel";
  Command1.Place(3300, 2640, 1500, 420);
  Command1.Cancel = true;
  Command1.OnClick = [this] { Command1_Click(); };
}

}  // namespace gainsmith
