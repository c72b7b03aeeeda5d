// The guide's tuning steps, done in virtual time: its tables and pictures promise these answers.

#include <cmath>
#include <sstream>

#include "bench.h"

namespace gainsmith::test {
namespace {

constexpr std::int64_t PatienceMs = 60'000;

// The rows of the guide's table that begins with this heading, as texts without blanks around.
std::vector<Texts> TableOf(const std::string& heading) {
  std::ifstream guide(GUIDE);
  std::string line;
  while (std::getline(guide, line) && !line.starts_with(heading)) {
  }
  std::getline(guide, line);
  std::vector<Texts> rows;
  while (std::getline(guide, line) && line.starts_with("| ")) {
    rows.emplace_back();
    std::istringstream cells(line.substr(1));
    for (std::string cell; std::getline(cells, cell, '|');) {
      rows.back().push_back(cell.substr(1, cell.size() - 2));
    }
  }
  EXPECT_GE(rows.size(), 3) << "The guide has no table \"" << heading << "\"";
  return rows;
}

// The score of the last recording, as Ctrl+C in its picture copies it.
class Score {
 public:
  explicit Score(const PictureBox& picture) {
    std::istringstream copied(picture.OnCopy());
    for (std::string line; std::getline(copied, line) && !line.empty();) {
      std::istringstream cells(line);
      std::string name;
      std::getline(cells, name, '\t');
      std::getline(cells, values_[name], '\t');
    }
  }
  // The cell rounds the value, and may be off by one in its last digit: when a recording begins is
  // a matter of milliseconds.
  void ExpectIs(const std::string& cell, const std::string& name) const {
    const std::string value = values_.at(name);
    if (cell.starts_with("never")) {
      EXPECT_EQ(value, "never") << name;
      return;
    }
    const std::string number = cell == "none" ? "0" : cell.substr(0, cell.find(' '));
    const std::size_t point = number.find('.');
    const std::size_t decimals = point == std::string::npos ? 0 : number.size() - point - 1;
    const double lastDigit = std::pow(10, -static_cast<double>(decimals));
    EXPECT_NEAR(std::stod(value), std::stod(number), lastDigit) << name;
  }

 private:
  std::map<std::string, std::string> values_;
};

template <typename TuningWindow>
void RunToTheEndOfThePlan(Bench& bench, TuningWindow& window, Button& start) {
  bench.user.Click(start);
  EXPECT_TRUE(bench.world.RunUntil([&] { return !window.DataSource.Enabled(); }, PatienceMs));
  bench.user.Click(start);
  EXPECT_EQ(start.Caption, "Start");
}

TEST(Guide, CurrentLoop) {
  Bench bench;
  bench.Connect();
  bench.user.Click(bench.tool.mdiForm1.MnuCurrentLoop);
  Form1& window = bench.tool.form1;
  bench.user.Type(window.Text1[2], "2");
  for (const Texts& row : TableOf("| Kp | Ki | Rise | Overshoot | Settles |")) {
    SCOPED_TRACE(row.back());
    bench.user.Type(window.Text1[0], row[0]);
    bench.user.Type(window.Text1[1], row[1]);
    bench.user.Click(window.cmdTest);
    const Score score(window.Picture1);
    score.ExpectIs(row[2], "Rise time 10-90 %");
    score.ExpectIs(row[3], "Overshoot");
    score.ExpectIs(row[4], "Settling time into 5 %");
    const std::size_t missing = row[4].find(", ");
    if (missing != std::string::npos) score.ExpectIs(row[4].substr(missing + 2), "Steady error");
  }
}

TEST(Guide, VelocityLoop) {
  Bench bench({}, Edition::ServiceBench);
  bench.Connect();
  bench.user.Click(bench.tool.benchMenu->mnuVelocityLoop);
  velocityModeTune& window = bench.tool.velocityMode;
  bench.user.Choose(window.Combo1, 9);  // 1000 ms
  for (const Texts& row : TableOf("| Vp | Vi | Overshoot | Settles | Peak current |")) {
    SCOPED_TRACE(row.back());
    bench.user.Type(window.Text1[velocityModeTune::Vp], row[0]);
    bench.user.Enter(window.Text1[velocityModeTune::Vp]);
    bench.user.Type(window.Text1[velocityModeTune::Vi], row[1]);
    bench.user.Enter(window.Text1[velocityModeTune::Vi]);
    RunToTheEndOfThePlan(bench, window, window.Command1);
    const Score score(window.Plot.Picture1);
    score.ExpectIs(row[2], "Overshoot");
    score.ExpectIs(row[3], "Settling time into 5 %");
    score.ExpectIs(row[4], "Peak current");
  }
}

TEST(Guide, PositionLoop) {
  Bench bench;
  bench.Connect();
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  Form3& window = bench.tool.form3;
  bench.user.Choose(window.Combo1, 9);  // 1000 ms
  bench.user.Type(window.Text1[Form3::Distance], "10000");
  for (const Texts& row : TableOf("| Kp | Kvff | Peak error | Mean error (RMS) in motion |")) {
    SCOPED_TRACE(row.back());
    bench.user.Type(window.Text1[Form3::PositionKp], row[0]);
    bench.user.Type(window.Text1[Form3::Kvff], row[1]);
    RunToTheEndOfThePlan(bench, window, window.Command1[Form3::MainStart]);
    const Score score(window.Plot.Picture1);
    score.ExpectIs(row[2], "Peak error");
    score.ExpectIs(row[3], "RMS error while moving");
    score.ExpectIs(row[4], "Peak current");
  }
}

// A sitting at the drive whose coupling swings.
struct Resonance : Bench {
  static constexpr int Line = 17;  // bin of the line, 266 Hz

  Resonance() : Bench({.Motor = *sim::FindMotorPreset("springy-coupling")}) {
    Connect();
    user.Click(tool.mdiForm1.mnuPositionLoop);
    user.Type(tool.form3.Text1[Form3::VelocityKp], "1300");
    user.Click(tool.form3.Command1[Form3::MainStart]);
    user.Click(tool.form3.Command1[Form3::MainStart]);
    EXPECT_TRUE(world.RunUntil([&] { return tool.form3.Run.MayStart(); }, PatienceMs));
    user.Close(tool.form3);
  }
  // The spectrum of a few traces while "move 5" turns the motor.
  FftArray Spectrum() {
    device.Drive.StartMotion(world.NowMs() * 1000, {.FrequencyHz = 5});
    user.Click(tool.mdiForm1.mnuScope);
    Form5& scope = tool.form5;
    user.Choose(scope.Combo1, 0);  // 100 ms
    user.Click(scope.Command1);
    world.RunFor(5000);
    user.Click(scope.Command1);
    EXPECT_TRUE(world.RunUntil([&] { return scope.Check2.Enabled; }, PatienceMs));
    user.Click(scope.Check2);
    user.Close(scope);
    return tool.trace.Spectrum;
  }
  // Saves the settings, gives these lines of the file other values, switches the drive off and on,
  // and opens the file.
  void ReloadWith(const std::map<std::string, std::string>& values) {
    const ChosenFile file{ChosenFile::Outcome::Chosen, "/axis.tvd"};
    world.ChosenFiles = {file, file};
    user.Click(tool.mdiForm1.mnuSaveAs);
    std::string& text = world.Files[file.Path];
    for (const auto& [key, value] : values) {
      const std::size_t at = text.find("\n" + key + "& ") + key.size() + 3;
      text.replace(at, text.find(' ', at) - at, value);
    }
    device.Drive.Reset(world.NowMs() * 1000);
    world.RunFor(1000);
    user.Click(tool.mdiForm1.mnuFileOpen);
  }
};

TEST(Guide, ResonanceAndItsTrap) {
  Resonance bench;
  const FftArray swinging = bench.Spectrum();
  EXPECT_EQ(LargestBin(swinging), swinging[Resonance::Line]);
  EXPECT_GT(swinging[Resonance::Line], 15'000);
  bench.TakeMessages();
  bench.ReloadWith({{"F0", "266"}, {"EE", "20"}});
  EXPECT_EQ(bench.TakeMessages(), (Texts{"Configuration settings from the source file have been "
                                         "loaded successfully."}));
  const FftArray trapped = bench.Spectrum();
  EXPECT_LT(trapped[Resonance::Line], 1000);
}

}  // namespace
}  // namespace gainsmith::test
