#include "trace/score.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace gainsmith {
namespace {

constexpr double SettledFraction = 0.05;

// The samples of an answer as fractions of its step: 0 is where it began, 1 where it shall end.
class Fractions {
 public:
  Fractions(std::span<const float> values, double from, double to)
      : values_(values), from_(from), step_(to - from) {}
  [[nodiscard]] std::size_t Count() const { return values_.size(); }
  [[nodiscard]] double At(std::size_t i) const { return (values_[i] - from_) / step_; }

  // Where the answer first crosses `level`, in samples.
  [[nodiscard]] std::optional<double> Crossing(double level) const {
    if (At(0) >= level) return 0;
    for (std::size_t i = 1; i < Count(); ++i) {
      if (At(i) < level) continue;
      const double below = At(i - 1);
      return static_cast<double>(i - 1) + (level - below) / (At(i) - below);
    }
    return std::nullopt;
  }

 private:
  std::span<const float> values_;
  double from_;
  double step_;
};

// The first index in [begin, end) from which on all are `good`; nothing when the last is not.
template <typename Good>
std::optional<std::size_t> FirstOfGoodEnd(std::size_t begin, std::size_t end, const Good& good) {
  std::size_t first = end;
  while (first > begin && good(first - 1)) --first;
  return first == end ? std::nullopt : std::optional(first);
}

double MeanOfLastTenth(std::span<const float> values) {
  const std::size_t count = std::max<std::size_t>(values.size() / 10, 1);
  double sum = 0;
  for (const float value : values.last(count)) sum += value;
  return sum / static_cast<double>(count);
}

// A move in the samples of a reference: it changes from Begin to End, and again from Next on.
struct Motion {
  std::size_t Begin;
  std::size_t End;
  std::size_t Next;
};

std::optional<Motion> FindMotion(std::span<const float> reference) {
  const auto differ = [](float a, float b) { return a != b; };
  const auto same = [](float a, float b) { return a == b; };
  const auto begin = std::adjacent_find(reference.begin(), reference.end(), differ);
  if (begin == reference.end()) return std::nullopt;
  const auto end = std::adjacent_find(begin, reference.end(), same);
  const auto next = std::adjacent_find(end, reference.end(), differ);
  const auto index = [&](auto place) {
    return static_cast<std::size_t>(place - reference.begin());
  };
  // The last sample at rest still belongs to the rest.
  return Motion{index(begin), index(end), next == reference.end() ? index(next) : index(next) + 1};
}

}  // namespace

double PeakOf(std::span<const float> values) {
  double peak = 0;
  for (const float value : values) peak = std::max(peak, std::abs(static_cast<double>(value)));
  return peak;
}

StepScore ScoreStep(std::span<const float> values, double from, double to, double samplePeriod) {
  assert(!values.empty() && from != to && samplePeriod > 0);
  constexpr double RiseFrom = 0.1;
  constexpr double RiseTo = 0.9;
  const Fractions answer(values, from, to);
  StepScore score;
  const auto riseBegin = answer.Crossing(RiseFrom);
  const auto riseEnd = answer.Crossing(RiseTo);
  if (riseBegin && riseEnd) score.RiseTime = (*riseEnd - *riseBegin) * samplePeriod;

  for (std::size_t i = 0; i < answer.Count(); ++i) {
    score.OvershootPercent = std::max(score.OvershootPercent, (answer.At(i) - 1) * 100);
  }
  const auto settled = FirstOfGoodEnd(0, answer.Count(), [&](std::size_t i) {
    return std::abs(values[i] - to) <= SettledFraction * std::abs(to - from);
  });
  if (settled) score.SettlingTime = static_cast<double>(*settled) * samplePeriod;
  score.SteadyError = to - MeanOfLastTenth(values);
  score.Peak = PeakOf(values);
  return score;
}

std::optional<MoveScore> ScoreMove(std::span<const float> error, std::span<const float> reference,
                                   double band, double samplePeriod) {
  assert(error.size() == reference.size() && band >= 0 && samplePeriod > 0);
  const auto motion = FindMotion(reference);
  if (!motion) return std::nullopt;
  MoveScore score;
  score.PeakError = PeakOf(error.subspan(motion->Begin, motion->Next - motion->Begin));
  // The sample at the end of the profile is the first one at rest.
  const auto moving = error.subspan(motion->Begin, motion->End - motion->Begin);
  double squares = 0;
  for (const float value : moving) squares += static_cast<double>(value) * value;
  score.RmsError = std::sqrt(squares / static_cast<double>(moving.size()));
  const auto settled = FirstOfGoodEnd(motion->End, motion->Next,
                                      [&](std::size_t i) { return std::abs(error[i]) <= band; });
  if (settled) {
    score.SettlingTime = static_cast<double>(*settled - motion->End) * samplePeriod;
  }
  return score;
}

std::vector<ScoreLine> ScoreLines(const StepScore& score, const std::string& valueUnit,
                                  const std::string& timeUnit) {
  return {{"Rise time 10-90 %", score.RiseTime, timeUnit},
          {"Overshoot", score.OvershootPercent, "%"},
          {"Settling time into 5 %", score.SettlingTime, timeUnit},
          {"Steady error", score.SteadyError, valueUnit},
          {"Peak", score.Peak, valueUnit}};
}

std::vector<ScoreLine> ScoreLines(const MoveScore& score, const std::string& valueUnit,
                                  const std::string& timeUnit) {
  return {{"Peak error", score.PeakError, valueUnit},
          {"RMS error while moving", score.RmsError, valueUnit},
          {"Settling time after the profile", score.SettlingTime, timeUnit}};
}

}  // namespace gainsmith
