// Documents and addresses that other programs show.
#pragma once

#include <string>

namespace gainsmith {

// A document's path or a web address, to the desktop's default handler.
void OpenWithDesktop(const std::string& address);

}  // namespace gainsmith
