// The connection and the windows that move no motor, with the line lost at each of their exchanges:
// whatever they were doing, they close, and after the next connect they work as if nothing had
// been.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <utility>

#include "bench.h"

namespace gainsmith::test {
namespace {

// The simulated drive behind a hand that does something to it before one request.
class StruckDevice : public SerialDevice {
 public:
  using Blow = std::function<void(sim::SimulatedDrive&, std::int64_t nowUs)>;
  explicit StruckDevice(Bench& bench) : bench_(bench) {}

  // Counted from 1, from the log as it is now.
  void StrikeAt(std::size_t request, Blow blow) {
    before_ = bench_.world.Log.Frames().size() + request - 1;
    blow_ = std::move(blow);
  }
  void Receive(std::uint8_t byte, std::int64_t nowUs) override {
    if (blow_ && bench_.world.Log.Frames().size() == before_) {
      std::exchange(blow_, nullptr)(bench_.device.Drive, nowUs);
    }
    bench_.device.Receive(byte, nowUs);
  }
  std::vector<std::uint8_t> Transmit(std::int64_t nowUs) override {
    return bench_.device.Transmit(nowUs);
  }

 private:
  Bench& bench_;
  std::size_t before_ = 0;
  Blow blow_;
};

struct StruckBench : Bench {
  StruckBench() : Bench({}, Edition::ServiceBench) {
    world.Devices[1] = &struck;
    Connect();
    TakeFrames();
  }
  // Clears what was done to the drive and connects; the first click may only close a port that was
  // left open.
  void ConnectAnew() {
    Repair();
    world.RunFor(3000);
    Connect();
    world.RunFor(500);
    if (!world.IsPortOpen()) Connect();
  }

  StruckDevice struck{*this};
};

constexpr const char* NoDrive =
    "Unable to Communicate with the Drive. Check your connection and confirm you have selected the "
    "right serial port.";

struct Scene {
  const char* Name;
  // The user's way through the window, as far as it leads.
  std::function<void(Bench&)> Play;
  std::function<Window&(Tool&)> Stage;
};

const Scene Scenes[] = {
    {"connect",
     [](Bench& bench) {
       // Closes the port, and opens it again.
       bench.Connect();
       bench.world.RunFor(500);
       bench.Connect();
     },
     [](Tool& tool) -> Window& { return tool.waiting; }},
    {"current loop",
     [](Bench& bench) {
       Form1& window = bench.tool.form1;
       bench.user.Click(bench.tool.mdiForm1.MnuCurrentLoop);
       // A field that could not be read is empty, and refused.
       if (!window.Text1[Form1::Kp].Text.empty()) (void)bench.user.TryClick(window.cmdTest);
       bench.user.Close(window);
     },
     [](Tool& tool) -> Window& { return tool.form1; }},
    {"error log",
     [](Bench& bench) {
       Form4& log = bench.tool.form4;
       bench.user.Click(bench.tool.mdiForm1.ErrCheck);
       bench.world.RunFor(1500);
       for (Button& erase : log.Command1) {
         (void)bench.user.TryClick(erase);
         bench.world.RunFor(1500);
       }
     },
     [](Tool& tool) -> Window& { return tool.form4; }},
    {"console",
     [](Bench& bench) {
       bench.user.Click(bench.tool.benchMenu->mnuTestConsole);
       // The second click starts, the third stops.
       for (const int ms : {0, 5000, 0}) {
         (void)bench.user.TryClick(bench.tool.form110.Command1);
         bench.world.RunFor(ms);
       }
     },
     [](Tool& tool) -> Window& { return tool.form110; }},
    {"grid",
     [](Bench& bench) {
       Form8& grid = bench.tool.form8;
       bench.user.Click(bench.tool.benchMenu->mnuParameters);
       for (Button* button : {&grid.readdata, &grid.writedata, &grid.EEProm}) {
         bench.world.Answers = {MessageAnswer::Yes};
         (void)bench.user.TryClick(*button);
         bench.world.RunFor(3000);
       }
     },
     [](Tool& tool) -> Window& { return tool.form8; }},
};

const std::pair<const char*, StruckDevice::Blow> Blows[] = {
    {"silent", [](auto& drive, auto) { drive.Inject(sim::Fault::Silent); }},
    {"unplugged", [](auto& drive, auto) { drive.Inject(sim::Fault::HangUp); }},
    {"power off and on", [](auto& drive, auto nowUs) { drive.Reset(nowUs); }},
};

TEST(EveryExchange, ALineLostAtItLeavesAWindowThatClosesAndWorksAgain) {
  for (const Scene& scene : Scenes) {
    StruckBench whole;
    scene.Play(whole);
    const Bench::Texts frames = whole.TakeFrames();
    const Bench::Texts told = whole.TakeMessages();
    Bench::Texts known{LostLink, NoDrive, "Fail in writing parameters to EEPROM !", "通讯故障！"};
    known.insert(known.end(), told.begin(), told.end());
    ASSERT_GT(frames.size(), 2U) << scene.Name;
    for (std::size_t request = 1; request <= frames.size(); ++request) {
      for (const auto& [name, blow] : Blows) {
        SCOPED_TRACE(std::string(scene.Name) + ", request " + std::to_string(request) + ", " +
                     name);
        StruckBench bench;
        Tool& tool = bench.tool;
        Window& window = scene.Stage(tool);
        bench.struck.StrikeAt(request, blow);
        scene.Play(bench);
        if (window.Loaded) bench.user.Close(window);
        bench.world.RunFor(3000);
        EXPECT_FALSE(window.Loaded);
        for (const std::string& text : bench.TakeMessages()) {
          EXPECT_GT(std::count(known.begin(), known.end(), text), 0) << text;
        }
        EXPECT_FALSE(tool.waiting.Loaded);
        EXPECT_FALSE(tool.shell.BulkTransferRunning);
        EXPECT_EQ(bench.world.ScreenPointer, MousePointer::Default);

        bench.ConnectAnew();
        EXPECT_EQ(tool.mdiForm1.lblConnection.Caption, "Connected");
        bench.TakeFrames();
        bench.TakeMessages();
        scene.Play(bench);
        EXPECT_EQ(bench.TakeFrames(), frames);
        EXPECT_EQ(bench.TakeMessages(), told);
      }
    }
  }
}

}  // namespace
}  // namespace gainsmith::test
