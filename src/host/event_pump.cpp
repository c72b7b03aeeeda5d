// EventPump: sleeping to the exact end of a wait.
#include "host/event_pump.h"

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <chrono>
#include <thread>

namespace gainsmith {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Qt's timers are exact to a millisecond, and it rounds up. What is left of a wait after that is
// slept without looking at events, which are late by no more than this.
constexpr milliseconds SleptDirectly{2};

}  // namespace

EventPump::EventPump() {
  wake_.setSingleShot(true);
  wake_.setTimerType(Qt::PreciseTimer);
}

std::int64_t EventPump::NowMs() {
  return std::chrono::floor<milliseconds>(Clock::now().time_since_epoch()).count();
}

void EventPump::Run(std::int64_t deadlineMs) {
  QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
  if (dispatcher->processEvents(QEventLoop::AllEvents)) return;
  const Clock::time_point end{milliseconds(deadlineMs + 1)};
  const auto rest = std::chrono::floor<milliseconds>(end - Clock::now());
  if (rest > SleptDirectly) {
    wake_.start(rest - SleptDirectly);
    dispatcher->processEvents(QEventLoop::WaitForMoreEvents);
  } else {
    std::this_thread::sleep_until(end);
  }
}

}  // namespace gainsmith
