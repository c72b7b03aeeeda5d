// The designs of the three windows: everything named, and fit for a low screen.
#include <gtest/gtest.h>

#include <set>

#include "tuning/current_loop_window.h"
#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

TEST(TuningDesign, EveryControlIsNamedAndTheWindowFitsALowScreen) {
  const VelocityBench velocity;
  PositionBench position;
  const Form1 current(position.World, position.Link, position.Params, position.Shell);
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

}  // namespace
}  // namespace gainsmith::test
