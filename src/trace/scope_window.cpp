// Form5: its behaviour.
#include "trace/scope_window.h"

#include "platform/common_texts.h"
#include "trace/capture.h"
#include "trace/split_trace.h"

namespace gainsmith {
namespace {

// Trace times above this one, in units of 100 ms, have no spectrum.
constexpr int LongestSpectrumTime = 10;

}  // namespace

Form5::Form5(World& world, Link& link, ParameterStore& params, ShellState& shell, TraceState& trace)
    : Plot(ScopePlot, trace, link.LinkIdle, Combo1),
      world_(world),
      link_(link),
      params_(params),
      shell_(shell),
      trace_(trace) {
  BuildDesign();
  ResetDesign();
  ConnectEvents();
}

void Form5::ConnectEvents() {
  Plot.Notes = [this] { return RunNotes{{}, PeaksOf(trace_)}; };
  Command1.OnClick = [this] { Command1_Click(); };
  for (const Channel channel : {Current, Velocity, PositionError}) {
    Check1[channel].OnClick = [this, channel] { Check1_Click(channel); };
  }
  Check2.OnClick = [this] { Check2_Click(); };
  Timer1.OnTimer = [this] { Timer1_Timer(); };
  err.OnTimer = [this] { err_Timer(); };
}

void Form5::EnableChannels(bool enabled) {
  for (const Channel channel : {Current, Velocity, PositionError}) {
    Check1[channel].Enabled = enabled;
  }
  Combo1.Enabled = enabled;
  Label2.Enabled = enabled;
}

void Form5::EnableSetup(bool enabled) {
  EnableChannels(enabled);
  Check2.Enabled = enabled;
}

// --- Opening and closing.

void Form5::Form_Load() {
  LeftTwips = 3000;
  TopTwips = 2000;
  ResetDesign();
  TraceBlockFailed = false;
  StopRequested = false;
  for (TraceArray* trace : {&trace_.PRefTrace, &trace_.PBakTrace, &trace_.PErrTrace,
                            &trace_.IBakTrace, &trace_.VBakTrace}) {
    trace->fill(0);
  }
  link_.LinkIdle = false;
  link_.LoadFailed = false;
  shell_[OpenMark::Scope] = true;
  shell_.ChildWindowOpen = true;

  const ScopeRun run(*this);
  if (ReadEncoderCounts(run) && ChooseTraceKind(run)) link_.LinkIdle = true;
}

bool Form5::ReadEncoderCounts(const ScopeRun& run) {
  const Sent sent = link_.Read(run.Of(), Register::EncoderCounts);
  if (run.Closed()) return false;
  if (sent != Sent::Taken) {
    FailLoad();
    return false;
  }
  trace_.EncoderCounts = link_.Raw();
  params_[Slot::EncoderCounts] = trace_.EncoderCounts;
  return true;
}

bool Form5::ChooseTraceKind(const ScopeRun& run) {
  const Sent sent = link_.Write(run.Of(), Register::TraceKind, ThreeChannels);
  if (run.Closed()) return false;
  if (Stands(sent)) return true;
  link_.TellFailure(run.Of());
  FailLoad();
  return false;
}

void Form5::FailLoad() {
  link_.LoadFailed = true;
  err.Start();
}

void Form5::err_Timer() {
  err.Stop();
  if (link_.LoadFailed) {
    ReportLinkFailure(ScopeRun(*this));
  } else {
    Timer1.Start();
  }
}

bool Form5::Form_Unload() {
  if (!link_.LinkIdle) {
    if (Command1.Caption == StopCaption) {
      world_.ShowMessage({"Please click the Stop button first before you can close this screen",
                          MainTitle, MessageButtons::Ok, MessageIcon::Critical});
    }
    return false;
  }
  shell_[OpenMark::Scope] = false;
  shell_.ChildWindowOpen = false;
  return true;
}

void Form5::ReportLinkFailure(const ScopeRun& run) {
  link_.TellFailure(run.Of());
  if (run.Closed()) return;
  link_.LinkIdle = true;
  Timer1.Stop();
  world_.Unload(*this);
}

// --- Start and Stop.

void Form5::Command1_Click() {
  if (Command1.Caption == StartCaption) {
    StartScope();
  } else {
    StopScope();
  }
}

void Form5::StartScope() {
  ++starts_;
  const ScopeRun run(*this);
  Command1.Caption = StopCaption;
  EnableSetup(false);
  StopRequested = false;
  // It may run by the main window's command. No cycle may record before the trace time is written.
  Timer1.Stop();
  trace_.SetTraceTime(Combo1.ChosenData());
  const Sent sent = link_.Write(run.Of(), Register::TraceTime, trace_.SampleDivider,
                                {.Withdrawn = [&](int) { return run.Over(); }});
  if (run.Over()) return;
  if (sent == Sent::Lost) {
    ReportLinkFailure(run);
  } else if (!StopRequested) {
    Timer1.Start();
  }
}

void Form5::StopScope() {
  Command1.Caption = StartCaption;
  EnableSetup(true);
  StopRequested = true;
  Timer1.Stop();
}

// --- The capture cycle.

void Form5::Timer1_Timer() {
  if (link_.ErrandUnderWay()) return;
  const ScopeRun run(*this, Errand::Of::Tick);
  link_.LinkIdle = false;
  std::vector<float> words;
  if (Arm(run) && AwaitRecording(run) && Upload(run, words)) ShowRecording(words);
}

bool Form5::EndsCycle(const ScopeRun& run) {
  if (run.Closed()) return true;
  if (!StopRequested && !run.Over()) return false;
  if (StopRequested) Timer1.Stop();
  link_.LinkIdle = true;
  return true;
}

bool Form5::Arm(const ScopeRun& run) {
  const Sent sent = link_.Write(run.Of(), Register::ArmRecorder, ArmSamples,
                                {.Withdrawn = [&](int) { return run.Over(); }});
  if (sent == Sent::Lost && !run.Over()) {
    ReportLinkFailure(run);
    return false;
  }
  return !EndsCycle(run);
}

bool Form5::AwaitRecording(const ScopeRun& run) {
  const WaitResult waited =
      WaitForRecording(link_, run.Of(), ScopeWait([&] { return StopRequested || run.Over(); }));
  if (waited == WaitResult::Stopped || run.Over()) return !EndsCycle(run);
  if (waited != WaitResult::Ready) ReportLinkFailure(run);
  return waited == WaitResult::Ready;
}

bool Form5::Upload(const ScopeRun& run, std::vector<float>& words) {
  const UploadResult upload = UploadTrace(link_, run.Of(), Plot.Description.ChannelCount);
  if (run.Closed()) return false;
  TraceBlockFailed = upload == UploadResult::Failed;
  if (TraceBlockFailed) ReportLinkFailure(run);
  if (upload != UploadResult::Done) return false;
  // Taken before the wait, in which another handler may read something else.
  words = link_.ReplyValues;
  link_.WaitMs(link_.ReplyWaitMs());
  return !EndsCycle(run);
}

void Form5::ShowRecording(const std::vector<float>& words) {
  trace_.ShowRecordedChannels(Plot.Description.ChannelCount);
  SplitTrace(trace_, words, Plot.Description.ChannelCount);
  link_.LinkIdle = true;
  trace_.Show[Signal::IBak] = Check1[Current].Ticked;
  trace_.Show[Signal::VBak] = Check1[Velocity].Ticked;
  trace_.Show[Signal::PErr] = Check1[PositionError].Ticked;
  Plot.CaptureHaveData = true;
  Plot.ShowWhole();
}

// --- Channels and the spectrum.

void Form5::Check1_Click(Channel channel) {
  if (channel == Current) trace_.Show[Signal::IBak] = Check1[Current].Ticked;
  if (channel == Velocity) trace_.Show[Signal::VBak] = Check1[Velocity].Ticked;
  if (channel == PositionError) trace_.Show[Signal::PErr] = Check1[PositionError].Ticked;
  Plot.ShowWhole();
}

void Form5::Check2_Click() {
  if (!Check2.Ticked) {
    ShowTraces();
  } else if (Combo1.ChosenData() > LongestSpectrumTime) {
    world_.ShowMessage({"Please input a value of 100ms - 1s", "Invalid Value", MessageButtons::Ok,
                        MessageIcon::Critical});
    Check2.Ticked = false;
    ShowTraces();
  } else {
    ShowSpectrum();
  }
}

void Form5::ShowSpectrum() {
  EnableChannels(false);
  Command1.Enabled = false;
  Plot.FrequencyMode = true;
  FftInput = FftInputOf(trace_.VBakTrace);
  trace_.Spectrum = Fft128(FftInput);
  Plot.SetRightColumnsVisible(false);
  Plot.Form_Resize();
}

void Form5::ShowTraces() {
  EnableChannels(true);
  Command1.Enabled = true;
  Plot.FrequencyMode = false;
  Plot.SetRightColumnsVisible(true);
  Plot.ShowWhole();
}

}  // namespace gainsmith
