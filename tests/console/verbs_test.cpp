// Every verb once well and once with each kind of trouble: status, output and the last words to
// the motor.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "console/shell_run.h"

namespace gainsmith::test {
namespace {

enum Status { Done, Different, Trouble, Refused, LostLink, Interrupted };

struct Case {
  const char* Name;
  const char* SimOptions;
  const char* Script;
  Status Ends;
  // What standard output, standard error and the list of frames contain; "!" before it: and do
  // not.
  std::vector<const char*> Out, Err, Frames;
};

const std::vector<Case>& Cases() {
  static const std::vector<Case> cases{
      {"Ports", "", "ctl ports --json", Done, {"\"port\": \"COM12\"", "\"may_open\""}, {}, {}},
      {"DoctorWell", "", "ctl doctor", Done, {"answers at 38400 baud as device 1"}, {}, {"R 253"}},
      {"DoctorNoPort", "", "rm D; ctl doctor", Trouble, {"FAIL  the port exists"}, {}, {"!R"}},
      {"DoctorNoSerialPort", "", "rm D; echo >D; ctl doctor", Trouble, {"FAIL  it opens"}, {}, {}},
      {"DoctorSilent",
       "--fault silent",
       "ctl doctor",
       LostLink,
       {"ok    it opens", "FAIL  a drive"},
       {},
       {}},
      {"Scan",
       "--address 7",
       "ctl doctor --scan --numbers 6 7",
       Done,
       {"-     9600 baud, device 6", "ok    9600 baud, device 7: answers"},
       {},
       {"!W"}},

      {"Show",
       "",
       "ctl show --json",
       Done,
       {"\"unit\": \"mH\"", "\"name\": \"Signals and mode: Operating mode\""},
       {"!e"},
       {"!W"}},
      {"ShowNoPort", "", "rm D; ctl show", Trouble, {"!Kp"}, {"./D does not exist"}, {"!R"}},
      {"ShowSilent",
       "--fault silent",
       "ctl show",
       LostLink,
       {"!Kp"},
       {"Unable to Communicate"},
       {}},
      {"ShowLost",
       "--fault hang-up:@20",
       "ctl show",
       LostLink,
       {"!Kp"},
       {"No motion was under way"},
       {}},
      {"ShowNoSuchRate", "", "ctl show --baud 1200", Refused, {}, {"9600 to 38400"}, {"!R"}},
      {"ShowFullDisk", "", "ctl show >/dev/full", Trouble, {}, {"Standard output"}, {}},
      {"ShowInterrupted",
       "",
       "ctl_now show & until_seen 'R 33' frames; kill -TERM $!; wait $!",
       Interrupted,
       {"!Kp"},
       {"The connection was closed while settings were read"},
       {"!R 246"}},

      {"SaveAndDiff", "", "(ctl save a.tvd) && ctl diff drive a.tvd", Done, {}, {"0 of 50"}, {}},
      {"SaveKeepsFile",
       "",
       "echo old >a.tvd; (ctl save a.tvd); s=$?; cat a.tvd; exit $s",
       Trouble,
       {"old"},
       {"Say --yes"},
       {}},
      {"SaveNowhere", "", "ctl save nowhere/a.tvd", Trouble, {}, {"Error(s) happened"}, {}},
      {"DiffDiffers",
       "",
       "sed 's/^1F&.*/1F\\& 601 /' factory.tvd >b.tvd; ctl diff factory b.tvd",
       Different,
       {"600 -> 601", "!Kp"},
       {"1 of 50"},
       {"!R"}},
      {"DiffBadFile",
       "",
       "head -n 9 factory.tvd >b.tvd; ctl diff factory b.tvd",
       Trouble,
       {"!->"},
       {"b.tvd can't be read"},
       {"!R"}},

      {"LoadStores",
       "",
       "sed 's/^1F&.*/1F\\& 601 /' factory.tvd >b.tvd; ctl load b.tvd --store --yes",
       Done,
       {"600 -> 601"},
       {"Verified", "Write Completed EEprom!"},
       {"W 31=601", "W 12=1"}},
      {"LoadOnlyShows",
       "",
       "sed 's/^1F&.*/1F\\& 601 /' factory.tvd >b.tvd; ctl load b.tvd --dry-run",
       Done,
       {"600 -> 601"},
       {},
       {"!W"}},
      {"LoadWithoutConsent",
       "",
       "sed 's/^1F&.*/1F\\& 601 /' factory.tvd >b.tvd; ctl load b.tvd",
       Trouble,
       {},
       {"Say --yes"},
       {"!W"}},
      {"LoadBadFile",
       "",
       "head -n 9 factory.tvd >b.tvd; ctl load b.tvd --yes",
       Trouble,
       {},
       {"Fatal error(s) happened"},
       {"!W"}},
      {"LoadLost",
       "--fault hang-up:@60",
       "sed 's/^1F&.*/1F\\& 601 /' factory.tvd >b.tvd; ctl load b.tvd --store --yes",
       LostLink,
       {},
       {"while settings were written", "Nothing was stored"},
       {"W ", "!W 12=1"}},
      {"LoadNotTaken",
       "--fault wrong-echo:@50 --fault wrong-echo:@51 --fault wrong-echo:@52 "
       "--fault wrong-echo:@53",
       "sed 's/^1F&.*/1F\\& 601 /' factory.tvd >b.tvd; ctl load b.tvd --store --yes",
       Done,
       {},
       {"Verified"},
       {"W 12=1"}},
      {"Reset",
       "",
       "ctl reset --yes",
       Done,
       {},
       {"reset to factory default", "Verified"},
       {"W 12=1"}},
      {"ResetWithoutConsent", "", "ctl reset", Trouble, {}, {"Say --yes"}, {"!W"}},

      {"Errors", "", "ctl errors", Done, {}, {"The error log is empty."}, {"R 16x10"}},
      {"ErrorsErase", "", "ctl errors --erase all --yes", Done, {}, {"Erased"}, {"W 16=1"}},
      {"ErrorsWithoutConsent",
       "",
       "ctl errors --erase current",
       Trouble,
       {},
       {"Say --yes"},
       {"!W"}},

      {"StepRefused",
       "",
       "ctl step 9 --yes",
       Refused,
       {},
       {"Test current value should be 1-5 A"},
       {"!W"}},
      {"StepWithoutConsent", "", "ctl step 0.5", Trouble, {}, {"Say --yes"}, {"!R"}},
      {"StepLost",
       "--fault hang-up:@53",
       "ctl step 0.5 --yes",
       LostLink,
       {"!Rise"},
       {},
       {"W 4=512"}},
      {"MoveRefused",
       "",
       "ctl move --velocity 0 --yes",
       Refused,
       {},
       {"Volicty value"},
       {"!W 9=2"}},
      {"MoveTraceRefused",
       "",
       "ctl move --trace-ms 150 --yes",
       Refused,
       {},
       {"100ms to 3000ms"},
       {"!W 9=2"}},
      {"MoveFullDisk",
       "",
       "ulimit -f 1; exec $PROGRAMS/gainsmithctl move --trace-ms 1000 --yes "
       "--port ./D -o m.csv",
       Trouble,
       {"Peak error"},
       {"m.csv could not be written"},
       {}},
      {"MoveInterrupted",
       "",
       "ctl_now move --distance 4000000 --yes & until_seen 'Recording 1' err; kill -INT $!; wait "
       "$!",
       Interrupted,
       {},
       {"The drive took the stop word."},
       {"W 9=0$"}},
      {"MoveInterruptedAtStart",
       "",
       "ctl_now move --distance 4000000 --yes & until_seen 'W 9=2' frames; kill -TERM $!; kill "
       "-INT "
       "$!; "
       "wait $!",
       Interrupted,
       {},
       {"The drive took the stop word."},
       {"W 9=0$"}},
      {"MoveInterruptedBefore",
       "",
       "ctl_now move --distance 4000000 --yes & until_seen 'W 13=' frames; kill -INT $!; wait $!",
       Interrupted,
       {},
       {"The drive took the stop word."},
       {"!W 9=2", "W 9=0"}},
      {"MoveLost",
       "--fault hang-up:@80",
       "ctl move --distance 4000000 --yes",
       LostLink,
       {},
       {"It was last told to run the position test", "emergency stop"},
       {"W 9=2"}},
      {"Watch",
       "",
       "ctl watch --trace-ms 100 --count 2 -o w.csv && wc -l <w.csv",
       Done,
       {"2: Peak position error"},
       {},
       {"!W 9"}},
      {"WatchInterrupted",
       "",
       "ctl_now watch --trace-ms 100 & until_seen '^2:' out; kill -INT $!; wait $!",
       Interrupted,
       {"1: Peak"},
       {"Interrupted."},
       {}},
  };
  return cases;
}

void Expect(const std::vector<const char*>& wanted, const std::string& text) {
  for (const std::string part : wanted) {
    if (part.front() == '!') {
      EXPECT_EQ(text.find(part.substr(1)), std::string::npos) << part << " in\n" << text;
    } else if (part.back() == '$') {
      EXPECT_TRUE(text.ends_with(part.substr(0, part.size() - 1) + "\n")) << part << " in\n"
                                                                          << text;
    } else {
      EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
    }
  }
}

constexpr int FirstGain = 700;
constexpr int Drives = 20;

Runs& tableRuns = Runs::Begin([](Runs& runs) {
  for (const Case& c : Cases()) runs.Add(c.SimOptions, c.Script);
});
Runs& loadRuns = Runs::Begin([](Runs& runs) {
  for (int drive = 0; drive < Drives; ++drive) {
    const std::string gain = std::to_string(FirstGain + drive);
    runs.Add("", "sed 's/^0&.*/0\\& " + gain + " /' factory.tvd >b.tvd; ctl load b.tvd --yes");
  }
});
Runs& scoreRuns = Runs::Begin([](Runs& runs) {
  runs.Add("",
           "(ctl move --trace-ms 2000 --distance 10000 --json --yes -o m.csv) >score.json && "
           "python3 " SCORE_OF_CSV " score.json m.csv");
});

TEST(VerbsTest, EndsAsItShouldWellAndInEachKindOfTrouble) {
  for (std::size_t i = 0; i < Cases().size(); ++i) {
    const Case& c = Cases()[i];
    SCOPED_TRACE(c.Name);
    EXPECT_EQ(tableRuns[i].Status(), c.Ends) << tableRuns[i].Text("err");
    Expect(c.Out, tableRuns[i].Text("out"));
    Expect(c.Err, tableRuns[i].Text("err"));
    Expect(c.Frames, tableRuns[i].Text("frames"));
  }
}

TEST(VerbsTest, LoadsTwentyDrivesSideBySide) {
  for (int drive = 0; drive < Drives; ++drive) {
    ShellRun& run = loadRuns[static_cast<std::size_t>(drive)];
    EXPECT_EQ(run.Status(), Done) << run.Text("err");
    Expect({"Verified"}, run.Text("err"));
    const std::string word = "W 0=" + std::to_string(FirstGain + drive) + "\n";
    EXPECT_NE(run.Text("frames").find(word), std::string::npos);
  }
}

TEST(VerbsTest, SamplesGiveTheSameScoreToAnotherReader) {
  ShellRun& run = scoreRuns[0];
  EXPECT_EQ(run.Status(), Done) << run.Text("err") << run.Text("out");
  Expect({"1 recording(s) agree"}, run.Text("out"));
}

}  // namespace
}  // namespace gainsmith::test
