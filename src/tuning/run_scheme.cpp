// RunScheme: see the header.
#include "tuning/run_scheme.h"

#include <utility>

namespace gainsmith {
namespace {

constexpr float StopWord = 0;
constexpr float RunWord = 2;

class Counted {
 public:
  explicit Counted(int& count) : count_(count) { ++count_; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() { --count_; }

 private:
  int& count_;
};

}  // namespace

bool RunScheme::MayStart() const {
  return clicks_ == 0 && !p_.Owner.Unloading && !p_.Line.LoadFailed;
}

double RunScheme::ElapsedMs() const {
  return static_cast<double>(p_.Surroundings.NowMs() - TestStartTick);
}

void RunScheme::Open() {
  TraceUploaded = false;
  TraceBlockFailed = false;
  reported_ = false;
  p_.Owner.Pointer = MousePointer::Default;
  p_.Line.LinkIdle = false;
  p_.Line.LoadFailed = false;
  p_.Trace.TraceReadFailed = false;
}

std::optional<float> RunScheme::LoadRead(Register reg) {
  if (p_.Line.Read(reg)) return static_cast<float>(p_.Line.Raw());
  p_.Line.LoadFailed = true;
  p_.Err.Start();
  return std::nullopt;
}

bool RunScheme::LoadWrite(Register reg, float value) {
  if (p_.Line.Write(reg, value)) return true;
  p_.Line.LoadFailed = true;
  p_.Err.Start();
  return false;
}

void RunScheme::err_Timer() {
  p_.Err.Stop();
  if (p_.Line.LoadFailed) ReportLinkFailure(Stay(p_.Owner));
}

RunScheme::Click::Click(RunScheme& scheme) : scheme_(scheme) {
  ++scheme_.clicks_;
  scheme_.ShowPointer();
}

RunScheme::Click::~Click() {
  --scheme_.clicks_;
  scheme_.ShowPointer();
}

void RunScheme::ShowPointer() {
  const bool startWaits = clicks_ > 0 && StopRequested();
  p_.Owner.Pointer = startWaits ? MousePointer::Hourglass : MousePointer::Default;
}

RunScheme::Result RunScheme::WriteSteps(const Stay& stay, std::span<const Step> steps) {
  for (const Step& step : steps) {
    const StepValue value = step.Value();
    if (value.What == StepValue::Kind::Refused) return Result::Refused;
    if (value.What == StepValue::Kind::Write && !Write(stay, step.Target, value.Word)) {
      return Result::Closed;
    }
    if (StopRequested()) return StopTest(stay) ? Result::Stopped : Result::Closed;
  }
  return Result::GoOn;
}

RunScheme::Result RunScheme::SendRunCommand(const Stay& stay) {
  const auto unwanted = [&] { return StopRequested() || stay.Over(); };
  const bool taken = Send(p_.Command, RunWord, {.Abandon = unwanted});
  if (stay.Over()) {
    // No test may begin behind a closed window.
    if (!reported_) StopTest(stay);
    return Result::Closed;
  }
  if (StopRequested()) return StopTest(stay) ? Result::Stopped : Result::Closed;
  if (!taken) {
    ReportLinkFailure(stay);
    return Result::Closed;
  }
  return Result::GoOn;
}

bool RunScheme::Send(Register reg, float value, const ExchangeOptions& options) {
  const Counted sending(sending_);
  return p_.Line.Write(reg, value, options);
}

bool RunScheme::Exchange(const Stay& stay, Function function, Register reg, float value) {
  const Counted sending(sending_);
  const auto gone = [&] { return stay.Over(); };
  const bool done = p_.Line.Exchange(function, reg, value, {.Abandon = gone});
  if (stay.Over()) return false;
  if (!done) ReportLinkFailure(stay);
  return done;
}

bool RunScheme::StopTest(const Stay& stay, int pauseMs) {
  // Also where a tick stops the test: a new one must not begin inside the stop word's exchange.
  const Click busy(*this);
  if (!Send(p_.Command, StopWord, {.PauseBeforeMs = pauseMs})) ReportLinkFailure(stay);
  return !stay.Over();
}

RunScheme::CaptureEnd RunScheme::Capture(const Stay& stay, RecordingWait wait, int channelCount) {
  const auto gone = [&] { return stay.Over(); };
  wait.StopBefore = gone;
  wait.StopAfter = [&stay, stop = std::move(wait.StopAfter)] {
    return stay.Over() || (stop && stop());
  };
  const WaitResult waited = WaitForRecording(p_.Line, wait);
  if (stay.Over()) return CaptureEnd::Closed;
  if (waited == WaitResult::Stopped) return CaptureEnd::Stopped;
  UploadResult upload = UploadResult::Failed;
  if (waited == WaitResult::Ready) {
    upload = UploadTrace(p_.Line, channelCount,
                         [&] { return stay.Over() || p_.Trace.ClosingPositionWindow; });
    if (stay.Over()) return CaptureEnd::Closed;
    TraceBlockFailed = upload == UploadResult::Failed;
  }
  if (upload == UploadResult::Done) return CaptureEnd::Uploaded;
  if (upload == UploadResult::Abandoned) return CaptureEnd::Abandoned;
  ReportLinkFailure(stay);
  return CaptureEnd::Failed;
}

bool RunScheme::TakeFirstRecording(const Stay& stay, int channelCount,
                                   const std::function<void()>& show) {
  const CaptureEnd end = Capture(stay, TestWait(p_.Trace), channelCount);
  if (end == CaptureEnd::Failed) p_.Trace.TraceReadFailed = true;
  if (stay.Over()) return false;
  if (end == CaptureEnd::Uploaded) {
    show();
    TraceUploaded = true;
  }
  return true;
}

void RunScheme::ReportLinkFailure(const Stay& stay) {
  if (reported_) return;
  reported_ = true;
  p_.Surroundings.ShowMessage(LinkFailureMessage(p_.Line));
  if (stay.Over()) return;
  p_.Line.LinkIdle = true;
  p_.DataSource.Stop();
  p_.Surroundings.Unload(p_.Owner);
}

}  // namespace gainsmith
