// Lists of what users know by heart, kept in files beside the tests, so that none of it changes by
// accident.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace gainsmith::test {

// A difference is shown, and the new list laid ready.
inline void ExpectKnown(const std::vector<std::string>& lines, const std::string& list) {
  std::ifstream file(std::filesystem::path(LISTS) / list);
  std::vector<std::string> known;
  for (std::string line; std::getline(file, line);) known.push_back(line);
  const auto [now, then] = std::mismatch(lines.begin(), lines.end(), known.begin(), known.end());
  if (now == lines.end() && then == known.end()) return;
  const auto renewed = std::filesystem::temp_directory_path() / list;
  std::ofstream out(renewed);
  for (const std::string& line : lines) out << line << "\n";
  ADD_FAILURE() << list << ", line " << now - lines.begin() + 1 << " was\n"
                << (then == known.end() ? "" : *then) << "\nand is\n"
                << (now == lines.end() ? "" : *now) << "\nIf that is meant, copy " << renewed
                << " to tests/app.";
}

}  // namespace gainsmith::test
