// The bench of these tests: the properties window over a simulated drive whose frames can be
// stopped on their way.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "properties/properties_window.h"
#include "support/messages.h"
#include "support/virtual_user.h"

namespace gainsmith::test {

using Texts = std::vector<std::string>;

// Hands whole frames on to the drive, but for those that are stopped.
class Gate : public SerialDevice {
 public:
  explicit Gate(DriveDevice& drive) : drive_(drive) {}

  std::function<bool(const LoggedFrame&)> Stops;

  void Receive(std::uint8_t byte, std::int64_t nowUs) override {
    frame_.Bytes.push_back(byte);
    if (frame_.Bytes.size() < 8) return;
    const LoggedFrame frame = std::exchange(frame_, {});
    if (Stops && Stops(frame)) return;
    for (const std::uint8_t each : frame.Bytes) drive_.Receive(each, nowUs);
  }
  std::vector<std::uint8_t> Transmit(std::int64_t nowUs) override { return drive_.Transmit(nowUs); }

 private:
  DriveDevice& drive_;
  LoggedFrame frame_;
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
  std::map<std::string, Control*> Fields;

  PropertiesBench() {
    World.Devices[1] = &Line;
    World.OpenPort(1, TheLink.SerialSettings);
    Main.EnableDriveMenus();
    Main.EnableToolbarButtons();
    for (Control* control : Window.Controls) Fields[control->Name] = control;
    Set({{245, 600}, {246, 300}, {34, 4}, {14, 1}, {15, 2}, {18, 1000}, {19, 4000}});
    Set({{55, 0}, {58, 0}, {255, 0}, {251, 13}});
  }

  // Working values of the drive, by register.
  void Set(std::initializer_list<std::pair<int, std::uint16_t>> values) {
    for (const auto& [reg, value] : values) {
      Device.Drive.Registers().Values[static_cast<std::size_t>(reg)] = value;
    }
  }

  // Opens the window as the menu does, and forgets the frames of its load.
  void Open() {
    World.ShowModal(Window);
    World.Log.Clear();
  }
  TextBox& Field(const std::string& name) { return static_cast<TextBox&>(*Fields.at(name)); }
  // The text of a field or a list, by the control's name.
  std::string& Text(const std::string& name) {
    Control* control = Fields.at(name);
    return control->Kind == ControlKind::ComboBox ? static_cast<ComboBox*>(control)->Text
                                                  : Field(name).Text;
  }
  void Enter(const std::string& name) { Field(name).OnKeyPress(KeyEnter); }
  // Frames sent since the last call: "W 245=600, W 246=300".
  std::string TakeFrames() {
    std::string line;
    for (const std::string& frame : World.Log.Texts()) line += (line.empty() ? "" : ", ") + frame;
    World.Log.Clear();
    return line;
  }
  Messages TakeMessages() { return test::TakeMessages(World); }
};

}  // namespace gainsmith::test
