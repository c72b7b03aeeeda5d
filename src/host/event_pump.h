// EventPump: the millisecond clock, and waiting for events without using the processor.
#pragma once

#include <QTimer>
#include <cstdint>

namespace gainsmith {

class EventPump {
 public:
  EventPump();

  // Whole milliseconds of a monotonic clock.
  static std::int64_t NowMs();
  // Runs the events that are queued. Where there are none, sleeps until one has run or until
  // NowMs() is `deadlineMs` + 1, whichever comes first; wakes at most some 0.1 ms after that
  // instant. May be called from within an event that it runs.
  void Run(std::int64_t deadlineMs);

 private:
  QTimer wake_;
};

}  // namespace gainsmith
