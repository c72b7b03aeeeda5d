// The drive's recorder: arming, triggering, and the sample memory behind registers 256 to 855.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "simulator/bank/registers.h"
#include "simulator/servo/noise.h"

namespace gainsmith::sim {

// The signals at the end of a tick.
struct RecorderInput {
  std::int64_t PositionPulses = 0;
  double ErrorPulses = 0.0;
  double CurrentCounts = 0.0;
  bool ReferenceMoves = false;
};

// Records 200 samples of two channels (trace kind 144: velocity, current) or three (any other:
// position error, velocity, current), one every register 26 ticks. The velocity word is what the
// motor moved since the sample before.
//
// A recording fits the move that it shows: armed while a move out and back is still to come, it
// waits for that move; armed otherwise, it begins at once. A host that uploads one recording while
// the next move begins is late with its arming: the signals of the last half second are kept, so
// that the recording can begin with a move that has just begun and is in no recording yet, provided
// that the reference stood still for six samples before it. A recording also begins when it has
// waited for fourteen times its own length and 1.2 s more, before a host that asks once in each
// recording's length loses patience. An arming that no test has followed yet is good for the next
// test, too, which then begins it anew. The generator holds a move back until six samples of it are
// recorded. Sample memory changes only when a recording is complete, and an arming during a
// recording of the same settings leaves it alone.
class Recorder {
 public:
  static constexpr int SamplesPerChannel = 200;
  static constexpr int MaxChannels = 3;
  static constexpr int SampleCount = SamplesPerChannel * MaxChannels;

  explicit Recorder(std::uint64_t seed) : noise_(seed) {}

  // Register 20 was written. `moveToCome`: a running test will begin a further move out and back.
  void Arm(const RegisterBank& registers, bool moveToCome);
  // A test takes over; its first move follows.
  void TestBegins();
  // A move begins with this tick, or is held back.
  void MoveBegins();
  // Whatever moved the motor has ended: nothing is left to wait for.
  void MotionEnded();
  // The signals at the end of each tick.
  void Tick(const RecorderInput& input);
  // Ticks that were left out, as the motor was resting and nothing was recorded.
  void Rested();

  // The current step test brings its own samples. It ends any recording.
  void Store(std::span<const std::int16_t> samples);
  // Ends any recording and empties the memory.
  void Reset();

  [[nodiscard]] bool Idle() const { return state_ == State::Idle; }
  // The samples before the move are being recorded: the generator waits.
  [[nodiscard]] bool Leading() const { return state_ == State::Recording && sample_ < LeadSamples; }
  [[nodiscard]] std::int16_t Sample(int index) const {
    return memory_[static_cast<std::size_t>(index)];
  }

 private:
  enum class State { Idle, Waiting, Recording };
  struct Settings {
    int TicksPerSample = 1;
    int Channels = MaxChannels;
    bool operator==(const Settings&) const = default;
  };
  static constexpr int LeadSamples = 6;
  static constexpr std::int64_t LongestLateTicks = 1000;
  static constexpr std::int64_t LongestLeadTicks = 30 * LeadSamples;
  static constexpr std::int64_t HistoryTicks = LongestLateTicks + LongestLeadTicks + 1;
  static constexpr int LongestWaitInRecordings = 14;
  static constexpr int LongestExtraWaitTicks = 2400;

  void Wait();
  void Begin();
  [[nodiscard]] bool MoveJustBegan() const;
  void BeginWithLastMove();
  void Record(const RecorderInput& input);
  // Of a tick at most HistoryTicks ago; of a time before the history, its oldest tick.
  [[nodiscard]] const RecorderInput& At(std::int64_t tick) const;
  void TakeSample(const RecorderInput& input);

  Noise noise_;
  State state_ = State::Idle;
  Settings settings_;
  bool goodForNextTest_ = false;
  std::int64_t ticksToWait_ = 0;
  int tickInSample_ = 0;
  int sample_ = 0;
  std::int64_t lastPulses_ = 0;  // at the last sample
  std::int64_t pulsesNow_ = 0;   // at the last tick
  std::array<RecorderInput, HistoryTicks> history_{};
  std::int64_t ticks_ = 0;              // that were remembered
  std::int64_t historyFrom_ = 0;        // the first of them that joins on to the last
  std::int64_t stillFrom_ = 0;          // since then the reference has stood still
  std::int64_t stillTicks_ = 0;         // how long it had when the last move began
  std::optional<std::int64_t> moveAt_;  // the first tick of a move that is in no recording
  std::array<std::int16_t, SampleCount> recording_{};
  std::array<std::int16_t, SampleCount> memory_{};
};

}  // namespace gainsmith::sim
