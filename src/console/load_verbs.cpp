// load and reset: what is written is read back and compared.
#include "console/json_text.h"
#include "console/settings_text.h"
#include "console/verbs.h"
#include "params/config_file.h"

namespace gainsmith {
namespace {

// Reads the drive and compares it with `sent`.
ExitStatus Verify(Session& session, const ParameterStore& sent) {
  session.Expect("Read from driver successfully");
  if (!session.Press(session.tool.mdiForm1.ReadFromDrive)) return session.Status();
  const std::vector<Difference> differences = DifferencesOf(sent, session.tool.parameters);
  for (const Difference& difference : differences) {
    session.Screen().Trouble("Sent and read back: " + DifferenceLine(difference));
  }
  // The word has bits that are no setting of their own.
  const float wordSent = sent.DriveFlagsWord;
  const float wordRead = session.tool.parameters.DriveFlagsWord;
  if (wordSent != wordRead) {
    session.Screen().Trouble("Sent and read back: flags word " + PlainText(wordSent) + " -> " +
                             PlainText(wordRead));
  }
  if (!differences.empty() || wordSent != wordRead) {
    session.End(ExitStatus::Different, "The drive does not hold what it was sent.");
    return session.Status();
  }
  session.Screen().Note("Verified: the drive gives all " +
                        std::to_string(ComparableSlots().size()) + " settings back as sent.");
  return ExitStatus::Done;
}

void PrintChanges(Session& session, const std::vector<Difference>& changes) {
  if (session.Given().Json) {
    session.Screen().Print(JsonText(DifferenceArray(changes, "drive", session.Given().File)));
    return;
  }
  for (const Difference& change : changes) session.Screen().Print(DifferenceLine(change));
  if (changes.empty()) session.Screen().Note("The drive holds these settings already.");
}

bool StoreInEeprom(Session& session) {
  Form8& grid = session.tool.form8;
  if (!session.Press(session.tool.mdiForm1.ParaDataLib)) return false;
  session.Expect("Please confirm current parameters are conform with parameters in drive\uFF01",
                 MessageAnswer::Yes);
  session.Expect("Write Completed EEprom!");
  return session.Press(grid.EEProm);
}

// What the drive would hold after the file's download.
std::optional<ParameterStore> SettingsOfFile(Session& session) {
  ParameterStore wanted = session.tool.parameters;
  const std::string& path = session.Given().File;
  if (LoadConfigFile(session.world, path, wanted, session.tool.mdiForm1)) return wanted;
  session.tool.mdiForm1.ShowNotice(Notice::Table, "");
  return std::nullopt;
}

}  // namespace

ExitStatus Load(Session& session) {
  const Options& given = session.Given();
  if (!session.Connect()) return session.Status();
  session.world.NextFile = {ChosenFile::Outcome::Chosen, given.File};
  const std::optional<ParameterStore> wanted = SettingsOfFile(session);
  if (!wanted) {
    // The tool's own way with a bad file: its message, and nothing is sent.
    session.Press(session.tool.mdiForm1.mnuFileOpen);
    return session.Status();
  }
  const std::vector<Difference> changes = DifferencesOf(session.tool.parameters, *wanted);
  PrintChanges(session, changes);
  if (given.DryRun || (changes.empty() && !given.Store)) return ExitStatus::Done;
  const std::string then = given.Store ? " and store them in its EEPROM?" : "?";
  if (!session.Consent("Write these settings to the drive" + then)) return session.Status();

  session.Expect("Configuration settings from the source file have been loaded successfully.");
  if (!session.Press(session.tool.mdiForm1.mnuFileOpen)) return session.Status();
  const ExitStatus verified = Verify(session, ParameterStore(session.tool.parameters));
  if (verified != ExitStatus::Done || !given.Store) return verified;
  StoreInEeprom(session);
  return session.Status();
}

ExitStatus Reset(Session& session) {
  if (!session.Connect()) return session.Status();
  session.ExpectQuestion(
      "All configurations in the connected KVT518 drive will be reset to factory default. Do you "
      "want to continue?");
  session.Expect(
      "All configurations in the connected KVT518 drive have been reset to factory default "
      "successfully!");
  if (!session.Press(session.tool.mdiForm1.mnuReset)) return session.Status();
  return Verify(session, ParameterStore(session.tool.parameters));
}

}  // namespace gainsmith
