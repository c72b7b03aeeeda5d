// velocityModeTune: the run button, the tick and the recordings.
#include <string>

#include "platform/number_text.h"
#include "tuning/pulse_generator.h"
#include "tuning/velocity_window.h"

namespace gainsmith {
namespace {

// The end of the plan that is not recorded any more.
constexpr double UnrecordedMs = 2500;

}  // namespace

void velocityModeTune::ShowCaption(const char* caption) {
  Command1.Caption = caption;
  Command1.ToolTip.clear();
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
  const RunScheme::MotorErrand motor(Run);
  const Errand& errand = motor.Own();
  VelocityTestMs = VelocityTestTime(static_cast<float>(Number(RunningTime)),
                                    static_cast<float>(Number(Interval)),
                                    static_cast<float>(Number(RepeatTimes)));
  Plot.CaptureHaveData = true;
  if (start) {
    StartTest(errand);
  } else {
    StopTest(errand);
  }
}

void velocityModeTune::StartTest(const Errand& errand) {
  ShowCaption(RunScheme::StopCaption);
  EnableMotionFields(false);
  sentGains_.clear();
  for (const Field field : {TopSpeed, Acceleration, RunningTime, Interval, RepeatTimes}) {
    motion_[field] = Number(field);
  }
  if (!Run.Exchange(errand, Function::Read, Register::EncoderCounts, 1)) return;
  trace_.EncoderCounts = link_.Raw();
  params_[Slot::EncoderCounts] = trace_.EncoderCounts;
  ExplainMotion(trace_.EncoderCounts);

  RunScheme::Result result = WriteStartList(errand);
  if (result == RunScheme::Result::GoOn) result = Run.SendRunCommand(errand);
  if (result == RunScheme::Result::Stopped) link_.LinkIdle = true;
  // A refused field leaves the button at "Stop": that click is the way back to editing.
  if (result != RunScheme::Result::GoOn) return;

  Run.TestStartTick = world_.NowMs();
  readdata(errand);
  if (errand.Over() || trace_.TraceReadFailed) return;
  link_.LinkIdle = true;
  DataSource.Start();
}

RunScheme::Result velocityModeTune::WriteStartList(const Errand& errand) {
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
         if (!PackWord(length.Low)) {
           SayInvalidValue(
               "This running time does not fit the drive's two words. Use a whole "
               "number of milliseconds. The test was not started.");
           return StepValue{StepValue::Kind::Refused, 0};
         }
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
  return Run.WriteSteps(errand, steps);
}

RunScheme::StepValue velocityModeTune::GainIfChanged(std::size_t gain) {
  const auto value = static_cast<float>(Number(Gains[gain].Text));
  if (value == GainCopies[gain]) return {StepValue::Kind::NothingToWrite, 0};
  if (!PackWord(value)) {
    SayGainRefused(gain);
    return {StepValue::Kind::Refused, 0};
  }
  GainCopies[gain] = value;
  params_[Gains[gain].Slot] = value;
  sentGains_.push_back(gain);
  return {StepValue::Kind::Write, value};
}

RunScheme::StepValue velocityModeTune::Checked(Field field, float word, bool good,
                                               const char* fallback) {
  if (good) return {StepValue::Kind::Write, word};
  Text1[field].Text = fallback;
  SayInvalidValue("Please input a value of 0-65535");
  return {StepValue::Kind::Refused, 0};
}

void velocityModeTune::SayGainRefused(std::size_t gain) {
  std::string sent;
  for (const std::size_t earlier : sentGains_) {
    sent += (sent.empty() ? "" : " ") + Label1[Gains[earlier].Text].Caption;
  }
  const std::string& caption = Label1[Gains[gain].Text].Caption;
  SayInvalidValue(
      caption +
      " the drive takes a value of 0-65535. It was not sent, and the test was "
      "not started. " +
      (sent.empty() ? "Nothing else was sent." : "Sent before it, and in the drive: " + sent));
}

void velocityModeTune::SayInvalidValue(const std::string& text) {
  world_.ShowMessage({text, "Invalid Value", MessageButtons::Ok, MessageIcon::Critical});
}

void velocityModeTune::StopTest(const Errand& errand) {
  DataSource.Stop();
  ShowCaption(RunScheme::StartCaption);
  EnableMotionFields(true);
  if (!StopVelocityTest(errand)) return;
  Run.ReadAfterStop(errand, [this](const Errand& own) { readdata(own); });
}

// --- Recordings.

void velocityModeTune::readdata(const Errand& errand) {
  const int channels = Plot.Description.ChannelCount;
  const auto show = [this] { ShowRecording(); };
  if (Run.TakeFirstRecording(errand, channels, show) == RunScheme::CaptureEnd::Closed) return;
  if (Run.StopRequested() && StopVelocityTest(errand)) link_.LinkIdle = true;
}

void velocityModeTune::ShowRecording() {
  Run.SplitRecording(Plot.Description.ChannelCount, Check1[IBak], Check1[VBak]);
  Plot.ShowWhole();
}

void velocityModeTune::DataSource_Timer() {
  if (link_.ErrandUnderWay()) return;
  if (Run.ElapsedMs() > static_cast<double>(VelocityTestMs) - UnrecordedMs) {
    DataSource.Stop();
    Command1.ToolTip = RunScheme::PlanOverTip;
    return;
  }
  const RunScheme::Tick tick(Run);
  const Errand& errand = tick.Own();
  link_.LinkIdle = false;
  if (!Run.Write(errand, Register::ArmRecorder, ArmSamples)) return;
  const RunScheme::CaptureEnd end =
      Run.Capture(errand, AnyAnswerWait(), Plot.Description.ChannelCount);
  if (errand.Over()) return;
  link_.LinkIdle = true;
  if (end == RunScheme::CaptureEnd::Uploaded) ShowRecording();
}

}  // namespace gainsmith
