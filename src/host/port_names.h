// Which device stands behind COMn.
//
// On Windows COMn is COMn. Elsewhere a link named COMn in the program's directory wins; otherwise
// COMn is the n-th of the system's serial ports in natural order (ttyS2 before ttyS10).
#pragma once

#include <QString>
#include <QStringList>

namespace gainsmith {

// What can be opened for COM`portNumber`: a device path or a system port name; empty: no such port.
QString PortDevice(const QString& programDirectory, int portNumber);

// The same for the user: the device, its product name, and if it cannot be opened, why and how to
// mend that. Empty when there is no such port.
QString PortDescription(const QString& programDirectory, int portNumber);

// Those of COM1 to COM`lastPort`, for one question to the system, which takes milliseconds.
QStringList PortDescriptions(const QString& programDirectory, int lastPort);

}  // namespace gainsmith
