// SettingListener: the slot that the message bus finds by its name.
#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <functional>
#include <utility>

namespace gainsmith {

// Passes on each change of a setting of the desktop, for as long as its parent lives.
class SettingListener final : public QObject {
  Q_OBJECT

 public:
  using Handler =
      std::function<void(const QString& space, const QString& key, const QVariant& value)>;
  SettingListener(QObject* parent, Handler changed)
      : QObject(parent), changed_(std::move(changed)) {}

 private slots:
  void OnSettingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
    changed_(space, key, value.variant());
  }

 private:
  Handler changed_;
};

}  // namespace gainsmith
