// From the words of a recording to the picture on the screen.
#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>

#include "app/bench.h"
#include "bench_support.h"
#include "desktop/picture_painter.h"
#include "desktop/record_values.h"
#include "trace/fft.h"
#include "trace/split_trace.h"

namespace gainsmith::benchmarks {
namespace {

constexpr QSize FullHd(1920, 1080);

// What a position test of the virtual world has recorded with the longest trace time.
struct Recording {
  Recording() {
    bench.Connect();
    bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
    Form3& position = bench.tool.form3;
    bench.user.Choose(position.Combo1, static_cast<int>(position.Combo1.Items.size()) - 1);
    bench.user.Click(position.Command1[Form3::MainStart]);
    Words = bench.tool.link.ReplyValues;
  }

  test::Bench bench;
  TraceState& Trace = bench.tool.trace;
  std::vector<float> Words;
};

Recording& TheRecording() {
  static Recording recording;
  return recording;
}

// A window that is one plot of all five channels.
struct PlotWindow : Window {
  explicit PlotWindow(TraceState& trace)
      : Shown(PositionPlot, trace, linkIdle_, combo1_, &statusBar1_) {
    ClientWidthTwips = TwipsFromPixels(FullHd.width());
    ClientHeightTwips = TwipsFromPixels(FullHd.height());
    Add(Shown.Picture1, "Picture1").Place(0, 0, ClientWidthTwips, ClientHeightTwips);
    trace.Show[Signal::PErr] = trace.Show[Signal::PBak] = trace.Show[Signal::PRef] =
        trace.Show[Signal::VBak] = trace.Show[Signal::IBak] = true;
    Shown.PickPositionSource();
    Shown.CaptureHaveData = true;
    Shown.SetAxisLabels();
    Shown.Form_Resize();
  }

 private:
  bool linkIdle_ = true;
  ComboBox combo1_;
  StatusBar statusBar1_;

 public:
  Plot Shown;
};

// On a screen.
struct PlotDesk {
  PlotWindow window{TheRecording().Trace};
  DesktopWorld world{"."};
  ~PlotDesk() { world.EndProgram(); }
  QWidget& Show() {
    world.Show(window);
    return *FindWidget(".Picture1");
  }
};

void SplitTraceOf3000Ms(benchmark::State& state) {
  Recording& recording = TheRecording();
  state.SetLabel("claim: under 1 ms");
  for (auto _ : state) {
    recording.Trace.ShowRecordedChannels(3);
    benchmark::DoNotOptimize(SplitTrace(recording.Trace, recording.Words, 3));
  }
}
BENCHMARK(SplitTraceOf3000Ms)->Unit(benchmark::kMillisecond);

// Strokes only.
void PaintFiveChannels(benchmark::State& state) {
  const PlotWindow window(TheRecording().Trace);
  QImage image(FullHd, QImage::Format_RGB32);
  QPainter painter(&image);
  state.SetLabel("part of the redraw");
  for (auto _ : state) {
    PaintGraticule(painter, image.rect(), Qt::black);
    PaintLines(painter, image.rect(), window.Shown.Picture1.Lines);
  }
}
BENCHMARK(PaintFiveChannels)->Unit(benchmark::kMillisecond);

// From the change of the data to the widget painted.
void RedrawFiveChannels(benchmark::State& state) {
  PlotDesk desk;
  PaintWatch watch(desk.Show());
  watch.RunUntilPainted(desk.world);
  state.SetLabel("claim: under 4 ms");
  for (auto _ : state) {
    desk.window.Shown.Form_Resize();
    watch.RunUntilPainted(desk.world);
  }
}
BENCHMARK(RedrawFiveChannels)->Unit(benchmark::kMillisecond);

void TransformAndRedrawSpectrum(benchmark::State& state) {
  PlotDesk desk;
  TraceState& trace = TheRecording().Trace;
  desk.window.Shown.FrequencyMode = true;
  PaintWatch watch(desk.Show());
  watch.RunUntilPainted(desk.world);
  state.SetLabel("claim: under 3 ms");
  for (auto _ : state) {
    FftArray input = FftInputOf(trace.VBakTrace);
    trace.Spectrum = Fft128(input);
    desk.window.Shown.Form_Resize();
    watch.RunUntilPainted(desk.world);
  }
}
BENCHMARK(TransformAndRedrawSpectrum)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace gainsmith::benchmarks

int main(int argc, char** argv) {
  const gainsmith::benchmarks::OffscreenApplication application;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
