// What hangs on the simulated motor's shaft, by name.
#include "simulator/servo/motor_preset.h"

#include <algorithm>
#include <array>

namespace gainsmith::sim {

namespace {

constexpr std::array<MotorPreset, 3> Presets{{
    {.Name = "bare-shaft",
     .Description = "the rotor alone, with bearing friction",
     .ViscousNmPerRadPerSec = 1e-4,
     .CoulombNm = 0.008},
    {.Name = "heavy-load",
     .Description = "five times the rotor's inertia, rigidly coupled, with the friction of a slide",
     .LoadInertiaRatio = 5.0,
     .ViscousNmPerRadPerSec = 3e-4,
     .CoulombNm = 0.03},
    {.Name = "springy-coupling",
     .Description = "three times the rotor's inertia on a soft coupling that swings at 600 Hz",
     .LoadInertiaRatio = 3.0,
     .ViscousNmPerRadPerSec = 1e-4,
     .CoulombNm = 0.008,
     .ResonanceHz = 600.0,
     .ResonanceDamping = 0.006},
}};

}  // namespace

std::span<const MotorPreset> MotorPresets() { return Presets; }

std::optional<MotorPreset> FindMotorPreset(std::string_view name) {
  const auto found = std::find_if(Presets.begin(), Presets.end(),
                                  [&](const MotorPreset& preset) { return preset.Name == name; });
  if (found == Presets.end()) return std::nullopt;
  return *found;
}

}  // namespace gainsmith::sim
