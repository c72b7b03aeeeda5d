// WindowTimers: one bell for all timers, set to the one due first.
#include "host/window_timers.h"

#include <algorithm>
#include <limits>

namespace gainsmith {

WindowTimers::WindowTimers(World& world) : world_(world) {
  bell_.setSingleShot(true);
  bell_.setTimerType(Qt::PreciseTimer);
  bell_.callOnTimeout([this] { Ring(); });
}

void WindowTimers::Rescan() {
  const std::int64_t nowMs = world_.NowMs();
  std::vector<Running> still;
  for (const Window* window : world_.LoadedWindows()) {
    for (Timer* timer : window->Timers) {
      if (!timer->Enabled() || timer->IntervalMs <= 0) continue;
      const auto known = std::find_if(running_.begin(), running_.end(),
                                      [&](const Running& r) { return r.Ticker == timer; });
      if (known != running_.end() && known->Starts == timer->Starts() &&
          known->IntervalMs == timer->IntervalMs) {
        still.push_back(*known);
      } else {
        still.push_back({timer, timer->Starts(), timer->IntervalMs, nowMs + timer->IntervalMs});
      }
    }
  }
  running_ = std::move(still);

  const Running* next = NextDue();
  if (next == nullptr || holds_ > 0 || world_.Ended()) {
    bell_.stop();
    return;
  }
  const auto waitMs = static_cast<int>(std::clamp<std::int64_t>(next->DueMs - nowMs, 0, 60'000));
  if (!bell_.isActive() || bell_.remainingTime() != waitMs) bell_.start(waitMs);
}

void WindowTimers::Release() {
  --holds_;
  Rescan();
}

// One tick for each ring, so that user input is not kept waiting by timers that are always late.
void WindowTimers::Ring() {
  if (holds_ > 0 || world_.Ended()) return;
  const Running* next = NextDue();
  if (next != nullptr && next->DueMs <= world_.NowMs()) Tick(*next->Ticker);
  Rescan();
}

void WindowTimers::Tick(Timer& timer) {
  ticking_.push_back(&timer);
  if (timer.OnTimer) timer.OnTimer();
  std::erase(ticking_, &timer);
  for (Running& running : running_) {
    if (running.Ticker == &timer) running.DueMs = world_.NowMs() + timer.IntervalMs;
  }
}

bool WindowTimers::IsTicking(const Timer* timer) const {
  return std::find(ticking_.begin(), ticking_.end(), timer) != ticking_.end();
}

WindowTimers::Running* WindowTimers::NextDue() {
  Running* next = nullptr;
  for (Running& running : running_) {
    if (!running.Ticker->Enabled() || IsTicking(running.Ticker)) continue;
    if (next == nullptr || running.DueMs < next->DueMs) next = &running;
  }
  return next;
}

}  // namespace gainsmith
