// ShellState: what the windows know of each other.
#pragma once

#include <array>
#include <cstddef>

namespace gainsmith {

// Marks of WindowOpenFlags.
enum class OpenMark : std::size_t {
  CurrentLoop = 1,
  PositionLoop = 3,
  Scope = 5,
  VelocityLoop = 6,
  ParametersGrid = 8,  // only ever cleared
};

// One instance for the whole tool.
struct ShellState {
  // A window that holds the drive is open.
  bool ChildWindowOpen = false;
  std::array<bool, 9> WindowOpenFlags{};
  // A quarter of the screen in twips, by which dialogs place themselves.
  float QuarterScreenWidth = 0;
  float QuarterScreenHeight = 0;
  // A bulk read, download or store is under way: commands that use the drive do nothing.
  bool BulkTransferRunning = false;

  bool& operator[](OpenMark mark) { return WindowOpenFlags[static_cast<std::size_t>(mark)]; }
};

// Keeps ShellState::BulkTransferRunning set for as long as it lives. Marks nest.
class TransferMark {
 public:
  explicit TransferMark(ShellState& shell) : shell_(shell), before_(shell.BulkTransferRunning) {
    shell_.BulkTransferRunning = true;
  }
  TransferMark(const TransferMark&) = delete;
  TransferMark& operator=(const TransferMark&) = delete;
  ~TransferMark() { shell_.BulkTransferRunning = before_; }

 private:
  ShellState& shell_;
  bool before_;
};

}  // namespace gainsmith
