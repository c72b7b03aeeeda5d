#include "console/recordings.h"

#include <cmath>

#include "console/json_text.h"
#include "host/files.h"
#include "host/qt_text.h"
#include "platform/number_text.h"

namespace gainsmith {
namespace {

// What the recorder's ticks take.
constexpr double TickMs = 0.5;

std::vector<float> Taken(const TraceArray& trace, int samples) {
  return {trace.begin(), trace.begin() + samples};
}

// "Rise time 10-90 %" in samples is "rise_time_10_to_90_percent_samples".
QString KeyOf(const ScoreLine& line) {
  QString key = ToQt(line.Name);
  if (!line.Unit.empty()) key += u' ' + ToQt(line.Unit);
  key = key.toLower();
  key.replace(u'-', QStringLiteral("_to_"));
  key.replace(u'%', QStringLiteral("percent"));
  return key.replace(u' ', u'_');
}

// Four digits say all that a score can: the samples have no more.
std::string Shortened(double value) {
  constexpr int Digits = 4;
  const bool whole = std::fabs(value) >= 1000;
  return FromQt(QString::number(value, whole ? 'f' : 'g', whole ? 0 : Digits));
}

}  // namespace

Recording RecordingOf(const TraceState& trace) {
  const int samples = trace.TraceSamples;
  return {static_cast<double>(trace.SampleDivider) * TickMs, Taken(trace.PRefTrace, samples),
          Taken(trace.PErrTrace, samples), Taken(trace.VBakTrace, samples),
          Taken(trace.IBakTrace, samples)};
}

std::string CsvOf(const std::vector<Recording>& recordings, bool withReference) {
  std::string csv = "recording,time_ms,";
  if (withReference) csv += "position_reference_pulses,";
  csv += "position_error_pulses,velocity_rpm,current_ma\n";
  int number = 0;
  for (const Recording& recording : recordings) {
    ++number;
    for (std::size_t i = 0; i < recording.Error.size(); ++i) {
      const double timeMs = static_cast<double>(i) * recording.SampleMs;
      csv += std::to_string(number) + "," + PlainText(static_cast<float>(timeMs)) + ",";
      if (withReference) csv += PlainText(recording.Reference[i]) + ",";
      csv += PlainText(recording.Error[i]) + "," + PlainText(recording.Velocity[i]) + "," +
             PlainText(recording.Current[i]) + "\n";
    }
  }
  return csv;
}

std::string ScoreText(const std::vector<ScoreLine>& lines) {
  std::string text;
  for (const ScoreLine& line : lines) {
    text += text.empty() ? "" : ", ";
    text += line.Name + " ";
    text += line.Value ? Shortened(*line.Value) + " " + line.Unit : "never";
  }
  return text;
}

QJsonObject ScoreObject(const std::vector<ScoreLine>& lines) {
  QJsonObject object;
  for (const ScoreLine& line : lines) {
    object.insert(KeyOf(line), line.Value ? QJsonValue(JsonNumber(static_cast<float>(*line.Value)))
                                          : QJsonValue());
  }
  return object;
}

bool WriteCsv(Session& session, const std::string& csv) {
  const std::string& path = session.Given().Csv;
  if (path.empty()) return true;
  if (WriteWholeFile(path, csv)) {
    session.Screen().Note("The samples are in " + path);
    return true;
  }
  session.End(ExitStatus::Trouble, path + " could not be written.");
  return false;
}

}  // namespace gainsmith
