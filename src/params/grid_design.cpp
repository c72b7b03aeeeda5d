// The design of Form8: controls, captions, places, tab order.
#include "params/grid_window.h"

namespace gainsmith {

void Form8::Design() {
  constexpr int MarginTwips = 300;
  constexpr int InnerWidthTwips = 10920;
  constexpr int ButtonRowTwips = 6360;

  Name = "Form8";
  Caption = "Parameters";
  ClientWidthTwips = InnerWidthTwips + 2 * MarginTwips;
  ClientHeightTwips = 7080;

  Add(Label1, "Label1").Caption = "Read and Write Parameters to Driver";
  Label1.Heading = true;
  Label1.Place(MarginTwips, 180, InnerWidthTwips, 420);

  Add(MSFlexGrid1, "MSFlexGrid1").AccessibleName = "Parameters";
  MSFlexGrid1.Place(MarginTwips, 720, InnerWidthTwips, 5460);

  constexpr std::array<const char*, 6> names{"readdata", "writedata", "EEProm",
                                             "Command1", "save",      "Command2"};
  constexpr std::array<const char*, 6> captions{" Read RAM", "Write RAM",    "Write EEprom",
                                                "Open File", "Save To File", "Exit"};
  constexpr int StepTwips = 1836;
  for (std::size_t i = 0; i < names.size(); ++i) {
    Button& button = Add(*Buttons()[i], names[i]);
    button.Caption = captions[i];
    button.Place(MarginTwips + static_cast<int>(i) * StepTwips, ButtonRowTwips, 1740, 420);
  }

  Add(Frame1, "Frame1").Border = false;
  Frame1.Place(MarginTwips, ButtonRowTwips, InnerWidthTwips, 420);
  Add(ProgressBar1, "ProgressBar1", &Frame1).AccessibleName = "Progress";
  ProgressBar1.Place(0, 60, 9900, 300);
  Add(Label3, "Label3", &Frame1).Place(10080, 60, 780, 300);

  Timers = {&Timer1, &Timer2, &Timer3, &dele};
  for (Timer* timer : Timers) timer->IntervalMs = 10;
  Timer2.IntervalMs = 5;
  readdata.OnClick = [this] { readdata_Click(); };
  writedata.OnClick = [this] { writedata_Click(); };
  EEProm.OnClick = [this] { EEProm_Click(); };
  Command1.OnClick = [this] { Command1_Click(); };
  save.OnClick = [this] { save_Click(); };
  Command2.OnClick = [this] { Command2_Click(); };
  Timer1.OnTimer = [this] { Timer1_Timer(); };
  Timer2.OnTimer = [this] { Timer2_Timer(); };
  Timer3.OnTimer = [this] { Timer3_Timer(); };
  dele.OnTimer = [this] { dele_Timer(); };
}

}  // namespace gainsmith
