// The serial port on a real pseudo-terminal.
#include "host/serial_line.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sched.h>
#include <termios.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <ctime>

#include "host/event_pump.h"
#include "host/files.h"
#include "host/port_lock.h"
#include "host/port_names.h"
#include "scratch.h"

namespace gainsmith::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int LongestMs = 5000;

// The far end of COM1.
struct SerialLineTest : Scratch {
  SerialLineTest() { Plug(); }
  ~SerialLineTest() override { Pull(); }

  void Plug() {
    int slave = -1;
    char name[64] = {};
    EXPECT_EQ(openpty(&farEnd, &slave, name, nullptr, nullptr), 0);
    close(slave);
    fcntl(farEnd, F_SETFL, O_NONBLOCK);
    LinkTo(QString::fromLocal8Bit(name));
  }
  // The terminal's name goes with it: another program may be given the same one at once.
  void Pull() {
    if (farEnd >= 0) close(farEnd);
    farEnd = -1;
    LinkTo(QString::fromStdString(Path("gone")));
  }
  void LinkTo(const QString& device) {
    const QString link = QString::fromStdString(Path("COM1"));
    QFile::remove(link);
    EXPECT_TRUE(QFile::link(device, link));
  }
  // Both ends wait for the bytes, which the kernel carries across in its own time. No event runs.
  void Send(const Bytes& bytes) {
    ASSERT_EQ(write(farEnd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    const int size = static_cast<int>(bytes.size());
    const std::int64_t endMs = EventPump::NowMs() + LongestMs;
    while (line.IsOpen() && line.BytesAvailable() < size && EventPump::NowMs() < endMs) {
      sched_yield();
    }
  }
  Bytes Received(std::size_t size) {
    Bytes bytes;
    pollfd end{farEnd, POLLIN, 0};
    while (bytes.size() < size && poll(&end, 1, LongestMs) == 1) {
      Bytes arrived(256);
      const ssize_t count = read(farEnd, arrived.data(), arrived.size());
      if (count <= 0) break;
      bytes.insert(bytes.end(), arrived.begin(), arrived.begin() + count);
    }
    return bytes;
  }
  // Runs the events of `ms` milliseconds.
  void WaitMs(std::int64_t ms) {
    const std::int64_t deadlineMs = EventPump::NowMs() + ms;
    while (EventPump::NowMs() <= deadlineMs) pump.Run(deadlineMs);
  }
  bool OpenCom(int number) {
    return line.Open(PortDevice(directory.path(), number), "38400,n,8,2");
  }
  bool Open() { return OpenCom(1); }
  QString Described(int number) { return PortDescription(directory.path(), number); }

  EventPump pump;
  SerialLine line;
  int farEnd = -1;
};

TEST_F(SerialLineTest, BytesPassRawBothWays) {
  ASSERT_TRUE(Open());
  EXPECT_TRUE(line.IsOpen());
  termios settings{};
  ASSERT_EQ(tcgetattr(farEnd, &settings), 0);
  EXPECT_EQ(settings.c_cflag & (CSIZE | CSTOPB | PARENB), CS8 | CSTOPB);

  const Bytes every{0x00, 0x03, 0x0A, 0x0D, 0x11, 0x13, 0x1A, 0x7F, 0x80, 0xFF};
  for (const std::uint8_t byte : every) line.WriteByte(byte);
  EXPECT_EQ(Received(every.size()), every);
  Send(every);
  EXPECT_EQ(line.BytesAvailable(), static_cast<int>(every.size()));
  EXPECT_EQ(line.ReadAll(), every);
  Send({1, 2, 3});
  line.ClearInput();
  EXPECT_EQ(line.ReadAll(), Bytes{});
  line.Close();
  EXPECT_FALSE(line.IsOpen());
}

TEST_F(SerialLineTest, VanishedDeviceFailsQuietlyAndUsesNoProcessor) {
  ASSERT_TRUE(Open());
  Pull();
  const std::clock_t busyBefore = std::clock();
  for (int i = 0; i < 8; ++i) {
    line.WriteByte(0x55);
    WaitMs(50);
    EXPECT_EQ(line.BytesAvailable(), 0);
    EXPECT_TRUE(line.ReadAll().empty());
    EXPECT_TRUE(line.IsOpen()) << "open is the tool's own idea";
  }
  const double busyMs = 1000.0 * static_cast<double>(std::clock() - busyBefore) / CLOCKS_PER_SEC;
  EXPECT_LT(busyMs, 100);

  line.Close();
  EXPECT_FALSE(Open());
  Plug();
  ASSERT_TRUE(Open());
  Send({7});
  EXPECT_EQ(line.ReadAll(), Bytes{7});
}

TEST_F(SerialLineTest, PortsThatCannotBeOpenedAndWhatTheListSaysOfThem) {
  const QString link = QString::fromStdString(Path("COM1"));
  EXPECT_EQ(Described(1), QFile::symLinkTarget(link));
  EXPECT_EQ(Described(12), "");
  EXPECT_FALSE(OpenCom(12)) << "no such port";
  EXPECT_FALSE(line.IsOpen());
  Pull();
  EXPECT_FALSE(Open()) << "a link that leads nowhere";
  EXPECT_TRUE(Described(1).contains("not connected"));
}

TEST_F(SerialLineTest, ADescriptionSaysWhoHoldsThePortAndHowToFreeIt) {
  const QString locks = QString::fromStdString(Path("locks"));
  const QString file = locks + "/LCK..ttyUSB0";
  LockKeeping keeping;
  keeping.Directories = {locks + "/none", locks};
  bool removable = false;
  keeping.MayRemove = [&](const QString& path) { return removable && path == file; };
  keeping.Running = [](qint64 process) -> std::optional<QString> {
    if (process == 42) return QString();
    return process == 41 ? std::optional<QString>("minicom") : std::nullopt;
  };
  keeping.OwnProcess = 7;
  QDir().mkpath(locks);
  EXPECT_EQ(LockNote("/dev/ttyUSB0", keeping), "");

  const QString remove = "remove its lock (sudo rm " + file + ").";
  const struct {
    const char* Lock;
    QString Note;
    bool MayRemove = false;
  } cases[] = {
      {"        41\n", "in use by minicom (process 41)."},
      {"41\nminicom-wrapped\nhost\n", "in use by minicom (process 41)."},
      {"41\ntoollet\nhost\n",
       "locked by toollet (process 41, now minicom). If toollet has ended, " + remove},
      {"42\ntoollet\n", "in use by process 42."},
      {"43\n", "left locked by a program that has ended. To use the port, " + remove},
      {"43\n", "", true},
      {"7\n", ""},
      {"", "locked by another program. If none uses the port, " + remove},
      {"-1\n", "locked by another program. If none uses the port, " + remove},
  };
  for (const auto& [lock, note, mayRemove] : cases) {
    ASSERT_TRUE(WriteWholeFile(file.toStdString(), lock));
    removable = mayRemove;
    EXPECT_EQ(LockNote("/dev/ttyUSB0", keeping), note) << lock;
    EXPECT_EQ(LockNote("/dev/ttyUSB1", keeping), "");
  }
  ASSERT_TRUE(QFile::rename(file, locks + "/LCK..serial_by-id_x"));
  EXPECT_NE(LockNote("/dev/serial/by-id/x", keeping), "");
}

// The lock of the line that the tool itself has open, and what the system tells of it.
TEST_F(SerialLineTest, TheRealLockIsFoundWhereSerialPortsLeaveIt) {
  ASSERT_TRUE(Open());
  const QString device = QFile::symLinkTarget(QString::fromStdString(Path("COM1")));
  LockKeeping keeping = SystemLockKeeping();
  EXPECT_EQ(LockNote(device, keeping), "");
  keeping.OwnProcess = 0;
  EXPECT_EQ(
      LockNote(device, keeping),
      QStringLiteral("in use by host_tests (process %1).").arg(QCoreApplication::applicationPid()));
  // Another program's, that runs as long as the system does.
  const QString name = "/LCK.." + device.mid(5).replace('/', '_');
  for (const QString& place : keeping.Directories) {
    QFile lock(place + name);
    if (lock.exists() && lock.open(QIODevice::WriteOnly)) lock.write("1\n");
  }
  EXPECT_TRUE(Described(1).contains("process 1).")) << Described(1).toStdString();
}

}  // namespace
}  // namespace gainsmith::test
