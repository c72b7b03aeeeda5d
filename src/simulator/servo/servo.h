// The motor side of the simulated drive: loops, motor, pulse generator and recorder behind the
// registers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "simulator/bank/registers.h"
#include "simulator/bank/sim_time.h"
#include "simulator/servo/axis.h"
#include "simulator/servo/current_loop.h"
#include "simulator/servo/motion.h"
#include "simulator/servo/motor_preset.h"
#include "simulator/servo/noise.h"
#include "simulator/servo/overload_guard.h"
#include "simulator/servo/recorder.h"
#include "simulator/servo/trip.h"

namespace gainsmith::sim {

// A motion that no register commands, as if a machine's own controller moved the motor.
struct BackgroundMotion {
  double FrequencyHz = 2.0;     // of the velocity's sine
  double AmplitudeRpm = 100.0;  // its peak
};

// The motor side. It reads parameters and commands from the register bank, which it does not own
// and which must outlive it, and never writes there. Time comes in as an argument and must not run
// backwards; nothing happens between calls. The same seed and calls give the same samples.
class Servo {
 public:
  // Called when a trip takes the power off the motor, from inside Advance or Write; must not call
  // back. From then on commands to move are heard and not obeyed, until ClearTrip or Reset.
  using OnTrip = std::function<void(Trip)>;

  static constexpr int SampleCount =
      Recorder::SampleCount;  // words of sample memory, registers 256 to 855

  Servo(const RegisterBank& registers, OnTrip onTrip, const MotorPreset& preset,
        std::uint64_t seed);

  // Lets the world run up to `now`. Costs nothing while the motor rests and nothing is recorded.
  void Advance(TimeUs now);

  // A register was written, and the bank holds `value` already: runs the commands 2, 9, 20 and 35,
  // takes over parameters, and leaves every other register alone. Advances to `now` first, with the
  // parameters as they were.
  void Write(Reg reg, std::uint16_t value, TimeUs now);

  // Takes all parameters over from the bank, for a bank that was filled as a whole.
  void TakeParameters();

  // Register 28: 0 from the arming to the end of the recording, else 1, also before the first
  // arming.
  [[nodiscard]] std::uint16_t RecorderStatus() const;

  // Sample memory, 0 <= index < SampleCount: the last recording that was finished, zeros before it.
  [[nodiscard]] std::int16_t Sample(int index) const;

  // Takes the power off the motor at once and ends whatever moves it.
  void Stop();

  // The trip that keeps the motor from moving, if any.
  [[nodiscard]] std::optional<Trip> Tripped() const { return trip_; }
  void ClearTrip() { trip_.reset(); }

  // The switch of register 254. On, the current reference passes the trap filters.
  void UseTraps(bool use) { axis_.UseTraps(use); }
  // See Axis::PlugEncoder.
  void PlugEncoder(bool on, TimeUs now);

  // Power off and on, with the bank filled anew: Stop, TakeParameters, no trip, trap filters in
  // use, and an empty sample memory.
  void Reset();

  // A command or the background motion moves the motor, or it still turns by itself.
  [[nodiscard]] bool Moving() const;
  // Anything but rest: as time passes, something may happen by itself.
  [[nodiscard]] bool Busy() const { return motion_ || !resting_ || step_; }

  // Moves the motor until stopped, or until a command takes over. Ignored while a command is
  // running, and after a trip.
  void StartBackgroundMotion(const BackgroundMotion& motion, TimeUs now);
  void StopBackgroundMotion(TimeUs now);

  // The world as it really is, for tests and watch addresses.
  [[nodiscard]] std::int64_t ShaftPositionPulses() const;
  [[nodiscard]] double ShaftSpeedRpm() const;
  // What flows in the winding.
  [[nodiscard]] double CurrentA() const;
  [[nodiscard]] std::int32_t PositionErrorPulses() const;

 private:
  enum class MotionKind { None, PositionTest, VelocityTest, Jog, Background, Stop };

  void Tick();
  void TickPowered();
  void TickStepTest();
  void TripOut(Trip trip);
  void WatchForRest();
  void CommandPosition(std::uint16_t command);
  void CommandVelocity(std::uint16_t command);
  void Jog(double direction);
  void BeginTest(std::unique_ptr<Motion> test, MotionKind kind);
  void BeginStop();
  void Begin(std::unique_ptr<Motion> motion, MotionKind kind);
  void EndMotion();
  void RunCurrentTest();

  const RegisterBank& registers_;
  OnTrip onTrip_;
  MotorPreset preset_;
  Axis axis_;
  Noise stepNoise_;
  Recorder recorder_;
  std::unique_ptr<Motion> motion_;  // empty: the axis holds originPulses_, or has no power
  MotionKind motionKind_ = MotionKind::None;
  TimeUs nextTickUs_ = 0;
  bool powered_ = true;
  bool resting_ = false;  // with no motion: nothing changes any more
  int stillTicks_ = 0;
  std::int64_t lastPosition_ = 0;
  double originPulses_ = 0.0;     // where the motion's positions count from
  double commandedPulses_ = 0.0;  // reference of the last tick
  double commandedPps_ = 0.0;
  std::optional<CurrentStepTest> step_;  // in the place of the axis while it lasts
  OverloadGuard stepGuard_;
  std::optional<Trip> trip_;
};

}  // namespace gainsmith::sim
