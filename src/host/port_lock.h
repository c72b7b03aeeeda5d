// Who holds a serial port, as its lock file tells.
//
// Programs that share serial ports leave a file "LCK..ttyUSB0" in one of a few directories, with
// the number of their process in its first line. QSerialPort opens no port whose lock it can't take
// away. It takes away one whose process has ended, if the system lets it: never that of another
// user in a directory like /var/lock.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace gainsmith {

// What the system knows about locks.
struct LockKeeping {
  // In the order in which QSerialPort looks through them: it stays with the first one that holds
  // the port's lock or that it could write one to.
  QStringList Directories;
  // The name of a running process, empty when the system does not tell; nothing when none runs.
  std::function<std::optional<QString>(qint64 process)> Running;
  // Whether this program could remove the file.
  std::function<bool(const QString& path)> MayRemove;
  qint64 OwnProcess = 0;
};

LockKeeping SystemLockKeeping();

// Why the lock of `device` ("/dev/ttyUSB0") keeps it from being opened, and how to mend that, in
// words for the user; empty when it does not.
QString LockNote(const QString& device, const LockKeeping& keeping);

}  // namespace gainsmith
