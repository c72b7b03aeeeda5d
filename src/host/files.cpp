// Whole files on disk.
#include "host/files.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#ifdef Q_OS_UNIX
#include <unistd.h>

#include <cerrno>
#endif

#include "host/qt_text.h"

namespace gainsmith {
namespace {

// Whether all that was written is out of every buffer. QSaveFile::commit takes it for granted, and
// would put an empty file in the place of the old one on a full disk.
bool OnDisk(QSaveFile& file) {
  if (!file.flush()) return false;
#ifdef Q_OS_UNIX
  if (fsync(file.handle()) == 0) return true;
  // Not every file system can, and that says nothing about the bytes.
  return errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
#else
  return true;
#endif
}

}  // namespace

std::optional<std::string> ReadStartOfFile(const std::string& path, std::size_t mostBytes) {
  if (!IsFile(path)) return std::nullopt;
  QFile file(ToQt(path));
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray bytes = file.read(static_cast<qint64>(mostBytes));
  if (file.error() != QFileDevice::NoError) return std::nullopt;
  return bytes.toStdString();
}

bool WriteWholeFile(const std::string& path, const std::string& bytes) {
  // A rename would put a plain file in the place of a device.
  if (QFileInfo::exists(ToQt(path)) && !IsFile(path)) return false;
  QSaveFile file(ToQt(path));
  if (!file.open(QIODevice::WriteOnly)) return false;
  const auto size = static_cast<qint64>(bytes.size());
  if (file.write(bytes.data(), size) != size || !OnDisk(file)) return false;
  return file.commit();
}

bool IsFile(const std::string& path) { return QFileInfo(ToQt(path)).isFile(); }

}  // namespace gainsmith
