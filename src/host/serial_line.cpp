// SerialLine over QSerialPort.
#include "host/serial_line.h"

#include <QStringList>

namespace gainsmith {
namespace {

bool Configure(QSerialPort& device, const std::string& settings) {
  const QStringList parts = QString::fromStdString(settings).split(u',');
  if (parts.size() != 4) return false;
  return device.setBaudRate(parts[0].toInt()) && device.setParity(QSerialPort::NoParity) &&
         device.setDataBits(QSerialPort::Data8) &&
         device.setStopBits(parts[3] == u"2" ? QSerialPort::TwoStop : QSerialPort::OneStop) &&
         device.setFlowControl(QSerialPort::NoFlowControl);
}

}  // namespace

SerialLine::SerialLine() {
  QObject::connect(&device_, &QSerialPort::errorOccurred, &device_,
                   [this](QSerialPort::SerialPortError error) { OnError(error); });
}

bool SerialLine::Open(const QString& device, const std::string& settings) {
  Close();
  if (device.isEmpty()) return false;
  device_.setPortName(device);
  open_ = device_.open(QIODevice::ReadWrite) && Configure(device_, settings);
  if (!open_) device_.close();
  return open_;
}

void SerialLine::Close() {
  open_ = false;
  gone_ = false;
  if (device_.isOpen()) device_.close();
}

// A vanished device reports errors without end: the first one closes it.
void SerialLine::OnError(QSerialPort::SerialPortError error) {
  if (!open_ || gone_) return;
  if (error == QSerialPort::NoError || error == QSerialPort::TimeoutError) return;
  gone_ = true;
  // Not inside QSerialPort's own reading or writing.
  QMetaObject::invokeMethod(
      &device_,
      [this] {
        if (gone_ && device_.isOpen()) device_.close();
      },
      Qt::QueuedConnection);
}

// Bytes may have arrived since events last ran.
void SerialLine::Receive() {
  if (open_ && !gone_ && device_.isOpen()) device_.waitForReadyRead(0);
}

int SerialLine::BytesAvailable() {
  Receive();
  return open_ && !gone_ ? static_cast<int>(device_.bytesAvailable()) : 0;
}

void SerialLine::ClearInput() {
  if (!open_ || gone_) return;
  Receive();
  if (!gone_) device_.clear(QSerialPort::Input);
}

void SerialLine::ClearOutput() {
  if (open_ && !gone_) device_.clear(QSerialPort::Output);
}

std::vector<std::uint8_t> SerialLine::ReadAll() {
  Receive();
  if (!open_ || gone_) return {};
  const QByteArray bytes = device_.readAll();
  return {bytes.begin(), bytes.end()};
}

void SerialLine::WriteByte(std::uint8_t byte) {
  if (!open_ || gone_) return;
  const char letter = static_cast<char>(byte);
  if (device_.write(&letter, 1) == 1) device_.flush();
}

}  // namespace gainsmith
