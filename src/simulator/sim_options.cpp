// The command line of kvt518-sim and the help it prints.
#include "simulator/sim_options.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "simulator/bank/error_log.h"
#include "simulator/wire/faults.h"

namespace gainsmith::sim {

namespace {

std::optional<long> WholeNumber(std::string_view text, long least, long most) {
  long number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (number < least || number > most) return std::nullopt;
  return number;
}

// An option that takes no value.
bool TakeSwitch(SimOptions& options, const std::string& name) {
  if (name == "--help" || name == "-h") return options.Help = true;
  if (name == "--version") return options.Version = true;
  if (name == "--quiet") return options.Quiet = true;
  return false;
}

// Takes one option with its value. False when the value does not fit; knows says whether the name
// is an option at all.
bool TakeOption(SimOptions& options, const std::string& name, const std::string& value,
                bool& knows) {
  if (name == "--link") {
    options.LinkPath = value;
    return !value.empty();
  }
  if (name == "--eeprom") {
    options.Drive.EepromPath = value;
    return !value.empty();
  }
  if (name == "--fault") {
    const std::optional<FaultOrder> order = ParseFault(value);
    if (order) options.Faults.push_back(*order);
    return order.has_value();
  }
  if (name == "--motor") {
    const std::optional<MotorPreset> motor = FindMotorPreset(value);
    if (motor) options.Drive.Motor = *motor;
    return motor.has_value();
  }
  if (name == "--set") return SetMotorField(options.Drive.Motor, value);
  if (name == "--address") {
    const auto number = WholeNumber(value, 0, 247);
    if (number) options.Drive.Address = static_cast<std::uint8_t>(*number);
    return number.has_value();
  }
  if (name == "--seed") {
    const auto number = WholeNumber(value, 0, 0xFFFFFFFF);
    if (number) options.Drive.Seed = static_cast<std::uint32_t>(*number);
    return number.has_value();
  }
  if (name == "--baud") {
    const auto number = WholeNumber(value, 300, 1'000'000);
    if (number) options.Drive.Baud = static_cast<int>(*number);
    options.FollowHostBaud = false;
    return number.has_value();
  }
  knows = false;
  return false;
}

template <typename Names>
std::string Listed(const Names& names, std::string_view between = " ") {
  constexpr std::string_view Indent = "      ";
  std::string text;
  std::string line(Indent);
  for (const std::string_view name : names) {
    if (line.size() + name.size() > 78) {
      text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
      line = Indent;
    }
    line.append(name);
    if (name != names.back()) line.append(between);
  }
  return text + line + "\n";
}

std::string ListedFaults() {
  std::string text;
  for (std::size_t i = 0; i < FaultCount; ++i) {
    const auto fault = static_cast<Fault>(i);
    std::string name(NameOf(fault));
    const std::string value = ValueTextOf(fault);
    if (!value.empty()) name += "=" + value;
    name.resize(std::max<std::size_t>(name.size() + 1, 25), ' ');
    text.append("      ").append(name).append(EffectOf(fault)).append("\n");
  }
  return text;
}

std::string ListedErrors() {
  std::vector<std::string_view> names;
  names.reserve(DriveErrorCount);
  for (int i = 0; i < DriveErrorCount; ++i) names.push_back(NameOf(static_cast<DriveError>(i)));
  return Listed(names);
}

std::string ListedMotors() {
  std::string text;
  for (const MotorPreset& motor : MotorPresets()) {
    std::string name(motor.Name);
    name.resize(18, ' ');
    text.append("      ").append(name).append(motor.Description).append("\n");
  }
  return text;
}

}  // namespace

std::optional<SimOptions> ParseOptions(const std::vector<std::string>& arguments,
                                       std::string& problem) {
  SimOptions options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string name = arguments[i];
    if (TakeSwitch(options, name)) continue;
    std::string value;
    const std::size_t equals = name.find('=');
    if (equals != std::string::npos) {
      value = name.substr(equals + 1);
      name.resize(equals);
    } else if (i + 1 < arguments.size()) {
      value = arguments[++i];
    }
    bool knows = true;
    if (TakeOption(options, name, value, knows)) continue;
    problem = knows ? name : "unknown option " + name;
    if (knows) problem.append(" does not take \"").append(value).append("\"");
    return std::nullopt;
  }
  return options;
}

std::string HelpText() {
  return "kvt518-sim: a simulated KVT518 servo drive behind a pseudo-terminal\n"
         "\n"
         "Usage: kvt518-sim [options]\n"
         "\n"
         "Makes a link to a pseudo-terminal and answers there like the drive: Modbus RTU,\n"
         "functions 3 and 6, replies paced at the baud rate. Runs until interrupted, and\n"
         "removes the link when it ends. Prints one line for each connection, write, request\n"
         "with a bad check, fault, trip and error.\n"
         "\n"
         "Options (--name VALUE or --name=VALUE):\n"
         "  --link PATH      the link to make (./COM1)\n"
         "  --address N      device number, 0 to 247 (1)\n"
         "  --baud N         the drive's own speed: with another one the host's end and the "
         "drive's\n"
         "                   hear garbage (always the host's)\n"
         "  --eeprom FILE    keep stored parameters and errors in this file (memory only)\n"
         "  --seed N         seed of all noise; the same seed gives the same replies (1)\n"
         "  --motor NAME     what hangs on the shaft (" +
         std::string(MotorPresets().front().Name) + "):\n" + ListedMotors() +
         "  --set NAME=VALUE\n"
         "                   another constant of the motor, behind --motor. NAMEs:\n" +
         Listed(MotorFieldNames(), ", ") +
         "  --fault FAULT    start with a fault, may be given more than once\n"
         "  --quiet          print the link, and nothing of what passes there\n"
         "  --help           this text\n"
         "  --version        the version\n"
         "\n" +
         CommandHelpText() +
         "\n"
         "Example: a drive that stores its settings, with every third reply late by 0.3 s\n"
         "  $ kvt518-sim --link COM1 --eeprom drive.txt --fault late-by=300:/3\n"
         "       0.000  link COM1 -> /dev/pts/4, device 1, motor " +
         std::string(MotorPresets().front().Name) +
         "\n"
         "       4.210  host connected at 38400 baud\n"
         "       9.871  fault late-by\n"
         "      12.034  write 31 = 900\n"
         "  fault none\n"
         "      14.902  console fault none\n"
         "      15.118  write 12 = 1: store EEPROM\n"
         "  quit\n"
         "\n"
         "Exit status: 0 when ended by quit or a signal, 1 when the link or the EEPROM file can't\n"
         "be had, or no longer after a hang-up, 2 when an option is wrong.\n";
}

std::string CommandHelpText() {
  return "Commands on standard input, one on a line:\n"
         "  fault FAULT      put a fault in force; \"fault none\" ends all\n"
         "  error NAME       put an error into the error log\n"
         "  move [HZ]        start a motion that no host commands: a sine of the velocity,\n"
         "                   0.1 to 100 Hz (2)\n"
         "  stop             stop it\n"
         "  encoder off|on   pull the encoder's plug, and put it back: its pulses are lost "
         "meanwhile\n"
         "  reset            power off and on\n"
         "  help, quit\n"
         "\n"
         "After a trip (over-current, overload, over-speed, following-error, encoder-loss) the\n"
         "motor has no power until the drive is reset or its errors are erased.\n"
         "\n"
         "A FAULT is NAME to hit every reply, NAME:N or NAME N the next N, NAME:/N every\n"
         "N-th, NAME:@K the K-th from now alone. drop-nth:N means every N-th. Some take a\n"
         "value, NAME=VALUE:N; without one it is that of the list. NAMEs:\n" +
         ListedFaults() + "Error NAMEs:\n" + ListedErrors();
}

}  // namespace gainsmith::sim
