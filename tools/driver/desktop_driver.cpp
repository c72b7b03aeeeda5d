// DesktopDriver: input through the same road as the window system's.
#include "driver/desktop_driver.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QPixmap>
#include <QTabBar>
#include <QThread>
#include <QTimer>
#include <QWindow>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
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

// What a key alone types.
QString LetterOf(int key) {
  if (key == Qt::Key_Return) return QStringLiteral("\r");
  return key <= 0x7f ? QString(QChar(key)).toLower() : QString();
}

}  // namespace

DesktopDriver::DesktopDriver(World& world) : world_(world) {}

void DesktopDriver::Turn() {
  QCoreApplication::processEvents(QEventLoop::AllEvents);
  if (!world_.Ended()) world_.PumpEvents(world_.NowMs() + PollEvery.count());
}

void DesktopDriver::Play(const std::function<void()>& script) {
  std::atomic<bool> ended = false;
  std::thread thread([&] {
    script();
    ended = true;
  });
  while (!ended) Turn();
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
  if (OnGuiThread()) {
    while (!done()) {
      if (Clock::now() >= limit) return false;
      Turn();
    }
    return true;
  }
  // The windows' thread asks, and wakes the script's when it has the answer.
  const auto answer = std::make_shared<std::promise<bool>>();
  OnGui([&] {
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [=] {
      const bool is = done();
      if (!is && Clock::now() < limit) return;
      timer->stop();
      timer->deleteLater();
      answer->set_value(is);
    });
    timer->start(PollEvery);
  });
  return answer->get_future().get();
}

void DesktopDriver::Settle() {
  constexpr int Turns = 3;
  for (int turn = 0; turn < Turns; ++turn) {
    OnGui([] { QCoreApplication::processEvents(QEventLoop::AllEvents); });
    OnGui([this] { world_.PumpEvents(world_.NowMs() - 1); });
  }
}

QWidget* DesktopDriver::Find(const std::string& name) {
  return Ask([&] {
    QWidget* found = nullptr;
    for (QWidget* widget : QApplication::allWidgets()) {
      if (widget->objectName().toStdString() == name && widget->isVisible()) found = widget;
    }
    return found;
  });
}

bool DesktopDriver::IsEnabled(const std::string& name) {
  return Ask([&] {
    const QWidget* widget = Find(name);
    return widget != nullptr && widget->isEnabled();
  });
}

std::string DesktopDriver::TextOf(const std::string& name) {
  return Ask([&] {
    const QWidget* widget = Find(name);
    if (widget == nullptr) return std::string();
    return widget->property(widget->isWindow() ? "windowTitle" : "text").toString().toStdString();
  });
}

void DesktopDriver::With(const std::string& name, const std::function<void(QWidget&)>& work) {
  OnGui([&] {
    QWidget* widget = Find(name);
    ASSERT_NE(widget, nullptr) << name << " is not on the screen";
    ASSERT_TRUE(widget->isEnabled()) << name << " is disabled";
    work(*widget);
  });
}

void DesktopDriver::Mouse(QWidget& widget, QPoint place, QEvent::Type type) {
  const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  if (type == QEvent::MouseButtonPress) {
    held_ = Qt::LeftButton;
    timestampMs_ += ClickDistanceMs;
  }
  if (type == QEvent::MouseButtonRelease) held_ = Qt::NoButton;
  QWidget* window = widget.window();
  qt_handleMouseEvent(window->windowHandle(), widget.mapTo(window, place),
                      widget.mapToGlobal(place), held_, button, type, Qt::NoModifier,
                      ++timestampMs_);
}

void DesktopDriver::ClickAt(QWidget& widget, QPoint place) {
  Mouse(widget, place, QEvent::MouseButtonPress);
  Mouse(widget, place, QEvent::MouseButtonRelease);
}

void DesktopDriver::Click(const std::string& name) {
  With(name, [&](QWidget& widget) {
    // Check boxes and option buttons react on their mark and text, which lie at the left.
    const bool marked = widget.inherits("QCheckBox") || widget.inherits("QRadioButton");
    ClickAt(widget, marked ? QPoint(8, widget.height() / 2) : widget.rect().center());
  });
}

void DesktopDriver::Press(const std::string& name) {
  With(name,
       [&](QWidget& widget) { Mouse(widget, widget.rect().center(), QEvent::MouseButtonPress); });
}

void DesktopDriver::Release(const std::string& name) {
  With(name,
       [&](QWidget& widget) { Mouse(widget, widget.rect().center(), QEvent::MouseButtonRelease); });
}

void DesktopDriver::Drag(const std::string& name, double x1, double y1, double x2, double y2) {
  With(name, [&](QWidget& widget) {
    const auto at = [&](double x, double y) {
      return QPointF(x * widget.width(), y * widget.height()).toPoint();
    };
    Mouse(widget, at(x1, y1), QEvent::MouseButtonPress);
    Mouse(widget, at((x1 + x2) / 2, (y1 + y2) / 2), QEvent::MouseMove);
    Mouse(widget, at(x2, y2), QEvent::MouseMove);
    Mouse(widget, at(x2, y2), QEvent::MouseButtonRelease);
  });
}

void DesktopDriver::KeyClick(QWidget& widget, int key, const QString& text,
                             Qt::KeyboardModifiers modifiers) {
  QWindow* window = widget.window()->windowHandle();
  qt_handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text, false, 1);
  qt_handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text, false, 1);
}

void DesktopDriver::Type(const std::string& name, const std::string& text) {
  With(name, [&](QWidget& widget) {
    Click(name);
    KeyClick(widget, Qt::Key_A, QString(), Qt::ControlModifier);
    for (const QChar letter : QString::fromStdString(text)) {
      KeyClick(widget, letter.toUpper().unicode(), QString(letter));
    }
  });
}

void DesktopDriver::Key(const std::string& name, int key, Qt::KeyboardModifiers modifiers) {
  With(name, [&](QWidget& widget) {
    KeyClick(widget, key, modifiers == Qt::NoModifier ? LetterOf(key) : QString(), modifiers);
  });
}

void DesktopDriver::HoldKey(const std::string& name, int key, int repeats) {
  With(name, [&](QWidget& widget) {
    QWindow* window = widget.window()->windowHandle();
    const QString text = LetterOf(key);
    for (int i = 0; i <= repeats; ++i) {
      qt_handleKeyEvent(window, QEvent::KeyPress, key, Qt::NoModifier, text, i > 0, 1);
      qt_handleKeyEvent(window, QEvent::KeyRelease, key, Qt::NoModifier, text, i < repeats, 1);
    }
  });
}

void DesktopDriver::Choose(const std::string& name, int index) {
  With(name, [&](QWidget& widget) {
    auto& box = dynamic_cast<QComboBox&>(widget);
    ASSERT_LT(index, box.count()) << name;
    // What choosing from the list that has come down does.
    box.setCurrentIndex(index);
    emit box.activated(index);
  });
}

void DesktopDriver::TurnPage(const std::string& name, int page) {
  With(name, [&](QWidget& widget) {
    auto* bar = widget.findChild<QTabBar*>();
    ASSERT_NE(bar, nullptr) << name;
    ClickAt(*bar, bar->tabRect(page).center());
  });
}

void DesktopDriver::Menu(const std::string& name) {
  OnGui([&] {
    ASSERT_TRUE(IsMenuEnabled(name)) << name << " can't be chosen";
    FindAction(name)->trigger();
  });
}

bool DesktopDriver::IsMenuEnabled(const std::string& name) {
  return Ask([&] {
    const QAction* action = FindAction(name);
    return action != nullptr && action->isVisible() && action->isEnabled();
  });
}

void DesktopDriver::CloseWindow(const std::string& name) {
  OnGui([&] {
    QWidget* window = Find(name);
    ASSERT_NE(window, nullptr) << name;
    window->close();
  });
}

bool DesktopDriver::Grab(const std::string& name, const std::string& path, int scale) {
  return Ask([&] {
    QWidget* window = Find(name);
    if (window == nullptr) return false;
    const qreal pixels = scale * window->devicePixelRatioF();
    QPixmap picture((QSizeF(window->size()) * pixels).toSize());
    picture.setDevicePixelRatio(pixels);
    picture.fill(Qt::transparent);
    window->render(&picture);
    return picture.save(QString::fromStdString(path));
  });
}

}  // namespace gainsmith::test
