#include "console/terminal.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace gainsmith {
namespace {

constexpr int BarLetters = 24;

bool ColourWanted() {
  const char* refused = std::getenv("NO_COLOR");
  return isatty(STDERR_FILENO) != 0 && (refused == nullptr || *refused == 0);
}

}  // namespace

Terminal::Terminal(bool quiet)
    : quiet_(quiet),
      showsProgress_(!quiet && isatty(STDERR_FILENO) != 0),
      colour_(ColourWanted()) {}

void Terminal::Print(const std::string& line) {
  EndProgress();
  std::fputs(line.c_str(), stdout);
  std::fputc('\n', stdout);
}

bool Terminal::Flush() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

void Terminal::Note(const std::string& line) {
  if (quiet_) return;
  EndProgress();
  // In the order in which they were said, where both go to one place.
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", line.c_str());
}

void Terminal::Trouble(const std::string& line) {
  EndProgress();
  std::fflush(stdout);
  std::fprintf(stderr, colour_ ? "\033[31m%s\033[0m\n" : "%s\n", line.c_str());
}

void Terminal::Progress(const std::string& what, int done, int total) {
  if (!showsProgress_ || total <= 0 || what == progress_) return;
  progress_ = what;
  const int full = BarLetters * done / total;
  std::string bar(static_cast<std::size_t>(full), '#');
  bar.resize(BarLetters, '.');
  std::fprintf(stderr, "\r[%s] %s\033[K", bar.c_str(), what.c_str());
}

void Terminal::EndProgress() {
  if (progress_.empty()) return;
  progress_.clear();
  std::fputs("\r\033[K", stderr);
}

bool Terminal::CanAsk() const { return isatty(STDIN_FILENO) != 0; }

bool Terminal::Ask(const std::string& question, int interruptHandle) {
  EndProgress();
  std::fflush(stdout);
  std::fprintf(stderr, "%s [y/N] ", question.c_str());
  std::array<pollfd, 2> entries{};
  entries[0] = {STDIN_FILENO, POLLIN, 0};
  entries[1] = {interruptHandle, POLLIN, 0};
  while (poll(entries.data(), entries.size(), -1) < 0) {
    if (errno != EINTR) return false;
  }
  if (entries[1].revents != 0) {
    std::fputc('\n', stderr);
    return false;
  }
  std::array<char, 200> answer{};
  const ssize_t count = read(STDIN_FILENO, answer.data(), answer.size());
  if (count <= 0) std::fputc('\n', stderr);
  return count > 0 && (answer[0] == 'y' || answer[0] == 'Y');
}

}  // namespace gainsmith
