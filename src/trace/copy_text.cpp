#include "trace/copy_text.h"

#include <algorithm>
#include <cmath>

#include "platform/number_text.h"

namespace gainsmith {
namespace {

// Sample 6 is the first after the motion may have begun.
constexpr std::size_t FirstMoving = 6;

std::string Cell(double value) { return PlainText(static_cast<float>(value)); }

double SampleMs(const TraceState& trace) { return MsPerTick * trace.SampleDivider; }

// The reference has no last sample unless every tick was recorded.
std::size_t ReferenceSamples(const TraceState& trace) {
  return trace.SampleDivider > 1 ? ChannelSamples - 1 : ChannelSamples;
}

ScoreLine PeakCurrent(const TraceState& trace) {
  return {"Peak current", PeakOf(trace.IBakTrace) / MaPerAmpere, "A"};
}

}  // namespace

std::string CopyText(const RunNotes& notes, const std::string& indexHeading, double indexStep,
                     std::span<const SampleColumn> columns) {
  constexpr const char* NoValue = "never";
  std::string text;
  for (const CopyLine& line : notes.Settings) {
    text += line.Name + "\t" + line.Value + "\t" + line.Unit + "\n";
  }
  for (const ScoreLine& line : notes.Score) {
    text += line.Name + "\t" + (line.Value ? Cell(*line.Value) : NoValue) + "\t" + line.Unit + "\n";
  }
  text += "\n" + indexHeading;
  std::size_t rows = 0;
  for (const SampleColumn& column : columns) {
    text += "\t" + column.Heading;
    rows = std::max(rows, column.Values.size());
  }
  for (std::size_t row = 0; row < rows; ++row) {
    text += "\n" + Cell(static_cast<double>(row) * indexStep);
    for (const SampleColumn& column : columns) {
      text += "\t";
      if (row < column.Values.size()) text += Cell(column.Values[row] / column.Divisor);
    }
  }
  return text + "\n";
}

std::string RecordingText(const TraceState& trace, int channelCount, bool ofMove, RunNotes notes) {
  notes.Settings.push_back({"Trace time", Cell(SampleMs(trace) * ChannelSamples), "ms"});
  std::vector<SampleColumn> columns{{"Current (A)", trace.IBakTrace, MaPerAmpere},
                                    {"Velocity (rpm)", trace.VBakTrace}};
  if (channelCount == 3) columns.push_back({"Position error (p)", trace.PErrTrace});
  if (channelCount == 3 && ofMove) {
    const std::size_t count = ReferenceSamples(trace);
    columns.push_back({"Position reference (p)", std::span(trace.PRefTrace).first(count)});
    columns.push_back({"Position feedback (p)", std::span(trace.PBakTrace).first(count)});
  }
  return CopyText(notes, "Time (ms)", SampleMs(trace), columns);
}

std::vector<ScoreLine> MoveScoreOf(const TraceState& trace, double band) {
  const std::size_t count = ReferenceSamples(trace);
  const auto score = ScoreMove(std::span(trace.PErrTrace).first(count),
                               std::span(trace.PRefTrace).first(count), band, SampleMs(trace));
  std::vector<ScoreLine> lines;
  if (score) lines = ScoreLines(*score, "p", "ms");
  lines.push_back(PeakCurrent(trace));
  return lines;
}

std::vector<ScoreLine> RunScoreOf(const TraceState& trace, double topSpeedRpm, double heldMs) {
  std::vector<ScoreLine> lines;
  const double held = std::clamp(heldMs / SampleMs(trace), 0.0, 1.0 * ChannelSamples);
  const std::size_t count =
      std::min(static_cast<std::size_t>(held), trace.VBakTrace.size() - FirstMoving);
  if (count > 0 && topSpeedRpm > 0) {
    const auto run = std::span(trace.VBakTrace).subspan(FirstMoving, count);
    lines = ScoreLines(ScoreStep(run, 0, topSpeedRpm, SampleMs(trace)), "rpm", "ms");
  }
  lines.push_back(PeakCurrent(trace));
  return lines;
}

std::vector<ScoreLine> PeaksOf(const TraceState& trace) {
  return {{"Peak position error", PeakOf(trace.PErrTrace), "p"},
          {"Peak velocity", PeakOf(trace.VBakTrace), "rpm"},
          PeakCurrent(trace)};
}

}  // namespace gainsmith
