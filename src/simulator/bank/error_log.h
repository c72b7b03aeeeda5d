// The drive's error log: the last ten errors, the newest first.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace gainsmith::sim {

// Ten error kinds; the number is the bit of a log entry.
enum class DriveError {
  OverCurrent,
  OverVoltage,
  LowVoltage,
  Phase,
  Encoder,
  FollowingError,
  Limit,
  Brake,
  Sampling,
  Eeprom,
};
constexpr int DriveErrorCount = 10;

// Names for the command line: "over-current", "following-error" and so on.
std::string_view NameOf(DriveError error);
std::optional<DriveError> DriveErrorNamed(std::string_view name);

// A bank of its own, beside the registers whose numbers it is read under. An entry of 0 is empty;
// entries are without holes from entry 0 on.
class ErrorLog {
 public:
  static constexpr std::size_t Length = 10;
  using Entries = std::array<std::uint16_t, Length>;

  // A new entry 0; the oldest falls out.
  void Add(DriveError error);
  // Removes entry 0; the next older one becomes the current error.
  void EraseCurrent();
  void EraseAll() { entries_ = {}; }

  [[nodiscard]] const Entries& All() const { return entries_; }
  void Restore(const Entries& entries) { entries_ = entries; }

 private:
  Entries entries_{};
};

}  // namespace gainsmith::sim
