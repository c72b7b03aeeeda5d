// A raw pseudo-terminal that stands in for the serial line, with a link that names its far end.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/wire/link_claim.h"

namespace gainsmith::sim {

// Owns the near end; hosts open the far end by the link. One host at a time is expected.
class PseudoTerminal {
 public:
  PseudoTerminal() = default;
  ~PseudoTerminal() { Close(); }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // Opens a new terminal, closing an earlier one, and makes the link. A link left behind by an
  // earlier terminal is replaced; one that another program serves, and anything else of that name,
  // is kept and is a failure. False on failure: nothing is open, and Problem says why.
  bool Open(const std::string& linkPath);
  // Ends the terminal under its host, and removes the link if it still names this terminal. The
  // claim to the link stays until another is opened, for a device that will come back.
  void Close();

  [[nodiscard]] const std::string& Problem() const { return problem_; }
  [[nodiscard]] const std::string& DevicePath() const { return devicePath_; }
  [[nodiscard]] int Handle() const { return handle_; }  // for poll; -1 when closed

  // Whether a host has the far end open. A closed terminal has no host.
  [[nodiscard]] bool HasHost() const;
  // The speed the host has set on its end; nothing when it can't be told.
  [[nodiscard]] std::optional<int> HostBaud() const;

  // The bytes that wait, without blocking; of a host that writes without end, some of them.
  [[nodiscard]] std::vector<std::uint8_t> ReadSome() const;
  // Hands bytes to the host, without blocking: what does not fit is lost, as on a line.
  void Write(std::span<const std::uint8_t> bytes) const;
  // Drops what waits in both directions.
  void Flush() const;

 private:
  bool OpenPair();
  bool MakeLink();
  bool Fail(const std::string& what);

  LinkClaim claim_;
  int handle_ = -1;
  std::string devicePath_;
  std::string linkPath_;
  std::string problem_;
};

}  // namespace gainsmith::sim
