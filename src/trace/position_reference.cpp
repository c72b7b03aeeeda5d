#include "trace/position_reference.h"

#include <cmath>

#include "platform/number_text.h"

namespace gainsmith {
namespace {

enum class Phase {
  Wait,
  Accelerate,
  Cruise,
  Brake,
  Dwell,
  TurnRound,
  AccelerateBack,
  CruiseBack,
  BrakeBack,
  DwellBack,
};

// The generator as it stands between two ticks. Velocities are pulses per 100 ticks. All values
// are 32-bit floats, since a long move gathers their roundings.
struct Generator {
  float Accel = 0;
  float Speed = 0;
  float Distance = 0;
  float DwellTicks = 0;

  Phase State = Phase::Wait;
  float Pos = 0;
  float Vel = 0;
  float Peak = 0;
  float BrakeAt = 0;
  float Dwelt = 0;

  // `started`: the sample from which on the motion may begin has come.
  void Tick(bool started) {
    if (State <= Phase::Dwell) {
      StepOut(started);
    } else {
      StepBack();
    }
    Pos = static_cast<float>(Pos + static_cast<double>(Vel) / 100);
  }

 private:
  // From the wait to the pause at the far end.
  void StepOut(bool started) {
    switch (State) {
      case Phase::Wait:
        Vel = 0;
        if (started) {
          Vel = Accel;
          Peak = Speed;
          State = Phase::Accelerate;
        }
        break;
      case Phase::Accelerate:
        if (static_cast<double>(Distance) / 2 <= Pos) {
          Vel -= Accel;
          State = Phase::Brake;
        } else if (Vel >= Peak) {
          BrakeAt = Distance - Pos;
          Vel = Peak;
          State = Phase::Cruise;
        } else {
          Vel += Accel;
        }
        break;
      case Phase::Cruise:
        if (Pos >= BrakeAt) State = Phase::Brake;
        break;
      case Phase::Brake:
        if (Pos < Distance && Vel >= Accel) {
          Vel -= Accel;
        } else {
          BeginDwell(Phase::Dwell);
        }
        break;
      default:
        if (Dwell()) State = Phase::TurnRound;
        break;
    }
  }

  // From the turn to the pause at the start, after which the next wait begins.
  void StepBack() {
    switch (State) {
      case Phase::TurnRound:
        Vel -= Accel;
        Peak = -Speed;
        State = Phase::AccelerateBack;
        break;
      case Phase::AccelerateBack:
        if (static_cast<double>(Distance) / 2 >= Pos) {
          Vel += Accel;
          State = Phase::BrakeBack;
        } else if (Vel <= Peak) {
          BrakeAt = Distance - Pos;
          Vel = Peak;
          State = Phase::CruiseBack;
        } else {
          Vel -= Accel;
        }
        break;
      case Phase::CruiseBack:
        if (Pos <= BrakeAt) State = Phase::BrakeBack;
        break;
      case Phase::BrakeBack:
        if (Pos <= 0 || Vel > -Accel) {
          BeginDwell(Phase::DwellBack);
        } else {
          Vel += Accel;
        }
        break;
      default:
        if (Dwell()) {
          Pos = 0;
          State = Phase::Wait;
        }
        break;
    }
  }

  void BeginDwell(Phase phase) {
    Vel = 0;
    Dwelt = 1;
    State = phase;
  }

  // One tick of a pause; true when it is over.
  bool Dwell() {
    Dwelt += 1;
    Vel = 0;
    return Dwelt > DwellTicks;
  }
};

}  // namespace

void RegeneratePositionReference(TraceState& trace) {
  constexpr int LastSampleAtRest = 5;
  Generator generator{
      .Accel = static_cast<float>(RoundHalfToEven(trace.ProfileAccel)),
      .Speed = static_cast<float>(RoundHalfToEven(trace.ProfileSpeed)),
      .Distance = std::fmod(trace.ProfileDistHigh, 256.0F) * 65536 + trace.ProfileDistLow,
      .DwellTicks = trace.ProfileDwell,
  };
  trace.PBakTrace.fill(0);
  trace.PRefTrace.fill(0);

  const int ticksPerSample = static_cast<int>(trace.SampleDivider);
  const int lastTick = (ChannelSamples - 1) * ticksPerSample;
  int sample = 0;
  int sub = 0;
  for (int tick = 0; tick <= lastTick; ++tick) {
    generator.Tick(sample > LastSampleAtRest);
    if (++sub != ticksPerSample) continue;
    sub = 0;
    const auto i = static_cast<std::size_t>(sample++);
    trace.PRefTrace[i] = generator.Pos;
    trace.PBakTrace[i] = generator.Pos - trace.PErrTrace[i];
  }
}

}  // namespace gainsmith
