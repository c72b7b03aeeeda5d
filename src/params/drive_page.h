// DrivePage: what the main window's area shows. While nothing is connected, what to do first; once
// the settings have been read, a row for each of them: value, unit, factory value, value of the
// open file, and where they differ. Everything comes from what the tool holds already.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "params/config_file.h"
#include "params/parameter_store.h"
#include "params/parameter_table.h"
#include "shell/main_window.h"

namespace gainsmith {

class DrivePage {
 public:
  DrivePage(World& world, const ParameterStore& store, const ConfigFiles& files, MDIForm1& main)
      : world_(world), store_(store), files_(files), main_(main) {
    DesignColumns();
  }
  DrivePage(const DrivePage&) = delete;
  DrivePage& operator=(const DrivePage&) = delete;

  // Brings the page up to date. The factory values are read when it first shows.
  void Refresh();

 private:
  // What the rows were made from.
  struct Shown {
    ParameterStore Settings;
    std::optional<ParameterStore> File;
    std::string Filter;
    bool DifferencesOnly = false;
    bool operator==(const Shown&) const = default;
  };

  void DesignColumns();
  void ShowFirstSteps();
  void ShowSettings(const Shown& now);
  // The texts of a row, or nothing when it is not wanted.
  [[nodiscard]] std::optional<std::vector<std::string>> RowFor(const ParameterRow& row,
                                                               const Shown& now) const;

  World& world_;
  const ParameterStore& store_;
  const ConfigFiles& files_;
  MDIForm1& main_;
  bool factoryAsked_ = false;
  std::optional<ParameterStore> factory_;
  std::optional<Shown> shown_;
  std::int64_t portsDueMs_ = 0;
};

}  // namespace gainsmith
