// Files on disk.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace gainsmith {

// The first `mostBytes` of a plain file, or all of it; nothing when it is missing, forbidden or no
// plain file.
std::optional<std::string> ReadStartOfFile(const std::string& path, std::size_t mostBytes);
// Through a temporary file beside it and a rename, once all of it is on the disk; false leaves the
// old file as it was, and nothing else.
bool WriteWholeFile(const std::string& path, const std::string& bytes);
bool IsFile(const std::string& path);

}  // namespace gainsmith
