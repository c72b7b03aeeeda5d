// The connection and the windows that move no motor, with the line lost at each of their exchanges:
// whatever they were doing, they close, and after the next connect they work as if nothing had
// been. Nothing that the user has not changed is another setting afterwards, in the drive or in the
// table.

#include "bench.h"

namespace gainsmith::test {
namespace {

struct StruckBench : Bench {
  StruckBench() : Bench({}, Edition::ServiceBench) {
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
    {"properties",
     [](Bench& bench) {
       bench.user.Click(bench.tool.mdiForm1[Tool1::Properties]);
       (void)bench.user.TryClick(bench.tool.sysConfig.cmdOK);
     },
     [](Tool& tool) -> Window& { return tool.sysConfig; }},
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

// What happens to the drive before one request.
const std::pair<const char*, void (*)(Bench&)> Blows[] = {
    {"silent", [](Bench& bench) { bench.device.Drive.Inject(sim::Fault::Silent); }},
    {"silent for a while",
     [](Bench& bench) { bench.device.Drive.Inject(sim::Fault::Silent, sim::Hits::Next(5)); }},
    {"unplugged", [](Bench& bench) { bench.device.Drive.Inject(sim::Fault::HangUp); }},
    {"power off and on",
     [](Bench& bench) { bench.device.Drive.Reset(bench.world.NowMs() * 1000); }},
};

TEST(EveryExchange, ALineLostAtItLeavesAWindowThatClosesAndWorksAgain) {
  for (const Scene& scene : Scenes) {
    StruckBench whole;
    scene.Play(whole);
    const Texts frames = whole.TakeFrames();
    const Texts told = whole.TakeMessages();
    Texts known{LostLinkText, NoDrive, "Fail in writing parameters to EEPROM !", "通讯故障！"};
    known.insert(known.end(), told.begin(), told.end());
    ASSERT_GT(frames.size(), 2U) << scene.Name;
    for (int request = 1; request <= static_cast<int>(frames.size()); ++request) {
      for (const auto& [name, blow] : Blows) {
        SCOPED_TRACE(std::string(scene.Name) + ", request " + std::to_string(request) + ", " +
                     name);
        StruckBench bench;
        Tool& tool = bench.tool;
        Window& window = scene.Stage(tool);
        const int struck = bench.device.Requests + request - 1;
        bool hasStruck = false;
        bench.device.BeforeRequest = [&, blow = blow](int number) {
          if (number != struck) return;
          hasStruck = true;
          blow(bench);
        };
        scene.Play(bench);
        EXPECT_TRUE(hasStruck);
        if (window.Loaded) bench.user.Close(window);
        bench.world.RunFor(3000);
        EXPECT_FALSE(window.Loaded);
        for (const std::string& text : bench.TakeMessages()) {
          EXPECT_GT(std::count(known.begin(), known.end(), text), 0) << text;
        }
        bench.ExpectAtRest();
        bench.ExpectSettingsInTheDrive();

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
