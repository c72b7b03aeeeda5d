// Scores: how good a recorded answer is, in numbers. Pure functions of samples, for the plots' copy
// and for whoever judges a tuning without a screen.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gainsmith {

// The answer to a step. Times are in the unit of the sample period that was given, everything else
// in the unit of the samples.
struct StepScore {
  // From 10 % to 90 % of the step, both where the line between two samples first crosses them;
  // nothing when the answer never gets as far.
  std::optional<double> RiseTime;
  // How far the answer goes beyond the step's end, in percent of the step; 0: nowhere.
  double OvershootPercent = 0;
  // From the step to the first sample from which on all lie within 5 % of the step around its end;
  // nothing when even the last one does not.
  std::optional<double> SettlingTime;
  // The step's end minus the mean of the last tenth of the samples.
  double SteadyError = 0;
  // The largest magnitude of all samples.
  double Peak = 0;
};

// Scores `values`, the samples from the step on, at least one; sample 0 is the moment of the step
// from `from` to `to`, which differ. All numbers are finite and `samplePeriod` is above 0. The
// span ends where the step is taken back: what follows belongs to the next one.
StepScore ScoreStep(std::span<const float> values, double from, double to, double samplePeriod);

// The following of a move. Errors are in the unit of the samples, times in that of the sample
// period.
struct MoveScore {
  // The largest magnitude of the error from the move's begin until the next move begins.
  double PeakError = 0;
  // Root of the mean square of the error while the reference moves.
  double RmsError = 0;
  // From the end of the profile to the first sample from which on the error stays within the band,
  // until the next move begins; nothing when even the last sample before it does not, or when the
  // profile does not end in the recording.
  std::optional<double> SettlingTime;
};

// Scores the first move in a recording: `reference` rests, moves, and rests again, and `error`
// holds as many samples. `band` is one in-position band either way (0 or more), `samplePeriod` is
// above 0. Nothing when the reference never moves.
std::optional<MoveScore> ScoreMove(std::span<const float> error, std::span<const float> reference,
                                   double band, double samplePeriod);

// The largest magnitude of the samples; 0 for none.
double PeakOf(std::span<const float> values);

// One line of a score as a user reads it. Without a value the answer has none ("never settles").
struct ScoreLine {
  std::string Name;
  std::optional<double> Value;
  std::string Unit;
};

std::vector<ScoreLine> ScoreLines(const StepScore& score, const std::string& valueUnit,
                                  const std::string& timeUnit);
std::vector<ScoreLine> ScoreLines(const MoveScore& score, const std::string& valueUnit,
                                  const std::string& timeUnit);

}  // namespace gainsmith
