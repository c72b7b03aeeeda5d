// Windows left alone, clicks during a running position test, and the opening of the grid.
#include <QTableWidget>
#include <QWindow>
#include <atomic>
#include <random>
#include <thread>

#include "bench_support.h"

// Qt's own entry for tests: the events take the road of those from the window system.
Q_GUI_EXPORT extern void qt_handleMouseEvent(QWindow* window, const QPointF& local,
                                             const QPointF& global, Qt::MouseButtons state,
                                             Qt::MouseButton button, QEvent::Type type,
                                             Qt::KeyboardModifiers modifiers, int timestamp);

namespace gainsmith::benchmarks {
namespace {

void MeasureIdle(const char* what) {
  constexpr int AloneMs = 3000;
  // What its opening still has to do.
  RunFor(500);
  Figures percent;
  for (int run = 0; run < 3; ++run) percent.Add(ProcessorPercent([] { RunFor(AloneMs); }));
  PrintRow(what, percent, "none");
}

// Opens the grid on an empty store and loads a file into it, until all is painted.
void MeasureGrid(ToolDesk& desk) {
  constexpr int Openings = 15;
  desk.world.FileToOpen = DEFAULT_INI;
  Form8& grid = desk.tool.form8;
  Figures openedMs;
  Figures filledMs;
  Figures totalMs;
  for (int i = 0; i < Openings; ++i) {
    const Clock::time_point start = Clock::now();
    desk.world.Show(grid);
    auto* table = dynamic_cast<QTableWidget*>(FindWidget("Form8.MSFlexGrid1"));
    PaintWatch watch(*table);
    watch.RunUntilPainted(desk.world);
    openedMs.Add(MsSince(start));
    grid.Command1_Click();
    do watch.RunUntilPainted(desk.world);
    while (table->rowCount() != static_cast<int>(ParameterCount));
    totalMs.Add(MsSince(start));
    filledMs.Add(totalMs.Last() - openedMs.Last());
    desk.world.Unload(grid);
    RunFor(50);
  }
  PrintRow("open, ms", openedMs, "");
  PrintRow("fill 51 rows, ms", filledMs, "");
  PrintRow("open and fill, ms", totalMs, "under 50");
}

// Clicks a widget from a thread of its own, as the window system does, at random moments.
class Clicker {
 public:
  explicit Clicker(const QWidget& target)
      : window_(target.window()->windowHandle()),
        local_(target.mapTo(target.window(), target.rect().center())),
        global_(target.mapToGlobal(target.rect().center())) {}

  void Start() {
    thread_ = std::thread([this] { Run(); });
  }
  void Stop() {
    stopped_ = true;
    // A click under way needs the windows' thread.
    while (!ended_) RunFor(1);
    thread_.join();
  }
  // To be called by the handler of the click.
  void Handled() {
    handledMs_.Add(MsSince(arrived_));
    waits_ = false;
  }
  const Figures& HandledMs() const { return handledMs_; }

 private:
  void Run() {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> pauseUs(1'000, 50'000);
    int timestampMs = 0;
    while (!stopped_) {
      std::this_thread::sleep_for(std::chrono::microseconds(pauseUs(random)));
      if (waits_) continue;
      arrived_ = Clock::now();
      waits_ = true;
      // Further apart than a double click.
      timestampMs += 5'000;
      qt_handleMouseEvent(window_, local_, global_, Qt::LeftButton, Qt::LeftButton,
                          QEvent::MouseButtonPress, Qt::NoModifier, timestampMs);
      qt_handleMouseEvent(window_, local_, global_, Qt::NoButton, Qt::LeftButton,
                          QEvent::MouseButtonRelease, Qt::NoModifier, timestampMs);
    }
    ended_ = true;
  }

  QWindow* window_;
  QPointF local_;
  QPointF global_;
  std::thread thread_;
  std::atomic<bool> stopped_ = false;
  std::atomic<bool> ended_ = false;
  std::atomic<bool> waits_ = false;
  Clock::time_point arrived_;
  Figures handledMs_;
};

// Clicks on the plot while a position test is started, runs and draws, and is stopped.
void MeasureClicks(ToolDesk& desk) {
  constexpr int TestMs = 20'000;
  Form3& position = desk.tool.form3;
  PictureBox& picture = position.Plot.Picture1;
  Clicker clicker(*FindWidget("Form3.Picture1"));
  picture.OnMouseDown = [&](int, float, float) { clicker.Handled(); };
  picture.OnMouseMove = picture.OnMouseUp = {};
  position.Text1[Form3::RepeatTimes].Text = "50";
  clicker.Start();
  QTimer::singleShot(0, [&] { position.Command1[Form3::MainStart].OnClick(); });
  RunFor(TestMs);
  position.Command1[Form3::MainStart].OnClick();
  RunFor(1000);
  clicker.Stop();
  PrintRow("click to handler in a position test, ms", clicker.HandledMs(), "20 at most");
  std::printf("of %zu clicks\n", clicker.HandledMs().Count());
}

}  // namespace
}  // namespace gainsmith::benchmarks

int main() {
  using namespace gainsmith::benchmarks;
  const OffscreenApplication application;
  ToolDesk desk;
  desk.tool.Start();
  PrintHeading("Windows left alone, % of a core");
  MeasureIdle("main window");
  desk.Connect();
  desk.tool.mdiForm1.mnuPositionLoop.OnClick();
  MeasureIdle("position window, a cursor blinking in a field");
  QApplication::setCursorFlashTime(0);
  MeasureIdle("position window, no cursor blinking");
  PrintHeading("Clicks");
  MeasureClicks(desk);
  desk.world.Unload(desk.tool.form3);
  PrintHeading("Parameters grid");
  MeasureGrid(desk);
}
