// The drive's recorder: arming, triggering, and the sample memory behind registers 256 to 855.
#include "simulator/servo/recorder.h"

#include <algorithm>

namespace gainsmith::sim {

namespace {

constexpr std::uint16_t TwoChannelKind = 144;

}  // namespace

void Recorder::Arm(const RegisterBank& registers, bool moveToCome) {
  const Settings settings{
      .TicksPerSample = std::max<int>(1, registers[Reg::SampleDivider]),
      .Channels = registers[Reg::TraceKind] == TwoChannelKind ? 2 : 3,
  };
  goodForNextTest_ = !moveToCome;
  if (state_ != State::Idle && settings == settings_) return;
  settings_ = settings;
  if (MoveJustBegan()) {
    BeginWithLastMove();
  } else if (moveToCome) {
    Wait();
  } else {
    Begin();
  }
}

void Recorder::TestBegins() {
  if (state_ != State::Idle || goodForNextTest_) Wait();
  goodForNextTest_ = false;
}

void Recorder::MoveBegins() {
  if (state_ == State::Waiting) Begin();
  const bool isRecorded = state_ == State::Recording && sample_ <= LeadSamples &&
                          (sample_ < LeadSamples || tickInSample_ == 0);
  stillTicks_ = ticks_ - stillFrom_;
  moveAt_ = isRecorded ? std::nullopt : std::optional(ticks_);
}

void Recorder::MotionEnded() {
  moveAt_.reset();
  if (state_ == State::Waiting) Begin();
}

void Recorder::Wait() {
  state_ = State::Waiting;
  ticksToWait_ =
      std::int64_t{LongestWaitInRecordings} * SamplesPerChannel * settings_.TicksPerSample +
      LongestExtraWaitTicks;
}

void Recorder::Begin() {
  state_ = State::Recording;
  recording_.fill(0);
  tickInSample_ = 0;
  sample_ = 0;
  lastPulses_ = pulsesNow_;
}

bool Recorder::MoveJustBegan() const {
  const std::int64_t lead = std::int64_t{LeadSamples} * settings_.TicksPerSample;
  return moveAt_ && ticks_ - *moveAt_ <= LongestLateTicks && lead <= LongestLeadTicks &&
         lead <= stillTicks_;
}

void Recorder::BeginWithLastMove() {
  const std::int64_t from = *moveAt_ - std::int64_t{LeadSamples} * settings_.TicksPerSample;
  moveAt_.reset();
  Begin();
  lastPulses_ = At(from - 1).PositionPulses;
  for (std::int64_t tick = from; tick < ticks_ && state_ == State::Recording; ++tick) {
    Record(At(tick));
  }
}

const RecorderInput& Recorder::At(std::int64_t tick) const {
  return history_[static_cast<std::size_t>(std::max(tick, historyFrom_) % HistoryTicks)];
}

void Recorder::Rested() {
  historyFrom_ = std::max<std::int64_t>(0, ticks_ - 1);
  stillFrom_ = ticks_ - HistoryTicks;
  moveAt_.reset();
}

void Recorder::Tick(const RecorderInput& input) {
  pulsesNow_ = input.PositionPulses;
  history_[static_cast<std::size_t>(ticks_ % HistoryTicks)] = input;
  ++ticks_;
  if (input.ReferenceMoves) stillFrom_ = ticks_;
  if (state_ == State::Waiting && --ticksToWait_ <= 0) {
    Begin();
  } else {
    Record(input);
  }
}

void Recorder::Record(const RecorderInput& input) {
  if (state_ != State::Recording || ++tickInSample_ < settings_.TicksPerSample) return;
  tickInSample_ = 0;
  TakeSample(input);
}

void Recorder::TakeSample(const RecorderInput& input) {
  const auto at = [this](int channel) -> std::int16_t& {
    return recording_[static_cast<std::size_t>(channel * SamplesPerChannel + sample_)];
  };
  const int current = settings_.Channels - 1;
  if (settings_.Channels == MaxChannels) at(0) = ToSample(input.ErrorPulses);
  at(current - 1) = ToSample(static_cast<double>(input.PositionPulses - lastPulses_));
  at(current) = ToSample(input.CurrentCounts + noise_.Next());
  lastPulses_ = input.PositionPulses;
  if (++sample_ < SamplesPerChannel) return;
  memory_ = recording_;
  state_ = State::Idle;
}

void Recorder::Store(std::span<const std::int16_t> samples) {
  state_ = State::Idle;
  std::copy(samples.begin(), samples.end(), memory_.begin());
}

void Recorder::Reset() {
  state_ = State::Idle;
  goodForNextTest_ = false;
  memory_.fill(0);
}

}  // namespace gainsmith::sim
