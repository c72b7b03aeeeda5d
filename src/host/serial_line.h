// SerialLine: one serial device, raw, at 8 data bits.
#pragma once

#include <QSerialPort>
#include <cstdint>
#include <string>
#include <vector>

namespace gainsmith {

// A device that goes away (a pulled plug, the far end of a pseudo-terminal closed) is closed
// underneath, once and silently: from then on nothing is ever read and writes go nowhere, while
// IsOpen() stays true until Close().
class SerialLine {
 public:
  SerialLine();

  // Opens a device path or system port name; `settings` is as "38400,n,8,2". False when it can't
  // be opened or doesn't take the settings; it is closed then.
  bool Open(const QString& device, const std::string& settings);
  void Close();
  [[nodiscard]] bool IsOpen() const { return open_; }
  int BytesAvailable();
  void ClearInput();
  void ClearOutput();
  std::vector<std::uint8_t> ReadAll();
  // Hands the byte to the system at once.
  void WriteByte(std::uint8_t byte);

 private:
  void OnError(QSerialPort::SerialPortError error);
  void Receive();

  QSerialPort device_;
  bool open_ = false;
  bool gone_ = false;
};

}  // namespace gainsmith
