// How many seconds of its world the simulated motor runs in one second.
#include <benchmark/benchmark.h>

#include "simulator/bank/factory_values.h"
#include "simulator/servo/servo.h"

namespace gainsmith::sim {
namespace {

constexpr TimeUs SecondUs = 1'000'000;

void Report(benchmark::State& state, TimeUs simulatedUs) {
  state.counters["simulated_s_per_s"] =
      benchmark::Counter(static_cast<double>(simulatedUs) / SecondUs, benchmark::Counter::kIsRate);
}

// A position test that goes on while the recorder fills its memory again and again.
void PositionTest(benchmark::State& state) {
  RegisterBank registers = FactoryValues();
  registers[Reg::SpeedWord] = 1000;
  registers[Reg::AccelerationWord] = 20;
  registers[Reg::LengthLow] = 40000;
  registers[Reg::PauseWord] = 200;
  registers[Reg::RepeatCount] = 65535;
  const MotorPreset& preset = MotorPresets()[static_cast<std::size_t>(state.range(0))];
  state.SetLabel(std::string(preset.Name));
  Servo servo(
      registers, [](Trip) {}, preset, 1);
  TimeUs now = 0;
  servo.Write(Reg::PositionCommand, 2, now);
  for (auto _ : state) {
    servo.Write(Reg::ArmRecorder, 200, now);
    now += SecondUs;
    servo.Advance(now);
  }
  Report(state, now);
}
BENCHMARK(PositionTest)->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);

void Rest(benchmark::State& state) {
  const RegisterBank registers = FactoryValues();
  Servo servo(
      registers, [](Trip) {}, MotorPresets().front(), 1);
  TimeUs now = 0;
  for (auto _ : state) {
    now += SecondUs;
    servo.Advance(now);
  }
  Report(state, now);
}
BENCHMARK(Rest);

void CurrentStep(benchmark::State& state) {
  RegisterBank registers = FactoryValues();
  registers[Reg::TestCurrent] = 512;
  Servo servo(
      registers, [](Trip) {}, MotorPresets().front(), 1);
  for (auto _ : state) {
    servo.Write(Reg::CurrentStep, 1, 0);
    benchmark::DoNotOptimize(servo.Sample(199));
  }
}
BENCHMARK(CurrentStep)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace gainsmith::sim
