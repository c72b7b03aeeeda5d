// gainsmithctl against kvt518-sim: what its start takes beside the waits that the first frame asks
// for, and what its waiting costs.
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "figures.h"

namespace gainsmith::benchmarks {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "%s\n", what.c_str());
  std::exit(1);
}

// Runs a program with its standard output and error thrown away.
pid_t Start(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  pid_t child = 0;
  const int failed =
      posix_spawn(&child, words[0].c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) Fail(words[0] + " does not run");
  return child;
}

struct Bench {
  fs::path Programs = fs::read_symlink("/proc/self/exe").parent_path();
  fs::path Directory;
  pid_t Drive = 0;

  Bench() {
    std::string pattern = fs::temp_directory_path() / "console-benchmark-XXXXXX";
    Directory = mkdtemp(pattern.data());
    Drive = Start({Programs / "kvt518-sim", "--link", Directory / "D"});
    while (!fs::exists(Directory / "D")) usleep(1000);
  }
  ~Bench() {
    kill(Drive, SIGTERM);
    waitpid(Drive, nullptr, 0);
    fs::remove_all(Directory);
  }
  pid_t Console(const std::vector<std::string>& words) const {
    std::vector<std::string> all{Programs / "gainsmithctl", "--port", Directory / "D"};
    all.insert(all.end(), words.begin(), words.end());
    return Start(all);
  }
};

// From the start of the process until its first frame has gone out whole. Each frame is listed when
// its last byte has been handed over, and a pipe in the list's place tells at once.
double FirstFrameMs(const Bench& bench) {
  const std::string list = bench.Directory / "frames";
  if (mkfifo(list.c_str(), 0600) != 0) Fail(list + " can't be made");
  const int frames = open(list.c_str(), O_RDWR | O_NONBLOCK);
  const Clock::time_point start = Clock::now();
  const pid_t child = bench.Console({"show", "--log-frames", list});
  pollfd ready{frames, POLLIN, 0};
  if (poll(&ready, 1, 10'000) != 1) Fail("gainsmithctl sends nothing");
  const double ms = MsSince(start);
  kill(child, SIGINT);
  waitpid(child, nullptr, 0);
  close(frames);
  fs::remove(list);
  return ms;
}

void MeasureStart(const Bench& bench) {
  constexpr int Runs = 40;
  // Seven bytes with a wait of 1 ms and a step of the clock behind each; the eighth is the last.
  constexpr double WaitsMs = 7 * 2;
  Figures wholeMs;
  Figures overWaitsMs;
  FirstFrameMs(bench);
  for (int run = 0; run < Runs; ++run) {
    wholeMs.Add(FirstFrameMs(bench));
    overWaitsMs.Add(wholeMs.Last() - WaitsMs);
  }
  PrintHeading("gainsmithctl, from its start to its first frame");
  PrintRow("whole, ms", wholeMs, "");
  PrintRow("more than its waits of 14 ms, ms", overWaitsMs, "under 50");
}

// Processor time of a run over its duration, in percent, starting and ending included.
double RunPercent(const Bench& bench, const std::vector<std::string>& words) {
  const Clock::time_point start = Clock::now();
  const pid_t child = bench.Console(words);
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || status != 0) Fail(words[0] + " has failed");
  const auto ms = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return 100 * (ms(usage.ru_utime) + ms(usage.ru_stime)) / MsSince(start);
}

void MeasureProcessor(const Bench& bench) {
  constexpr int Runs = 3;
  PrintHeading("gainsmithctl, processor time of a whole run");
  Figures show;
  Figures watch;
  for (int run = 0; run < Runs; ++run) {
    show.Add(RunPercent(bench, {"show"}));
    watch.Add(RunPercent(bench, {"watch", "--count", "3"}));
  }
  PrintRow("show, % of a core", show, "under 1");
  PrintRow("watch, three recordings, % of a core", watch, "under 1");
}

}  // namespace
}  // namespace gainsmith::benchmarks

int main() {
  using namespace gainsmith::benchmarks;
  const Bench bench;
  MeasureStart(bench);
  MeasureProcessor(bench);
}
