// Every verb once well and once with each kind of trouble: status, output and the last words to
// the motor.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "console/shell_run.h"

namespace gainsmith::test {
namespace {

enum Status { Done, Different, Trouble, Refused, LostLink, Interrupted };

using Parts = std::vector<std::string>;

struct Case {
  std::string Name, SimOptions, Script;
  Status Ends;
  // What standard output, standard error and the list of frames contain. "!" before it: what they
  // do not; "$" behind it: what they end with.
  Parts Out, Err, Frames;
};

// --- Troubles that are the same for every verb.

struct Verb {
  const char* Words;
  // Frames that none of the troubles lets it send.
  const char* Never;
  // A frame amid the verb's own work: when it has gone out, the link is lost or a signal comes.
  const char* Amid;
  // What is told then (nothing: it has no work to lose), and the last frame behind the signal
  // (nothing: any).
  const char* LostTells;
  const char* StopTells;
  const char* StopSends;
};

constexpr const char* AtRest = "No motion was under way by this program's doing.";
constexpr const char* MayTurn = "the motor may still turn. Use the emergency stop.";
constexpr const char* Unread = "The connection was closed while settings were read";
constexpr const char* Unwritten = "The connection was closed while settings were written";
constexpr const char* Stopped = "The drive took the stop word.";

const std::vector<Verb>& Verbs() {
  static const std::vector<Verb> verbs{
      {"show", "W ", "R 33", AtRest, Unread, ""},
      {"save old.tvd --yes", "W ", "R 33", AtRest, Unread, ""},
      {"diff drive factory.tvd", "W ", "R 33", AtRest, Unread, ""},
      {"load new.tvd --store --yes", "W 12=", "W 31=", "Nothing was stored", Unwritten, ""},
      {"reset --yes", "W 12=", "W 31=", "Nothing was stored", Unwritten, ""},
      {"errors --erase all --yes", "W ", "R 33", AtRest, Unread, ""},
      {"step 0.5 --yes", "W 9=", "W 2=1", MayTurn, Stopped, "W 2=0$"},
      {"move --distance 4000000 --yes", "W 2=", "W 9=2", MayTurn, Stopped, "W 9=0$"},
      {"watch", "W 9=", "W 20=", AtRest, "Interrupted.", ""},
      {"doctor --scan --numbers 1 7", "W ", "R 253", "", "Interrupted.", ""},
  };
  return verbs;
}

Case CaseOf(const Verb& verb, const std::string& trouble, const std::string& how, Status ends,
            const Parts& tells, const Parts& frames) {
  return {std::string(verb.Words) + ": " + trouble,
          "",
          "exec 2>&1; sed 's/^1F&.*/1F\\& 601 /' factory.tvd >new.tvd; " + how + verb.Words,
          ends,
          tells,
          {},
          frames};
}

Case LostAmid(const Verb& verb) {
  const std::string how = "ctl_until '" + std::string(verb.Amid) + "' hang_up ";
  return CaseOf(verb, "lost", how, LostLink, {verb.LostTells},
                {verb.Amid, "!" + std::string(verb.Never)});
}

Case InterruptedAmid(const Verb& verb) {
  const std::string how = "ctl_until '" + std::string(verb.Amid) + "' interrupt ";
  Case interrupted = CaseOf(verb, "interrupted", how, Interrupted, {verb.StopTells},
                            {verb.Amid, "!" + std::string(verb.Never)});
  if (*verb.StopSends != 0) interrupted.Frames.push_back(verb.StopSends);
  return interrupted;
}

Case Silent(const Verb& verb) {
  const bool scans = std::string(verb.Words).starts_with("doctor");
  Case silent = CaseOf(verb, "silent", "ctl ", LostLink,
                       {scans ? "No drive answers." : "no drive answers at 38400 baud as device 1"},
                       {"R 253", "!R 254", "!W"});
  silent.SimOptions = "--fault silent";
  return silent;
}

Case Unopened(const Verb& verb, const std::string& why, const std::string& how,
              const Parts& tells) {
  return CaseOf(verb, why, how + "; ctl ", Trouble, tells, {"!R", "!W"});
}

const std::vector<Case>& SharedTroubles() {
  static const std::vector<Case> troubles = [] {
    std::vector<Case> all;
    // What lasts longest begins first.
    for (const Verb& verb : Verbs()) {
      if (*verb.LostTells != 0) all.push_back(LostAmid(verb));
    }
    for (const Verb& verb : Verbs()) all.push_back(InterruptedAmid(verb));
    for (const Verb& verb : Verbs()) {
      all.push_back(Silent(verb));
      all.push_back(Unopened(verb, "held", "hold", {"gainsmithctl (process "}));
      all.push_back(Unopened(verb, "forbidden", "forbid",
                             {"Access is forbidden (", "sudo usermod -aG dialout"}));
      all.push_back(
          Unopened(verb, "no port", "rm D", {"./D does not exist. Is the adapter plugged in?"}));
    }
    return all;
  }();
  return troubles;
}

// --- What is each verb's own.

const std::vector<Case>& Cases() {
  static const std::vector<Case> cases{
      {"NoSuchVerb", "", "ctl shwo", Trouble, {}, {"shwo is no verb", " watch"}, {}},
      {"Ports", "", "ctl ports --json", Done, {"\"port\": \"COM12\"", "\"may_open\""}, {}, {}},
      {"DoctorWell", "", "ctl doctor", Done, {"answers at 38400 baud as device 1"}, {}, {"R 253"}},
      {"FullDiskOfFrames",
       "",
       "$PROGRAM doctor --port ./D --log-frames /dev/full",
       Trouble,
       {"ok    it opens"},
       {"The list of frames is not whole"},
       {}},
      {"DoctorNoSerialPort", "", "rm D; echo >D; ctl doctor", Trouble, {"FAIL  it opens"}, {}, {}},
      {"Scan",
       "--address 7",
       "ctl doctor --scan --numbers 6 7",
       Done,
       {"-     9600 baud, device 6", "ok    9600 baud, device 7: answers"},
       {},
       {"!W"}},

      {"ScanLost",
       "--fault hang-up:@2",
       "ctl doctor --scan --numbers 1 7",
       LostLink,
       {"!19200 baud, device 7"},
       {"./D can't be opened any more: ./D does not exist"},
       {"!W"}},

      {"Show",
       "",
       "ctl show --json --quiet",
       Done,
       {"\"unit\": \"mH\"", "\"name\": \"Signals and mode: Operating mode\""},
       {"!e"},
       {"!W"}},
      {"ShowNoisy", "--fault bad-crc:@20", "ctl show", Done, {"Kp"}, {"Frames sent again: "}, {}},
      {"ShowNoSuchRate", "", "ctl show --baud 1200", Refused, {}, {"9600 to 38400"}, {"!R"}},
      {"ShowFullDisk", "", "ctl show >/dev/full", Trouble, {}, {"Standard output"}, {}},

      {"SaveAndDiff", "", "(ctl save a.tvd) && ctl diff drive a.tvd", Done, {}, {"0 of 50"}, {}},
      {"SaveKeepsFile",
       "",
       "echo old >a.tvd; (ctl save a.tvd); s=$?; cat a.tvd; exit $s",
       Trouble,
       {"old"},
       {"Say --yes"},
       {}},
      {"SaveFullDisk",
       "",
       "on_full_disk 'ctl save full/a.tvd --yes'",
       Trouble,
       {"a.tvd\nold$"},
       {"Error(s) happened when saving to the target file", "!are in"},
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
      {"ErrorsEraseJson",
       "",
       "(ctl errors --erase all --yes --json) >log.json && python3 -m json.tool log.json",
       Done,
       {"\"entry\": 9"},
       {"Erased."},
       {"W 16=1"}},
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
       "",
       "ctl_until 'W 2=1' hang_up step 0.5 --yes",
       LostLink,
       {"!Rise"},
       {"The drive did not acknowledge the stop word"},
       {"W 2=0$"}},
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
      {"Watch",
       "",
       "ctl watch --trace-ms 100 --count 2 -o w.csv && wc -l <w.csv",
       Done,
       {"2: Peak position error"},
       {},
       {"!W 9"}},
      {"WatchUnheard",
       "",
       "ctl watch --trace-ms 100 | head -n 1; exit ${PIPESTATUS[0]}",
       Trouble,
       {"1: Peak", "!2:"},
       {"Standard output could not be written."},
       {}},
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

void Expect(const Parts& wanted, const std::string& text) {
  for (const std::string& part : wanted) {
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
Runs& tableRuns = Runs::Begin([](Runs& runs) {
  for (const Case& c : Cases()) runs.Add(c.SimOptions, c.Script);
});
Runs& sharedRuns = Runs::Begin([](Runs& runs) {
  for (const Case& c : SharedTroubles()) runs.Add(c.SimOptions, c.Script);
});

void ExpectEnd(const Case& c, ShellRun& run) {
  SCOPED_TRACE(c.Name);
  EXPECT_EQ(run.Status(), c.Ends) << run.Text("out") << run.Text("err");
  Expect(c.Out, run.Text("out"));
  Expect(c.Err, run.Text("err"));
  Expect(c.Frames, run.Text("frames"));
  EXPECT_EQ(run.Text("old.tvd"), "old\n");
}

TEST(VerbsTest, EndsAsItShouldWellAndInTroublesOfItsOwn) {
  for (std::size_t i = 0; i < Cases().size(); ++i) ExpectEnd(Cases()[i], tableRuns[i]);
}

TEST(VerbsTest, EndsAsItShouldInTheTroublesOfAll) {
  for (std::size_t i = 0; i < SharedTroubles().size(); ++i) {
    ExpectEnd(SharedTroubles()[i], sharedRuns[i]);
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
