#include "console/interrupts.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

namespace gainsmith {
namespace {

// A signal handler knows nothing but what is here.
std::atomic<int> writeEnd{-1};
std::atomic<bool> pending{false};

void Note(int) {
  const int kept = errno;
  pending = true;
  const char letter = 0;
  [[maybe_unused]] const ssize_t written = write(writeEnd, &letter, 1);
  errno = kept;
}

}  // namespace

Interrupts::Interrupts(std::function<void()> onSignal) : onSignal_(std::move(onSignal)) {
  if (pipe2(ends_.data(), O_NONBLOCK | O_CLOEXEC) != 0) return;
  writeEnd = ends_[1];
  notifier_ = std::make_unique<QSocketNotifier>(ends_[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { Hear(); });
  struct sigaction action {};
  action.sa_handler = Note;
  for (const int number : {SIGINT, SIGTERM}) sigaction(number, &action, nullptr);
  // Whoever started it to outlive its terminal has said so.
  if (signal(SIGHUP, SIG_IGN) != SIG_IGN) sigaction(SIGHUP, &action, nullptr);
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
}

Interrupts::~Interrupts() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) signal(number, SIG_DFL);
  notifier_.reset();
  writeEnd = -1;
  for (const int end : ends_) {
    if (end >= 0) close(end);
  }
}

bool Interrupts::Pending() { return pending; }

void Interrupts::Hear() {
  char letter = 0;
  if (read(ends_[0], &letter, 1) == 1) onSignal_();
}

}  // namespace gainsmith
