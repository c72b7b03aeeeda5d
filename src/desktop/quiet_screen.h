// Keeps to itself what a screen that places windows by itself, or shows none, says at each of them,
// so that a real warning is seen.
#pragma once

namespace gainsmith {

// From now on, for the whole program. A second call changes nothing.
void KeepScreenQuiet();

}  // namespace gainsmith
