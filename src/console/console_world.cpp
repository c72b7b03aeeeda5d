#include "console/console_world.h"

#include <QAbstractEventDispatcher>
#include <QDate>
#include <QFileInfo>
#include <QTime>
#include <utility>

#include "host/files.h"
#include "host/port_names.h"
#include "host/qt_text.h"
#include "platform/memory_rows.h"

namespace gainsmith {
namespace {

constexpr std::size_t RequestBytes = 8;

std::string FrameText(const std::vector<std::uint8_t>& frame) {
  constexpr int WriteOne = 6;
  const std::string reg = std::to_string(frame[2] * 256 + frame[3]);
  const int value = frame[4] * 256 + frame[5];
  if (frame[1] == WriteOne) return "W " + reg + "=" + std::to_string(value);
  return "R " + reg + (value == 1 ? "" : "x" + std::to_string(value));
}

}  // namespace

ConsoleWorld::ConsoleWorld(std::string programDirectory, std::string device)
    : programDirectory_(std::move(programDirectory)), device_(std::move(device)) {}

QString ConsoleWorld::DeviceOf(int portNumber) const {
  if (portNumber == 1 && !device_.empty()) {
    // Programs that share a port lock it under the name of the device itself.
    const QString path = QFileInfo(ToQt(device_)).canonicalFilePath();
    return path.isEmpty() ? ToQt(device_) : path;
  }
  return PortDevice(ToQt(programDirectory_), portNumber);
}

bool ConsoleWorld::OpenPort(int portNumber, const std::string& settings) {
  return line_.Open(DeviceOf(portNumber), settings);
}

void ConsoleWorld::ClearOutput() {
  line_.ClearOutput();
  frame_.clear();
}

void ConsoleWorld::WriteByte(std::uint8_t byte) {
  line_.WriteByte(byte);
  frame_.push_back(byte);
  if (frame_.size() == RequestBytes && OnFrame) OnFrame(FrameText(frame_));
}

std::string ConsoleWorld::DescribePort(int portNumber) {
  return portNumber == 1 && !device_.empty() ? device_ : std::string();
}

void ConsoleWorld::PumpEvents(std::int64_t deadlineMs) {
  if (Ended()) return;
  if (OnIdle) OnIdle();
  if (Ended()) return;
  timers_.Rescan();
  pump_.Run(deadlineMs);
}

int ConsoleWorld::PresentYear() { return QDate::currentDate().year(); }

std::string ConsoleWorld::TimeOfDay() {
  return FromQt(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")));
}

MessageAnswer ConsoleWorld::AnswerMessage(const Message& message) {
  if (!OnMessage) return message.Default;
  timers_.Hold();
  ++messagesShown_;
  const MessageAnswer answer = OnMessage(message);
  --messagesShown_;
  timers_.Release();
  return answer;
}

std::optional<std::string> ConsoleWorld::ReadFile(const std::string& path) {
  std::optional<std::string> bytes = ReadStartOfFile(path, MostFileBytes + 1);
  if (bytes) bytes = LimitedToMost(std::move(*bytes));
  return bytes;
}

bool ConsoleWorld::WriteFile(const std::string& path, const std::string& bytes) {
  return !Ended() && WriteWholeFile(path, bytes);
}

bool ConsoleWorld::FileExists(const std::string& path) { return IsFile(path); }

std::unique_ptr<RowStore> ConsoleWorld::OpenRows(const std::string&, const std::string&) {
  return std::make_unique<MemoryRows>();
}

void ConsoleWorld::ProgramEnded() { QAbstractEventDispatcher::instance()->wakeUp(); }

}  // namespace gainsmith
