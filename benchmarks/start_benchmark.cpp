// From the start of the process to its first window on the screen: the tool beside a Qt main window
// with nothing but one word in it.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "figures.h"

namespace gainsmith::benchmarks {
namespace {

[[noreturn]] void Fail(const std::string& path) {
  std::fprintf(stderr, "%s does not run\n", path.c_str());
  std::exit(1);
}

// Runs one of the programs that end with their first painting and tell when that was.
double StartMs(const std::filesystem::path& program) {
  std::string path = program.string();
  char* arguments[] = {path.data(), nullptr};
  int ends[2];
  if (pipe(ends) != 0) Fail(path);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  const Clock::time_point start = Clock::now();
  Clock::time_point painted;
  pid_t child = 0;
  int status = 0;
  const int spawned = posix_spawn(&child, path.c_str(), &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (spawned != 0 || waitpid(child, &status, 0) != child || status != 0) Fail(path);
  if (read(ends[0], &painted, sizeof painted) != sizeof painted) Fail(path);
  close(ends[0]);
  return std::chrono::duration<double, std::milli>(painted - start).count();
}

}  // namespace
}  // namespace gainsmith::benchmarks

int main() {
  using namespace gainsmith::benchmarks;
  constexpr int Runs = 40;
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  const auto directory = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  Figures emptyMs;
  Figures toolMs;
  Figures ratio;
  StartMs(directory / "first_paint_tool");
  for (int run = 0; run < Runs; ++run) {
    emptyMs.Add(StartMs(directory / "first_paint_empty"));
    toolMs.Add(StartMs(directory / "first_paint_tool"));
    ratio.Add(toolMs.Last() / emptyMs.Last());
  }
  PrintHeading("Start to first window");
  PrintRow("empty Qt main window with one word in it, ms", emptyMs, "");
  PrintRow("tool, ms", toolMs, "");
  PrintRow("tool over empty window with one word", ratio, "1.2 at most");
}
