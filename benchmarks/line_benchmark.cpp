// Exchanges with kvt518-sim on a pseudo-terminal, beside the waits they are made of, and the
// processor time that they take.
#include <string>

#include "bench_support.h"
#include "trace/capture.h"

namespace gainsmith::benchmarks {
namespace {

constexpr const char* WaitsClaim = "1.02 at most";
constexpr const char* WaitingClaim = "under 1";

// Runs `work` again and again; prints its waits, its time, and the one over the other.
template <typename Work>
void MeasureWaits(WatchedWorld& world, const std::string& what, int runs, const Work& work) {
  Figures waitsMs;
  Figures elapsedMs;
  Figures ratio;
  for (int i = 0; i < runs; ++i) {
    const std::int64_t before = world.WaitsMs();
    const Clock::time_point start = Clock::now();
    if (!work()) {
      std::printf("%s: the drive does not answer\n", what.c_str());
      return;
    }
    elapsedMs.Add(MsSince(start));
    waitsMs.Add(static_cast<double>(world.WaitsMs() - before));
    ratio.Add(elapsedMs.Last() / waitsMs.Last());
  }
  PrintRow(what + ", its waits, ms", waitsMs, "");
  PrintRow(what + ", ms", elapsedMs, "");
  PrintRow(what + ", time over waits", ratio, WaitsClaim);
}

void SetSpeed(Link& link, WatchedWorld& world, int baud) {
  link.SerialSettings = std::to_string(baud) + ",n,8,2";
  link.BitsPerMs = static_cast<std::int16_t>(baud / 1000);
  world.OpenPort(1, link.SerialSettings);
}

void MeasureSpeed(ToolDesk& desk, int baud) {
  constexpr int Reads = 40;
  constexpr int Uploads = 5;
  Link& link = desk.tool.link;
  SetSpeed(link, desk.world, baud);
  const std::string at = " at " + std::to_string(baud);
  MeasureWaits(desk.world, "one register" + at, Reads,
               [&] { return link.Read(Errand(link), Register::EncoderCounts) == Sent::Taken; });
  MeasureWaits(desk.world, "600 words" + at, Uploads,
               [&] { return UploadTrace(link, Errand(link), 3) == UploadResult::Done; });
}

// From the tick that arms the recorder to the picture.
void MeasureScope(ToolDesk& desk, int traceTime) {
  constexpr int Cycles = 5;
  Form5& scope = desk.tool.form5;
  desk.tool.trace.SetTraceTime(traceTime);
  desk.tool.link.Write(Errand(desk.tool.link), Register::TraceTime, static_cast<float>(traceTime));
  MeasureWaits(desk.world, "scope, " + std::to_string(traceTime) + "00 ms at 38400", Cycles, [&] {
    scope.Timer1_Timer();
    return scope.Loaded;
  });
}

void MeasureProcessor(ToolDesk& desk) {
  constexpr int WaitsMs = 50;
  constexpr int Repeats = 100;
  Link& link = desk.tool.link;
  Figures waiting;
  Figures exchanging;
  for (int run = 0; run < 3; ++run) {
    waiting.Add(ProcessorPercent([&] {
      for (int i = 0; i < Repeats; ++i) link.WaitMs(WaitsMs);
    }));
    exchanging.Add(ProcessorPercent([&] {
      for (int i = 0; i < Repeats / 4; ++i) link.Read(Errand(link), Register::EncoderCounts);
    }));
  }
  PrintRow("waits of 50 ms, % of a core", waiting, WaitingClaim);
  PrintRow("exchanges, % of a core", exchanging, WaitingClaim);
}

}  // namespace
}  // namespace gainsmith::benchmarks

int main() {
  using namespace gainsmith::benchmarks;
  const OffscreenApplication application;
  ToolDesk desk;
  PrintHeading("Exchanges");
  for (const int baud : {9600, 38400}) MeasureSpeed(desk, baud);
  PrintHeading("Scope");
  desk.world.Show(desk.tool.form5);
  for (const int traceTime : {1, 10}) MeasureScope(desk, traceTime);
  desk.world.Unload(desk.tool.form5);
  PrintHeading("Processor time while waiting");
  MeasureProcessor(desk);
}
