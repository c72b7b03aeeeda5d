// Linked into a program, ends it as soon as its first window has been painted, and writes when that
// was to the standard output.
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <chrono>

namespace gainsmith::benchmarks {
namespace {

class FirstPaint : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override {
    const auto* widget = qobject_cast<QWidget*>(receiver);
    if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow()) {
      // When the painting is done. No farewells: only the start counts.
      QTimer::singleShot(0, [] {
        const std::chrono::steady_clock::time_point now = std::chrono::steady_clock::now();
        _exit(write(STDOUT_FILENO, &now, sizeof now) == sizeof now ? 0 : 1);
      });
    }
    return false;
  }
};

void Watch() { qApp->installEventFilter(new FirstPaint(qApp)); }
Q_COREAPP_STARTUP_FUNCTION(Watch)

}  // namespace
}  // namespace gainsmith::benchmarks
