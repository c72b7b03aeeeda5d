// The first steps and the rows of the drive's page.
#include "params/drive_page.h"

#include <algorithm>
#include <cctype>

#include "params/setting_text.h"

namespace gainsmith {
namespace {

constexpr int LastPort = 12;
// Looking for ports asks the system, so it is done now and then only, and not while the tool
// starts.
constexpr std::int64_t LookForPortsEveryMs = 5000;
constexpr std::int64_t FirstLookMs = 400;

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return text;
}

}  // namespace

void DrivePage::DesignColumns() {
  main_.grdSettings.Columns = {{"Setting", 4500},   {"Value", 1800},
                               {"Unit", 1200},      {"Factory value", 1800},
                               {"Open file", 1800}, {"Differs from", 3000}};
}

void DrivePage::Refresh() {
  if (!main_.PageShown()) {
    shown_.reset();
    if (!world_.IsPortOpen()) ShowFirstSteps();
    return;
  }
  if (!factoryAsked_) factory_ = files_.FactoryValues();
  factoryAsked_ = true;
  Shown now{store_, {}, Lower(main_.txtFilter.Text), main_.chkDifferences.Ticked};
  if (files_.InUse() != nullptr) now.File = *files_.InUse();
  if (shown_ == now) return;
  ShowSettings(now);
  shown_ = std::move(now);
}

void DrivePage::ShowFirstSteps() {
  const std::int64_t now = world_.NowMs();
  if (portsDueMs_ == 0) portsDueMs_ = now + FirstLookMs;
  if (now < portsDueMs_ && !main_.lblHint.Caption.empty()) return;
  std::string ports;
  if (now >= portsDueMs_) {
    portsDueMs_ = now + LookForPortsEveryMs;
    int port = 0;
    for (const std::string& behind : world_.DescribePorts(LastPort)) {
      ++port;
      if (!behind.empty()) ports += "\n        COM" + std::to_string(port) + ": " + behind;
    }
    if (ports.empty()) ports = "\n        No serial port is there. Plug the adapter in.";
  }
  main_.lblHint.Caption =
      "1.  Switch the drive on and connect it to a serial port of this computer." + ports +
      "\n2.  Choose Drive, Connect (Ctrl+N), then the port, the line speed and the device number"
      " of the drive."
      "\n3.  Press Open. The settings of the drive are read and shown here.";
}

std::optional<std::vector<std::string>> DrivePage::RowFor(const ParameterRow& row,
                                                          const Shown& now) const {
  const auto text = [&](const std::optional<ParameterStore>& other) {
    return other ? SettingText(*other, row.Index) : std::string();
  };
  std::string differs;
  if (factory_ && !SameSetting(now.Settings, *factory_, row.Index)) differs = "≠ factory";
  if (now.File && !SameSetting(now.Settings, *now.File, row.Index)) {
    differs += differs.empty() ? "≠ file" : ", ≠ file";
  }
  if (now.DifferencesOnly && differs.empty()) return std::nullopt;
  std::vector<std::string> texts{"    " + std::string(row.PlainName),
                                 SettingText(now.Settings, row.Index),
                                 std::string(row.Unit),
                                 text(factory_),
                                 text(now.File),
                                 differs};
  const bool wanted =
      Lower(std::string(TitleOf(row.Group))).find(now.Filter) != std::string::npos ||
      std::any_of(texts.begin(), texts.end(), [&](const std::string& cell) {
        return Lower(cell).find(now.Filter) != std::string::npos;
      });
  return wanted ? std::optional(std::move(texts)) : std::nullopt;
}

void DrivePage::ShowSettings(const Shown& now) {
  Grid& grid = main_.grdSettings;
  std::vector<std::vector<std::string>> rows;
  grid.HeadingRows.clear();
  std::optional<SettingGroup> group;
  int listed = 0;
  for (const Slot slot : ListOrder()) {
    const ParameterRow& row = RowOf(slot);
    std::optional<std::vector<std::string>> texts = RowFor(row, now);
    if (!texts) continue;
    if (group != row.Group) {
      group = row.Group;
      grid.HeadingRows.push_back(static_cast<int>(rows.size()));
      rows.push_back({std::string(TitleOf(row.Group)), "", "", "", "", ""});
    }
    rows.push_back(std::move(*texts));
    ++listed;
  }
  grid.Rows = std::move(rows);
  grid.CurrentRow = -1;
  const bool all = listed == static_cast<int>(ParameterCount);
  main_.lblPageNote.Caption = all ? "Settings of the drive"
                                  : "Settings of the drive: " + std::to_string(listed) + " of " +
                                        std::to_string(ParameterCount);
}

}  // namespace gainsmith
