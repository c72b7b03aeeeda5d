// step and move: they move the motor.
#include <QJsonArray>

#include "console/json_text.h"
#include "console/recordings.h"
#include "console/verbs.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

// --- step

std::string StepCsv(const Form1& window) {
  std::string csv = "sample,current_a\n";
  int sample = 0;
  for (const float amperes : window.Plot.MeasuredCurrent) {
    csv += std::to_string(sample++) + "," + PlainText(amperes) + "\n";
  }
  return csv;
}

void PrintStep(Session& session, const Form1& window) {
  const StepScore score =
      ScoreStep(window.Plot.MeasuredCurrent, 0, static_cast<double>(window.TestCurrentA), 1);
  const std::vector<ScoreLine> lines = ScoreLines(score, "A", "samples");
  if (session.Given().Json) {
    QJsonObject object = ScoreObject(lines);
    object.insert(QStringLiteral("test_current_a"), JsonNumber(window.TestCurrentA));
    session.Screen().Print(JsonText(object));
  } else {
    session.Screen().Print(ScoreText(lines));
  }
}

// --- move

struct FieldOption {
  const char* Name;
  Form3::Field Index;
};

constexpr FieldOption MoveFields[] = {
    {"velocity", Form3::Velocity},
    {"acceleration", Form3::Acceleration},
    {"distance", Form3::Distance},
    {"interval", Form3::Interval},
    {"repeat", Form3::RepeatTimes},
    {"position-kp", Form3::PositionKp},
    {"position-kd", Form3::PositionKd},
    {"velocity-kp", Form3::VelocityKp},
    {"velocity-ki", Form3::VelocityKi},
    {"kvff", Form3::Kvff},
    {"low-position-kp", Form3::LowPositionKp},
    {"low-position-ki", Form3::LowPositionKi},
    {"low-position-kd", Form3::LowPositionKd},
    {"low-velocity-kp", Form3::LowVelocityKp},
    {"low-velocity-ki", Form3::LowVelocityKi},
};

// The position window from its opening to its closing, and what a signal does to it.
class MoveTest {
 public:
  explicit MoveTest(Session& session) : session_(session), window_(session.tool.form3) {}

  ExitStatus Run();

 private:
  bool FillFields();
  // Presses Stop where the button says so: a second press would start the motor.
  void PressStop();
  void Interrupt();
  // After a signal, closes the window once the drive has taken the stop word, so that nothing waits
  // for the recording that the Stop asks for. False: not yet.
  bool CloseWhenStopped();
  void TakeRecording();
  void PrintScores();

  Session& session_;
  Form3& window_;
  std::vector<Recording> recordings_;
};

bool MoveTest::FillFields() {
  for (const FieldOption& option : MoveFields) {
    if (!session_.EnterGiven(option.Name, window_.Text1[option.Index])) return false;
  }
  if (!session_.EnterGiven("kaff", window_.Text5)) return false;
  const std::string* traceMs = session_.Given().Field("trace-ms");
  return traceMs == nullptr || session_.Choose(window_.Combo1, *traceMs + "ms", "--trace-ms");
}

void MoveTest::PressStop() {
  if (window_.Loaded && !window_.Run.StopRequested()) {
    window_.Command1[Form3::MainStart].OnClick();
  }
}

void MoveTest::Interrupt() {
  if (window_.Run.StopRequested()) {
    // The motor is not running yet: behind a closed window it is not started.
    session_.world.Unload(window_);
  } else {
    PressStop();
  }
}

bool MoveTest::CloseWhenStopped() {
  const auto& commands = session_.tool.link.Known().Commands;
  const auto last = commands.find(Register::PositionCommand);
  if (last == commands.end() || last->second.Word != 0 || !last->second.Acknowledged) return false;
  session_.world.Unload(window_);
  return true;
}

void MoveTest::TakeRecording() {
  recordings_.push_back(RecordingOf(session_.tool.trace));
  session_.Screen().Note("Recording " + std::to_string(recordings_.size()));
}

void MoveTest::PrintScores() {
  const double band = static_cast<double>(session_.tool.parameters[Slot::InPosition]);
  QJsonArray all;
  int number = 0;
  for (const Recording& recording : recordings_) {
    ++number;
    const auto score = ScoreMove(recording.Error, recording.Reference, band, recording.SampleMs);
    if (!score) continue;
    const std::vector<ScoreLine> lines = ScoreLines(*score, "pulses", "ms");
    if (!session_.Given().Json) {
      session_.Screen().Print(std::to_string(number) + ": " + ScoreText(lines));
      continue;
    }
    QJsonObject object = ScoreObject(lines);
    object.insert(QStringLiteral("recording"), number);
    object.insert(QStringLiteral("in_position_pulses"), band);
    all.push_back(object);
  }
  if (session_.Given().Json) session_.Screen().Print(JsonText(all));
}

ExitStatus MoveTest::Run() {
  session_.OnInterrupt = [this] { Interrupt(); };
  session_.AfterInterrupt = [this] { return CloseWhenStopped(); };
  session_.Press(session_.tool.mdiForm1.mnuPositionLoop);
  // A window that could not read its gains says so by a timer.
  session_.WaitFor([this] { return !window_.err.Enabled(); });
  const bool filled = !session_.Ended() && window_.Loaded && FillFields();
  PictureWatch pictures(window_.Plot.Picture1);
  if (filled && session_.Press(window_.Command1[Form3::MainStart]) && window_.Run.TraceUploaded) {
    TakeRecording();
    pictures.Forget();
    session_.WaitFor([&] {
      if (pictures.Changed()) TakeRecording();
      return !window_.Loaded || !window_.DataSource.Enabled();
    });
  }
  PressStop();
  if (session_.Interrupted()) session_.TellStop(Register::PositionCommand);
  session_.OnInterrupt = {};
  session_.AfterInterrupt = {};
  if (recordings_.empty()) return session_.Status();
  PrintScores();
  WriteCsv(session_, CsvOf(recordings_, true));
  return session_.Status();
}

}  // namespace

ExitStatus Step(Session& session) {
  const Options& given = session.Given();
  if (!session.Consent("A current of " + given.Amperes +
                       " A will be sent through the motor, which may move. Go on?") ||
      !session.Connect()) {
    return session.Status();
  }
  Form1& window = session.tool.form1;
  // Closing the window ends the drive's test mode.
  const auto close = [&] {
    if (window.Loaded) session.world.Unload(window);
  };
  const auto& commands = session.tool.link.Known().Commands;
  session.OnInterrupt = close;
  session.OnEnd = close;
  const bool fired = session.Press(session.tool.mdiForm1.MnuCurrentLoop) &&
                     session.Enter(window.Text1[Form1::TestCurrent], given.Amperes) &&
                     session.EnterGiven("kp", window.Text1[Form1::Kp]) &&
                     session.EnterGiven("ki", window.Text1[Form1::Ki]) &&
                     session.Press(window.cmdTest) && window.Plot.HasTrace();
  session.OnEnd = {};
  // A step that nobody heard of again may have been fired.
  if (fired || commands.contains(Register::CurrentStep)) close();
  const auto last = commands.find(Register::CurrentStep);
  const bool stopped =
      last != commands.end() && last->second.Word == 0 && last->second.Acknowledged;
  if (session.Interrupted() || (session.Ended() && stopped)) {
    session.TellStop(Register::CurrentStep);
  }
  session.OnInterrupt = {};
  if (!fired || session.Ended()) return session.Status();
  PrintStep(session, window);
  WriteCsv(session, StepCsv(window));
  return session.Status();
}

ExitStatus Move(Session& session) {
  if (!session.Consent("The motor will move forth and back. Is the axis clear?") ||
      !session.Connect()) {
    return session.Status();
  }
  return MoveTest(session).Run();
}

}  // namespace gainsmith
