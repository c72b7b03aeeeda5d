// Files read and written whole.
#pragma once

#include <optional>
#include <string>

namespace gainsmith {

// The bytes of a plain file; nothing when it is missing, forbidden or no plain file.
std::optional<std::string> ReadWholeFile(const std::string& path);
// Through a temporary file beside it and a rename; false leaves the old file as it was.
bool WriteWholeFile(const std::string& path, const std::string& bytes);
bool IsFile(const std::string& path);

// A document's path or a web address, to the desktop's default handler.
void OpenWithDesktop(const std::string& address);

}  // namespace gainsmith
