// What the fuzzers share: the entry that the fuzzing engine calls, and a check that holds in every
// build.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>

// One input; any bytes must do. The result is always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);

namespace gainsmith::fuzz {

// Ends the program where `held` is false: the engine then keeps the input.
inline void Require(bool held, const char* what) {
  if (held) return;
  std::fprintf(stderr, "Does not hold: %s\n", what);
  std::abort();
}

}  // namespace gainsmith::fuzz
