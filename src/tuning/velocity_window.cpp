// velocityModeTune: its behaviour.
#include "tuning/velocity_window.h"

#include <algorithm>
#include <string>

#include "platform/number_text.h"
#include "trace/capture.h"
#include "tuning/pulse_generator.h"

namespace gainsmith {
namespace {

constexpr float TwoChannels = 144;
constexpr float ArmSamples = ChannelSamples;
// The end of the plan that is not recorded any more.
constexpr double UnrecordedMs = 2500;
constexpr double LargestWord = 65535;
constexpr double LargestLength = 2147483647;
constexpr double LargestCount = 32767;

}  // namespace

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

  for (std::size_t i = 0; i < GainCount; ++i) {
    const std::optional<float> value = Run.LoadRead(Gains[i].Target);
    if (!value) return;
    GainCopies[i] = *value;
    params_[Gains[i].Slot] = *value;
    Text1[Gains[i].Text].Text = PlainText(*value);
  }
  if (!Run.LoadWrite(Register::VelocityCommand, 0)) return;
  for (const Field field : {TopSpeed, Acceleration, RunningTime, Interval, RepeatTimes}) {
    Text1[field].Text = PlainText(*RememberedOf(field));
  }
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

// --- The run button.

void velocityModeTune::ShowCaption(const char* caption) {
  Command1.Caption = caption;
  Run.ShowPointer();
}

void velocityModeTune::EnableMotionFields(bool enabled) {
  Combo1.Enabled = enabled;
  for (const Field field : {TopSpeed, Acceleration, RunningTime, Interval, RepeatTimes}) {
    Text1[field].Enabled = enabled;
  }
}

void velocityModeTune::Command1_Click() {
  const bool start = Run.StopRequested();
  if (start && !Run.MayStart()) return;
  const RunScheme::Click click(Run);
  const Stay stay(*this);
  VelocityTestMs = VelocityTestTime(static_cast<float>(Number(RunningTime)),
                                    static_cast<float>(Number(Interval)),
                                    static_cast<float>(Number(RepeatTimes)));
  Plot.CaptureHaveData = true;
  if (start) {
    StartTest(stay);
  } else {
    StopTest(stay);
  }
}

void velocityModeTune::StartTest(const Stay& stay) {
  ShowCaption(RunScheme::StopCaption);
  EnableMotionFields(false);
  if (!Run.Exchange(stay, Function::Read, Register::EncoderCounts, 1)) return;
  trace_.EncoderCounts = link_.Raw();
  params_[Slot::EncoderCounts] = trace_.EncoderCounts;

  RunScheme::Result result = WriteStartList(stay);
  if (result == RunScheme::Result::GoOn) result = Run.SendRunCommand(stay);
  if (result == RunScheme::Result::Stopped) link_.LinkIdle = true;
  // A refused field leaves the button at "Stop": that click is the way back to editing.
  if (result != RunScheme::Result::GoOn) return;

  Run.TestStartTick = world_.NowMs();
  readdata(stay);
  if (stay.Over() || trace_.TraceReadFailed) return;
  link_.LinkIdle = true;
  DataSource.Start();
}

RunScheme::Result velocityModeTune::WriteStartList(const Stay& stay) {
  const auto word = [](float value) { return StepValue{StepValue::Kind::Write, value}; };
  const auto count = [this](Field field, const char* fallback) {
    const double number = Number(field);
    return Checked(field, static_cast<float>(number), number > 0 && number <= LargestCount,
                   fallback);
  };
  const RunScheme::Step steps[] = {
      {Register::VelocityKpHigh, [&] { return GainIfChanged(0); }},
      {Register::VelocityKiHigh, [&] { return GainIfChanged(1); }},
      {Register::KaffHigh, [&] { return GainIfChanged(2); }},
      {Register::SpeedWord,
       [&] {
         const float speed =
             SpeedWord(Number(TopSpeed), trace_.EncoderCounts, VelocityUnits.SpeedDivisor);
         return Checked(TopSpeed, speed, speed > 0 && speed <= LargestWord, "100");
       }},
      {Register::AccelerationWord,
       [&] {
         const float accel = AccelWord(Number(Acceleration), trace_.EncoderCounts,
                                       VelocityUnits.AccelFirst, VelocityUnits.AccelSecond);
         return Checked(Acceleration, accel, accel > 1 && accel <= LargestWord, "10");
       }},
      {Register::LengthHigh,
       [&] {
         const double runningMs = Number(RunningTime);
         if (!(runningMs > 0 && runningMs <= LargestLength)) {
           return Checked(RunningTime, 0, false, "5000");
         }
         const LengthWords length = SplitLength(runningMs);
         trace_.ProfileDistHigh = length.High;
         trace_.ProfileDistLow = length.Low;
         return word(length.High);
       }},
      {Register::LengthLow, [&] { return word(trace_.ProfileDistLow); }},
      {Register::PauseWord, [&] { return count(Interval, "50"); }},
      {Register::RepeatCount, [&] { return count(RepeatTimes, "5"); }},
      {Register::TraceTime,
       [&] {
         trace_.SetTraceTime(Combo1.ChosenData());
         return word(trace_.SampleDivider);
       }},
      {Register::TraceKind, [&] { return word(TwoChannels); }},
      {Register::ArmRecorder, [&] { return word(ArmSamples); }},
  };
  return Run.WriteSteps(stay, steps);
}

RunScheme::StepValue velocityModeTune::GainIfChanged(std::size_t gain) {
  const auto value = static_cast<float>(Number(Gains[gain].Text));
  if (value == GainCopies[gain]) return {StepValue::Kind::NothingToWrite, 0};
  if (!PackWord(value)) {
    const std::string& caption = Label1[Gains[gain].Text].Caption;
    SayInvalidValue((caption + " the drive takes a value of 0-65535. Nothing was sent.").c_str());
    return {StepValue::Kind::Refused, 0};
  }
  GainCopies[gain] = value;
  params_[Gains[gain].Slot] = value;
  return {StepValue::Kind::Write, value};
}

RunScheme::StepValue velocityModeTune::Checked(Field field, float word, bool good,
                                               const char* fallback) {
  if (good) return {StepValue::Kind::Write, word};
  Text1[field].Text = fallback;
  SayInvalidValue("Please input a value of 0-65535");
  return {StepValue::Kind::Refused, 0};
}

void velocityModeTune::SayInvalidValue(const char* text) {
  world_.ShowMessage({text, "Invalid Value", MessageButtons::Ok, MessageIcon::Critical});
}

void velocityModeTune::StopTest(const Stay& stay) {
  DataSource.Stop();
  ShowCaption(RunScheme::StartCaption);
  EnableMotionFields(true);
  if (!Run.StopTest(stay)) return;
  if (Run.TraceUploaded) return;
  readdata(stay);
  if (!stay.Over()) Run.TraceUploaded = false;
}

// --- Recordings.

void velocityModeTune::readdata(const Stay& stay) {
  const RunScheme::CaptureEnd end =
      Run.Capture(stay, TestWait(trace_), Plot.Description.ChannelCount);
  if (end == RunScheme::CaptureEnd::Failed) trace_.TraceReadFailed = true;
  if (stay.Over()) return;
  if (end == RunScheme::CaptureEnd::Uploaded) {
    ShowRecording();
    Run.TraceUploaded = true;
  }
  if (Run.StopRequested() && Run.StopTest(stay)) link_.LinkIdle = true;
}

void velocityModeTune::ShowRecording() {
  trace_.ShowRecordedChannels(Plot.Description.ChannelCount);
  SplitTrace(trace_, link_.ReplyValues, Plot.Description.ChannelCount);
  trace_.ShowIBak = Check1[IBak].Ticked;
  trace_.ShowVBak = Check1[VBak].Ticked;
  Plot.SetAxisLabels();
  Plot.Form_Resize();
}

void velocityModeTune::DataSource_Timer() {
  if (!Run.MayTick()) return;
  if (Run.ElapsedMs() > static_cast<double>(VelocityTestMs) - UnrecordedMs) {
    DataSource.Stop();
    return;
  }
  const Stay stay(*this);
  link_.LinkIdle = false;
  if (!Run.Write(stay, Register::ArmRecorder, ArmSamples)) return;
  const RunScheme::CaptureEnd end =
      Run.Capture(stay, AnyAnswerWait(), Plot.Description.ChannelCount);
  if (stay.Over()) return;
  link_.LinkIdle = true;
  if (end == RunScheme::CaptureEnd::Uploaded) ShowRecording();
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
  GainCopies[gain] = value;
  params_[slot] = value;
  Run.Write(Stay(*this), target, value);
}

void velocityModeTune::Check1_Click(Channel channel) {
  if (channel == IBak) trace_.ShowIBak = Check1[IBak].Ticked;
  if (channel == VBak) trace_.ShowVBak = Check1[VBak].Ticked;
  Plot.SetAxisLabels();
  Plot.Form_Resize();
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
