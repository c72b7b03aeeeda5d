// The command line of kvt518-sim and the help it prints.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/simulated_drive.h"

namespace gainsmith::sim {

struct SimOptions {
  DriveOptions Drive;
  bool FollowHostBaud = true;  // pace at the speed the host sets; false once a rate was asked for
  std::string LinkPath = "./COM1";
  std::vector<FaultOrder> Faults;
  bool Quiet = false;
  bool Help = false;
  bool Version = false;
};

// Reads the arguments that follow the program's name. Nothing on the first one that is wrong;
// the problem then says which and why.
std::optional<SimOptions> ParseOptions(const std::vector<std::string>& arguments,
                                       std::string& problem);

std::string HelpText();

// The commands on standard input, as the help shows them.
std::string CommandHelpText();

}  // namespace gainsmith::sim
