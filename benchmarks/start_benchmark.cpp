// From the start of the process to its first window on the screen: the tool beside an empty Qt
// main window.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "figures.h"

namespace gainsmith::benchmarks {
namespace {

// Runs one of the programs that end with their first painting.
double StartMs(const std::filesystem::path& program, std::string argument = {}) {
  std::string path = program.string();
  char* arguments[] = {path.data(), argument.empty() ? nullptr : argument.data(), nullptr};
  const Clock::time_point start = Clock::now();
  pid_t child = 0;
  int status = 0;
  if (posix_spawn(&child, path.c_str(), nullptr, nullptr, arguments, environ) != 0 ||
      waitpid(child, &status, 0) != child || status != 0) {
    std::fprintf(stderr, "%s does not run\n", path.c_str());
    std::exit(1);
  }
  return MsSince(start);
}

}  // namespace
}  // namespace gainsmith::benchmarks

int main() {
  using namespace gainsmith::benchmarks;
  constexpr int Runs = 40;
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  const auto directory = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  Figures emptyMs;
  Figures textMs;
  Figures toolMs;
  Figures overEmpty;
  Figures overText;
  StartMs(directory / "first_paint_tool");
  for (int run = 0; run < Runs; ++run) {
    emptyMs.Add(StartMs(directory / "first_paint_empty"));
    textMs.Add(StartMs(directory / "first_paint_empty", "word"));
    toolMs.Add(StartMs(directory / "first_paint_tool"));
    overEmpty.Add(toolMs.Last() / emptyMs.Last());
    overText.Add(toolMs.Last() / textMs.Last());
  }
  PrintHeading("Start to first window");
  PrintRow("empty Qt main window, ms", emptyMs, "");
  PrintRow("empty Qt main window with one word in it, ms", textMs, "");
  PrintRow("tool, ms", toolMs, "");
  PrintRow("tool over empty window", overEmpty, "1.3 at most");
  PrintRow("tool over empty window with one word", overText, "1.3 at most");
}
