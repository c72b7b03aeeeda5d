// What the system knows of a serial device, for whoever asks why it can't be used.
#pragma once

#include <QString>
#include <QStringList>

namespace gainsmith {

struct PortFacts {
  bool Exists = false;
  // Empty when the system knows none.
  QString Product;
  // Owner, group and rights ("root:dialout rw-rw----").
  QString Rights;
  // This user may read and write it.
  bool MayOpen = false;
  // Why its lock keeps it from being opened, and how to mend that; empty when none does.
  QString LockNote;
  // Other programs that have it open ("minicom (process 123)"), as far as the system tells.
  QStringList OpenIn;
};

// `device` is a path, or a system port name on Windows.
PortFacts FactsOf(const QString& device);

// Services that run here and are known to open serial adapters by themselves, by the names of
// their processes: "ModemManager", "brltty".
QStringList GrabbingServices();

}  // namespace gainsmith
