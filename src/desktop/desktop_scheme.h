// The light or dark scheme that the user has chosen for the desktop.
#pragma once

#include <functional>

namespace gainsmith {

// Asks the desktop whether it prefers dark windows: `first` is called with its answer, not at all
// where nobody can be asked, and `changed` with each change from then on, while the program runs.
// Both are called from the event loop: a desktop may be slow, or silent for good.
void FollowDesktopScheme(std::function<void(bool dark)> first,
                         std::function<void(bool dark)> changed);

}  // namespace gainsmith
