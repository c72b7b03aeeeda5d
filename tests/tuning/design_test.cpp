// The designs of the three windows: everything named, within reach, and fit for a low screen.
#include <gtest/gtest.h>

#include <set>

#include "tuning/current_loop_window.h"
#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

TEST(TuningDesign, EveryControlIsNamedAndTheWindowFitsALowScreen) {
  DriveDevice device;
  VelocityBench velocity(device);
  PositionBench position(device);
  TuningBench& bench = position.Bench;
  const Form1 current(bench.World, bench.Link, bench.Params, bench.Shell);
  for (const Window* window :
       std::initializer_list<const Window*>{&current, &velocity.Window, &position.Window}) {
    std::set<std::string> names;
    for (const Control* control : window->Controls) {
      SCOPED_TRACE(window->Name + "." + control->Name);
      EXPECT_TRUE(names.insert(control->Name).second) << "a name twice";
      const bool isField =
          control->Kind == ControlKind::TextBox || control->Kind == ControlKind::ComboBox;
      EXPECT_TRUE(!isField || !control->AccessibleName.empty());
    }
    EXPECT_LT(window->ClientHeightTwips, (768 - 80) * 15) << "title bar and panel fit, too";
    EXPECT_LT(window->ClientWidthTwips, 1366 * 15);
  }
}

TEST(TuningDesign, EveryPageOfThePositionWindowIsWithinReach) {
  DriveDevice device;
  PositionBench on(device);
  Open(on);
  Form3& window = on.Window;
  for (const Control* control : std::initializer_list<const Control*>{
           &window.Text2, &window.Text3, &window.Command2, &window.Command3,
           &window.Text1[Form3::LowKaff], &window.Check1[Form3::PRef]}) {
    EXPECT_TRUE(on.Bench.User.CanReach(*control)) << control->Name;
  }
  for (Button& button : window.Command1) EXPECT_TRUE(on.Bench.User.CanReach(button));
}

}  // namespace
}  // namespace gainsmith::test
