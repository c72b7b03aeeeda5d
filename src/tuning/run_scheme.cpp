// RunScheme: clicks, the guarded list of writes, and recordings.
#include "tuning/run_scheme.h"

#include "trace/split_trace.h"

namespace gainsmith {
namespace {

constexpr float RunWord = 2;

}  // namespace

bool RunScheme::MayStart() const {
  return !p_.Link.MotorErrandUnderWay() && !tickOfTest_ && !p_.Window.Unloading &&
         !p_.Link.LoadFailed;
}

double RunScheme::ElapsedMs() const {
  return static_cast<double>(p_.World.NowMs() - TestStartTick);
}

void RunScheme::Open() {
  TraceUploaded = false;
  TraceBlockFailed = false;
  reported_ = false;
  p_.Window.Pointer = MousePointer::Default;
  p_.Link.LinkIdle = false;
  p_.Link.LoadFailed = false;
  p_.Trace.TraceReadFailed = false;
}

std::optional<float> RunScheme::LoadRead(const Errand& errand, Register reg) {
  const Sent sent = p_.Link.Read(errand, reg);
  if (sent == Sent::Taken) return static_cast<float>(p_.Link.Raw());
  if (sent == Sent::Lost) FailLoad();
  return std::nullopt;
}

bool RunScheme::LoadWrite(const Errand& errand, Register reg, float value) {
  const Sent sent = p_.Link.Write(errand, reg, value);
  if (sent == Sent::Lost) FailLoad();
  return Stands(sent);
}

void RunScheme::FailLoad() {
  p_.Link.LoadFailed = true;
  p_.Err.Start();
}

void RunScheme::err_Timer() {
  p_.Err.Stop();
  if (p_.Link.LoadFailed) ReportLinkFailure(Errand(p_.Link, p_.Window));
}

RunScheme::MotorErrand::MotorErrand(RunScheme& scheme)
    : pointer_{scheme}, errand_(scheme.p_.Link, scheme.p_.Window, Errand::Of::Motor) {
  scheme.ShowPointer();
}

RunScheme::Tick::Tick(RunScheme& scheme)
    : pointer_{scheme},
      errand_(scheme.p_.Link, scheme.p_.Window, Errand::Of::Tick),
      ofTest_(scheme.tickOfTest_, !scheme.StopRequested()) {}

void RunScheme::ShowPointer() {
  const bool startWaits = StopRequested() && !p_.Window.Loading && !MayStart();
  p_.Window.Pointer = startWaits ? MousePointer::Hourglass : MousePointer::Default;
}

RunScheme::Result RunScheme::WriteSteps(const Errand& errand, std::span<const Step> steps) {
  for (const Step& step : steps) {
    if (Jogged(errand)) return Result::Jogged;
    const StepValue value = step.Value();
    if (value.What == StepValue::Kind::Refused) return Result::Refused;
    if (value.What == StepValue::Kind::Write && !Write(errand, step.Target, value.Word)) {
      return Result::Closed;
    }
    if (StopRequested()) return StopTest(errand) ? Result::Stopped : Result::Closed;
  }
  return Result::GoOn;
}

RunScheme::Result RunScheme::SendRunCommand(const Errand& errand) {
  const auto stopped = [this](int) { return StopRequested(); };
  const Sent sent = p_.Link.Write(errand, p_.Command, RunWord, {.Withdrawn = stopped});
  if (errand.Over()) {
    // No test may begin behind a closed window.
    if (!reported_) StopTest(errand);
    return Result::Closed;
  }
  if (StopRequested()) return StopTest(errand) ? Result::Stopped : Result::Closed;
  if (Jogged(errand)) return Result::Jogged;
  if (sent == Sent::Taken) return Result::GoOn;
  ReportLinkFailure(errand);
  return Result::Closed;
}

bool RunScheme::Jogged(const Errand& errand) const {
  return !StopRequested() && p_.Link.NewerHasWritten(errand, p_.Command);
}

bool RunScheme::Exchange(const Errand& errand, Function function, Register reg, float value) {
  const Sent sent = p_.Link.Exchange(errand, function, reg, value);
  if (sent == Sent::Lost) ReportLinkFailure(errand);
  return Stands(sent) && !errand.Over();
}

bool RunScheme::StopTest(const Errand& errand, int pauseMs) {
  // Also where a tick stops the test: a new one must not begin inside the stop word's exchange.
  const MotorErrand busy(*this);
  const Sent sent = p_.Link.Write(errand, p_.Command, StopWord, {.PauseBeforeMs = pauseMs});
  if (sent == Sent::Lost) ReportLinkFailure(errand);
  return !errand.Over();
}

RunScheme::CaptureEnd RunScheme::Capture(const Errand& errand, const RecordingWait& wait,
                                         int channelCount) {
  const WaitResult waited = WaitForRecording(p_.Link, errand, wait);
  if (errand.Over() || waited == WaitResult::Off) return CaptureEnd::Closed;
  if (waited == WaitResult::Stopped) return CaptureEnd::Stopped;
  UploadResult upload = UploadResult::Failed;
  if (waited == WaitResult::Ready) {
    upload =
        UploadTrace(p_.Link, errand, channelCount, [&] { return p_.Trace.ClosingPositionWindow; });
    if (errand.Over()) return CaptureEnd::Closed;
    TraceBlockFailed = upload == UploadResult::Failed;
  }
  if (upload == UploadResult::Done) return CaptureEnd::Uploaded;
  if (upload == UploadResult::Abandoned) return CaptureEnd::Abandoned;
  ReportLinkFailure(errand);
  return CaptureEnd::Failed;
}

RunScheme::CaptureEnd RunScheme::TakeFirstRecording(const Errand& errand, int channelCount,
                                                    const std::function<void()>& show) {
  RecordingWait wait = TestWait(p_.Trace);
  wait.StopAfter = [&] { return Jogged(errand); };
  const CaptureEnd end = Capture(errand, wait, channelCount);
  if (end == CaptureEnd::Failed) p_.Trace.TraceReadFailed = true;
  if (errand.Over()) return CaptureEnd::Closed;
  if (end == CaptureEnd::Uploaded) {
    show();
    TraceUploaded = true;
  }
  return end;
}

void RunScheme::ReadAfterStop(const Errand& errand,
                              const std::function<void(const Errand&)>& read) {
  if (TraceUploaded) return;
  read(errand);
  if (!errand.Over()) TraceUploaded = false;
}

void RunScheme::SplitRecording(int channelCount, const CheckBox& iBak, const CheckBox& vBak) {
  p_.Trace.ShowRecordedChannels(channelCount);
  SplitTrace(p_.Trace, p_.Link.ReplyValues, channelCount);
  p_.Trace.Show[Signal::IBak] = iBak.Ticked;
  p_.Trace.Show[Signal::VBak] = vBak.Ticked;
}

void RunScheme::ReportLinkFailure(const Errand& errand) {
  if (reported_) return;
  reported_ = true;
  p_.Link.TellFailure(errand);
  if (errand.Over()) return;
  p_.Link.LinkIdle = true;
  p_.DataSource.Stop();
  p_.World.Unload(p_.Window);
}

}  // namespace gainsmith
