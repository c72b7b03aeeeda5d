// A desktop world on an offscreen screen, the simulated drive behind its COM1, and instruments.
#pragma once

#include <sys/resource.h>

#include <QApplication>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "app/tool.h"
#include "desktop/desktop_world.h"
#include "desktop/look.h"
#include "figures.h"
#include "host/sql_row_store.h"

namespace gainsmith::benchmarks {

// The tool's application on a screen in memory. Made first.
struct OffscreenApplication {
  OffscreenApplication() { ApplyLook(application); }

 private:
  // Before the application is made.
  bool chosen_ = qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" OFFSCREEN_JSON);
  int argumentCount_ = 1;
  char name_[10] = "benchmark";
  char* arguments_[2] = {name_, nullptr};

 public:
  QApplication application{argumentCount_, arguments_};
};

// kvt518-sim, in a process of its own, as COM1 in a directory of its own.
class SimulatedDrive {
 public:
  SimulatedDrive() {
    const QString link = directory_.filePath(QStringLiteral("COM1"));
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.start(QCoreApplication::applicationDirPath() + QStringLiteral("/kvt518-sim"),
                   {QStringLiteral("--link"), link});
    while (!QFile::exists(link)) {
      if (process_.state() == QProcess::NotRunning) {
        std::fprintf(stderr, "kvt518-sim does not run beside this program\n");
        std::exit(1);
      }
      QThread::msleep(1);
    }
  }
  ~SimulatedDrive() {
    process_.terminate();
    process_.waitForFinished();
  }
  std::string Directory() const { return directory_.path().toStdString(); }

 private:
  QTemporaryDir directory_;
  QProcess process_;
};

// Notes the waits that the logic asks for, and answers for the user.
class WatchedWorld : public DesktopWorld {
 public:
  using DesktopWorld::DesktopWorld;

  // All waits so far, each with the one step of the clock that belongs to it.
  std::int64_t WaitsMs() const { return waitsMs_; }
  std::string FileToOpen;

  void PumpEvents(std::int64_t deadlineMs) override {
    // A wait pumps again and again until its deadline; the next one ends later.
    if (deadlineMs != deadlineMs_) waitsMs_ += deadlineMs - NowMs() + 1;
    deadlineMs_ = deadlineMs;
    DesktopWorld::PumpEvents(deadlineMs);
  }
  // Nobody is there to answer: it is told, and answered with its default.
  MessageAnswer AnswerMessage(const Message& message) override {
    std::fprintf(stderr, "%s\n", message.Text.c_str());
    return message.Default;
  }
  ChosenFile AskOpenFile(const std::string&) override {
    return {ChosenFile::Outcome::Chosen, FileToOpen};
  }

 private:
  std::int64_t waitsMs_ = 0;
  std::int64_t deadlineMs_ = -1;
};

// A watched world with the tool in it.
struct ToolDesk {
  SimulatedDrive drive;
  WatchedWorld world{drive.Directory(), OpenRowStore};
  Tool tool{world, Edition::ServiceBench};

  ~ToolDesk() { world.EndProgram(); }
  void Connect() {
    tool.mdiForm1.mnuConnect.OnClick();
    tool.form2.openPort.OnClick();
  }
};

// Lets the program run as it does when nobody touches it.
inline void RunFor(int ms) {
  QEventLoop loop;
  QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
  loop.exec();
}

// Share of one processor core, in percent, that this process uses while `work` runs.
template <typename Work>
double ProcessorPercent(const Work& work) {
  const auto usedMs = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& time) {
      return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
  };
  const Clock::time_point start = Clock::now();
  const double before = usedMs();
  work();
  return 100 * (usedMs() - before) / MsSince(start);
}

// A widget of the tool by the system's own name; none: nullptr.
inline QWidget* FindWidget(const char* name) {
  for (QWidget* widget : QApplication::allWidgets()) {
    if (widget->objectName() == QLatin1StringView(name) && widget->isVisible()) return widget;
  }
  return nullptr;
}

// Sees a widget, or the view inside it, being painted.
class PaintWatch : private QObject {
 public:
  explicit PaintWatch(QWidget& watched) : watched_(watched) { qApp->installEventFilter(this); }
  // Reflects the records onto widgets and runs events until the next painting is done.
  void RunUntilPainted(World& world) {
    painted_ = false;
    while (!painted_) world.PumpEvents(world.NowMs() - 1);
  }

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override {
    if (event->type() == QEvent::Paint &&
        (receiver == &watched_ || receiver->parent() == &watched_)) {
      painted_ = true;
    }
    return false;
  }

 private:
  QWidget& watched_;
  bool painted_ = false;
};

}  // namespace gainsmith::benchmarks
