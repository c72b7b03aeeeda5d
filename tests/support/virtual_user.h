// VirtualUser: what a person at the screen can do, and only that. An action on something that is
// hidden, disabled, or behind a modal window fails the test.
#pragma once

#include <gtest/gtest.h>

#include "support/virtual_world.h"

namespace gainsmith::test {

class VirtualUser {
 public:
  explicit VirtualUser(VirtualWorld& world) : world_(world) {}

  // Whether the user could act on it now. A control on another page of its tabs counts as within
  // reach.
  bool CanReach(const Window& window) const {
    const Window* modal = world_.ModalWindow();
    return window.Visible && (modal == nullptr || modal == &window) && !world_.Ended();
  }
  bool CanReach(const Control& control) const {
    const Window* window = WindowOf(control);
    if (window == nullptr || !CanReach(*window)) return false;
    for (const Control* c = &control; c != nullptr; c = c->Container) {
      if (!c->Visible || !c->Enabled || c->Parked) return false;
    }
    return true;
  }
  bool CanReach(const MenuItem& item) const {
    return item.Visible && item.Enabled && world_.ModalWindow() == nullptr && !world_.Ended();
  }

  // False, and nothing happens, when the button is out of reach.
  [[nodiscard]] bool TryClick(Button& button) {
    const bool reached = CanReach(button);
    if (reached) Click(button);
    return reached;
  }
  void Click(Button& button) {
    MustReach(button);
    Tell(button.OnClick);
  }
  void Click(MenuItem& item) {
    ASSERT_TRUE(CanReach(item)) << item.Name << " is out of the user's reach";
    item.OnClick();
  }
  void Click(ToolButton& button) {
    ASSERT_TRUE(button.Enabled && world_.ModalWindow() == nullptr)
        << button.ToolTip << " is out of the user's reach";
    button.OnClick();
  }
  void Click(CheckBox& box) {
    MustReach(box);
    box.Ticked = !box.Ticked;
    Tell(box.OnClick);
  }
  void Click(OptionButton& option) {
    MustReach(option);
    for (Control* control : WindowOf(option)->Controls) {
      if (control->Kind == ControlKind::OptionButton && control->Container == option.Container &&
          control->Page == option.Page) {
        static_cast<OptionButton*>(control)->Selected = control == &option;
      }
    }
    Tell(option.OnClick);
  }
  void Choose(ComboBox& combo, int index) {
    MustReach(combo);
    combo.Choose(index);
    Tell(combo.OnClick);
  }
  // Replaces the text key by key, through the field's key filter.
  void Type(TextBox& field, const std::string& text) {
    Paste(field, "");
    for (const char c : text) {
      if (!field.OnKeyPress || field.OnKeyPress(static_cast<unsigned char>(c))) field.Text += c;
    }
  }
  // Puts text into the field past the key filter, as pasting does.
  void Paste(TextBox& field, const std::string& text) {
    MustReach(field);
    field.Text = text;
  }
  void Enter(TextBox& field) {
    MustReach(field);
    if (field.OnKeyPress) field.OnKeyPress(KeyEnter);
  }
  void Leave(TextBox& field) {
    MustReach(field);
    Tell(field.OnLostFocus);
  }
  void Press(Button& button) {
    MustReach(button);
    button.OnPress();
  }
  void Release(Button& button) { button.OnRelease(); }
  // Press at one point, move and release at another, in the picture's user scale.
  void Drag(PictureBox& picture, float x1, float y1, float x2, float y2, int button = LeftButton) {
    MustReach(picture);
    picture.OnMouseDown(button, x1, y1);
    if (x1 != x2 || y1 != y2) picture.OnMouseMove(button, x2, y2);
    picture.OnMouseUp(button, x2, y2);
  }
  // Asks the window to close, as its title bar does; it may refuse.
  void Close(Window& window) {
    ASSERT_TRUE(CanReach(window)) << window.Name << " is out of the user's reach";
    world_.Unload(window);
  }

 private:
  static void Tell(const std::function<void()>& handler) {
    if (handler) handler();
  }
  Window* WindowOf(const Control& control) const {
    for (Window* window : world_.LoadedWindows()) {
      const auto& controls = window->Controls;
      if (std::find(controls.begin(), controls.end(), &control) != controls.end()) return window;
    }
    return nullptr;
  }
  void MustReach(const Control& control) const {
    EXPECT_TRUE(CanReach(control)) << control.Name << " is out of the user's reach";
  }

  VirtualWorld& world_;
};

}  // namespace gainsmith::test
