// The frames of gainsmithctl are those of the tool: the same work in the virtual world sends them,
// too.
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "app/bench.h"
#include "console/shell_run.h"

namespace gainsmith::test {
namespace {

// What of a session's frames real time has a say in: how often a recorder is asked, and how many
// recordings fit into a motion. These count once, and so do frames that were sent again.
Texts Compared(const Texts& frames) {
  Texts compared;
  for (const std::string& frame : frames) {
    if (!compared.empty() && compared.back() == frame) continue;
    compared.push_back(frame);
    const auto size = static_cast<std::ptrdiff_t>(compared.size());
    constexpr std::ptrdiff_t cycle = 14;  // arming, polls, twelve blocks
    if (size < 2 * cycle || frame != "R 806x50") continue;
    if (std::equal(compared.end() - cycle, compared.end(), compared.end() - 2 * cycle)) {
      compared.resize(compared.size() - cycle);
    }
  }
  return compared;
}

// How many frames had to be sent again, because a busy machine was late for their replies, by the
// program's own count.
std::size_t SentAgain(const std::string& told) {
  const std::string words = "Frames sent again: ";
  const auto at = told.find(words);
  return at == std::string::npos ? 0 : std::stoul(told.substr(at + words.size()));
}

std::string WithGain(const std::string& factory) {
  return "0& 410 " + factory.substr(factory.find('\r'));
}

struct Session {
  const char* Name;
  const char* Command;
  std::function<void(Bench&)> ByHand;
  // It asks and records as often as real time permits.
  bool WaitsForRecordings = false;
};

void Load(Bench& bench) {
  bench.world.Files["/b.tvd"] = WithGain(bench.world.Files["/program/default.ini"]);
  bench.world.ChosenFiles = {{ChosenFile::Outcome::Chosen, "/b.tvd"}};
  bench.user.Click(bench.tool.mdiForm1.mnuFileOpen);
  bench.tool.mdiForm1.ReadFromDrive.OnClick();
}

void Step(Bench& bench) {
  Form1& window = bench.tool.form1;
  bench.user.Click(bench.tool.mdiForm1.MnuCurrentLoop);
  bench.user.Type(window.Text1[Form1::TestCurrent], "0.8");
  bench.user.Type(window.Text1[Form1::Kp], "420");
  bench.user.Click(window.cmdTest);
  bench.user.Close(window);
}

void Move(Bench& bench) {
  Form3& window = bench.tool.form3;
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  bench.user.Type(window.Text1[Form3::Distance], "10000");
  bench.user.Type(window.Text1[Form3::VelocityKp], "610");
  bench.user.Choose(window.Combo1, 9);  // 1000ms
  bench.user.Click(window.Command1[Form3::MainStart]);
  bench.world.RunUntil([&] { return !window.DataSource.Enabled(); }, 60'000);
  bench.user.Click(window.Command1[Form3::MainStart]);
}

const std::vector<Session>& Sessions() {
  static const std::vector<Session> sessions{
      {"show", "ctl show", [](Bench&) {}},
      {"load", "sed 's/^0&.*/0\\& 410 /' factory.tvd >b.tvd; ctl load b.tvd --yes", Load},
      {"step", "ctl step 0.8 --kp 420 --yes", Step},
      {"move", "ctl move --distance 10000 --velocity-kp 610 --trace-ms 1000 --yes", Move, true},
  };
  return sessions;
}

Runs& frameRuns = Runs::Begin([](Runs& runs) {
  for (const Session& session : Sessions()) runs.Add("", session.Command);
});

TEST(FramesTest, AreThoseOfTheTool) {
  for (std::size_t i = 0; i < Sessions().size(); ++i) {
    SCOPED_TRACE(Sessions()[i].Name);
    Bench bench;
    bench.Connect();
    Sessions()[i].ByHand(bench);
    EXPECT_EQ(frameRuns[i].Status(), 0) << frameRuns[i].Text("err");
    Texts frames;
    std::istringstream lines(frameRuns[i].Text("frames"));
    for (std::string line; std::getline(lines, line);) frames.push_back(line);
    const Texts wanted = bench.TakeFrames();
    EXPECT_EQ(Compared(frames), Compared(wanted));
    if (Sessions()[i].WaitsForRecordings) continue;
    // The same frames, each exactly as often: with none sent again, the same list.
    EXPECT_EQ(frames.size(), wanted.size() + SentAgain(frameRuns[i].Text("err")));
  }
}

}  // namespace
}  // namespace gainsmith::test
