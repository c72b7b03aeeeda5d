// TroubleLog: what went wrong lately, in plain words and with the time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace gainsmith {

struct Trouble {
  // The user's time of day: "14:05:09".
  std::string Time;
  std::string Text;
  // How often it came in a row; the time is that of the last.
  int Count = 1;
};

class TroubleLog {
 public:
  static constexpr std::size_t Most = 20;

  // The same text as the newest one counts as once more. Line ends become blanks.
  void Add(const std::string& time, std::string text);
  // The newest first, at most Most.
  [[nodiscard]] const std::deque<Trouble>& Entries() const { return entries_; }
  // A line for each, for another program: time, text, how often.
  [[nodiscard]] std::string AsText() const;
  // Raised with each Add.
  [[nodiscard]] std::uint64_t Revision() const { return revision_; }

 private:
  std::deque<Trouble> entries_;
  std::uint64_t revision_ = 0;
};

}  // namespace gainsmith
