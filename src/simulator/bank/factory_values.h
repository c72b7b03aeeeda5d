// The values a KVT518 leaves the factory with: a 400 W servo of 4000 pulses per revolution.
#pragma once

#include <span>

#include "simulator/bank/registers.h"

namespace gainsmith::sim {

// One parameter: kept in the EEPROM, with its factory value as the raw register word.
struct FactoryValue {
  Reg Register;
  std::uint16_t Value;
};

// Every parameter register once, in ascending order. data/default.ini holds the same values in
// engineering units, but for the second trap's width, which no host writes: it is as wide as the
// first one's, so that its frequency does something.
std::span<const FactoryValue> FactoryParameters();

// All registers as after a first power-up: the parameters above, the power-up state of the rest.
RegisterBank FactoryValues();

// Gives every register that is not a parameter the state it has after power-up.
void SetPowerUpState(RegisterBank& registers);

}  // namespace gainsmith::sim
