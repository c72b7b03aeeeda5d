// A servo on a test bench: registers, a clock, and recordings in physical units.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <string_view>
#include <vector>

#include "simulator/bank/factory_values.h"
#include "simulator/servo/servo.h"

namespace gainsmith::sim {

struct Move {
  double Rpm = 300, TurnsPerS2 = 200;
  std::int64_t Pulses = 40000;
  int IntervalMs = 100, Repeats = 1;
};

using Samples = std::vector<double>;

class ServoBench {
 public:
  explicit ServoBench(std::string_view preset = MotorPresets().front().Name, std::uint64_t seed = 1)
      : ServoBench(*FindMotorPreset(preset), seed) {}
  explicit ServoBench(const MotorPreset& preset, std::uint64_t seed = 1)
      : Motor(
            Registers, [this](Trip trip) { Trips.push_back(trip); }, preset, seed) {}

  void Write(Reg reg, int value) {
    Registers[reg] = static_cast<std::uint16_t>(value);
    Motor.Write(reg, Registers[reg], NowUs);
  }
  void PassMs(double ms) {
    NowUs += static_cast<TimeUs>(ms * 1000);
    Motor.Advance(NowUs);
  }
  // Writes a command and lets some time pass.
  void Command(Reg reg, int value, double passMs) {
    Write(reg, value);
    PassMs(passMs);
  }

  void Load(const Move& move) {
    LoadWords(move.Rpm * 4000 / 1200, move.TurnsPerS2 * 4000 / 40000, move.Pulses,
              move.IntervalMs * 2, move.Repeats);
  }
  // The velocity test has units of its own, and takes its length in milliseconds.
  void LoadVelocityTest(double rpm, double turnsPerS2, int runningMs, int repeats) {
    LoadWords(rpm * 4000 / 3000, turnsPerS2 * 4000 / 250000, runningMs, 100, repeats);
  }
  void Arm(int divider, int kind = 145) {
    Write(Reg::SampleDivider, divider);
    Write(Reg::TraceKind, kind);
    Write(Reg::ArmRecorder, 200);
  }
  bool Recorded() const { return Motor.RecorderStatus() == 1; }
  void WaitForRecording() {
    for (int ms = 0; !Recorded() && ms < 60'000; ++ms) PassMs(1);
  }
  void RunPositionTest(const Move& move, int divider) {
    Load(move);
    Run(Reg::PositionCommand, divider, 145);
  }
  void RunVelocityTest(int divider) {
    LoadVelocityTest(300, 125, 2000, 1);
    Run(Reg::VelocityCommand, divider, 144);
  }

  // The last recording.
  Samples AllSamples() const { return Channel(0, 600, 1); }
  Samples ErrorPulses() const { return Channel(0, 200, 1); }
  Samples VelocityRpm() const {
    return Channel(VelocityFrom(), 200, 60 / (4000 * 0.0005 * Registers[Reg::SampleDivider]));
  }
  Samples StepA() const { return Channel(0, 200, 1 / 1024.0); }
  Samples CurrentA() const { return Channel(VelocityFrom() + 200, 200, 1 / 1024.0); }

  double NowMs() const { return static_cast<double>(NowUs) / 1000; }
  double Position() const { return static_cast<double>(Motor.ShaftPositionPulses()); }
  double Rpm() const { return Motor.ShaftSpeedRpm(); }

  RegisterBank Registers = FactoryValues();
  std::vector<Trip> Trips;
  TimeUs NowUs = 0;
  Servo Motor;

 private:
  int VelocityFrom() const { return Registers[Reg::TraceKind] == 144 ? 0 : 200; }
  Samples Channel(int from, int count, double unit) const {
    Samples samples;
    for (int i = from; i < from + count; ++i) samples.push_back(Motor.Sample(i) * unit);
    return samples;
  }
  void Run(Reg command, int divider, int kind) {
    Arm(divider, kind);
    PassMs(70);
    Write(command, 2);
    WaitForRecording();
  }
  void LoadWords(double speed, double acceleration, std::int64_t length, int pause, int repeats) {
    Write(Reg::SpeedWord, static_cast<int>(std::lrint(speed)));
    Write(Reg::AccelerationWord, static_cast<int>(std::lrint(acceleration)));
    Write(Reg::LengthHigh, static_cast<int>(length / 65536));
    Write(Reg::LengthLow, static_cast<int>(length % 65536));
    Write(Reg::PauseWord, pause);
    Write(Reg::RepeatCount, repeats);
  }
};

// The samples from one to before another.
inline Samples Part(const Samples& values, int from, int to) {
  return {values.begin() + from, values.begin() + to};
}
inline double PeakOf(const Samples& values) {
  return std::abs(*std::ranges::max_element(values, {}, [](double v) { return std::abs(v); }));
}
inline double SpreadOf(const Samples& values) {
  return std::ranges::max(values) - std::ranges::min(values);
}
inline double MeanOf(const Samples& values) {
  return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

}  // namespace gainsmith::sim
