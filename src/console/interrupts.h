// Interrupts: SIGINT, SIGTERM and SIGHUP as events of the event loop.
#pragma once

#include <QSocketNotifier>
#include <array>
#include <functional>
#include <memory>

namespace gainsmith {

// One at a time. From its making on a pipe or a file that takes no more no longer ends the program,
// either: what is under way with the drive comes to its end.
class Interrupts {
 public:
  // `onSignal` runs inside whatever wait is under way, once for each signal.
  explicit Interrupts(std::function<void()> onSignal);
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;
  ~Interrupts();

  // Can be read from when a signal has come that `onSignal` has not heard of.
  [[nodiscard]] int Handle() const { return ends_[0]; }
  // A signal has come; known before `onSignal` hears of it.
  static bool Pending();

 private:
  void Hear();

  std::function<void()> onSignal_;
  std::array<int, 2> ends_{-1, -1};
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace gainsmith
