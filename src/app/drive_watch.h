// DriveWatch: what the main window's strip says of link, motor and stored settings, from what the
// tool knows already. It never costs a frame.
#pragma once

#include <cstdint>
#include <set>
#include <utility>

#include "link/link.h"
#include "shell/main_window.h"

namespace gainsmith {

// What the motor may be doing, as far as the tool can know.
enum class MotorState {
  AtRest,
  TestRunning,
  Jogging,
  Stopping,
  // It was told to run, and whether it does nobody knows: a word was not acknowledged, or the link
  // or the window was lost while one was in force. Stays until the drive has acknowledged a stop.
  Unknown,
};

class DriveWatch {
 public:
  // What of the tool's windows is at work on the motor.
  struct Hands {
    // A run button says "Stop", or the window of the current loop test is open.
    bool OnTest = false;
    // A jog button is held.
    bool OnJog = false;
  };
  // Hooks itself into the link. All outlive it.
  DriveWatch(World& world, Link& link, MDIForm1& main);
  DriveWatch(const DriveWatch&) = delete;
  DriveWatch& operator=(const DriveWatch&) = delete;

  // Brings the strip up to date.
  void Refresh(const Hands& hands);
  [[nodiscard]] MotorState Motor() const { return motor_; }

 private:
  // What is known of the settings' being stored: at first nothing, since a read cannot tell.
  enum class Stored { Unknown, Yes, No };

  void NoteSession();
  void WatchMotor(const Hands& hands);
  [[nodiscard]] StripText LinkText() const;
  [[nodiscard]] StripText MotorText() const;
  [[nodiscard]] StripText SettingsText() const;

  World& world_;
  Link& link_;
  MDIForm1& main_;
  MotorState motor_ = MotorState::AtRest;
  // Drives, and their command registers, with a word in force of which nobody knows what became.
  std::set<std::pair<std::uint8_t, Register>> unknown_;
  Stored stored_ = Stored::Unknown;
  std::uint64_t session_ = 0;
  std::uint8_t device_ = 0;
};

}  // namespace gainsmith
