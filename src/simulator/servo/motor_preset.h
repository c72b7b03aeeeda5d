// The simulated motor and what hangs on its shaft, by name: what is true, whatever the registers
// say.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace gainsmith::sim {

// The true constants. The drive knows nothing of them but what its registers say, and answers the
// worse the more the two differ. The rotor's constants are those that the factory values describe.
// Everything is at the motor's shaft.
struct MotorPreset {
  std::string_view Name;
  std::string_view Description;

  double ResistanceOhm = 2.6;
  double InductanceH = 0.008;
  double BackEmfVPerRadPerS = 0.5;
  double TorqueConstantNmPerA = 0.5;
  double RotorInertiaKgM2 = 0.34e-4;

  double LoadInertiaRatio = 0.0;       // load inertia / rotor inertia
  double ViscousNmPerRadPerSec = 0.0;  // on the rotor
  double CoulombNm = 0.0;              // dry friction of the moving rotor
  double StictionNm = 0.0;             // of the standing one, where above CoulombNm
  double LoadTorqueNm = 0.0;           // pulls the load towards negative positions, always
  double LowestTurns = 0.0;            // where the rotor meets a hard stop; 0 for none

  // A coupling with spring: 0 joins the load rigidly. The frequency is that of motor and load
  // swinging against each other.
  double ResonanceHz = 0.0;
  double ResonanceDamping = 0.0;  // fraction of critical
  double BacklashTurns = 0.0;     // of a coupling with spring: the whole play between its flanks

  // What shakes the shaft: the magnets' pull on the teeth, a torque constant that is not quite
  // constant, and noise on the drive's current reference.
  double CoggingNm = 0.0;
  double CoggingPerTurn = 24.0;
  double TorqueRipple = 0.0;  // fraction of the torque
  double RipplePerTurn = 24.0;
  double ReferenceNoiseA = 0.0;
};

// All presets, the default first.
std::span<const MotorPreset> MotorPresets();

// Empty when no preset has this name.
std::optional<MotorPreset> FindMotorPreset(std::string_view name);

// Sets one constant as "name=value", where the names are those of MotorFieldNames. False, and
// nothing set, when there is no such name or the value is no number from 0 to 1e6; the numbers from
// resistance to inertia and the waves per turn must be above 0.
bool SetMotorField(MotorPreset& preset, std::string_view order);

// "resistance (ohm)", "load-torque (Nm)" and so on.
std::span<const std::string_view> MotorFieldNames();

}  // namespace gainsmith::sim
