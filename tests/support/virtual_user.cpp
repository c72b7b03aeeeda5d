// VirtualUser: see the header.
#include "support/virtual_user.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace gainsmith::test {

Window* VirtualUser::WindowOf(const Control& control) const {
  for (Window* window : world_.LoadedWindows()) {
    if (std::find(window->Controls.begin(), window->Controls.end(), &control) !=
        window->Controls.end()) {
      return window;
    }
  }
  return nullptr;
}

bool VirtualUser::CanReach(const Window& window) const {
  const Window* modal = world_.ModalWindow();
  return window.Visible && (modal == nullptr || modal == &window) && !world_.Ended();
}

bool VirtualUser::CanReach(const Control& control) const {
  const Window* window = WindowOf(control);
  if (window == nullptr || !CanReach(*window)) return false;
  for (const Control* c = &control; c != nullptr; c = c->Container) {
    if (!c->Visible || !c->Enabled || c->Parked) return false;
  }
  return true;
}

bool VirtualUser::CanReach(const MenuItem& item) const {
  return item.Visible && item.Enabled && world_.ModalWindow() == nullptr && !world_.Ended();
}

void VirtualUser::MustReach(const Control& control) const {
  if (!CanReach(control)) ADD_FAILURE() << control.Name << " is out of the user's reach";
}

bool VirtualUser::TryClick(Button& button) {
  if (!CanReach(button)) return false;
  Click(button);
  return true;
}

void VirtualUser::Click(Button& button) {
  MustReach(button);
  if (button.OnClick) button.OnClick();
}

void VirtualUser::Click(MenuItem& item) {
  ASSERT_TRUE(CanReach(item)) << item.Name << " is out of the user's reach";
  item.OnClick();
}

void VirtualUser::Click(ToolButton& button) {
  ASSERT_TRUE(button.Enabled && world_.ModalWindow() == nullptr)
      << button.ToolTip << " is out of the user's reach";
  button.OnClick();
}

void VirtualUser::Click(CheckBox& box) {
  MustReach(box);
  box.Ticked = !box.Ticked;
  if (box.OnClick) box.OnClick();
}

void VirtualUser::Click(OptionButton& option) {
  MustReach(option);
  for (Control* control : WindowOf(option)->Controls) {
    if (control->Kind == ControlKind::OptionButton && control->Container == option.Container &&
        control->Page == option.Page) {
      static_cast<OptionButton*>(control)->Selected = control == &option;
    }
  }
  if (option.OnClick) option.OnClick();
}

void VirtualUser::Choose(ComboBox& combo, int index) {
  MustReach(combo);
  combo.Choose(index);
  if (combo.OnClick) combo.OnClick();
}

void VirtualUser::Type(TextBox& field, const std::string& text) {
  MustReach(field);
  field.Text.clear();
  for (const char c : text) {
    if (!field.OnKeyPress || field.OnKeyPress(static_cast<unsigned char>(c))) field.Text += c;
  }
}

void VirtualUser::Paste(TextBox& field, const std::string& text) {
  MustReach(field);
  field.Text = text;
}

void VirtualUser::Enter(TextBox& field) {
  MustReach(field);
  if (field.OnKeyPress) field.OnKeyPress(KeyEnter);
}

void VirtualUser::Leave(TextBox& field) {
  MustReach(field);
  if (field.OnLostFocus) field.OnLostFocus();
}

void VirtualUser::Press(Button& button) {
  MustReach(button);
  button.OnPress();
}

void VirtualUser::Release(Button& button) { button.OnRelease(); }

void VirtualUser::Drag(PictureBox& picture, float x1, float y1, float x2, float y2, int button) {
  MustReach(picture);
  picture.OnMouseDown(button, x1, y1);
  if (x1 != x2 || y1 != y2) picture.OnMouseMove(button, x2, y2);
  picture.OnMouseUp(button, x2, y2);
}

void VirtualUser::Close(Window& window) {
  ASSERT_TRUE(CanReach(window)) << window.Name << " is out of the user's reach";
  world_.Unload(window);
}

}  // namespace gainsmith::test
