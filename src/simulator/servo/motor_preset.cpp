// The simulated motor and what hangs on its shaft, by name: what is true, whatever the registers
// say.
#include "simulator/servo/motor_preset.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace gainsmith::sim {

namespace {

constexpr auto Presets = std::to_array<MotorPreset>({
    {.Name = "screw-table",
     .Description = "a table on a screw, eight times the rotor's inertia",
     .LoadInertiaRatio = 8.0,
     .ViscousNmPerRadPerSec = 3e-4,
     .CoulombNm = 0.03},
    {.Name = "bare-shaft",
     .Description = "the rotor alone: try it with a tenth of Vp and Vi",
     .ViscousNmPerRadPerSec = 1e-4,
     .CoulombNm = 0.008},
    {.Name = "heavy-load",
     .Description = "thirty times the rotor's inertia, rigidly coupled",
     .LoadInertiaRatio = 30.0,
     .ViscousNmPerRadPerSec = 5e-4,
     .CoulombNm = 0.05},
    {.Name = "springy-coupling",
     .Description = "a heavy hub on the rotor, and a soft coupling that swings at 250 Hz",
     .RotorInertiaKgM2 = 1.8e-4,
     .LoadInertiaRatio = 0.6,
     .ViscousNmPerRadPerSec = 3e-4,
     .CoulombNm = 0.03,
     .ResonanceHz = 250.0,
     .ResonanceDamping = 0.04,
     .CoggingNm = 0.02,
     .TorqueRipple = 0.02,
     .ReferenceNoiseA = 0.8},
    {.Name = "vertical-axis",
     .Description = "a weight on a screw: it sinks when the current goes, down to a stop",
     .LoadInertiaRatio = 9.0,
     .ViscousNmPerRadPerSec = 2e-3,
     .CoulombNm = 0.03,
     .LoadTorqueNm = 0.4,
     .LowestTurns = -20.0},
    {.Name = "sticky-slide",
     .Description = "slides that stick and a coupling with play: Ki hunts on it",
     .LoadInertiaRatio = 9.0,
     .ViscousNmPerRadPerSec = 3e-4,
     .CoulombNm = 0.06,
     .StictionNm = 0.2,
     .ResonanceHz = 800.0,
     .ResonanceDamping = 0.1,
     .BacklashTurns = 0.0005},
});

struct Field {
  std::string_view Name;
  double MotorPreset::*Value;
  bool AboveZero = false;
};

constexpr auto Fields = std::to_array<Field>({
    {"resistance (ohm)", &MotorPreset::ResistanceOhm, true},
    {"inductance (H)", &MotorPreset::InductanceH, true},
    {"back-emf (V s/rad)", &MotorPreset::BackEmfVPerRadPerS, true},
    {"torque-constant (Nm/A)", &MotorPreset::TorqueConstantNmPerA, true},
    {"inertia (kg m2)", &MotorPreset::RotorInertiaKgM2, true},
    {"load-ratio", &MotorPreset::LoadInertiaRatio},
    {"viscous (Nm s/rad)", &MotorPreset::ViscousNmPerRadPerSec},
    {"friction (Nm)", &MotorPreset::CoulombNm},
    {"stiction (Nm)", &MotorPreset::StictionNm},
    {"load-torque (Nm)", &MotorPreset::LoadTorqueNm},
    {"resonance (Hz)", &MotorPreset::ResonanceHz},
    {"damping", &MotorPreset::ResonanceDamping},
    {"backlash (turns)", &MotorPreset::BacklashTurns},
    {"cogging (Nm)", &MotorPreset::CoggingNm},
    {"cogging-waves (1/turn)", &MotorPreset::CoggingPerTurn, true},
    {"ripple", &MotorPreset::TorqueRipple},
    {"ripple-waves (1/turn)", &MotorPreset::RipplePerTurn, true},
    {"noise (A)", &MotorPreset::ReferenceNoiseA},
});

constexpr auto FieldNames = [] {
  std::array<std::string_view, Fields.size()> names;
  for (std::size_t i = 0; i < names.size(); ++i) names[i] = Fields[i].Name;
  return names;
}();

}  // namespace

std::span<const MotorPreset> MotorPresets() { return Presets; }

std::optional<MotorPreset> FindMotorPreset(std::string_view name) {
  const auto found = std::find_if(Presets.begin(), Presets.end(),
                                  [&](const MotorPreset& preset) { return preset.Name == name; });
  if (found == Presets.end()) return std::nullopt;
  return *found;
}

bool SetMotorField(MotorPreset& preset, std::string_view order) {
  const std::size_t equals = order.find('=');
  if (equals == std::string_view::npos) return false;
  const std::string_view name = order.substr(0, equals);
  const std::string_view text = order.substr(equals + 1);
  const auto field = std::find_if(Fields.begin(), Fields.end(), [&](const Field& candidate) {
    return candidate.Name.substr(0, candidate.Name.find(' ')) == name;
  });
  if (field == Fields.end()) return false;
  constexpr double Largest = 1e6;
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  if (!(value >= 0.0 && value <= Largest) || (field->AboveZero && value == 0.0)) return false;
  preset.*field->Value = value;
  return true;
}

std::span<const std::string_view> MotorFieldNames() { return FieldNames; }

}  // namespace gainsmith::sim
