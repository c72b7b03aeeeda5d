// The bench of these tests: the properties window over a simulated drive whose frames can be
// stopped on their way.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "properties/properties_window.h"
#include "support/virtual_user.h"

namespace gainsmith::test {

using Texts = std::vector<std::string>;

// Hands whole frames on to the drive, unless they are stopped.
class Gate : public SerialDevice {
 public:
  explicit Gate(DriveDevice& drive) : drive_(drive) {}

  // Asked with each frame, counted by exchanges: a frame sent again keeps its number. True stops
  // it.
  std::function<bool(int exchange, const LoggedFrame& frame)> Stops;

  void Receive(std::uint8_t byte, std::int64_t nowUs) override {
    frame_.Bytes.push_back(byte);
    if (frame_.Bytes.size() < 8) return;
    const LoggedFrame frame = std::exchange(frame_, {});
    if (frame.Bytes != last_) ++exchange_;
    last_ = frame.Bytes;
    if (Stops && Stops(exchange_, frame)) return;
    for (const std::uint8_t each : frame.Bytes) drive_.Receive(each, nowUs);
  }
  std::vector<std::uint8_t> Transmit(std::int64_t nowUs) override { return drive_.Transmit(nowUs); }

 private:
  DriveDevice& drive_;
  LoggedFrame frame_;
  std::vector<std::uint8_t> last_;
  int exchange_ = -1;
};

struct PropertiesBench {
  DriveDevice Device;
  Gate Line{Device};
  VirtualWorld World;
  Link TheLink{World};
  ParameterStore Values;
  ShellState Shell;
  MDIForm1 Main{World, Shell};
  sysConfigFrm Window{World, TheLink, Values, Main};
  VirtualUser User{World};

  PropertiesBench() {
    World.Devices[1] = &Line;
    World.OpenPort(1, TheLink.SerialSettings);
    Main.EnableDriveMenus();
    Main.EnableToolbarButtons();
    Set({{245, 600}, {246, 300}, {34, 4}, {14, 1}, {15, 2}, {18, 1000}, {19, 4000}});
    Set({{55, 0}, {58, 0}, {255, 0}, {251, 13}});
  }

  // Working values of the drive, by register.
  void Set(std::initializer_list<std::pair<int, std::uint16_t>> values) {
    for (const auto& [reg, value] : values) {
      Device.Drive.Registers().Values[static_cast<std::size_t>(reg)] = value;
    }
  }
  std::uint16_t Get(int reg) { return Device.Drive.Registers().Values[std::size_t(reg)]; }

  void FallSilent() {
    Line.Stops = [](int, const LoggedFrame&) { return true; };
  }
  // Opens the window as the menu does, and forgets the frames of its load.
  void Open() {
    World.ShowModal(Window);
    World.Log.Clear();
  }
  void SetText(std::size_t index, const std::string& text) { Window.Text1[index].Text = text; }
};

inline const std::string LinkText =
    "Unable to communicate with the connected drive. Check your connection";

}  // namespace gainsmith::test
