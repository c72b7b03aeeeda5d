// What the user's ways take and leave behind on the screen is that of states.txt.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "description.h"
#include "golden.h"
#include "scenes.h"

namespace gainsmith::test {
namespace {

Texts StateOf(Tool& tool) {
  tool.mdiForm1.Refresh();
  return Description(tool).Lines();
}

// The name of a line's control, and the rest of it from where it differs.
std::string Changed(const std::string& now, const std::string& before) {
  const auto differs = std::mismatch(now.begin(), now.end(), before.begin(), before.end()).first;
  const auto from = now.rfind(' ', static_cast<std::size_t>(differs - now.begin()));
  const auto name = now.find_first_not_of(' ');
  return "  " + now.substr(name, now.find(' ', name) - name) + now.substr(from);
}

void AddChanges(Texts& lines, const Texts& now, const Texts& before) {
  ASSERT_EQ(now.size(), before.size());
  for (std::size_t i = 0; i < now.size(); ++i) {
    if (now[i] != before[i]) lines.push_back(Changed(now[i], before[i]));
  }
}

// After the connection, and after each scene the first time and the second, in what has changed.
TEST(StatesTest, AfterEachSceneAreThoseOfTheList) {
  Texts lines{"connected"};
  Bench fresh({}, Edition::ServiceBench);
  StruckBench justConnected;
  AddChanges(lines, StateOf(justConnected.tool), StateOf(fresh.tool));
  for (const Scene& scene : Scenes) {
    StruckBench bench;
    Window& window = scene.Stage(bench.tool);
    const Texts connected = StateOf(bench.tool);
    for (int time = 1; time <= 2; ++time) {
      const std::int64_t start = bench.world.NowMs();
      scene.Play(bench);
      bench.world.RunFor(1000);
      lines.push_back(std::string(scene.Name) + ", " + std::to_string(time) + ": " +
                      std::to_string(bench.TakeFrames().size()) + " frames in " +
                      std::to_string(bench.world.NowMs() - start) + " ms");
      AddChanges(lines, StateOf(bench.tool), connected);
      if (window.Loaded) bench.user.Close(window);
      bench.world.RunFor(3000);
    }
  }
  ExpectKnown(lines, "states.txt");
}

}  // namespace
}  // namespace gainsmith::test
