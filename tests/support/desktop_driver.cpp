// DesktopDriver: input through the same road as the window system's.
#include "support/desktop_driver.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QTabBar>
#include <QThread>
#include <QWindow>
#include <atomic>
#include <chrono>
#include <thread>

// Qt's own entry for tests: the events take the road of those from the window system.
Q_GUI_EXPORT extern void qt_handleMouseEvent(QWindow* window, const QPointF& local,
                                             const QPointF& global, Qt::MouseButtons state,
                                             Qt::MouseButton button, QEvent::Type type,
                                             Qt::KeyboardModifiers modifiers, int timestamp);
Q_GUI_EXPORT extern void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key,
                                           Qt::KeyboardModifiers modifiers, const QString& text,
                                           bool autoRepeat, ushort count);

namespace gainsmith::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds PollEvery{4};
// Clicks lie further apart than a double click.
constexpr int ClickDistanceMs = 5'000;

bool OnGuiThread() { return QThread::currentThread() == qApp->thread(); }

QAction* FindAction(const std::string& name) {
  for (QWidget* top : QApplication::topLevelWidgets()) {
    if (auto* action = top->findChild<QAction*>(QString::fromStdString(name))) return action;
  }
  return nullptr;
}

}  // namespace

DesktopDriver::DesktopDriver(World& world) : world_(world) {}

void DesktopDriver::Play(const std::function<void()>& script) {
  std::atomic<bool> ended = false;
  std::thread thread([&] {
    script();
    ended = true;
  });
  while (!ended) {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    if (!world_.Ended()) world_.PumpEvents(world_.NowMs() + PollEvery.count());
  }
  thread.join();
}

void DesktopDriver::OnGui(const std::function<void()>& work) {
  if (OnGuiThread()) {
    work();
  } else {
    QMetaObject::invokeMethod(this, work, Qt::BlockingQueuedConnection);
  }
}

bool DesktopDriver::WaitUntil(const std::function<bool()>& done, int limitMs) {
  const auto limit = Clock::now() + std::chrono::milliseconds(limitMs);
  for (;;) {
    bool is = false;
    OnGui([&] { is = done(); });
    if (is || Clock::now() >= limit) return is;
    if (!OnGuiThread()) {
      std::this_thread::sleep_for(PollEvery);
    } else if (world_.Ended()) {
      QCoreApplication::processEvents(QEventLoop::AllEvents);
    } else {
      world_.PumpEvents(world_.NowMs() + PollEvery.count());
    }
  }
}

void DesktopDriver::Settle() {
  constexpr int Turns = 3;
  for (int turn = 0; turn < Turns; ++turn) {
    OnGui([] { QCoreApplication::processEvents(QEventLoop::AllEvents); });
    OnGui([this] { world_.PumpEvents(world_.NowMs() - 1); });
  }
}

QWidget* DesktopDriver::Find(const std::string& name) {
  QWidget* found = nullptr;
  OnGui([&] {
    for (QWidget* widget : QApplication::allWidgets()) {
      if (widget->objectName().toStdString() == name && widget->isVisible()) found = widget;
    }
  });
  return found;
}

bool DesktopDriver::IsEnabled(const std::string& name) {
  bool enabled = false;
  OnGui([&] {
    const QWidget* widget = Find(name);
    enabled = widget != nullptr && widget->isEnabled();
  });
  return enabled;
}

std::string DesktopDriver::TextOf(const std::string& name) {
  QString text;
  OnGui([&] {
    QWidget* widget = Find(name);
    if (widget == nullptr) return;
    if (auto* label = qobject_cast<QLabel*>(widget)) text = label->text();
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) text = button->text();
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) text = edit->text();
    if (auto* box = qobject_cast<QComboBox*>(widget)) text = box->currentText();
    if (widget->isWindow()) text = widget->windowTitle();
  });
  return text.toStdString();
}

QWidget* DesktopDriver::MustFind(const std::string& name) {
  QWidget* widget = Find(name);
  if (widget == nullptr) {
    ADD_FAILURE() << name << " is not on the screen";
  } else if (!widget->isEnabled()) {
    ADD_FAILURE() << name << " is disabled";
    widget = nullptr;
  }
  return widget;
}

void DesktopDriver::Mouse(QWidget& widget, QPoint place, Qt::MouseButton button,
                          QEvent::Type type) {
  if (type == QEvent::MouseButtonPress) {
    held_ |= button;
    timestampMs_ += ClickDistanceMs;
  }
  if (type == QEvent::MouseButtonRelease) held_ &= ~Qt::MouseButtons(button);
  QWidget* window = widget.window();
  qt_handleMouseEvent(window->windowHandle(), widget.mapTo(window, place),
                      widget.mapToGlobal(place), held_, button, type, Qt::NoModifier,
                      ++timestampMs_);
}

void DesktopDriver::Click(const std::string& name) {
  OnGui([&] {
    const QWidget* widget = MustFind(name);
    if (widget == nullptr) return;
    // Check boxes and option buttons react on their mark and text, which lie at the left.
    const bool marked = widget->inherits("QCheckBox") || widget->inherits("QRadioButton");
    ClickAt(name, marked ? QPoint(8, widget->height() / 2) : widget->rect().center());
  });
}

void DesktopDriver::ClickAt(const std::string& name, QPoint place) {
  OnGui([&] {
    QWidget* widget = MustFind(name);
    if (widget == nullptr) return;
    Mouse(*widget, place, Qt::LeftButton, QEvent::MouseButtonPress);
    Mouse(*widget, place, Qt::LeftButton, QEvent::MouseButtonRelease);
  });
}

void DesktopDriver::Press(const std::string& name) {
  OnGui([&] {
    QWidget* widget = MustFind(name);
    if (widget == nullptr) return;
    Mouse(*widget, widget->rect().center(), Qt::LeftButton, QEvent::MouseButtonPress);
  });
}

void DesktopDriver::Release(const std::string& name) {
  OnGui([&] {
    QWidget* widget = MustFind(name);
    if (widget == nullptr) return;
    Mouse(*widget, widget->rect().center(), Qt::LeftButton, QEvent::MouseButtonRelease);
  });
}

void DesktopDriver::Drag(const std::string& name, double x1, double y1, double x2, double y2) {
  OnGui([&] {
    QWidget* widget = MustFind(name);
    if (widget == nullptr) return;
    const auto at = [&](double x, double y) {
      return QPointF(x * widget->width(), y * widget->height()).toPoint();
    };
    Mouse(*widget, at(x1, y1), Qt::LeftButton, QEvent::MouseButtonPress);
    Mouse(*widget, at((x1 + x2) / 2, (y1 + y2) / 2), Qt::NoButton, QEvent::MouseMove);
    Mouse(*widget, at(x2, y2), Qt::NoButton, QEvent::MouseMove);
    Mouse(*widget, at(x2, y2), Qt::LeftButton, QEvent::MouseButtonRelease);
  });
}

void DesktopDriver::KeyClick(QWidget& widget, int key, const QString& text,
                             Qt::KeyboardModifiers modifiers) {
  QWindow* window = widget.window()->windowHandle();
  qt_handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text, false, 1);
  qt_handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text, false, 1);
}

void DesktopDriver::Type(const std::string& name, const std::string& text) {
  OnGui([&] {
    QWidget* widget = MustFind(name);
    if (widget == nullptr) return;
    Click(name);
    KeyClick(*widget, Qt::Key_A, QString(), Qt::ControlModifier);
    if (text.empty()) KeyClick(*widget, Qt::Key_Backspace, QString(), Qt::NoModifier);
    for (const QChar letter : QString::fromStdString(text)) {
      KeyClick(*widget, letter.toUpper().unicode(), QString(letter), Qt::NoModifier);
    }
  });
}

void DesktopDriver::Key(const std::string& name, int key, Qt::KeyboardModifiers modifiers) {
  OnGui([&] {
    QWidget* widget = MustFind(name);
    if (widget == nullptr) return;
    const bool types = key == Qt::Key_Return || key == Qt::Key_Enter;
    KeyClick(*widget, key, types ? QStringLiteral("\r") : QString(), modifiers);
  });
}

void DesktopDriver::Choose(const std::string& name, int index) {
  OnGui([&] {
    auto* box = qobject_cast<QComboBox*>(MustFind(name));
    if (box == nullptr) return;
    ASSERT_LT(index, box->count()) << name;
    // What choosing from the list that has come down does.
    box->setCurrentIndex(index);
    emit box->activated(index);
  });
}

void DesktopDriver::TurnPage(const std::string& name, int page) {
  OnGui([&] {
    QWidget* widget = MustFind(name);
    if (widget == nullptr) return;
    auto* bar = widget->findChild<QTabBar*>();
    ASSERT_NE(bar, nullptr) << name;
    Mouse(*bar, bar->tabRect(page).center(), Qt::LeftButton, QEvent::MouseButtonPress);
    Mouse(*bar, bar->tabRect(page).center(), Qt::LeftButton, QEvent::MouseButtonRelease);
  });
}

void DesktopDriver::Menu(const std::string& name) {
  OnGui([&] {
    QAction* action = FindAction(name);
    ASSERT_NE(action, nullptr) << name;
    EXPECT_TRUE(action->isEnabled() && action->isVisible()) << name << " can't be chosen";
    action->trigger();
  });
}

bool DesktopDriver::IsMenuEnabled(const std::string& name) {
  bool enabled = false;
  OnGui([&] {
    const QAction* action = FindAction(name);
    enabled = action != nullptr && action->isVisible() && action->isEnabled();
  });
  return enabled;
}

void DesktopDriver::CloseWindow(const std::string& name) {
  OnGui([&] {
    QWidget* window = Find(name);
    ASSERT_NE(window, nullptr) << name;
    window->window()->close();
  });
}

void DesktopDriver::SetOnDialog(std::function<void(QWidget& dialog)> action) {
  OnGui([&] { dialogs_.OnDialog = std::move(action); });
}

void DesktopDriver::Answer(MessageAnswer answer) {
  OnGui([&] { dialogs_.Answers.push_back(answer); });
}
void DesktopDriver::AnswerFile(const std::string& path) {
  OnGui([&] { dialogs_.Files.push_back(path); });
}
void DesktopDriver::AnswerColour(std::optional<Colour> colour) {
  OnGui([&] { dialogs_.Colours.push_back(colour); });
}

std::vector<ScriptedDialogs::Shown> DesktopDriver::Messages() {
  std::vector<ScriptedDialogs::Shown> messages;
  OnGui([&] { messages = dialogs_.Messages; });
  return messages;
}

bool DesktopDriver::Grab(const std::string& name, const std::string& path, int scale) {
  bool saved = false;
  OnGui([&] {
    QWidget* window = Find(name);
    if (window == nullptr) return;
    QPixmap picture(window->size() * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    window->render(&picture);
    saved = picture.save(QString::fromStdString(path));
  });
  return saved;
}

}  // namespace gainsmith::test
