// The values a KVT518 leaves the factory with: a 400 W servo of 4000 pulses per revolution.
#include "simulator/bank/factory_values.h"

#include <algorithm>
#include <array>

namespace gainsmith::sim {

namespace {

constexpr std::uint16_t IdentityNumber = 518;
constexpr std::uint16_t FirmwareVersion = 112;  // 1.12

// Position mode, up-rising edge; direction positive, alarm active low, in-position high.
constexpr std::uint16_t FactoryFlags = 0x0004 | 0x0080 | 0x0100;

constexpr auto Parameters = std::to_array<FactoryValue>({
    {Reg::CurrentKp, 400},
    {Reg::CurrentKi, 500},
    {Reg::PositionKp, 800},
    {Reg::PositionKi, 0},
    {Reg::PositionKd, 0},
    {Reg::Kaff, 1000},
    {Reg::GearNumerator, 1},
    {Reg::GearDenominator, 1},
    {Reg::FollowingErrorLimit, 8000},
    {Reg::EncoderCounts, 4000},
    {Reg::VelocityKp, 600},
    {Reg::VelocityKi, 500},
    {Reg::Kvff, 1000},
    {Reg::PolePairs, 4},
    {Reg::AnalogMaxVelocity, 3000},
    {Reg::AnalogPeakCurrent, 84},  // 8.4 A
    {Reg::AnalogOffset, 0},
    {Reg::LowPositionKp, 800},
    {Reg::LowPositionKi, 0},
    {Reg::LowPositionKd, 0},
    {Reg::LowKvff, 1000},
    {Reg::LowVelocityKp, 600},
    {Reg::LowVelocityKi, 500},
    {Reg::LowKaff, 1000},
    {Reg::InPosition, 10},
    {Reg::InputSmoothing, 3},
    {Reg::VelocityFilterHz, 3000},
    {Reg::CurrentReferenceHz, 1500},
    {Reg::VelocityReferenceHz, 600},
    {Reg::Interpolation, 0},
    {Reg::DeadBandMv, 20},
    {Reg::ReverseAnalog, 0},
    {Reg::Trap1WidthHz, 5},
    {Reg::Trap2WidthHz, 5},
    {Reg::Trap1Hz, 1500},
    {Reg::Trap2Hz, 1500},
    {Reg::PeakCurrent, 840},     // 8.4 A
    {Reg::RatedCurrent, 280},    // 2.8 A
    {Reg::Resistance, 260},      // 2.6 ohms
    {Reg::Inductance, 800},      // 8 mH
    {Reg::BackEmf, 5236},        // 52.36 V/krpm, the voltage of 0.5 Nm/A
    {Reg::TorqueConstant, 500},  // 0.5 Nm/A
    {Reg::Inertia, 34000},       // 0.34 kg cm2
    {Reg::RatedPowerW, 400},
    {Reg::Flags, FactoryFlags},
});

bool IsParameter(std::size_t number) {
  return std::any_of(Parameters.begin(), Parameters.end(), [number](const FactoryValue& parameter) {
    return static_cast<std::size_t>(parameter.Register) == number;
  });
}

}  // namespace

std::span<const FactoryValue> FactoryParameters() { return Parameters; }

RegisterBank FactoryValues() {
  RegisterBank registers;
  for (const FactoryValue& parameter : Parameters) registers[parameter.Register] = parameter.Value;
  SetPowerUpState(registers);
  return registers;
}

void SetPowerUpState(RegisterBank& registers) {
  for (std::size_t number = 0; number < registers.Values.size(); ++number) {
    if (!IsParameter(number)) registers.Values[number] = 0;
  }
  registers[Reg::Identity] = IdentityNumber;
  registers[Reg::FilterSwitch] = FirmwareVersion;
  registers[Reg::TraceKind] = 145;
  registers[Reg::SampleDivider] = 10;
}

}  // namespace gainsmith::sim
