// Files of the desktop world.
#include "desktop/files.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QUrl>

#include "desktop/look.h"

namespace gainsmith {

std::optional<std::string> ReadWholeFile(const std::string& path) {
  if (!IsFile(path)) return std::nullopt;
  QFile file(ToQt(path));
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray bytes = file.readAll();
  if (file.error() != QFileDevice::NoError) return std::nullopt;
  return bytes.toStdString();
}

bool WriteWholeFile(const std::string& path, const std::string& bytes) {
  // A rename would put a plain file in the place of a device.
  if (QFileInfo::exists(ToQt(path)) && !IsFile(path)) return false;
  QSaveFile file(ToQt(path));
  if (!file.open(QIODevice::WriteOnly)) return false;
  file.write(bytes.data(), static_cast<qint64>(bytes.size()));
  return file.commit();
}

bool IsFile(const std::string& path) { return QFileInfo(ToQt(path)).isFile(); }

void OpenWithDesktop(const std::string& address) {
  const QString text = ToQt(address);
  const QUrl url(text);
  const bool isAddress = url.scheme().size() > 1;
  QDesktopServices::openUrl(isAddress ? url : QUrl::fromLocalFile(text));
}

}  // namespace gainsmith
