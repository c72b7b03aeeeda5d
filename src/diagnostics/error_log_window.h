// Form4, "Error Log": the drive's last ten errors as a board of lamps.
#pragma once

#include <array>

#include "link/link.h"
#include "platform/world.h"
#include "shell/shell_state.h"

namespace gainsmith {

// Ten error kinds down the side, the last ten log entries across, the newest one (0) at the left.
// The log is read when the window opens and after each erase; the red lamps of the newest entry
// blink one after the other.
struct Form4 : Window {
  Form4(World& world, Link& link, ShellState& shell);

  // A register of the log has 16 bits, of which the first ten are error kinds.
  static constexpr int BitsPerEntry = 16;
  static constexpr int ErrorKinds = 10;
  static constexpr Colour ErrorPresent = 255;
  static constexpr Colour ErrorAbsent = 65280;
  // State of a lamp whose entry has not been read.
  static constexpr const char* NotRead = "not read";

  enum CommandIndex : std::size_t { EraseCurrentError = 0, EraseAllErrors = 1 };
  enum ColumnLabelIndex : std::size_t { ErrorCounter = 10 };

  // Lamp of bit `bit` of entry `entry`: Shape1[16 x entry + bit]. It has no colour of its own until
  // its entry has been read. Those of the bits from 10 on are parked and never set.
  std::array<Lamp, ErrorLogEntries * BitsPerEntry> Shape1;
  std::array<Label, ErrorKinds> Label1;
  std::array<Label, ErrorLogEntries + 1> Label2;
  std::array<Button, 2> Command1;
  Timer Timer1;

  // True from Form_Load on, and while a blink pass runs, until the window is to close.
  [[nodiscard]] bool BlinkRunning() const { return blink_ == Blink::Due || blink_ == Blink::Pass; }

  // Reads the log onto the board and starts the blinking. On failure the lamps stay as they were
  // and nothing blinks.
  void Form_Load() override;
  // Refused while a blink pass runs, or once before the first one: that pass closes the window.
  bool Form_Unload() override;
  // A blink pass: each red lamp of entry 0 is dark for 200 ms, one after the other.
  void Timer1_Timer();
  void Command1_Click(CommandIndex index);

 private:
  void Design();
  void DesignBoard();
  void ShowEntry(int entry, std::uint16_t word);
  void SetErasing(bool erasing);
  void CloseAfterPass();

  World& world_;
  Link& link_;
  ShellState& shell_;
  enum class Blink {
    Over,        // no pass runs, and none is waited for
    Due,         // loaded; no pass has run since
    Pass,        // a pass runs
    DueToClose,  // the next pass grants a wish to close
    PassToClose  // the pass that runs does; also where it reads the log anew
  };
  Blink blink_ = Blink::Over;
};

}  // namespace gainsmith
