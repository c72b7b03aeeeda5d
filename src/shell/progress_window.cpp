// Form9: one run of its bar.
#include "shell/progress_window.h"

#include "platform/number_text.h"

namespace gainsmith {

constexpr int LastStep = 2500;
constexpr int StepsPerPercent = 25;

Form9::Form9(World& world, const ShellState& shell) : world_(world), shell_(shell) {
  Name = "Form9";
  Caption = "Form9";
  ClientWidthTwips = 4800;
  ClientHeightTwips = 1050;
  Add(ProgressBar1, "ProgressBar1").Place(300, 300, 3450, 300);
  ProgressBar1.AccessibleName = "Progress";
  Add(Label1, "Label1").Place(3900, 300, 750, 300);
  Timers = {&Timer1};
  Timer1.IntervalMs = 10;
  Timer1.OnTimer = [this] { Timer1_Timer(); };
}

void Form9::Form_Load() {
  LeftTwips = static_cast<int>(shell_.QuarterScreenWidth) + ClientWidthTwips / 4;
  TopTwips = static_cast<int>(shell_.QuarterScreenHeight) + ClientHeightTwips / 4;
  ProgressBar1.Visible = false;
  Label1.Caption.clear();
  Timer1.Start();
}

void Form9::Timer1_Timer() {
  ProgressBar1.Min = 0;
  ProgressBar1.Max = LastStep;
  ProgressBar1.Visible = true;
  Label1.Caption = "1";
  ProgressBar1.Value = ProgressBar1.Min;
  for (int step = 0; step <= LastStep; ++step) {
    ProgressBar1.Value = step;
    const std::string percent =
        FixedText(RoundHalfToEven(static_cast<double>(step) / StepsPerPercent), 0) + "%";
    if (percent == Label1.Caption) continue;
    Label1.Caption = percent;
    world_.Repaint(*this);
  }
  Timer1.Stop();
  world_.Unload(*this);
}

}  // namespace gainsmith
