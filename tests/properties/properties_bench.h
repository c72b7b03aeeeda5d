// The bench of these tests: the properties window over a simulated drive.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "properties/properties_window.h"
#include "support/messages.h"
#include "support/virtual_user.h"

namespace gainsmith::test {

struct PropertiesBench {
  DriveDevice Device;
  VirtualWorld World;
  Link TheLink{World};
  ParameterStore Values;
  ShellState Shell;
  MDIForm1 Main{World, Shell};
  sysConfigFrm Window{World, TheLink, Values, Shell, Main};
  VirtualUser User{World};
  std::map<std::string, Control*> Fields;

  PropertiesBench() {
    World.Devices[1] = &Device;
    World.OpenPort(1, TheLink.SerialSettings);
    Main.EnableDriveMenus();
    Main.EnableToolbarButtons();
    for (Control* control : Window.Controls) Fields[control->Name] = control;
    Set({{245, 600}, {246, 300}, {34, 4}, {14, 1}, {15, 2}, {18, 1000}, {19, 4000}});
    Set({{55, 0}, {58, 0}, {255, 0}, {251, 13}});
  }

  // Working values of the drive, by register.
  void Set(std::initializer_list<std::pair<int, std::uint16_t>> values) {
    for (const auto& [reg, value] : values) Word(reg) = value;
  }
  std::uint16_t& Word(int reg) {
    return Device.Drive.Registers().Values[static_cast<std::size_t>(reg)];
  }

  // Opens the window as the menu does, and forgets the frames of its load.
  void Open() {
    World.ShowModal(Window);
    World.Log.Clear();
  }
  // The text of a field or a list, by the control's name.
  std::string& Text(const std::string& name) {
    Control* control = Fields.at(name);
    return control->Kind == ControlKind::ComboBox ? static_cast<ComboBox*>(control)->Text
                                                  : static_cast<TextBox*>(control)->Text;
  }
  // Enter in a field, a choice or a click: what makes a control act at once.
  void Act(const std::string& name) {
    Control* control = Fields.at(name);
    if (control->Kind == ControlKind::TextBox) static_cast<TextBox*>(control)->OnKeyPress(KeyEnter);
    if (control->Kind == ControlKind::ComboBox) static_cast<ComboBox*>(control)->OnClick();
    if (control->Kind == ControlKind::CheckBox) static_cast<CheckBox*>(control)->OnClick();
  }
  // Frames sent since the last call: "W 245=600, W 246=300".
  std::string TakeFrames() {
    std::string line;
    for (const std::string& frame : World.TakeFrames()) line += (line.empty() ? "" : ", ") + frame;
    return line;
  }
  Messages TakeMessages() { return test::TakeMessages(World); }
};

}  // namespace gainsmith::test
