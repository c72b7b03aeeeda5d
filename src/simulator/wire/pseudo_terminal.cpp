// A raw pseudo-terminal that stands in for the serial line, with a link that names its far end.
#include "simulator/wire/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace gainsmith::sim {

namespace {

namespace fs = std::filesystem;

// Raw bytes, eight bits, no parity, two stop bits: nothing is echoed or changed on the way.
bool MakeRaw(int handle) {
  termios settings{};
  if (tcgetattr(handle, &settings) != 0) return false;
  cfmakeraw(&settings);
  settings.c_cflag |= CSTOPB | CREAD | CLOCAL;
  cfsetspeed(&settings, B38400);
  return tcsetattr(handle, TCSANOW, &settings) == 0;
}

bool IsTerminalLink(const std::string& path) {
  std::error_code ignored;
  if (!fs::is_symlink(fs::symlink_status(path, ignored))) return false;
  return fs::read_symlink(path, ignored).string().starts_with("/dev/pts/");
}

int BaudOf(speed_t speed) {
  switch (speed) {
    case B9600:
      return 9600;
    case B19200:
      return 19200;
    case B38400:
      return 38400;
    case B57600:
      return 57600;
    case B115200:
      return 115200;
    default:
      return 0;
  }
}

}  // namespace

bool PseudoTerminal::Fail(const std::string& what) {
  problem_ = what + ": " + std::strerror(errno);
  return false;
}

bool PseudoTerminal::Open(const std::string& linkPath) {
  Close();
  if (!claim_.Take(linkPath)) {
    problem_ = "another simulated drive serves the link " + linkPath;
    return false;
  }
  linkPath_ = linkPath;
  if (OpenPair() && MakeLink()) return true;
  linkPath_.clear();
  Close();
  return false;
}

bool PseudoTerminal::OpenPair() {
  handle_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (handle_ < 0 || grantpt(handle_) != 0 || unlockpt(handle_) != 0) {
    return Fail("can't open a pseudo-terminal");
  }
  const char* name = ptsname(handle_);
  if (name == nullptr) return Fail("can't name the pseudo-terminal");
  devicePath_ = name;
  // Opening and closing the far end once makes the near end report a hang-up until a host comes.
  const int farEnd = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (farEnd < 0) return Fail("can't open " + devicePath_);
  const bool raw = MakeRaw(farEnd);
  close(farEnd);
  return raw || Fail("can't set up " + devicePath_);
}

bool PseudoTerminal::MakeLink() {
  if (IsTerminalLink(linkPath_)) unlink(linkPath_.c_str());
  if (symlink(devicePath_.c_str(), linkPath_.c_str()) == 0) return true;
  return Fail("can't make the link " + linkPath_);
}

void PseudoTerminal::Close() {
  std::error_code ignored;
  if (!linkPath_.empty() && fs::read_symlink(linkPath_, ignored).string() == devicePath_) {
    unlink(linkPath_.c_str());
  }
  if (handle_ >= 0) close(handle_);
  handle_ = -1;
  linkPath_.clear();
  devicePath_.clear();
}

bool PseudoTerminal::HasHost() const {
  pollfd entry{handle_, POLLIN, 0};
  return handle_ >= 0 && poll(&entry, 1, 0) >= 0 && (entry.revents & POLLHUP) == 0;
}

std::optional<int> PseudoTerminal::HostBaud() const {
  termios settings{};
  if (handle_ < 0 || tcgetattr(handle_, &settings) != 0) return std::nullopt;
  const int baud = BaudOf(cfgetospeed(&settings));
  if (baud == 0) return std::nullopt;
  return baud;
}

std::vector<std::uint8_t> PseudoTerminal::ReadSome() const {
  std::array<std::uint8_t, 4096> part{};
  const ssize_t count = read(handle_, part.data(), part.size());
  return {part.begin(), part.begin() + std::max<ssize_t>(0, count)};
}

void PseudoTerminal::Write(std::span<const std::uint8_t> bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = write(handle_, bytes.data(), bytes.size());
    if (count <= 0) return;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void PseudoTerminal::Flush() const {
  if (handle_ >= 0) tcflush(handle_, TCIOFLUSH);
}

}  // namespace gainsmith::sim
