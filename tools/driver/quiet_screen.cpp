// Keeps to itself what the screen in memory says whenever a window comes to the front, so that a
// real warning is seen.
#include <QCoreApplication>

namespace gainsmith {
namespace {

QtMessageHandler shown = nullptr;

void ShowAllBut(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (text == QLatin1String("This plugin does not support raise()")) return;
  if (text == QLatin1String("This plugin does not support propagateSizeHints()")) return;
  shown(type, context, text);
}

void Install() { shown = qInstallMessageHandler(ShowAllBut); }
Q_COREAPP_STARTUP_FUNCTION(Install)

}  // namespace
}  // namespace gainsmith
