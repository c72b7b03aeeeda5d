// The light or dark scheme that the user has chosen for the desktop.
#pragma once

#include <functional>

namespace gainsmith {

// Asks the desktop whether it is dark, where it can be asked, and calls `answer` from the event
// loop when it has answered. Does not wait: a desktop may be slow, or silent for good.
void AskDesktopForDark(std::function<void(bool dark)> answer);

}  // namespace gainsmith
