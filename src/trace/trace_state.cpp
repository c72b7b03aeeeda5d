#include "trace/trace_state.h"

namespace gainsmith {

PlotColours DefaultTuningColours() {
  PlotColours colours;
  colours[Signal::IBak] = 255;
  colours[Signal::VBak] = 8454016;
  colours[Signal::PErr] = 16744700;
  colours[Signal::PBak] = 16711810;
  colours[Signal::PRef] = 16744580;
  return colours;
}

PlotColours FixedScopeColours() {
  PlotColours colours;
  colours[Signal::IBak] = Rgb(255, 0, 0);
  colours[Signal::VBak] = Rgb(128, 255, 128);
  colours[Signal::PErr] = Rgb(255, 36, 255);
  return colours;
}

BySignal<bool> RecordedChannels(int channelCount) {
  BySignal<bool> shown;
  shown[Signal::PErr] = channelCount == 3;
  shown[Signal::VBak] = shown[Signal::IBak] = true;
  return shown;
}

AxisTables TraceState::Axis(Signal signal) {
  if (signal == Signal::PErr) return {PErrStep, PErrTop, PErrGain};
  if (signal == Signal::PBak) return {PBakStep, PBakTop, PBakGain};
  if (signal == Signal::PRef) return {PRefStep, PRefTop, PRefGain};
  if (signal <= Signal::VRef) return {VStep, VTop, VGain};
  return {IStep, ITop, IGain};
}

void TraceState::SetTraceTime(int sampleDivider) {
  SampleDivider = static_cast<float>(sampleDivider);
  TimeStep[0] = SampleDivider * 100 / 10;
}

}  // namespace gainsmith
