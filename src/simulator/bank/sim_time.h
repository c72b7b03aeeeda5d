// The time of the simulated world.
#pragma once

#include <cstdint>

namespace gainsmith::sim {

// Microseconds since the world's start.
using TimeUs = std::int64_t;

}  // namespace gainsmith::sim
