// Recordings as the verbs keep, print and score them.
#pragma once

#include <QJsonObject>
#include <QString>
#include <string>
#include <vector>

#include "console/session.h"
#include "trace/score.h"
#include "trace/trace_state.h"

namespace gainsmith {

// The samples of one capture as it was shown, in pulses, rpm and mA.
struct Recording {
  double SampleMs = 0;
  std::vector<float> Reference, Error, Velocity, Current;
};

Recording RecordingOf(const TraceState& trace);

// One line for each sample of each recording. The reference is left out of those of the scope,
// which knows of no motion.
std::string CsvOf(const std::vector<Recording>& recordings, bool withReference);

// Score lines as "peak error 12 pulses", and as an object with units in the names.
std::string ScoreText(const std::vector<ScoreLine>& lines);
QJsonObject ScoreObject(const std::vector<ScoreLine>& lines);

// Writes the CSV file of the command line, where it asks for one. False when that failed.
bool WriteCsv(Session& session, const std::string& csv);

// Tells the verb of each picture that a plot draws of a new recording: to be asked after each wait.
class PictureWatch {
 public:
  explicit PictureWatch(const PictureBox& picture) : picture_(picture) { Forget(); }
  // The picture was drawn since the last call, or since Forget.
  bool Changed() {
    const bool changed = picture_.Revision != seen_;
    Forget();
    return changed;
  }
  void Forget() { seen_ = picture_.Revision; }

 private:
  const PictureBox& picture_;
  std::uint64_t seen_ = 0;
};

}  // namespace gainsmith
