// show, save and diff.
#include "console/json_text.h"
#include "console/settings_text.h"
#include "console/verbs.h"
#include "host/qt_text.h"
#include "params/config_file.h"

namespace gainsmith {
namespace {

constexpr const char* DriveName = "drive";
constexpr const char* FactoryName = "factory";

// The settings of one side of a comparison; nothing when that ended the verb.
std::optional<ParameterStore> SideOf(Session& session, const std::string& name) {
  ParameterStore store = session.tool.parameters;
  if (name == DriveName) return store;
  const std::string path =
      name == FactoryName ? session.world.ProgramDirectory() + "/default.ini" : name;
  if (LoadConfigFile(session.world, path, store, session.tool.mdiForm1)) return store;
  // Nothing of it went into the tool's own table.
  session.tool.mdiForm1.ShowNotice(Notice::Table, "");
  session.End(ExitStatus::Trouble, path + " can't be read as a configuration file.");
  return std::nullopt;
}

}  // namespace

ExitStatus Show(Session& session) {
  if (!session.Connect()) return session.Status();
  const ParameterStore settings = WithSingleFlags(session.tool.parameters);
  QJsonArray all;
  for (const Slot slot : ComparableSlots()) {
    if (session.Given().Json) {
      all.push_back(SettingObject(settings, slot));
    } else {
      session.Screen().Print(SettingLine(settings, slot));
    }
  }
  if (session.Given().Json) session.Screen().Print(JsonText(all));
  return ExitStatus::Done;
}

ExitStatus Save(Session& session) {
  if (!session.Connect()) return session.Status();
  session.world.NextFile = {ChosenFile::Outcome::Chosen, session.Given().File};
  session.ExpectQuestion("Target file already exists. Are you sure to overwrite it?");
  if (session.Press(session.tool.mdiForm1.mnuSaveAs)) {
    session.Screen().Note("The drive's settings are in " + session.Given().File);
  }
  return session.Status();
}

ExitStatus Diff(Session& session) {
  const std::string& first = session.Given().File;
  const std::string& second = session.Given().OtherFile;
  if ((first == DriveName || second == DriveName) && !session.Connect()) return session.Status();
  const std::optional<ParameterStore> a = SideOf(session, first);
  const std::optional<ParameterStore> b = a ? SideOf(session, second) : std::nullopt;
  if (!b) return session.Status();
  const std::vector<Difference> differences = DifferencesOf(*a, *b);
  if (session.Given().Json) {
    session.Screen().Print(JsonText(DifferenceArray(differences, first, second)));
  } else {
    for (const Difference& difference : differences) {
      session.Screen().Print(DifferenceLine(difference));
    }
  }
  session.Screen().Note(std::to_string(differences.size()) + " of " +
                        std::to_string(ComparableSlots().size()) + " settings differ");
  return differences.empty() ? ExitStatus::Done : ExitStatus::Different;
}

}  // namespace gainsmith
