// A recording as text for a spreadsheet: what it was made with, its score, its samples.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "trace/score.h"
#include "trace/trace_state.h"

namespace gainsmith {

// A value that the recording was made with ("Kp", "800", "").
struct CopyLine {
  std::string Name;
  std::string Value;
  std::string Unit;
};

// What a window knows of the run behind its picture.
struct RunNotes {
  std::vector<CopyLine> Settings;
  std::vector<ScoreLine> Score;
};

// A column of samples; cells behind the last value stay empty. Values are divided by `Divisor`.
struct SampleColumn {
  std::string Heading;
  std::span<const float> Values;
  double Divisor = 1;
};

// Lines of name, value and unit, an empty line, the headings and one line for each sample; cells
// are parted by tabs. The first column is headed `indexHeading` and counts in steps of
// `indexStep`.
std::string CopyText(const RunNotes& notes, const std::string& indexHeading, double indexStep,
                     std::span<const SampleColumn> columns);

// The last capture with all its channels. Of a test's move (`ofMove`, three channels) the position
// reference and feedback, too: a scope does not know them.
std::string RecordingText(const TraceState& trace, int channelCount, bool ofMove, RunNotes notes);

// The score of the move in the last capture, with its peak current; `band` is one in-position band
// in pulses. Where nothing moved, the peak current alone.
std::vector<ScoreLine> MoveScoreOf(const TraceState& trace, double band);
// The score of a run up to `topSpeedRpm` that is held for `heldMs`, with its peak current.
std::vector<ScoreLine> RunScoreOf(const TraceState& trace, double topSpeedRpm, double heldMs);
// The peaks of whatever the scope saw.
std::vector<ScoreLine> PeaksOf(const TraceState& trace);

}  // namespace gainsmith
