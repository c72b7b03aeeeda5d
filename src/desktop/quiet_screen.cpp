// Passes on every message of Qt but three.
#include "desktop/quiet_screen.h"

#include <QString>

namespace gainsmith {

namespace {

QtMessageHandler shown = nullptr;

void ShowAllBut(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (text == QLatin1String("This plugin does not support raise()")) return;
  if (text == QLatin1String("This plugin does not support propagateSizeHints()")) return;
  if (text == QLatin1String("This plugin does not support grabbing the keyboard")) return;
  shown(type, context, text);
}

}  // namespace

void KeepScreenQuiet() {
  if (shown == nullptr) shown = qInstallMessageHandler(ShowAllBut);
}

}  // namespace gainsmith
