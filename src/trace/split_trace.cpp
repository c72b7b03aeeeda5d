#include "trace/split_trace.h"

#include <cassert>

#include "trace/auto_range.h"
#include "trace/position_reference.h"

namespace gainsmith {
namespace {

// Plot units from the middle to the top of the picture.
constexpr float PlotTop = 400;

void SetGain(const AxisTables& axis) {
  float plotUnits = PlotTop;
  axis.Gain[0] = PlotGain(plotUnits, axis.Top[0]);
}

// Ten divisions span the plot from minus top to top.
void SetDivisions(const AxisTables& axis, float rangeTop) {
  axis.Step[0] = 2 * NiceDivision(rangeTop);
  axis.Top[0] = 5 * axis.Step[0];
}

void SplitPosition(TraceState& trace) {
  RegeneratePositionReference(trace);
  const struct {
    const TraceArray& Values;
    Signal Of;
  } series[] = {{trace.PErrTrace, Signal::PErr},
                {trace.PBakTrace, Signal::PBak},
                {trace.PRefTrace, Signal::PRef}};
  for (const auto& one : series) {
    trace.RangeTop = AutoRange(one.Values);
    SetDivisions(trace.Axis(one.Of), trace.RangeTop);
    SetGain(trace.Axis(one.Of));
  }
}

void SplitVelocity(TraceState& trace, std::span<const float> words) {
  constexpr double MsPerMinute = 60000;
  // The word counts the pulses that the motor moved during one sample.
  const double pulsesPerTurn = static_cast<double>(trace.EncoderCounts);
  const double scale = pulsesPerTurn * trace.SampleDivider * MsPerTick;
  for (std::size_t i = 0; i < trace.VBakTrace.size(); ++i) {
    trace.VBakTrace[i] = scale == 0 ? 0 : static_cast<float>(words[i] * MsPerMinute / scale);
  }
  trace.RangeTop = AutoRange(trace.VBakTrace);
  SetDivisions(trace.Axis(Signal::VBak), trace.RangeTop);
  SetGain(trace.Axis(Signal::VBak));
}

void SplitCurrent(TraceState& trace, std::span<const float> words) {
  constexpr double CountsPerMa = 1.024;
  for (std::size_t i = 0; i < trace.IBakTrace.size(); ++i) {
    trace.IBakTrace[i] = static_cast<float>(words[i] / CountsPerMa);
  }
  trace.RangeTop = AutoRange(trace.IBakTrace);
  if (trace.RangeTop <= 1500) {
    // The current axis never shows less than 2 A either way.
    trace.ITop[0] = 2000;
    trace.IStep[0] = 400;
  } else {
    SetDivisions(trace.Axis(Signal::IBak), trace.RangeTop);
  }
  SetGain(trace.Axis(Signal::IBak));
}

}  // namespace

int SplitTrace(TraceState& trace, std::span<const float> buffer, int channelCount) {
  constexpr std::size_t Samples = ChannelSamples;
  assert(buffer.size() >= Samples * static_cast<std::size_t>(channelCount));
  const int channelsGiven = channelCount;
  std::size_t offset = 0;
  trace.TraceSamples = ChannelSamples;
  trace.PErrTop[0] = trace.PBakTop[0] = trace.PRefTop[0] = 0;

  if (trace.Show[Signal::PErr]) {
    for (std::size_t i = 0; i < Samples; ++i) trace.PErrTrace[i] = buffer[i];
    offset = Samples;
    --channelCount;
  }
  if (channelsGiven == 3) SplitPosition(trace);
  if (trace.Show[Signal::VBak]) {
    SplitVelocity(trace, buffer.subspan(offset, Samples));
    offset += Samples;
    --channelCount;
  }
  if (channelCount != 0 && trace.Show[Signal::IBak]) {
    SplitCurrent(trace, buffer.subspan(offset, Samples));
  }
  ScaleTracesAt(trace, channelsGiven, PositionSeries::PErr, 0);
  return channelCount;
}

void ScaleTraces(TraceState& trace, int channelCount, PositionSeries positionSource, float iGain,
                 float vGain, float pErrGain, float pBakGain, float pRefGain) {
  trace.Plots = {};
  for (std::size_t i = 0; i < ChannelSamples; ++i) {
    trace.Plots[Signal::IBak][i] = trace.IBakTrace[i] * iGain;
    trace.Plots[Signal::VBak][i] = trace.VBakTrace[i] * vGain;
  }
  if (channelCount != 3) return;
  const float gain = positionSource == PositionSeries::PErr   ? pErrGain
                     : positionSource == PositionSeries::PBak ? pBakGain
                                                              : pRefGain;
  for (std::size_t i = 0; i < ChannelSamples; ++i) {
    trace.Plots[Signal::PErr][i] = trace.PErrTrace[i] * gain;
    trace.Plots[Signal::PBak][i] = trace.PBakTrace[i] * gain;
    trace.Plots[Signal::PRef][i] = trace.PRefTrace[i] * gain;
  }
}

void ScaleTracesAt(TraceState& trace, int channelCount, PositionSeries positionSource, int level) {
  const auto at = static_cast<std::size_t>(level);
  ScaleTraces(trace, channelCount, positionSource, trace.IGain[at], trace.VGain[at],
              trace.PErrGain[at], trace.PBakGain[at], trace.PRefGain[at]);
}

}  // namespace gainsmith
