// How many seconds of its world the virtual world runs in one second.
#include <benchmark/benchmark.h>

#include "app/bench.h"

namespace gainsmith::test {
namespace {

void BulkRead(benchmark::State& state) {
  Bench bench;
  bench.Connect();
  const std::int64_t startMs = bench.world.NowMs();
  for (auto _ : state) {
    bench.tool.transfer.readDrive();
    bench.world.Log.Clear();
  }
  state.counters["virtual_s_per_s"] = benchmark::Counter(
      static_cast<double>(bench.world.NowMs() - startMs) / 1e3, benchmark::Counter::kIsRate);
  state.SetLabel("claim: at least 1000 virtual seconds a second");
}
BENCHMARK(BulkRead)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace gainsmith::test
