// Linked into a program, ends it as soon as its first window has been painted.
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

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
      QTimer::singleShot(0, [] { _exit(0); });
    }
    return false;
  }
};

void Watch() { qApp->installEventFilter(new FirstPaint(qApp)); }
Q_COREAPP_STARTUP_FUNCTION(Watch)

}  // namespace
}  // namespace gainsmith::benchmarks
