// Figures: what a benchmark has measured, and the table it prints, the claim beside each row.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace gainsmith::benchmarks {

using Clock = std::chrono::steady_clock;

inline double MsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Repeated measurements of one thing. At least one is taken before it is asked.
class Figures {
 public:
  void Add(double figure) { figures_.push_back(figure); }
  double Median() const {
    std::vector<double> sorted = figures_;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    return *middle;
  }
  std::size_t Count() const { return figures_.size(); }
  double Last() const { return figures_.back(); }
  double Max() const { return *std::max_element(figures_.begin(), figures_.end()); }

 private:
  std::vector<double> figures_;
};

inline void PrintHeading(const char* title) {
  std::printf("\n%-52s %10s %10s   %s\n", title, "median", "max", "claim");
  std::fflush(stdout);
}

inline void PrintRow(const std::string& what, const Figures& figures, const char* claim) {
  std::printf("%-52s %10.3f %10.3f   %s\n", what.c_str(), figures.Median(), figures.Max(), claim);
  std::fflush(stdout);
}

}  // namespace gainsmith::benchmarks
