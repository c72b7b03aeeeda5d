// ShellRun: a shell script in a directory of its own, with gainsmithctl and a simulated drive. Many
// run side by side: they mostly wait.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace gainsmith::test {

class ShellRun {
 public:
  // The script finds the drive behind ./D, the factory values as factory.tvd, a file old.tvd that
  // says "old", and the functions of helpers.sh. It begins `delayMs` from now.
  ShellRun(const std::string& simOptions, const std::string& script, int delayMs) {
    std::string pattern = std::filesystem::temp_directory_path() / "gainsmithctl-XXXXXX";
    directory_ = mkdtemp(pattern.data());
    std::filesystem::copy_file(DEFAULT_INI, directory_ / "factory.tvd");
    std::ofstream(directory_ / "old.tvd") << "old\n";
    std::ofstream run(directory_ / "run.sh");
    run << "cd " << directory_ << "\n"
        << "sleep " << delayMs / 1000.0 << "\n"
        << "PROGRAMS=" << PROGRAMS << "\n"
        << ". " << HELPERS << "\n"
        << "mkfifo sim.in; exec 8<>sim.in\n"
        << "$PROGRAMS/kvt518-sim --link ./D " << simOptions << " >sim.log 2>&1 <sim.in &\n"
        << "trap \"kill $!\" EXIT\n"
        << "until_seen link sim.log\n"
        << "(" << script << ") >out 2>err </dev/null\n";
    run.close();
    ended_ = std::async(std::launch::async, [path = directory_ / "run.sh"] {
      const int status = std::system(("timeout 55 bash " + path.string()).c_str());
      return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    });
  }
  ShellRun(const ShellRun&) = delete;
  ShellRun& operator=(const ShellRun&) = delete;
  ~ShellRun() {
    if (ended_.valid()) ended_.wait();
    std::filesystem::remove_all(directory_);
  }

  // Waits for its end.
  int Status() {
    if (ended_.valid()) status_ = ended_.get();
    return status_;
  }
  std::string Text(const std::string& file) const {
    std::ifstream stream(directory_ / file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

 private:
  std::filesystem::path directory_;
  std::future<int> ended_;
  int status_ = -1;
};

// The runs of a file of tests. They begin before the first test, those of all files side by side.
class Runs : public testing::Environment {
 public:
  explicit Runs(std::function<void(Runs& runs)> start) : start_(std::move(start)) {}
  void Add(const std::string& simOptions, const std::string& script) {
    // All programs starting at once would keep drives from answering in time.
    constexpr int ApartMs = 100;
    static int delayMs = 0;
    runs_.push_back(std::make_unique<ShellRun>(simOptions, script, delayMs += ApartMs));
  }
  ShellRun& operator[](std::size_t i) { return *runs_.at(i); }
  void SetUp() override { start_(*this); }
  void TearDown() override { runs_.clear(); }

  // The tests' runner owns what this gives.
  static Runs& Begin(std::function<void(Runs& runs)> start) {
    auto* runs = new Runs(std::move(start));
    testing::AddGlobalTestEnvironment(runs);
    return *runs;
  }

 private:
  std::function<void(Runs& runs)> start_;
  std::vector<std::unique_ptr<ShellRun>> runs_;
};

}  // namespace gainsmith::test
