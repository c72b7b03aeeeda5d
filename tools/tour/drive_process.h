// DriveProcess: kvt518-sim, started beside this program and ended with it.
#pragma once

#include <QCoreApplication>
#include <QProcess>

namespace gainsmith::test {

class DriveProcess {
 public:
  // Makes the link COM1 in the program's directory; with a motor other than the usual one where
  // that is named. False when it does not come up, as beside another one that serves this link.
  bool Start(const QString& motor = {}) {
    const QString directory = QCoreApplication::applicationDirPath();
    process_.setProcessChannelMode(QProcess::MergedChannels);
    QStringList arguments{"--link", directory + "/COM1"};
    if (!motor.isEmpty()) arguments << "--motor" << motor;
    process_.start(directory + "/kvt518-sim", arguments);
    // Its first line names the link, or says that another drive serves it.
    return process_.waitForStarted() && process_.waitForReadyRead() &&
           process_.readAll().contains(" -> ");
  }

  // A command for its standard input ("error encoder"). On the thread that started it.
  void Tell(const QByteArray& command) {
    process_.write(command + "\n");
    process_.waitForBytesWritten();
  }

  ~DriveProcess() {
    if (process_.state() == QProcess::NotRunning) return;
    process_.terminate();
    process_.waitForFinished();
  }

 private:
  QProcess process_;
};

}  // namespace gainsmith::test
