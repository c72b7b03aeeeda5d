// Form3: opening, closing, channels and colours.
#include "tuning/position_window.h"

#include <algorithm>
#include <utility>

#include "platform/common_texts.h"
#include "platform/number_text.h"
#include "trace/capture.h"

namespace gainsmith {

Form3::Form3(World& world, Link& link, ParameterStore& params, ShellState& shell, TraceState& trace,
             Form9& progress)
    : Plot(PositionPlot, trace, link.LinkIdle, Combo1, &StatusBar1),
      Run({world, link, trace, *this, Command1[MainStart], DataSource, err,
           Register::PositionCommand}),
      world_(world),
      link_(link),
      params_(params),
      shell_(shell),
      trace_(trace),
      progress_(progress) {
  BuildDesign();
  ResetDesign();
  ConnectEvents();
}

void Form3::ConnectEvents() {
  Plot.Notes = [this] { return NotesOfRun(); };
  for (Button& button : Command1) button.OnClick = [this] { Command1_Click(); };
  DataSource.OnTimer = [this] { DataSource_Timer(); };
  err.OnTimer = [this] { Run.err_Timer(); };
  for (std::size_t i = 0; i < ChannelCount; ++i) {
    Check1[i].OnClick = [this, i] { Check1_Click(static_cast<Channel>(i)); };
    Command4[i].OnClick = [this, i] { Command4_Click(i); };
  }
  Text2.OnKeyPress = [this](int key) { return Text2_KeyPress(key); };
  Text3.OnKeyPress = [this](int key) { return Text3_KeyPress(key); };
  Command2.OnPress = [this] { Command2_MouseDown(); };
  Command2.OnRelease = [this] { Command2_MouseUp(); };
  Command3.OnPress = [this] { Command3_MouseDown(); };
  Command3.OnRelease = [this] { Command3_MouseUp(); };
}

void Form3::Form_Load() {
  ResetDesign();
  if (trace_.ClosingPositionWindow) {
    world_.Unload(*this);
    return;
  }
  LeftTwips = 3000;
  TopTwips = 2000;
  Run.Open();
  jogHeld_.fill(false);
  JogState.fill(JogSettled);
  shell_[OpenMark::PositionLoop] = true;
  shell_.ChildWindowOpen = true;
  FillTraceTimes(Combo1);
  const Errand errand(link_, *this);
  if (!ReadGains(errand)) return;
  // Whatever a former test or jog left running is ended.
  if (!Run.LoadWrite(errand, Register::PositionCommand, 0)) return;
  for (const Field field : {Velocity, Acceleration, Distance, Interval}) {
    Text1[field].Text = PlainText(*RememberedOf(field));
  }
  link_.LinkIdle = true;
}

// A test under way must be stopped first. Otherwise the window goes, even where a Stop is still on
// its way to the drive: that one comes to its end behind the closed window.
bool Form3::Form_Unload() {
  constexpr int UploadEndMs = 200;
  trace_.ClosingPositionWindow = true;
  link_.WaitMs(UploadEndMs);
  trace_.PositionColours = DefaultTuningColours();
  if (!link_.LinkIdle && !Run.StopRequested()) {
    world_.ShowMessage({"Please click Stop button first before you can close it", MainTitle,
                        MessageButtons::Ok, MessageIcon::Information});
    return false;
  }
  shell_[OpenMark::PositionLoop] = false;
  shell_.ChildWindowOpen = false;
  link_.LinkIdle = true;
  return true;
}

void Form3::Check1_Click(Channel channel) {
  constexpr std::pair<Channel, Signal> channelsWithData[] = {{IBak, Signal::IBak},
                                                             {VBak, Signal::VBak},
                                                             {PErr, Signal::PErr},
                                                             {PBak, Signal::PBak},
                                                             {PRef, Signal::PRef}};
  const auto* const live =
      std::ranges::find(channelsWithData, channel, &std::pair<Channel, Signal>::first);
  if (live == std::end(channelsWithData)) return;
  trace_.Show[live->second] = Check1[channel].Ticked;
  if (!Plot.CaptureHaveData) return;
  Plot.PickPositionSource();
  Plot.ShowWhole();
}

void Form3::Command4_Click(std::size_t index) {
  constexpr Signal SignalOfButton[] = {Signal::PErr, Signal::PBak, Signal::PRef,
                                       Signal::VErr, Signal::VBak, Signal::VRef,
                                       Signal::IErr, Signal::IBak, Signal::IRef};
  const std::optional<Colour> chosen = world_.AskColour(Command4[index].BackColor);
  if (!chosen) return;
  Command4[index].BackColor = *chosen;
  trace_.PositionColours[SignalOfButton[index]] = *chosen;
  Plot.Form_Resize();
}

}  // namespace gainsmith
