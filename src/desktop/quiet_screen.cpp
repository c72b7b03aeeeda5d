// Passes on every message of Qt but three.
#include "desktop/quiet_screen.h"

#include <QString>

namespace gainsmith {

namespace {

QtMessageHandler messageHandler = nullptr;

void ShowAllBut(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (text == QLatin1String("This plugin does not support raise()")) return;
  if (text == QLatin1String("This plugin does not support propagateSizeHints()")) return;
  if (text == QLatin1String("This plugin does not support grabbing the keyboard")) return;
  messageHandler(type, context, text);
}

}  // namespace

void KeepScreenQuiet() {
  if (messageHandler == nullptr) messageHandler = qInstallMessageHandler(ShowAllBut);
}

}  // namespace gainsmith
