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

bool& TraceState::Show(Signal signal) {
  switch (signal) {
    case Signal::PErr:
      return ShowPErr;
    case Signal::PBak:
      return ShowPBak;
    case Signal::PRef:
      return ShowPRef;
    case Signal::VErr:
      return ShowVErr;
    case Signal::VBak:
      return ShowVBak;
    case Signal::VRef:
      return ShowVRef;
    case Signal::IErr:
      return ShowIErr;
    case Signal::IBak:
      return ShowIBak;
    case Signal::IRef:
      break;
  }
  return ShowIRef;
}

PlotArray& TraceState::Plot(Signal signal) {
  switch (signal) {
    case Signal::PErr:
      return PErrPlot;
    case Signal::PBak:
      return PBakPlot;
    case Signal::PRef:
      return PRefPlot;
    case Signal::VErr:
      return VErrPlot;
    case Signal::VBak:
      return VBakPlot;
    case Signal::VRef:
      return VRefPlot;
    case Signal::IErr:
      return IErrPlot;
    case Signal::IBak:
      return IBakPlot;
    case Signal::IRef:
      break;
  }
  return IRefPlot;
}

AxisTables TraceState::Axis(Signal signal) {
  switch (signal) {
    case Signal::PErr:
      return {PErrStep, PErrTop, PErrGain};
    case Signal::PBak:
      return {PBakStep, PBakTop, PBakGain};
    case Signal::PRef:
      return {PRefStep, PRefTop, PRefGain};
    case Signal::VErr:
    case Signal::VBak:
    case Signal::VRef:
      return {VStep, VTop, VGain};
    case Signal::IErr:
    case Signal::IBak:
    case Signal::IRef:
      break;
  }
  return {IStep, ITop, IGain};
}

void TraceState::SetTraceTime(int sampleDivider) {
  SampleDivider = static_cast<float>(sampleDivider);
  TimeStep[0] = SampleDivider * 100 / 10;
}

void TraceState::ShowRecordedChannels(int channelCount) {
  ShowPErr = channelCount == 3;
  ShowVBak = ShowIBak = true;
  ShowPBak = ShowPRef = ShowVErr = ShowVRef = ShowIErr = ShowIRef = false;
}

}  // namespace gainsmith
