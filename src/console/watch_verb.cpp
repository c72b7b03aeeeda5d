// watch: the scope's cycle.
#include "console/json_text.h"
#include "console/recordings.h"
#include "console/verbs.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

// False when nobody takes what is printed: a closed pipe, a full disk.
bool PrintPeaks(Session& session, int number, const Recording& recording) {
  const std::vector<ScoreLine> lines{{"Peak position error", PeakOf(recording.Error), "pulses"},
                                     {"Peak velocity", PeakOf(recording.Velocity), "rpm"},
                                     {"Peak current", PeakOf(recording.Current), "mA"}};
  if (session.Given().Json) {
    QJsonObject object = ScoreObject(lines);
    object.insert(QStringLiteral("recording"), number);
    session.Screen().Print(JsonLine(object));
  } else {
    session.Screen().Print(std::to_string(number) + ": " + ScoreText(lines));
  }
  // Whoever reads along sees each recording as it comes.
  return session.Screen().Flush();
}

}  // namespace

ExitStatus Watch(Session& session) {
  const Options& given = session.Given();
  Form5& scope = session.tool.form5;
  if (!session.Connect()) return session.Status();
  const auto pressStop = [&] {
    if (scope.Loaded && scope.Command1.Caption == Form5::StopCaption) scope.Command1.OnClick();
  };
  session.OnInterrupt = pressStop;
  session.Press(session.tool.mdiForm1.mnuScope);
  session.WaitFor([&] { return !scope.err.Enabled(); });
  const std::string* traceMs = given.Field("trace-ms");
  if (traceMs != nullptr) session.Choose(scope.Combo1, *traceMs + "ms", "--trace-ms");

  std::vector<Recording> recordings;
  int count = 0;
  bool heard = true;
  PictureWatch pictures(scope.Plot.Picture1);
  if (session.Press(scope.Command1)) {
    session.WaitFor([&] {
      if (pictures.Changed()) {
        const Recording recording = RecordingOf(session.tool.trace);
        heard = PrintPeaks(session, ++count, recording);
        if (!given.Csv.empty()) recordings.push_back(recording);
      }
      return !heard || !scope.Loaded || (given.Count > 0 && count >= given.Count);
    });
  }
  pressStop();
  session.OnInterrupt = {};
  if (!recordings.empty()) WriteCsv(session, CsvOf(recordings, false));
  return session.Status();
}

}  // namespace gainsmith
