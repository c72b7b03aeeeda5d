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

#include "desktop/setting_listener.h"

namespace gainsmith {
namespace {

const QString Service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString Path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString Interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString Appearance = QStringLiteral("org.freedesktop.appearance");
const QString ColorScheme = QStringLiteral("color-scheme");

bool IsDark(const QVariant& value) {
  constexpr unsigned PrefersDark = 1;
  return value.toUInt() == PrefersDark;
}

}  // namespace

void FollowDesktopScheme(std::function<void(bool dark)> first,
                         std::function<void(bool dark)> changed) {
  // Without an address the library would start a bus of its own.
  if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return;
  auto* listener =
      new SettingListener(QCoreApplication::instance(),
                          [changed = std::move(changed)](const QString& space, const QString& key,
                                                         const QVariant& value) {
                            if (space == Appearance && key == ColorScheme) changed(IsDark(value));
                          });
  QDBusConnection::sessionBus().connect(Service, Path, Interface, QStringLiteral("SettingChanged"),
                                        listener,
                                        SLOT(OnSettingChanged(QString, QString, QDBusVariant)));
  QDBusMessage question =
      QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("Read"));
  question << Appearance << ColorScheme;
  auto* reply = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question),
                                            QCoreApplication::instance());
  QObject::connect(reply, &QDBusPendingCallWatcher::finished, reply,
                   [reply, first = std::move(first)] {
                     const QDBusPendingReply<QDBusVariant> scheme = *reply;
                     reply->deleteLater();
                     if (scheme.isError()) return;
                     // The value is a variant inside a variant.
                     const QVariant inner = scheme.value().variant();
                     const QVariant value = inner.value<QDBusVariant>().variant();
                     first(IsDark(value.isValid() ? value : inner));
                   });
}

}  // namespace gainsmith

#else

namespace gainsmith {

// Qt's own palette tells.
void FollowDesktopScheme(std::function<void(bool dark)>, std::function<void(bool dark)>) {}

}  // namespace gainsmith

#endif
