// velocityModeTune: opening, closing, fields, channels and colours.
#include "tuning/velocity_window.h"

#include <algorithm>

#include "platform/number_text.h"
#include "trace/capture.h"

namespace gainsmith {

const std::array<velocityModeTune::Gain, velocityModeTune::GainCount> velocityModeTune::Gains{{
    {Vp, Register::VelocityKpHigh, Slot::VelocityKpHigh, 1},
    {Vi, Register::VelocityKiHigh, Slot::VelocityKiHigh, 0},
    {Kaff, Register::KaffHigh, Slot::KaffHigh, 0},
}};

velocityModeTune::velocityModeTune(World& world, Link& link, ParameterStore& params,
                                   ShellState& shell, TraceState& trace)
    : Plot(VelocityPlot, trace, link.LinkIdle, Combo1, &StatusBar1),
      Run({world, link, trace, *this, Command1, DataSource, err, Register::VelocityCommand}),
      world_(world),
      link_(link),
      params_(params),
      shell_(shell),
      trace_(trace) {
  BuildDesign();
  ResetDesign();
  ConnectEvents();
}

void velocityModeTune::ConnectEvents() {
  Plot.Notes = [this] { return NotesOfRun(); };
  Command1.OnClick = [this] { Command1_Click(); };
  DataSource.OnTimer = [this] { DataSource_Timer(); };
  err.OnTimer = [this] { Run.err_Timer(); };
  for (std::size_t i = 0; i < FieldCount; ++i) {
    const auto field = static_cast<Field>(i);
    Text1[i].OnKeyPress = [this, field](int key) { return Text1_KeyPress(field, key); };
  }
  for (std::size_t i = 0; i < ChannelCount; ++i) {
    const auto channel = static_cast<Channel>(i);
    Check1[i].OnClick = [this, channel] { Check1_Click(channel); };
    Command4[i].OnClick = [this, channel] { Command4_Click(channel); };
  }
}

double velocityModeTune::Number(Field field) const { return LeadingNumber(Text1[field].Text); }

float* velocityModeTune::RememberedOf(Field field) {
  switch (field) {
    case TopSpeed:
      return &Remembered.TopSpeed;
    case Acceleration:
      return &Remembered.Acceleration;
    case RunningTime:
      return &Remembered.RunningTimeMs;
    case Interval:
      return &Remembered.IntervalMs;
    case RepeatTimes:
      return &Remembered.RepeatTimes;
    default:
      return nullptr;
  }
}

// --- Opening and closing.

void velocityModeTune::Form_Load() {
  LeftTwips = 3000;
  TopTwips = 0;
  ResetDesign();
  Run.Open();
  shell_[OpenMark::VelocityLoop] = true;
  shell_.ChildWindowOpen = true;
  FillTraceTimes(Combo1);

  const Errand errand(link_, *this);
  for (std::size_t i = 0; i < GainCount; ++i) {
    const std::optional<float> value = Run.LoadRead(errand, Gains[i].Target);
    if (!value) return;
    GainCopies[i] = *value;
    params_[Gains[i].Slot] = *value;
    Text1[Gains[i].Text].Text = PlainText(*value);
  }
  if (!Run.LoadWrite(errand, Register::VelocityCommand, 0)) return;
  for (const Field field : {TopSpeed, Acceleration, RunningTime, Interval, RepeatTimes}) {
    Text1[field].Text = PlainText(*RememberedOf(field));
  }
  ExplainMotion(params_[Slot::EncoderCounts]);
  link_.LinkIdle = true;
}

// Writes nothing to the drive: a test that runs goes on to its end alone.
bool velocityModeTune::Form_Unload() {
  trace_.VelocityColours = DefaultTuningColours();
  if (!link_.LinkIdle) return false;
  shell_[OpenMark::VelocityLoop] = false;
  shell_.ChildWindowOpen = false;
  return true;
}

// --- Fields, channels and colours.

bool velocityModeTune::Text1_KeyPress(Field field, int key) {
  if (key == KeyBackspace) return true;
  if (key != KeyEnter) return key >= '.' && key != '/' && key <= '9';
  if (float* remembered = RememberedOf(field)) {
    *remembered = static_cast<float>(Number(field));
    return false;
  }
  for (std::size_t i = 0; i < GainCount; ++i) {
    if (Gains[i].Text == field) WriteGainNow(i);
  }
  return false;
}

void velocityModeTune::WriteGainNow(std::size_t gain) {
  const auto& [field, target, slot, smallest] = Gains[gain];
  const double number = Number(field);
  float value = static_cast<float>(std::min(number, LargestWord));
  if (number < 0 || number == 0) value = smallest;
  Text1[field].Text = PlainText(value);
  const Commit commit(Text1[field]);
  // Not where a Start has sent another value since: the text under way is no longer the newest.
  if (commit.Repeats() && GainCopies[gain] == value) return;
  GainCopies[gain] = value;
  params_[slot] = value;
  Run.Write(Errand(link_, *this), target, value);
}

RunNotes velocityModeTune::NotesOfRun() const {
  RunNotes notes;
  for (std::size_t i = 0; i < GainCount; ++i) {
    notes.Settings.push_back({Label1[Gains[i].Text].Caption, PlainText(GainCopies[i]), ""});
  }
  for (const Field field : {TopSpeed, Acceleration, RunningTime, Interval, RepeatTimes}) {
    const auto value = static_cast<float>(motion_[field]);
    notes.Settings.push_back({Label1[field].Caption, PlainText(value), ""});
  }
  notes.Score = RunScoreOf(trace_, motion_[TopSpeed], motion_[RunningTime]);
  return notes;
}

void velocityModeTune::Check1_Click(Channel channel) {
  if (channel == IBak) trace_.Show[Signal::IBak] = Check1[IBak].Ticked;
  if (channel == VBak) trace_.Show[Signal::VBak] = Check1[VBak].Ticked;
  Plot.ShowWhole();
}

void velocityModeTune::Command4_Click(Channel channel) {
  constexpr Signal Signals[] = {Signal::IErr, Signal::IBak, Signal::IRef,
                                Signal::VErr, Signal::VBak, Signal::VRef};
  const std::optional<Colour> chosen = world_.AskColour(Command4[channel].BackColor);
  if (!chosen) return;
  Command4[channel].BackColor = *chosen;
  trace_.VelocityColours[Signals[channel]] = *chosen;
  Plot.Form_Resize();
}

}  // namespace gainsmith
