// What hangs on the simulated motor's shaft, by name.
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace gainsmith::sim {

// The rotor itself comes from the registers; a preset says what is coupled to it. Loads are given
// as multiples of the rotor's inertia so that a preset keeps its character when the motor is
// changed.
struct MotorPreset {
  std::string_view Name;
  std::string_view Description;
  double LoadInertiaRatio = 0.0;       // load inertia / rotor inertia
  double ViscousNmPerRadPerSec = 0.0;  // at the motor shaft
  double CoulombNm = 0.0;              // at the motor shaft
  // A coupling with spring: 0 joins the load rigidly. The frequency is that of motor and load
  // swinging against each other.
  double ResonanceHz = 0.0;
  double ResonanceDamping = 0.0;  // fraction of critical
};

// All presets, the default first: "bare-shaft", "heavy-load", "springy-coupling".
std::span<const MotorPreset> MotorPresets();

// Empty when no preset has this name.
std::optional<MotorPreset> FindMotorPreset(std::string_view name);

}  // namespace gainsmith::sim
