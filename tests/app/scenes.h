// Scenes: the user's ways through the windows and transfers, as far as they lead, and what is known
// of each of them on a line that dies.
#pragma once

#include <functional>
#include <string>

#include "transfers.h"

namespace gainsmith::test {

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

// The user's ways through the windows, as far as they lead.

inline void Reconnect(StruckBench& bench) {
  // Closes the port, and opens it again.
  bench.Connect();
  bench.world.RunFor(500);
  bench.Connect();
}
inline void TestTheCurrentLoop(StruckBench& bench) {
  Form1& window = bench.tool.form1;
  bench.user.Click(bench.tool.mdiForm1.MnuCurrentLoop);
  // A field that could not be read is empty, and refused.
  if (!window.Text1[Form1::Kp].Text.empty()) (void)bench.user.TryClick(window.cmdTest);
  EXPECT_TRUE(window.Visible && window.cmdTest.Enabled);
}
inline void TestThePositionLoop(StruckBench& bench) {
  Form3& window = bench.tool.form3;
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  window.Text1[Form3::Distance].Text = "2000";
  window.Text1[Form3::RepeatTimes].Text = "20";
  window.Combo1.Choose(1);
  bench.RunFor(window, window.Command1[Form3::MainStart], 5000);
}
inline void TestTheVelocityLoop(StruckBench& bench) {
  velocityModeTune& window = bench.tool.velocityMode;
  bench.user.Click(bench.tool.benchMenu->mnuVelocityLoop);
  window.Text1[velocityModeTune::RunningTime].Text = "150";
  window.Text1[velocityModeTune::Interval].Text = "50";
  window.Text1[velocityModeTune::RepeatTimes].Text = "20";
  window.Combo1.Choose(1);
  bench.RunFor(window, window.Command1, 5000);
}
inline void Jog(StruckBench& bench) {
  Form3& window = bench.tool.form3;
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  bench.world.RunFor(1500);
  if (!window.Loaded) return;
  bench.user.Press(window.Command2);
  bench.world.RunFor(2000);
  bench.user.Release(window.Command2);
}
inline void UseTheScope(StruckBench& bench) {
  Form5& window = bench.tool.form5;
  bench.user.Click(bench.tool.mdiForm1.mnuScope);
  bench.world.RunFor(1100);
  if (window.Loaded) bench.user.Choose(window.Combo1, 0);
  bench.RunFor(window, window.Command1, 3000);
}
inline void EraseErrors(StruckBench& bench) {
  bench.user.Click(bench.tool.mdiForm1.ErrCheck);
  bench.world.RunFor(1500);
  for (Button& erase : bench.tool.form4.Command1) {
    (void)bench.user.TryClick(erase);
    bench.world.RunFor(1500);
  }
}
inline void SetProperties(StruckBench& bench) {
  bench.user.Click(bench.tool.mdiForm1[Tool1::Properties]);
  (void)bench.user.TryClick(bench.tool.sysConfig.cmdOK);
}
inline void Watch(StruckBench& bench) {
  bench.user.Click(bench.tool.benchMenu->mnuTestConsole);
  // The second click starts, the third stops.
  for (const int ms : {0, 5000, 0}) {
    (void)bench.user.TryClick(bench.tool.form110.Command1);
    bench.world.RunFor(ms);
  }
}
inline void UseAllOfTheGrid(StruckBench& bench) {
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

inline Scene SceneOf(const Transfer& transfer) {
  return {transfer.Name, transfer.Give, Of<&Tool::waiting>, "=", "c", false, 0, 4};
}
inline const Scene Scenes[] = {
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

}  // namespace gainsmith::test
