// The exchange of the windows of this room: at most five frames, and no closing wait.
#pragma once

#include "link/link.h"

namespace gainsmith {

inline const ExchangeOptions ShortExchange{.MostFrames = 5, .ClosingWait = false};

}  // namespace gainsmith
