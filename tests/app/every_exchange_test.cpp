// The connection, every transfer and every window, with the line lost at each of their exchanges:
// whatever they were doing, they tell it as often as they should, close or stay, come to rest, and
// after the next connect they work as if nothing had been. Nothing that the user has not changed is
// another setting afterwards, in the drive or in the table.

#include "bench.h"
#include "transfers.h"

namespace gainsmith::test {
namespace {

struct StruckBench : ConnectedBench {
  void Stop(Button& run) {
    if (run.Caption == "Stop") (void)user.TryClick(run);
  }
  // A test, or the scope's cycles, for a while; then its Stop.
  void RunFor(Window& window, Button& run, std::int64_t ms) {
    // After a failed load the message is still to come.
    if (window.Loaded && !tool.link.LoadFailed) (void)user.TryClick(run);
    world.RunFor(ms);
    Stop(run);
    world.RunFor(2000);
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

// The user's ways through the windows, as far as they lead.

void Reconnect(StruckBench& bench) {
  // Closes the port, and opens it again.
  bench.Connect();
  bench.world.RunFor(500);
  bench.Connect();
}
void TestTheCurrentLoop(StruckBench& bench) {
  Form1& window = bench.tool.form1;
  bench.user.Click(bench.tool.mdiForm1.MnuCurrentLoop);
  // A field that could not be read is empty, and refused.
  if (!window.Text1[Form1::Kp].Text.empty()) (void)bench.user.TryClick(window.cmdTest);
  EXPECT_TRUE(window.Visible && window.cmdTest.Enabled);
}
void TestThePositionLoop(StruckBench& bench) {
  Form3& window = bench.tool.form3;
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  window.Text1[Form3::Distance].Text = "2000";
  window.Text1[Form3::RepeatTimes].Text = "20";
  window.Combo1.Choose(1);
  bench.RunFor(window, window.Command1[Form3::MainStart], 5000);
}
void TestTheVelocityLoop(StruckBench& bench) {
  velocityModeTune& window = bench.tool.velocityMode;
  bench.user.Click(bench.tool.benchMenu->mnuVelocityLoop);
  window.Text1[velocityModeTune::RunningTime].Text = "150";
  window.Text1[velocityModeTune::Interval].Text = "50";
  window.Text1[velocityModeTune::RepeatTimes].Text = "20";
  window.Combo1.Choose(1);
  bench.RunFor(window, window.Command1, 5000);
}
void Jog(StruckBench& bench) {
  Form3& window = bench.tool.form3;
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  bench.world.RunFor(1500);
  if (!window.Loaded) return;
  bench.user.Press(window.Command2);
  bench.world.RunFor(2000);
  bench.user.Release(window.Command2);
}
void UseTheScope(StruckBench& bench) {
  Form5& window = bench.tool.form5;
  bench.user.Click(bench.tool.mdiForm1.mnuScope);
  bench.world.RunFor(1100);
  if (window.Loaded) bench.user.Choose(window.Combo1, 0);
  bench.RunFor(window, window.Command1, 3000);
}
void EraseErrors(StruckBench& bench) {
  bench.user.Click(bench.tool.mdiForm1.ErrCheck);
  bench.world.RunFor(1500);
  for (Button& erase : bench.tool.form4.Command1) {
    (void)bench.user.TryClick(erase);
    bench.world.RunFor(1500);
  }
}
void SetProperties(StruckBench& bench) {
  bench.user.Click(bench.tool.mdiForm1[Tool1::Properties]);
  (void)bench.user.TryClick(bench.tool.sysConfig.cmdOK);
}
void Watch(StruckBench& bench) {
  bench.user.Click(bench.tool.benchMenu->mnuTestConsole);
  // The second click starts, the third stops.
  for (const int ms : {0, 5000, 0}) {
    (void)bench.user.TryClick(bench.tool.form110.Command1);
    bench.world.RunFor(ms);
  }
}
void UseAllOfTheGrid(StruckBench& bench) {
  Form8& grid = bench.tool.form8;
  bench.user.Click(bench.tool.benchMenu->mnuParameters);
  for (Button* button : {&grid.readdata, &grid.writedata, &grid.EEProm}) {
    bench.world.Answers = {MessageAnswer::Yes};
    (void)bench.user.TryClick(*button);
    bench.world.RunFor(3000);
  }
}

template <auto Member>
Window& Of(Tool& tool) {
  return tool.*Member;
}

struct Scene {
  const char* Name;
  std::function<void(StruckBench&)> Play;
  Window& (*Stage)(Tool&);
  // What is known of a line that stays dead, request by request, the last letter for all that
  // follow; empty or '?': not looked at. How many messages come ('=': as many as on a good line),
  // and whether the window stays (s) or closes by itself (c).
  std::string Messages = "", Ends = "";
  // A drive that restarts answers again before it is given up.
  bool BridgesARestart = false;
  // The frames that the last request that is tried is sent in.
  int LastFrames = 0;
  // One of so many requests is struck.
  int Every = 1;
};

Scene SceneOf(const Transfer& transfer) {
  return {transfer.Name, transfer.Give, Of<&Tool::waiting>, "=", "c", false, 0, 4};
}
const Scene Scenes[] = {
    SceneOf(Transfers[0]),
    SceneOf(Transfers[1]),
    SceneOf(Transfers[2]),
    SceneOf(Transfers[3]),
    {"connect", Reconnect, Of<&Tool::waiting>},
    // A read or a write that fails is the last; each block says so for itself.
    {"current loop", TestTheCurrentLoop, Of<&Tool::form1>, "1211114321", "s"},
    {"position loop", TestThePositionLoop, Of<&Tool::form3>, "1", "c", true},
    {"velocity loop", TestTheVelocityLoop, Of<&Tool::velocityMode>, "1", "c", true},
    {"jog", Jog, Of<&Tool::form3>, "1", "c", true},
    // A kind that cannot be written is told at once, and again with the failed load.
    {"scope", UseTheScope, Of<&Tool::form5>, "121", "c", true, 12},
    // A read that fails leaves the window to the next erase, which closes it.
    {"error log", EraseErrors, Of<&Tool::form4>, "21211", "ccccs"},
    {"properties", SetProperties, Of<&Tool::sysConfig>, "1", "c"},
    {"console", Watch, Of<&Tool::form110>},
    {"grid", UseAllOfTheGrid, Of<&Tool::form8>, std::string(44, '1') + "?",
     std::string(44, 'c') + "?"},
};

// What happens to the drive before one request.
enum class After { Dead, Restarted, Other };
const struct {
  const char* Name;
  void (*Strike)(StruckBench&);
  After Line;
} Blows[] = {
    {"silent", [](StruckBench& bench) { bench.device.Drive.Inject(sim::Fault::Silent); },
     After::Dead},
    {"silent, and a test's Stop",
     [](StruckBench& bench) {
       bench.device.Drive.Inject(sim::Fault::Silent);
       bench.world.At(40, [&bench] {
         bench.Stop(bench.tool.form3.Command1[Form3::MainStart]);
         bench.Stop(bench.tool.velocityMode.Command1);
       });
     },
     After::Dead},
    {"silent for a while",
     [](StruckBench& bench) { bench.device.Drive.Inject(sim::Fault::Silent, sim::Hits::Next(5)); },
     After::Other},
    {"unplugged", [](StruckBench& bench) { bench.device.Drive.Inject(sim::Fault::HangUp); },
     After::Dead},
    {"power off and on",
     [](StruckBench& bench) { bench.device.Drive.Reset(bench.world.NowMs() * 1000); },
     After::Restarted},
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
    for (int request = 1; request <= static_cast<int>(frames.size()); request += scene.Every) {
      for (const auto& [name, strike, line] : Blows) {
        SCOPED_TRACE(std::string(scene.Name) + ", request " + std::to_string(request) + ", " +
                     name);
        StruckBench bench;
        Tool& tool = bench.tool;
        Window& window = scene.Stage(tool);
        const int struck = bench.device.Requests + request - 1;
        bool hasStruck = false;
        bench.device.BeforeRequest = [&, strike = strike](int number) {
          if (number != struck) return;
          hasStruck = true;
          strike(bench);
        };
        scene.Play(bench);
        EXPECT_TRUE(hasStruck);
        Texts heard = bench.TakeMessages();
        for (const std::string& text : heard) {
          EXPECT_GT(std::count(known.begin(), known.end(), text), 0) << text;
        }
        const auto at = [&](const std::string& letters) {
          const std::size_t last = std::min(static_cast<std::size_t>(request), letters.size());
          return last == 0 ? '?' : letters[last - 1];
        };
        const char count = at(scene.Messages);
        if (line == After::Dead && count != '?') {
          EXPECT_EQ(heard.size(), count == '=' ? told.size() : static_cast<unsigned>(count - '0'));
          EXPECT_EQ(window.Loaded, at(scene.Ends) == 's');
          const int sent = bench.device.Requests - struck;
          EXPECT_TRUE(scene.LastFrames == 0 || scene.LastFrames == sent) << sent;
        }
        if (line == After::Restarted && scene.BridgesARestart) {
          EXPECT_EQ(heard, told);
          EXPECT_TRUE(window.Loaded);
        }
        if (window.Loaded) bench.user.Close(window);
        bench.world.RunFor(3000);
        EXPECT_FALSE(window.Loaded);
        bench.ExpectAtRest();
        bench.ExpectSettingsInTheDrive();

        bench.ConnectAnew();
        EXPECT_EQ(tool.mdiForm1.lblConnection.Caption, "Connected");
        bench.TakeFrames();
        bench.TakeMessages();
        scene.Play(bench);
        EXPECT_EQ(bench.TakeFrames(), frames);
        EXPECT_EQ(bench.TakeMessages(), told);
        if (HasFailure()) return;
      }
    }
  }
}

}  // namespace
}  // namespace gainsmith::test
