// COM names on every system.
#include "host/port_names.h"

#include <QCollator>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <algorithm>

#include "host/port_lock.h"

namespace gainsmith {
namespace {

#ifdef Q_OS_WIN
constexpr bool SystemNamesPorts = true;
#else
constexpr bool SystemNamesPorts = false;
#endif

QString ComName(int portNumber) { return QStringLiteral("COM%1").arg(portNumber); }

QList<QSerialPortInfo> PortsInNaturalOrder() {
  QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
  QCollator order(QLocale::c());
  order.setNumericMode(true);
  std::sort(ports.begin(), ports.end(), [&](const QSerialPortInfo& a, const QSerialPortInfo& b) {
    return order.compare(a.portName(), b.portName()) < 0;
  });
  return ports;
}

QFileInfo LinkInProgramDirectory(const QString& programDirectory, int portNumber) {
  return QFileInfo(programDirectory + u'/' + ComName(portNumber));
}

QString Product(const QSerialPortInfo& port) {
  const QString description = port.description();
  return description.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(description);
}

QString WithAccess(const QString& text, const QString& path) {
  const QFileInfo device(path);
  if (!device.isReadable() || !device.isWritable()) {
    return text + QStringLiteral(
                      ": access is forbidden. Add yourself to the group dialout "
                      "(sudo usermod -aG dialout $USER) and log in again.");
  }
  const QString note = LockNote(path, SystemLockKeeping());
  return note.isEmpty() ? text : text + QStringLiteral(": ") + note;
}

using Ports = QList<QSerialPortInfo>;

QString DeviceAmong(const Ports& ports, const QString& programDirectory, int portNumber) {
  if (SystemNamesPorts) return ComName(portNumber);
  const QFileInfo link = LinkInProgramDirectory(programDirectory, portNumber);
  if (link.isSymLink()) return link.canonicalFilePath();
  if (portNumber < 1 || portNumber > ports.size()) return {};
  return ports[portNumber - 1].systemLocation();
}

QString DescriptionAmong(const Ports& ports, const QString& programDirectory, int portNumber) {
  const auto withLocation = [&](const QString& path) {
    return std::find_if(ports.begin(), ports.end(),
                        [&](const QSerialPortInfo& p) { return p.systemLocation() == path; });
  };
  if (SystemNamesPorts) {
    const auto port = std::find_if(ports.begin(), ports.end(), [&](const QSerialPortInfo& p) {
      return p.portName() == ComName(portNumber);
    });
    return port == ports.end() ? QString() : port->portName() + Product(*port);
  }
  const QFileInfo link = LinkInProgramDirectory(programDirectory, portNumber);
  if (link.isSymLink() && !link.exists()) {
    return QStringLiteral("%1: not connected (the link %2 leads nowhere)")
        .arg(link.symLinkTarget(), ComName(portNumber));
  }
  const QString path = DeviceAmong(ports, programDirectory, portNumber);
  if (path.isEmpty()) return {};
  const auto port = withLocation(path);
  return WithAccess(path + (port == ports.end() ? QString() : Product(*port)), path);
}

}  // namespace

QString PortDevice(const QString& programDirectory, int portNumber) {
  return DeviceAmong(PortsInNaturalOrder(), programDirectory, portNumber);
}

QString PortDescription(const QString& programDirectory, int portNumber) {
  return DescriptionAmong(PortsInNaturalOrder(), programDirectory, portNumber);
}

QStringList PortDescriptions(const QString& programDirectory, int lastPort) {
  const Ports ports = PortsInNaturalOrder();
  QStringList descriptions;
  for (int port = 1; port <= lastPort; ++port) {
    descriptions += DescriptionAmong(ports, programDirectory, port);
  }
  return descriptions;
}

}  // namespace gainsmith
