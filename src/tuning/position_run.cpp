// Form3: the run button, the tick and the recordings.
#include "tuning/position_window.h"
#include "tuning/pulse_generator.h"

namespace gainsmith {
namespace {

constexpr Colour StoppedColour = 0x00FF00;
constexpr Colour RunningColour = 0x0000FF;
// The drive is given that time before each stop word.
constexpr int BeforeStopMs = 200;

}  // namespace

void Form3::ShowCaption(const char* caption) {
  for (Button& button : Command1) {
    button.Caption = caption;
    button.ToolTip.clear();
  }
  Run.ShowPointer();
}

void Form3::EnableFields(bool enabled) {
  Combo1.Enabled = enabled;
  Text5.Enabled = enabled;
  for (std::size_t i = 0; i < FieldCount; ++i) {
    if (i != LowKvff && i != LowKaff) Text1[i].Enabled = enabled;
  }
  for (const Channel channel : {IBak, VBak, PErr}) Check1[channel].Enabled = enabled;
}

// All four run buttons alike; the caption that counts is that of the one in sight.
void Form3::Command1_Click() {
  const bool start = Run.StopRequested();
  if (start && (!Run.MayStart() || JogHeld())) return;
  const RunScheme::MotorErrand motor(Run);
  const Errand& errand = motor.Own();
  Run.TraceBlockFailed = false;
  if (start) {
    const Entries entries = TakeEntries();
    if (!ValidateFields(entries) || !ValidateWords(entries)) return;
    entries_ = entries;
  }
  trace_.ClosingPositionWindow = false;
  PositionTestMs = PlanMs(entries_);
  Plot.CaptureHaveData = true;
  if (start) {
    StartTest(errand);
  } else {
    StopTest(errand);
  }
}

float Form3::PlanMs(const Entries& entries) const {
  const double counts = trace_.EncoderCounts;
  const float seconds = PositionTestTime(static_cast<float>(entries.Text1[Velocity] / 60),
                                         static_cast<float>(entries.Text1[Acceleration]),
                                         static_cast<float>(entries.Text1[Distance] / counts),
                                         static_cast<float>(entries.Text1[RepeatTimes]),
                                         static_cast<float>(entries.Text1[Interval] / 1000));
  return seconds * 1000;
}

void Form3::StartTest(const Errand& errand) {
  link_.LinkIdle = false;
  ShowRunColour(StoppedColour);
  if (!WriteChangedGains(errand, entries_)) return;
  ShowCaption(RunScheme::StopCaption);
  ShowRunColour(RunningColour);
  EnableFields(false);
  Plot.Picture1.Cls();

  RunScheme::Result result = WriteStartList(errand);
  if (result == RunScheme::Result::GoOn) result = Run.SendRunCommand(errand);
  if (result == RunScheme::Result::Stopped) ShowStopped();
  if (result == RunScheme::Result::Jogged) LeaveToJog();
  if (result != RunScheme::Result::GoOn) return;

  Run.TestStartTick = world_.NowMs();
  readdata(errand);
  if (errand.Over() || trace_.TraceReadFailed) return;
  if (Run.Jogged(errand)) return LeaveToJog();
  link_.LinkIdle = true;
  DataSource.Start();
}

RunScheme::Result Form3::WriteStartList(const Errand& errand) {
  const auto& entered = entries_.Text1;
  const auto word = [](float value) {
    return RunScheme::StepValue{RunScheme::StepValue::Kind::Write, value};
  };
  const auto [speedDivisor, accelFirst, accelSecond] = PositionUnits;
  trace_.ProfileSpeed = SpeedWord(entered[Velocity], trace_.EncoderCounts, speedDivisor);
  trace_.ProfileAccel =
      AccelWord(entered[Acceleration], trace_.EncoderCounts, accelFirst, accelSecond);
  const LengthWords length = SplitLength(entered[Distance]);
  trace_.ProfileDistHigh = length.High;
  trace_.ProfileDistLow = length.Low;
  trace_.ProfileDwell = static_cast<float>(entered[Interval] * 2);

  const RunScheme::Step steps[] = {
      {Register::EncoderCounts,
       [&] {
         params_[Slot::EncoderCounts] = trace_.EncoderCounts;
         return word(trace_.EncoderCounts);
       }},
      {Register::SpeedWord, [&] { return word(trace_.ProfileSpeed); }},
      {Register::AccelerationWord, [&] { return word(trace_.ProfileAccel); }},
      {Register::LengthHigh, [&] { return word(trace_.ProfileDistHigh); }},
      {Register::LengthLow, [&] { return word(trace_.ProfileDistLow); }},
      {Register::PauseWord, [&] { return word(trace_.ProfileDwell); }},
      {Register::RepeatCount, [&] { return word(static_cast<float>(entered[RepeatTimes])); }},
      {Register::TraceTime,
       [&] {
         trace_.SetTraceTime(Combo1.ChosenData());
         return word(trace_.SampleDivider);
       }},
      {Register::TraceKind, [&] { return word(ThreeChannels); }},
      {Register::ArmRecorder, [&] { return word(ArmSamples); }},
  };
  return Run.WriteSteps(errand, steps);
}

void Form3::ShowStopped() {
  ShowRunColour(StoppedColour);
  link_.LinkIdle = true;
}

void Form3::ShowStoppable() {
  DataSource.Stop();
  ShowCaption(RunScheme::StartCaption);
  ShowRunColour(StoppedColour);
  EnableFields(true);
}

// The stop word would stand against the held button.
void Form3::LeaveToJog() {
  constexpr int LookMs = 50;
  ShowStoppable();
  link_.LinkIdle = true;
  while (JogHeld() && !world_.Ended()) link_.WaitMs(LookMs);
  const Errand errand(link_, *this);
  StopPositionTest(errand);
}

void Form3::StopTest(const Errand& errand) {
  ShowStoppable();
  if (!StopPositionTest(errand, BeforeStopMs)) return;
  link_.LinkIdle = true;
  Run.ReadAfterStop(errand, [this](const Errand& own) { readdata(own); });
}

void Form3::readdata(const Errand& errand) {
  const int channels = Plot.Description.ChannelCount;
  const RunScheme::CaptureEnd end =
      Run.TakeFirstRecording(errand, channels, [this] { ShowRecording(); });
  if (end == RunScheme::CaptureEnd::Closed) return;
  if (!Run.StopRequested() || !StopPositionTest(errand)) return;
  Command1[CurveStart].Caption = RunScheme::StartCaption;
  link_.LinkIdle = true;
}

void Form3::ShowRecording() {
  Run.SplitRecording(Plot.Description.ChannelCount, Check1[IBak], Check1[VBak]);
  if (!Check1[PErr].Ticked || Check1[PBak].Ticked || Check1[PRef].Ticked) {
    Check1[PErr].Ticked = true;
    Check1[PBak].Ticked = false;
    Check1[PRef].Ticked = false;
    Plot.PickPositionSource();
  }
  Plot.ShowWhole();
}

bool Form3::StoppedInTick(const Errand& errand) {
  if (!Run.StopRequested()) return false;
  if (!StopPositionTest(errand)) return true;
  DataSource.Stop();
  ShowStopped();
  return true;
}

void Form3::DataSource_Timer() {
  if (link_.ErrandUnderWay()) return;
  const RunScheme::Tick tick(Run);
  const Errand& errand = tick.Own();
  if (StoppedInTick(errand)) return;
  link_.LinkIdle = false;
  if (!Run.Write(errand, Register::ArmRecorder, ArmSamples) || StoppedInTick(errand)) return;

  RecordingWait wait = TestWait(trace_);
  wait.StopAfter = [this] { return Run.StopRequested(); };
  const RunScheme::CaptureEnd end = Run.Capture(errand, wait, Plot.Description.ChannelCount);
  if (errand.Over()) return;
  if (end == RunScheme::CaptureEnd::Stopped) StoppedInTick(errand);
  if (end != RunScheme::CaptureEnd::Uploaded) return;

  if (StoppedInTick(errand)) return;
  if (Run.ElapsedMs() > static_cast<double>(PositionTestMs)) {
    DataSource.Stop();
    for (Button& button : Command1) button.ToolTip = RunScheme::PlanOverTip;
    return;
  }
  ShowRecording();
}

}  // namespace gainsmith
