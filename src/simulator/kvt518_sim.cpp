// kvt518-sim: the simulated drive in real time, behind a pseudo-terminal.
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "gainsmith_version.h"
#include "simulator/sim_options.h"
#include "simulator/simulated_drive.h"
#include "simulator/wire/pseudo_terminal.h"

namespace gainsmith::sim {
namespace {

volatile sig_atomic_t interrupted = 0;

void Interrupt(int) { interrupted = 1; }

// A terminal without a host reports a hang-up at once and always, so it is asked now and then.
constexpr TimeUs HostPollUs = 10'000;
// While the motor is not at rest, it is looked after so often.
constexpr TimeUs MotionPollUs = 20'000;
// Bytes are handed over to the host in lots of so long, as serial adapters do it, and the last one
// of a reply at its time.
constexpr TimeUs HandOverUs = 1'000;
// How long the device stays away after a hang-up.
constexpr TimeUs AwayUs = 2'000'000;

class Program {
 public:
  explicit Program(const SimOptions& options) : options_(options), drive_(options.Drive) {
    for (const FaultOrder& order : options.Faults) drive_.Inject(order);
  }

  // Runs until interrupted or told to quit. Gives the exit code.
  int Run() {
    const std::string problem = EepromFile(options_.Drive.EepromPath).Problem();
    if (!problem.empty()) {
      std::fprintf(stderr, "kvt518-sim: %s\n", problem.c_str());
      return 1;
    }
    if (!OpenTerminal()) return 1;
    while (interrupted == 0 && !quit_) {
      WaitForWork();
      ServeInput();
      ServeLine();
      if (drive_.Busy()) drive_.Advance(Now());
      for (const std::string& event : drive_.TakeEvents()) Tell(event);
    }
    return failed_ ? 1 : 0;
  }

 private:
  [[nodiscard]] TimeUs Now() const {
    const auto elapsed = std::chrono::steady_clock::now() - start_;
    return std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count();
  }

  void Say(const std::string& text) const {
    std::printf("%10.3f  %s\n", static_cast<double>(Now()) / 1e6, text.c_str());
  }

  // What passes on the link.
  void Tell(const std::string& text) const {
    if (!options_.Quiet) Say(text);
  }

  bool OpenTerminal() {
    if (!terminal_.Open(options_.LinkPath)) {
      std::fprintf(stderr, "kvt518-sim: %s\n", terminal_.Problem().c_str());
      return false;
    }
    Say("link " + options_.LinkPath + " -> " + terminal_.DevicePath() + ", device " +
        std::to_string(options_.Drive.Address) + ", motor " +
        std::string(options_.Drive.Motor.Name));
    return true;
  }

  [[nodiscard]] TimeUs NextWorkAt(TimeUs now) const {
    TimeUs at = now + 3'600'000'000;
    if (reopenAt_) at = std::min(at, *reopenAt_);
    if (!reopenAt_ && !hasHost_) at = std::min(at, now + HostPollUs);
    if (drive_.Busy()) at = std::min(at, now + MotionPollUs);
    if (const auto nextAt = drive_.NextTransmitAt()) {
      at = std::min({at, *nextAt + HandOverUs, drive_.AllTransmittedAt()});
    }
    return at;
  }

  // Signals are blocked but for this wait, so that none slips in between the test and the sleep.
  void WaitForWork() {
    std::array<pollfd, 2> entries{};
    entries[0] = {hasHost_ ? terminal_.Handle() : -1, POLLIN, 0};
    entries[1] = {inputOpen_ ? STDIN_FILENO : -1, POLLIN, 0};
    const TimeUs now = Now();
    const TimeUs waitUs = std::max<TimeUs>(0, NextWorkAt(now) - now);
    const timespec wait{waitUs / 1'000'000, waitUs % 1'000'000 * 1'000};
    sigset_t none;
    sigemptyset(&none);
    inputReady_ =
        ppoll(entries.data(), entries.size(), &wait, &none) > 0 && entries[1].revents != 0;
  }

  void ServeLine() {
    if (reopenAt_) {
      if (Now() < *reopenAt_) return;
      reopenAt_.reset();
      drive_.Reconnect();
      if (!OpenTerminal()) failed_ = quit_ = true;
      return;
    }
    ServeHost();
    for (const std::uint8_t byte : terminal_.ReadSome()) drive_.Receive(byte, Now());
    const std::vector<std::uint8_t> bytes = drive_.Transmit(Now());
    if (hasHost_) terminal_.Write(bytes);
    if (drive_.HungUp()) {
      terminal_.Close();
      hasHost_ = false;
      reopenAt_ = Now() + AwayUs;
    }
  }

  // Notices a host that comes or goes, and the speed it has set.
  void ServeHost() {
    const bool hadHost = hasHost_;
    hasHost_ = terminal_.HasHost();
    if (hadHost && !hasHost_) {
      Tell("host gone");
      terminal_.Flush();
      hostBaud_ = 0;
    }
    if (!hasHost_) return;
    const int baud = terminal_.HostBaud().value_or(options_.Drive.Baud);
    if (hadHost && baud == hostBaud_) return;
    Tell((hadHost ? "host changes to " : "host connected at ") + std::to_string(baud) + " baud");
    hostBaud_ = baud;
    if (options_.FollowHostBaud) {
      drive_.SetBaud(baud);
    } else {
      drive_.SetHostBaud(baud);
    }
  }

  void ServeInput() {
    if (!inputReady_) return;
    std::array<char, 512> part{};
    const ssize_t count = read(STDIN_FILENO, part.data(), part.size());
    if (count <= 0) {
      inputOpen_ = false;
      return;
    }
    input_.append(part.data(), static_cast<std::size_t>(count));
    for (std::size_t end; (end = input_.find('\n')) != std::string::npos;) {
      Obey(input_.substr(0, end));
      input_.erase(0, end + 1);
    }
  }

  void Obey(const std::string& line) {
    std::istringstream fields(line);
    std::string command;
    std::string name;
    std::string count;
    fields >> command >> name >> count;
    if (command.empty()) return;
    if (command == "fault" && name == "none") {
      drive_.ClearFaults();
    } else if (command == "fault") {
      const auto order = ParseFault(count.empty() ? name : name + ":" + count);
      if (!order) return Say("no such fault: " + line);
      drive_.Inject(*order);
    } else if (command == "error") {
      const auto error = DriveErrorNamed(name);
      if (!error) return Say("no such error: " + line);
      drive_.RaiseError(*error);
    } else if (command == "move") {
      BackgroundMotion motion;
      if (!name.empty()) motion.FrequencyHz = std::strtod(name.c_str(), nullptr);
      if (!(motion.FrequencyHz >= 0.1 && motion.FrequencyHz <= 100)) {
        return Say("no such frequency: " + line);
      }
      drive_.StartMotion(Now(), motion);
    } else if (command == "stop") {
      drive_.StopMotion(Now());
    } else if (command == "encoder") {
      if (name != "off" && name != "on") return Say("encoder off or on: " + line);
      drive_.PlugEncoder(name == "on", Now());
    } else if (command == "reset") {
      drive_.Reset(Now());
    } else if (command == "help") {
      std::printf("%s", CommandHelpText().c_str());
    } else if (command == "quit") {
      quit_ = true;
    } else {
      return Say("no such command: " + line);
    }
    Tell("console " + line);
  }

  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  SimOptions options_;
  SimulatedDrive drive_;
  PseudoTerminal terminal_;
  bool hasHost_ = false;
  int hostBaud_ = 0;
  std::optional<TimeUs> reopenAt_;
  bool inputOpen_ = true;
  bool inputReady_ = false;
  std::string input_;
  bool quit_ = false;
  bool failed_ = false;
};

void SetUpSignals() {
  struct sigaction action {};
  action.sa_handler = Interrupt;
  sigset_t blocked;
  sigemptyset(&blocked);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    sigaction(number, &action, nullptr);
    sigaddset(&blocked, number);
  }
  sigprocmask(SIG_BLOCK, &blocked, nullptr);
  signal(SIGPIPE, SIG_IGN);
  // In the background of a terminal, standard input is then just at its end.
  signal(SIGTTIN, SIG_IGN);
}

}  // namespace
}  // namespace gainsmith::sim

int main(int argc, char** argv) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  std::string problem;
  const auto options =
      gainsmith::sim::ParseOptions(std::vector<std::string>(argv + 1, argv + argc), problem);
  if (!options) {
    std::fprintf(stderr, "kvt518-sim: %s; see --help\n", problem.c_str());
    return 2;
  }
  if (options->Help) {
    std::printf("%s", gainsmith::sim::HelpText().c_str());
    return 0;
  }
  if (options->Version) {
    std::printf("kvt518-sim %s\n", gainsmith::ProgramVersion);
    return 0;
  }
  gainsmith::sim::SetUpSignals();
  return gainsmith::sim::Program(*options).Run();
}
