// Lock files of serial ports.
#include "host/port_lock.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace gainsmith {
namespace {

// Longer lines than this are no process numbers or names.
constexpr qint64 MostLineBytes = 100;

QString LockFile(const QString& device, const QStringList& directories) {
  QString name = device;
  if (name.startsWith(u"/dev/")) name.remove(0, 5);
  name.replace(u'/', u'_');
  for (const QString& directory : directories) {
    const QFileInfo place(directory);
    QString path = directory + QStringLiteral("/LCK..") + name;
    if (!place.isReadable()) continue;
    if (QFileInfo::exists(path)) return path;
    if (place.isWritable()) return {};
  }
  return {};
}

#ifdef Q_OS_UNIX
std::optional<QString> RunningProcess(qint64 process) {
  if (::kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH) return std::nullopt;
  QFile name(QStringLiteral("/proc/%1/comm").arg(process));
  if (!name.open(QIODevice::ReadOnly)) return QString();
  return QString::fromUtf8(name.readLine(MostLineBytes)).trimmed();
}

// In a directory that all may write to, only the owner removes a file.
bool MayRemoveFile(const QString& path) {
  if (::geteuid() == 0) return true;
  const QFileInfo file(path);
  const QFileInfo directory(file.path());
  return file.isWritable() && directory.isWritable() && file.ownerId() == ::geteuid();
}
#endif

}  // namespace

LockKeeping SystemLockKeeping() {
  LockKeeping keeping;
#ifdef Q_OS_UNIX
  for (const char* directory : {"/var/lock", "/etc/locks", "/var/spool/locks", "/var/spool/uucp",
                                "/tmp", "/var/tmp", "/var/lock/lockdev", "/run/lock"}) {
    keeping.Directories.push_back(QString::fromLatin1(directory));
  }
  keeping.Running = RunningProcess;
  keeping.MayRemove = MayRemoveFile;
#endif
  keeping.OwnProcess = QCoreApplication::applicationPid();
  return keeping;
}

QString LockNote(const QString& device, const LockKeeping& keeping) {
  const QString path = LockFile(device, keeping.Directories);
  if (path.isEmpty()) return {};
  const QString mend = QStringLiteral("remove its lock (sudo rm %1).").arg(path);
  QFile file(path);
  qint64 process = 0;
  QString program;
  // Directories that all may write to can hold anything under that name.
  if (QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly)) {
    process = file.readLine(MostLineBytes).trimmed().toLongLong();
    program = QString::fromUtf8(file.readLine(MostLineBytes)).trimmed();
  }
  if (process == keeping.OwnProcess) return {};
  if (process <= 0) {
    return QStringLiteral("locked by another program. If none uses the port, ") + mend;
  }
  const std::optional<QString> running = keeping.Running(process);
  if (!running) {
    if (keeping.MayRemove(path)) return {};
    return QStringLiteral("left locked by a program that has ended. To use the port, ") + mend;
  }
  if (running->isEmpty()) return QStringLiteral("in use by process %1.").arg(process);
  // The system may cut a process's name short.
  if (program.isEmpty() || program.startsWith(*running)) {
    return QStringLiteral("in use by %1 (process %2).").arg(*running, QString::number(process));
  }
  return QStringLiteral("locked by %1 (process %2, now %3). If %1 has ended, ")
             .arg(program, QString::number(process), *running) +
         mend;
}

}  // namespace gainsmith
