// The drive's error log: the last ten errors, the newest first.
#include "simulator/bank/error_log.h"

#include <algorithm>

namespace gainsmith::sim {

namespace {

constexpr std::array<std::string_view, DriveErrorCount> Names{
    "over-current",    "over-voltage", "low-voltage", "phase",    "encoder",
    "following-error", "limit",        "brake",       "sampling", "eeprom"};

}  // namespace

std::string_view NameOf(DriveError error) { return Names[static_cast<std::size_t>(error)]; }

std::optional<DriveError> DriveErrorNamed(std::string_view name) {
  const auto found = std::find(Names.begin(), Names.end(), name);
  if (found == Names.end()) return std::nullopt;
  return static_cast<DriveError>(found - Names.begin());
}

void ErrorLog::Add(DriveError error) {
  std::shift_right(entries_.begin(), entries_.end(), 1);
  entries_[0] = static_cast<std::uint16_t>(1U << static_cast<unsigned>(error));
}

void ErrorLog::EraseCurrent() {
  std::shift_left(entries_.begin(), entries_.end(), 1);
  entries_.back() = 0;
}

}  // namespace gainsmith::sim
