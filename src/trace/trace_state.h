// Trace state: what the windows that show recordings share. One instance for the whole tool.
#pragma once

#include <array>
#include <vector>

#include "platform/control.h"

namespace gainsmith {

constexpr int ZoomLevels = 15;
// What the drive records for each channel, whatever the trace time.
constexpr int ChannelSamples = 200;
constexpr int SpectrumBins = 128;
// The drive's recorder counts ticks; its current channel counts milliamperes.
constexpr double MsPerTick = 0.5;
constexpr double MaPerAmpere = 1000;

// Signals in drawing order: position error, feedback and reference, then velocity and current. The
// drive records PErr, VBak and IBak only; PBak and PRef are worked out. The other four have a place
// in the windows and never any data.
enum class Signal {
  PErr,  // ShowPErr, PErrPlot
  PBak,  // ShowPBak, PBakPlot
  PRef,  // ShowPRef, PRefPlot
  VErr,  // ShowVErr, VErrPlot
  VBak,  // ShowVBak, VBakPlot
  VRef,  // ShowVRef, VRefPlot
  IErr,  // ShowIErr, IErrPlot
  IBak,  // ShowIBak, IBakPlot
  IRef,  // ShowIRef, IRefPlot
};
constexpr int SignalCount = 9;

// Something of each signal.
template <typename T>
struct BySignal {
  std::array<T, SignalCount> Values{};
  T& operator[](Signal signal) { return Values[static_cast<std::size_t>(signal)]; }
  const T& operator[](Signal signal) const { return Values[static_cast<std::size_t>(signal)]; }
};

// One entry for each zoom level.
using ZoomTable = std::array<float, ZoomLevels>;
// One channel in engineering units (pulses, rpm, mA), and in plot units (-400 to 400).
using TraceArray = std::array<float, ChannelSamples>;
using PlotArray = std::array<float, ChannelSamples + 1>;

// A signal's axis at each zoom level: one division and the value at the top of the plot, in the
// signal's unit, and plot units per unit of the signal. A gain of 0: nothing captured yet.
struct AxisTables {
  ZoomTable& Step;
  ZoomTable& Top;
  ZoomTable& Gain;
};

// Colours of the traces in one window.
using PlotColours = BySignal<Colour>;

// What a tuning window starts with and goes back to when it closes.
PlotColours DefaultTuningColours();
// The scope's, which nobody can change.
PlotColours FixedScopeColours();
// The signals that a recording of 2 channels (velocity, current) or 3 (position error before them)
// brings.
BySignal<bool> RecordedChannels(int channelCount);

struct TraceState {
  TraceState() = default;
  TraceState(const TraceState&) = delete;
  TraceState& operator=(const TraceState&) = delete;
  ~TraceState() = default;

  // --- The recorder.

  // The drive's 0.5 ms ticks per sample, 1 to 30: a trace spans 100 * SampleDivider ms.
  float SampleDivider = 10;
  // Pulses per motor revolution; the drive's register is read before it is used.
  float EncoderCounts = 4000;
  // The first upload of a run failed: a tuning window's plot stays empty.
  bool TraceReadFailed = false;
  // The position window goes away: an upload in progress ends at once.
  bool ClosingPositionWindow = false;

  // --- The motion that the pulse generator was given, from which the position reference is worked
  // out: the words of its registers, and the pause in 0.5 ms ticks.
  float ProfileSpeed = 0;
  float ProfileAccel = 0;
  float ProfileDistHigh = 0;
  float ProfileDistLow = 0;
  float ProfileDwell = 0;

  // --- The last capture.

  // Samples per channel of the last split.
  int TraceSamples = ChannelSamples;
  TraceArray PErrTrace{};
  TraceArray PBakTrace{};
  TraceArray PRefTrace{};
  TraceArray VBakTrace{};
  TraceArray IBakTrace{};

  BySignal<PlotArray> Plots;

  // Before a split: the channel was uploaded; after it: the channel is drawn.
  BySignal<bool> Show = RecordedChannels(3);

  // --- Zoom tables. Level 0 belongs to the capture, the levels above to the zoom. Before the first
  // capture they hold what the windows show then: 2 A, 400 rpm and 200 pulses at the top.

  // The view: left edge and width in samples, top and (negative) height in plot units.
  ZoomTable ZoomLeft{};
  ZoomTable ZoomWidth{ChannelSamples - 1};
  ZoomTable ZoomTop{400};
  ZoomTable ZoomHeight{-800};
  // Milliseconds per division of the time axis.
  ZoomTable TimeStep{100};
  // ITop of the level below over ITop of this level.
  ZoomTable TopRatio{};

  ZoomTable IStep{400}, ITop{2000}, IGain{};         // mA
  ZoomTable VStep{80}, VTop{400}, VGain{};           // rpm
  ZoomTable PErrStep{40}, PErrTop{200}, PErrGain{};  // pulses
  ZoomTable PBakStep{40}, PBakTop{200}, PBakGain{};  // pulses
  ZoomTable PRefStep{40}, PRefTop{200}, PRefGain{};  // pulses
  // The bound that AutoRange found last.
  float RangeTop = 0;

  // --- The spectrum of the velocity: magnitudes in rpm * 64.
  std::array<float, SpectrumBins> Spectrum{};

  // --- Colour stores, one for each window.
  PlotColours VelocityColours = DefaultTuningColours();
  PlotColours PositionColours = DefaultTuningColours();
  PlotColours ScopeColours = FixedScopeColours();

  // A signal's axis. The disabled signals share that of their kind.
  AxisTables Axis(Signal signal);

  // Takes a trace time (1 to 30, in units of 100 ms) for the next capture, and its time axis.
  void SetTraceTime(int sampleDivider);
  // Marks what a recording of 2 or 3 channels brings, as SplitTrace wants it.
  void ShowRecordedChannels(int channelCount) { Show = RecordedChannels(channelCount); }
};

}  // namespace gainsmith
