// DesktopDriver: works the real windows as a person would, by the system's own names.
//
// A test can call it on the thread of the windows, where a handler that waits keeps the caller
// waiting; or in Play, on a thread of its own, where a line of the test follows the other while
// handlers nest.
#pragma once

#include <QEvent>
#include <QObject>
#include <QPoint>
#include <QWidget>
#include <functional>
#include <string>
#include <type_traits>

#include "driver/scripted_dialogs.h"
#include "platform/world.h"

namespace gainsmith::test {

class DesktopDriver : private QObject {
 public:
  explicit DesktopDriver(World& world);

  // Runs `script` on a thread of its own and the windows' events on this one, until the script
  // has ended. Every call to the driver from the script is carried out between events, inside
  // whatever wait or dialog is under way.
  void Play(const std::function<void()>& script);
  // Runs `work` on the windows' thread.
  void OnGui(const std::function<void()>& work);

  // Waits until `done` (asked on the windows' thread); false when `limitMs` have passed before.
  bool WaitUntil(const std::function<bool()>& done, int limitMs = 10'000);
  // Lets what is queued (input, handlers, painting) run until nothing is.
  void Settle();

  // The widget of a control or window on the screen ("Form3.Text1(9)", "Form3"); none: nullptr.
  // Use what it points to in OnGui only.
  QWidget* Find(const std::string& name);
  bool IsShown(const std::string& name) { return Find(name) != nullptr; }
  bool IsEnabled(const std::string& name);
  // The text that a label, button, field or window title shows.
  std::string TextOf(const std::string& name);

  // Each fails the test when the target is not on the screen or disabled. They only post the
  // input: call WaitUntil or Settle to see its effect.
  void Click(const std::string& name);
  void Press(const std::string& name);
  void Release(const std::string& name);
  // In fractions of a picture's width and height.
  void Drag(const std::string& name, double x1, double y1, double x2, double y2);
  // Replaces the text of a field, key by key.
  void Type(const std::string& name, const std::string& text);
  void Key(const std::string& name, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  // The key goes down, repeats by itself `repeats` times, and comes up.
  void HoldKey(const std::string& name, int key, int repeats);
  void Choose(const std::string& name, int index);
  void TurnPage(const std::string& name, int page);
  void Menu(const std::string& name);
  bool IsMenuEnabled(const std::string& name);
  void CloseWindow(const std::string& name);

  // Use it on the windows' thread only.
  ScriptedDialogs Dialogs;

  // Saves a picture of a window on the screen, at 1 or 2 times the screen's resolution; false when
  // there is no such window or it can't be written.
  bool Grab(const std::string& name, const std::string& path, int scale = 1);

 private:
  // What `ask` gives on the windows' thread.
  template <typename F>
  std::invoke_result_t<F> Ask(const F& ask) {
    std::invoke_result_t<F> answer{};
    OnGui([&] { answer = ask(); });
    return answer;
  }
  // Runs `work` with what can be worked on the screen; fails the test where it can't be.
  void With(const std::string& name, const std::function<void(QWidget&)>& work);
  // Runs what is queued, and what comes within a few milliseconds.
  void Turn();
  void Mouse(QWidget& widget, QPoint place, QEvent::Type type);
  void ClickAt(QWidget& widget, QPoint place);
  void KeyClick(QWidget& widget, int key, const QString& text,
                Qt::KeyboardModifiers modifiers = Qt::NoModifier);

  World& world_;
  Qt::MouseButtons held_;
  int timestampMs_ = 0;
};

}  // namespace gainsmith::test
