// Seeded measurement noise and the rounding of measurements to samples.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace gainsmith::sim {

// Triangular noise between -1 and +1 units, the same sequence for the same seed on every machine.
class Noise {
 public:
  explicit Noise(std::uint64_t seed) : state_(seed) {}
  double Next() { return Uniform() - Uniform(); }

 private:
  // SplitMix64.
  double Uniform() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    z ^= z >> 31;
    return static_cast<double>(z >> 11) * 0x1p-53;
  }
  std::uint64_t state_;
};

// A measurement as a word of sample memory: rounded, and held at the ends of 16 bits.
inline std::int16_t ToSample(double value) {
  return static_cast<std::int16_t>(std::lround(std::clamp(value, -32768.0, 32767.0)));
}

}  // namespace gainsmith::sim
