// What is said of serial ports, and how to mend what is wrong with them.
#pragma once

#include <QString>
#include <string>

#include "host/port_facts.h"

namespace gainsmith {

// Which step keeps the device from being opened, and how to mend that: no such port, forbidden,
// held by another program. A sentence also where none of these is known to be the reason.
std::string WhyNotOpened(const QString& device);

// The single steps: empty where the step is passed.
std::string MissingPort(const QString& device, const PortFacts& facts);
std::string ForbiddenPort(const PortFacts& facts);
std::string HeldPort(const PortFacts& facts);
// Services that may take the port for themselves at any time; empty: none.
std::string GrabbedPort(const QString& device);

}  // namespace gainsmith
