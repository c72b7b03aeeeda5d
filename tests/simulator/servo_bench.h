// A servo on a test bench: registers, a clock, and recordings in physical units.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <vector>

#include "simulator/factory_values.h"
#include "simulator/servo.h"

namespace gainsmith::sim {

struct Move {
  double Rpm = 300;
  double TurnsPerS2 = 200;
  std::int64_t Pulses = 40000;
  int IntervalMs = 100;
  int Repeats = 1;
};

struct Recording {
  std::vector<double> ErrorPulses;
  std::vector<double> Rpm;
  std::vector<double> CurrentA;
};

class ServoBench {
 public:
  explicit ServoBench(std::string_view preset = "bare-shaft", std::uint64_t seed = 1)
      : ServoBench(*FindMotorPreset(preset), seed) {}
  explicit ServoBench(const MotorPreset& preset, std::uint64_t seed = 1)
      : Motor(
            Registers, [this](DriveError error) { Errors.push_back(error); }, preset, seed) {}

  void Write(Reg reg, int value) {
    Registers[reg] = static_cast<std::uint16_t>(value);
    Motor.Write(reg, Registers[reg], NowUs);
  }
  void WriteBoth(Reg high, Reg low, int value) {
    Write(high, value);
    Write(low, value);
  }
  void SetFeedForward(int kvff, int kaff) {
    WriteBoth(Reg::Kvff, Reg::LowKvff, kvff);
    WriteBoth(Reg::Kaff, Reg::LowKaff, kaff);
  }
  void PassMs(double ms) {
    NowUs += static_cast<TimeUs>(ms * 1000);
    Motor.Advance(NowUs);
  }

  void Load(const Move& move) {
    Write(Reg::SpeedWord, Rounded(move.Rpm * 4000 / 1200));
    Write(Reg::AccelerationWord, Rounded(move.TurnsPerS2 * 4000 / 40000));
    Write(Reg::LengthHigh, static_cast<int>(move.Pulses / 65536));
    Write(Reg::LengthLow, static_cast<int>(move.Pulses % 65536));
    Write(Reg::PauseWord, move.IntervalMs * 2);
    Write(Reg::RepeatCount, move.Repeats);
  }
  // The velocity test has units of its own, and takes its length in milliseconds.
  void LoadVelocityTest(double rpm, double turnsPerS2, int runningMs, int intervalMs, int repeats) {
    Write(Reg::SpeedWord, Rounded(rpm * 4000 / 3000));
    Write(Reg::AccelerationWord, Rounded(turnsPerS2 * 4000 / 250000));
    Write(Reg::LengthHigh, runningMs / 65536);
    Write(Reg::LengthLow, runningMs % 65536);
    Write(Reg::PauseWord, intervalMs);
    Write(Reg::RepeatCount, repeats);
  }
  void Arm(int divider, int kind = 145) {
    Write(Reg::SampleDivider, divider);
    Write(Reg::TraceKind, kind);
    Write(Reg::ArmRecorder, 200);
  }
  // False when the recorder is not ready within the time.
  bool WaitForRecording(double timeoutMs = 60'000) {
    for (double ms = 0; Motor.RecorderStatus() == 0; ++ms) {
      if (ms > timeoutMs) return false;
      PassMs(1);
    }
    return true;
  }
  Recording Read() const {
    const double rpmPerPulse = 60000.0 / (4000.0 * 0.5 * Registers[Reg::SampleDivider]);
    const bool three = Registers[Reg::TraceKind] != 144;
    const int velocity = three ? 200 : 0;
    Recording recording;
    for (int i = 0; i < 200; ++i) {
      recording.ErrorPulses.push_back(three ? Motor.Sample(i) : 0);
      recording.Rpm.push_back(Motor.Sample(velocity + i) * rpmPerPulse);
      recording.CurrentA.push_back(Motor.Sample(velocity + 200 + i) / 1024.0);
    }
    return recording;
  }
  Recording RunPositionTest(const Move& move, int divider) {
    Load(move);
    Arm(divider);
    PassMs(70);
    Write(Reg::PositionCommand, 2);
    WaitForRecording();
    return Read();
  }
  Recording RunVelocityTest(int divider) {
    LoadVelocityTest(300, 125, 2000, 100, 1);
    Arm(divider, 144);
    PassMs(70);
    Write(Reg::VelocityCommand, 2);
    WaitForRecording();
    return Read();
  }

  RegisterBank Registers = FactoryValues();
  std::vector<DriveError> Errors;
  TimeUs NowUs = 0;
  Servo Motor;

 private:
  static int Rounded(double word) { return static_cast<int>(std::nearbyint(word)); }
};

inline double PeakOf(const std::vector<double>& values, std::size_t from = 0,
                     std::size_t to = 200) {
  double peak = 0;
  for (std::size_t i = from; i < to; ++i) peak = std::max(peak, std::abs(values[i]));
  return peak;
}
inline double MeanOf(const std::vector<double>& values, std::size_t from, std::size_t to) {
  double sum = 0;
  for (std::size_t i = from; i < to; ++i) sum += values[i];
  return sum / static_cast<double>(to - from);
}
inline double RippleOf(const std::vector<double>& values, std::size_t from, std::size_t to) {
  const double mean = MeanOf(values, from, to);
  double sum = 0;
  for (std::size_t i = from; i < to; ++i) sum += (values[i] - mean) * (values[i] - mean);
  return std::sqrt(sum / static_cast<double>(to - from));
}

}  // namespace gainsmith::sim
