// The scheme from the desktop's settings portal, which desktops on Linux share.
#include "desktop/desktop_scheme.h"

#include <utility>

#ifdef GAINSMITH_DBUS

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace gainsmith {

void AskDesktopForDark(std::function<void(bool dark)> answer) {
  constexpr unsigned PrefersDark = 1;
  // Without an address the library would start a bus of its own.
  if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return;
  QDBusMessage question = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.portal.Desktop"),
      QStringLiteral("/org/freedesktop/portal/desktop"),
      QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
  question << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme");
  auto* reply = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question),
                                            QCoreApplication::instance());
  QObject::connect(reply, &QDBusPendingCallWatcher::finished, reply,
                   [reply, answer = std::move(answer)] {
                     const QDBusPendingReply<QDBusVariant> scheme = *reply;
                     reply->deleteLater();
                     if (scheme.isError()) return;
                     // The value is a variant inside a variant.
                     const QVariant inner = scheme.value().variant();
                     const QVariant value = inner.value<QDBusVariant>().variant();
                     answer((value.isValid() ? value : inner).toUInt() == PrefersDark);
                   });
}

}  // namespace gainsmith

#else

namespace gainsmith {

// Qt's own palette tells.
void AskDesktopForDark(std::function<void(bool dark)>) {}

}  // namespace gainsmith

#endif
