// WindowTimers: lets the timers of loaded windows tick.
#pragma once

#include <QTimer>
#include <cstdint>
#include <vector>

#include "platform/world.h"

namespace gainsmith {

class WindowTimers {
 public:
  explicit WindowTimers(World& world);

  // Takes note of timers that were started, stopped or changed since the last call. To be called
  // before the event loop sleeps; a start counts from this call.
  void Rescan();
  // No timer ticks between Hold and the Release that goes with it; one that fell due meanwhile
  // ticks afterwards, once.
  void Hold() { ++holds_; }
  void Release();

 private:
  struct Running {
    Timer* Ticker;
    std::uint64_t Starts;
    int IntervalMs;
    std::int64_t DueMs;
  };
  void Ring();
  void Tick(Timer& timer);
  bool IsTicking(const Timer* timer) const;
  Running* NextDue();

  World& world_;
  std::vector<Running> running_;
  // Timers inside their own tick.
  std::vector<Timer*> ticking_;
  int holds_ = 0;
  QTimer bell_;
};

}  // namespace gainsmith
