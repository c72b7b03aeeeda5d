// The file commands: dialogs, questions and messages around the text of a configuration.
#include "params/config_file.h"

#include "params/config_text.h"
#include "params/drive_flags.h"
#include "platform/common_texts.h"

namespace gainsmith {
namespace {

// Both separators count.
std::string LastSegment(const std::string& path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

}  // namespace

bool LoadConfigFile(World& world, const std::string& path, ParameterStore& store, MDIForm1& main) {
  const std::optional<std::string> text = world.ReadFile(path);
  if (!text) return false;
  const auto before = store.ParameterValues;
  const bool whole = ParseConfig(*text, store);
  if (!whole && store.ParameterValues == before) return false;
  TakeFileFlags(store);
  main.OnSettingsReplaced("a file was loaded");
  main.ShowNotice(Notice::Table,
                  whole ? ""
                        : LastSegment(path) +
                              " could not be read to its end: the tool now holds a mixture of its "
                              "settings and the earlier ones. Do not save or download it. Open a "
                              "whole file, or close the connection and open it again to read the "
                              "drive.");
  return whole;
}

MessageAnswer ConfigFiles::Tell(const char* text, MessageIcon icon) {
  return world_.ShowMessage({text, MainTitle, MessageButtons::Ok, icon});
}

void ConfigFiles::OpenConfigFile() {
  const ChosenFile chosen = world_.AskOpenFile(OpenFilter);
  if (chosen.Result == ChosenFile::Outcome::Cancelled) return;
  const bool failed = chosen.Result == ChosenFile::Outcome::Failed;
  if (!failed && chosen.Path.empty()) return;
  if (failed || !LoadConfigFile(world_, chosen.Path, store_, main_)) {
    Tell("Fatal error(s) happened when opening the source file.", MessageIcon::Critical);
    return;
  }

  const ParameterStore settings = store_;
  const TransferMark mark(shell_);
  BusyScreen busy(world_, waiting_, "Openning Source Configuration File");
  const DownloadResult sent = transfer_.DownloadAllParameters();
  busy.End();
  if (sent.Trouble) world_.ShowMessage(*sent.Trouble);
  if (!sent.Whole) return;
  UseFile(chosen.Path, settings);
  Tell("Configuration settings from the source file have been loaded successfully.",
       MessageIcon::Information);
}

void ConfigFiles::SaveConfigAs() {
  const ChosenFile chosen = world_.AskSaveFile(SaveFilter);
  switch (chosen.Result) {
    case ChosenFile::Outcome::Chosen:
      WriteConfigFile(chosen.Path, true);
      break;
    case ChosenFile::Outcome::Cancelled:
      break;
    case ChosenFile::Outcome::Failed:
      Tell("Error(s) happened when saving to the target file", MessageIcon::Critical);
      break;
  }
}

void ConfigFiles::WriteConfigFile(const std::string& path, bool confirmOverwrite) {
  if (path.empty()) {
    Tell("File name can't be empty", MessageIcon::Information);
    return;
  }
  if (confirmOverwrite && world_.FileExists(path) &&
      world_.ShowMessage({"Target file already exists. Are you sure to overwrite it?", MainTitle,
                          MessageButtons::YesNo, MessageIcon::Information, MessageAnswer::No}) !=
          MessageAnswer::Yes) {
    return;
  }
  const std::optional<std::string> text = FormatConfig(store_);
  if (!text || !world_.WriteFile(path, *text)) {
    Tell("Error(s) happened when saving to the target file", MessageIcon::Critical);
    return;
  }
  if (confirmOverwrite) {
    UseFile(path, store_);
  } else if (path == main_.CurrentConfigFile) {
    inUse_ = store_;
  }
}

void ConfigFiles::mnuSave_Click() {
  if (main_.CurrentConfigFile.empty()) {
    SaveConfigAs();
  } else {
    WriteConfigFile(main_.CurrentConfigFile, false);
  }
}

std::optional<Message> ConfigFiles::LoadDefaultSettings() {
  if (LoadConfigFile(world_, FactoryPath(), store_, main_)) return std::nullopt;
  return Message{"Default settings have been crashed. Contact Torvane or your distributor",
                 MainTitle, MessageButtons::Ok, MessageIcon::Critical};
}

std::optional<ParameterStore> ConfigFiles::FactoryValues() const {
  ParameterStore store;
  const std::optional<std::string> text = world_.ReadFile(FactoryPath());
  if (!text || !ParseConfig(*text, store)) return std::nullopt;
  TakeFileFlags(store);
  return store;
}

std::string ConfigFiles::FileNameOnly(const std::string& path) {
  main_.CurrentConfigFile = path;
  return LastSegment(path);
}

void ConfigFiles::UseFile(const std::string& path, const ParameterStore& settings) {
  inUse_ = settings;
  main_.ShowFileInCaption(FileNameOnly(path));
  main_.mnuFileClose.Enabled = true;
}

}  // namespace gainsmith
