// ControlView: one control's widget, kept in step with its record in both directions.
#pragma once

#include <QObject>
#include <QPalette>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/control.h"

namespace gainsmith {

class WindowView;

// Whether the control and all that it lies in are enabled and visible.
bool WithinReach(const Control& control);

// Belongs to its widget and is deleted with it. Holds copies of what the widget shows, so that
// reflecting an unchanged record costs a comparison of plain data.
//
// A widget shows what its record holds, however it was changed: by mouse and keyboard, by what a
// handler makes of the change, or by a program that works the widget itself (a screen reader, voice
// control). So views listen to the widget's state, not to gestures, and compare with it where it
// may have changed without them.
class ControlView : public QObject {
 public:
  // The record outlives the window's stay on the screen.
  ControlView(WindowView& window, Control& record, QWidget* widget);

  [[nodiscard]] Control& Record() const { return record_; }
  [[nodiscard]] QWidget& Widget() const { return *widget_; }
  // Brings what changed in the record onto the widget.
  void Reflect();
  // Reflects everything next time, whether it changed or not: the palette has changed.
  virtual void Forget();
  // Parent and origin (in pixels, to be subtracted) of controls that lie in this one.
  virtual QWidget* PageParent(int /*page*/) { return widget_; }
  [[nodiscard]] virtual QPoint PageOrigin() const { return {0, 0}; }
  // The widget that takes the keyboard.
  virtual QWidget* FocusWidget() { return widget_; }
  // Lets go of what the user holds (a pressed button).
  virtual void LetGo() {}
  // Puts what the control shows on the clipboard; false: it has nothing for it.
  virtual bool Copy() { return false; }

 protected:
  // Takes `now` into `shown`; true when they differed.
  template <typename T>
  static bool Changed(std::optional<T>& shown, const T& now) {
    if (shown == now) return false;
    shown = now;
    return true;
  }
  virtual void ReflectOwn() = 0;
  virtual void ReflectCaption() {}
  virtual void ReflectColours();
  virtual void ReflectVisible();
  // What has to be so when the action's turn has come: that the user can reach the control, or its
  // window at least.
  enum class Asks { Control, Window };
  // Posts `run` for the window's handlers. False, and nothing is posted, while records are being
  // brought onto widgets: what those report then is not the user's doing.
  bool Post(std::function<void()> run, Asks asks = Asks::Control);
  // Whether an action posted here has yet to begin: the widget may be ahead of its record, and is
  // brought back to it only when the action has run or was dropped.
  [[nodiscard]] bool HasPosted() const { return posted_ > 0; }
  // Whether the user may change the widget now, and this is the user's doing. Where not, the widget
  // goes back to what the record says.
  [[nodiscard]] bool MayChange() const;

  [[nodiscard]] WindowView& Owner() const { return window_; }
  // The colour the widget stands on or is filled with.
  [[nodiscard]] QColor Background() const;

 private:
  void ReflectPlace();

  WindowView& window_;
  Control& record_;
  QWidget* widget_;
  int posted_ = 0;
  std::optional<std::string> caption_;
  std::optional<std::string> toolTip_;
  std::optional<std::string> accessibleName_;
  std::optional<bool> enabled_;
  std::optional<bool> visible_;
  std::optional<Colour> backColor_;
  std::optional<Colour> foreColor_;
  std::optional<QRect> place_;
};

// The view of a control that is not parked, with its widget made as a child of `parent`.
ControlView* MakeControlView(WindowView& window, Control& record, QWidget* parent);

// The makers behind MakeControlView.
ControlView* MakeLabelView(WindowView& window, Label& record, QWidget* parent);
ControlView* MakeTextBoxView(WindowView& window, TextBox& record, QWidget* parent);
ControlView* MakeButtonView(WindowView& window, Button& record, QWidget* parent);
ControlView* MakeCheckBoxView(WindowView& window, CheckBox& record, QWidget* parent);
ControlView* MakeOptionButtonView(WindowView& window, OptionButton& record, QWidget* parent);
ControlView* MakeComboBoxView(WindowView& window, ComboBox& record, QWidget* parent);
ControlView* MakeFrameView(WindowView& window, Frame& record, QWidget* parent);
ControlView* MakeTabsView(WindowView& window, Tabs& record, QWidget* parent);
ControlView* MakePictureBoxView(WindowView& window, PictureBox& record, QWidget* parent);
ControlView* MakeLampView(WindowView& window, Lamp& record, QWidget* parent);
ControlView* MakeProgressBarView(WindowView& window, ProgressBar& record, QWidget* parent);
ControlView* MakeStatusBarView(WindowView& window, StatusBar& record, QWidget* parent);
ControlView* MakeGridView(WindowView& window, Grid& record, QWidget* parent);
ControlView* MakeImageView(WindowView& window, Image& record, QWidget* parent);

}  // namespace gainsmith
