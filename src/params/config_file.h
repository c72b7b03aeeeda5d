// Configuration files: the File menu's Open, Save and Save As, and the factory values.
#pragma once

#include <optional>
#include <string>

#include "params/bulk_transfer.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "shell/main_window.h"
#include "shell/waiting_window.h"

namespace gainsmith {

// The filter texts of the file dialogs.
inline constexpr const char* OpenFilter = "*.tvd|*.tvd|";
inline constexpr const char* SaveFilter = "*.tvd|*.tvd";

// Loads the configuration file `path` into the table. False when it can't be read to its end: the
// lines before the bad one are in the table then, and the main window says so until the next
// complete read or load.
bool LoadConfigFile(World& world, const std::string& path, ParameterStore& store, MDIForm1& main);

class ConfigFiles {
 public:
  ConfigFiles(World& world, ParameterStore& store, ShellState& shell, MDIForm1& main,
              frmWaitingMessage& waiting, BulkTransfer& transfer)
      : world_(world),
        store_(store),
        shell_(shell),
        main_(main),
        waiting_(waiting),
        transfer_(transfer) {}
  ConfigFiles(const ConfigFiles&) = delete;
  ConfigFiles& operator=(const ConfigFiles&) = delete;

  // Loads a chosen file into the table and downloads it, without a store. A bad file gives its
  // message and downloads nothing; the lines before the bad one are in the table then.
  void OpenConfigFile();

  // Asks for a file, then WriteConfigFile(path, true).
  void SaveConfigAs();

  // Writes the table to `path`, whole or not at all. With `confirmOverwrite` it asks before it
  // replaces a file, and the file becomes the one in use.
  void WriteConfigFile(const std::string& path, bool confirmOverwrite);

  // Writes to the file in use without a question; Save As where there is none.
  void mnuSave_Click();

  // Loads the factory values into the table. When they can't be read it gives the message for the
  // caller to show; the lines before the bad one are in the table then.
  std::optional<Message> LoadDefaultSettings();

  // The settings of the file in use as they were read or written last; none is in use: nullptr.
  [[nodiscard]] const ParameterStore* InUse() const {
    return main_.CurrentConfigFile.empty() || !inUse_ ? nullptr : &*inUse_;
  }
  // The factory values from their file, read anew, without a change of the table; nothing when
  // they can't be read to their end.
  [[nodiscard]] std::optional<ParameterStore> FactoryValues() const;

  // Makes `path` the file in use and gives its last segment. Both separators count.
  std::string FileNameOnly(const std::string& path);

 private:
  void UseFile(const std::string& path, const ParameterStore& settings);
  [[nodiscard]] std::string FactoryPath() const {
    return world_.ProgramDirectory() + "/default.ini";
  }
  MessageAnswer Tell(const char* text, MessageIcon icon);

  World& world_;
  ParameterStore& store_;
  ShellState& shell_;
  MDIForm1& main_;
  frmWaitingMessage& waiting_;
  BulkTransfer& transfer_;
  std::optional<ParameterStore> inUse_;
};

}  // namespace gainsmith
