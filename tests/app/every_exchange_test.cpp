// The connection, every transfer and every window, with the line lost at each of their exchanges:
// whatever they were doing, they tell it as often as they should, close or stay, come to rest, and
// after the next connect they work as if nothing had been. Nothing that the user has not changed is
// another setting afterwards, in the drive or in the table.

#include "golden.h"
#include "journal.h"
#include "scenes.h"

namespace gainsmith::test {
namespace {

constexpr const char* NoDrive =
    "Unable to Communicate with the Drive. Check your connection and confirm you have selected the "
    "right serial port.";

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
  Texts lines;
  for (const Scene& scene : Scenes) {
    StruckBench whole;
    scene.Play(whole);
    const Texts frames = whole.TakeFrames();
    const Texts told = whole.TakeMessages();
    Texts known{LostLinkText, NoDrive, "Fail in writing parameters to EEPROM !", "通讯故障！"};
    known.insert(known.end(), told.begin(), told.end());
    ASSERT_GT(frames.size(), 2U) << scene.Name;
    for (int request = 1; request <= static_cast<int>(frames.size()); request += scene.Every) {
      const std::string where = std::string(scene.Name) + ", request " + std::to_string(request);
      Texts blows;
      for (const auto& [name, strike, line] : Blows) {
        SCOPED_TRACE(where + ", " + name);
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
        Journal journal(bench);
        scene.Play(bench);
        blows.push_back(journal.Line());
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
      lines.push_back(where + ": " + Digest(blows));
    }
  }
  ExpectKnown(lines, "exchanges.txt");
}

}  // namespace
}  // namespace gainsmith::test
