#include "host/port_facts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSerialPortInfo>

#include "host/port_lock.h"

namespace gainsmith {
namespace {

QString RightsOf(const QFileInfo& device) {
  const QFile::Permissions permissions = device.permissions();
  QString letters;
  const auto add = [&](QFile::Permission permission, QChar letter) {
    letters += permissions.testFlag(permission) ? letter : QChar(u'-');
  };
  for (const auto& [read, write, run] :
       {std::tuple(QFile::ReadOwner, QFile::WriteOwner, QFile::ExeOwner),
        std::tuple(QFile::ReadGroup, QFile::WriteGroup, QFile::ExeGroup),
        std::tuple(QFile::ReadOther, QFile::WriteOther, QFile::ExeOther)}) {
    add(read, u'r');
    add(write, u'w');
    add(run, u'x');
  }
  return device.owner() + u':' + device.group() + u' ' + letters;
}

QStringList Processes() {
  QStringList numbers;
  for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
    if (name.front().isDigit()) numbers.push_back(name);
  }
  return numbers;
}

QString NameOf(const QString& process) {
  QFile name(QStringLiteral("/proc/%1/comm").arg(process));
  return name.open(QIODevice::ReadOnly) ? QString::fromUtf8(name.readLine()).trimmed() : QString();
}

// A user sees the open files of his own processes only; root sees all.
bool HasOpen(const QString& process, const QString& path) {
  const QFileInfoList files = QDir(QStringLiteral("/proc/%1/fd").arg(process))
                                  .entryInfoList(QDir::Files | QDir::System | QDir::NoDotAndDotDot);
  for (const QFileInfo& file : files) {
    if (file.symLinkTarget() == path) return true;
  }
  return false;
}

}  // namespace

PortFacts FactsOf(const QString& device) {
  PortFacts facts;
  const QSerialPortInfo known{QFileInfo(device).fileName()};
  facts.Product = known.description();
#ifdef Q_OS_WIN
  facts.Exists = facts.MayOpen = !known.isNull();
#else
  const QFileInfo file(device);
  facts.Exists = file.exists();
  if (!facts.Exists) return facts;
  const QString path = file.canonicalFilePath();
  facts.Rights = RightsOf(file);
  facts.MayOpen = file.isReadable() && file.isWritable();
  facts.LockNote = LockNote(path, SystemLockKeeping());
  const QString own = QString::number(QCoreApplication::applicationPid());
  for (const QString& process : Processes()) {
    if (process == own || !HasOpen(process, path)) continue;
    facts.OpenIn.push_back(QStringLiteral("%1 (process %2)").arg(NameOf(process), process));
  }
#endif
  return facts;
}

QStringList GrabbingServices() {
  QStringList found;
  for (const QString& process : Processes()) {
    const QString name = NameOf(process);
    if (name == u"ModemManager" || name == u"brltty") found.push_back(name);
  }
  found.removeDuplicates();
  return found;
}

}  // namespace gainsmith
