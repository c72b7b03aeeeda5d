// VirtualUser: what a person at the screen can do, and only that. An action on something that is
// hidden, disabled, or behind a modal window does not reach it.
#pragma once

#include <string>

#include "support/virtual_world.h"

namespace gainsmith::test {

class VirtualUser {
 public:
  explicit VirtualUser(VirtualWorld& world) : world_(world) {}

  // Whether the user could act on it now. A control on another page of its tabs counts as within
  // reach.
  bool CanReach(const Control& control) const;
  bool CanReach(const Window& window) const;
  bool CanReach(const MenuItem& item) const;

  // False, and nothing happens, when the button is out of reach.
  [[nodiscard]] bool TryClick(Button& button);

  // Each fails the test when its target is out of reach.
  void Click(Button& button);
  void Click(MenuItem& item);
  void Click(ToolButton& button);
  void Click(CheckBox& box);
  void Click(OptionButton& option);
  void Choose(ComboBox& combo, int index);
  // Replaces the text key by key, through the field's key filter.
  void Type(TextBox& field, const std::string& text);
  // Puts text into the field past the key filter, as pasting does.
  void Paste(TextBox& field, const std::string& text);
  void Enter(TextBox& field);
  void Leave(TextBox& field);
  void Press(Button& button);
  void Release(Button& button);
  // Press at one point, move and release at another, in the picture's user scale.
  void Drag(PictureBox& picture, float x1, float y1, float x2, float y2, int button = LeftButton);
  // Asks the window to close, as its title bar does; it may refuse.
  void Close(Window& window);

 private:
  Window* WindowOf(const Control& control) const;
  void MustReach(const Control& control) const;

  VirtualWorld& world_;
};

}  // namespace gainsmith::test
