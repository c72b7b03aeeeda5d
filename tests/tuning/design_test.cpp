// The designs of the three windows: nothing clipped, nothing overlapping, everything named.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tuning/current_loop_window.h"
#include "tuning/run_window_bench.h"

namespace gainsmith::test {
namespace {

bool HasPlace(const Control& control) {
  return !control.Parked && control.Kind != ControlKind::StatusBar;
}

bool Overlap(const Control& a, const Control& b) {
  return a.LeftTwips < b.LeftTwips + b.WidthTwips && b.LeftTwips < a.LeftTwips + a.WidthTwips &&
         a.TopTwips < b.TopTwips + b.HeightTwips && b.TopTwips < a.TopTwips + a.HeightTwips;
}

// Twips that a caption takes at the most, with the box beside it where there is one.
int CaptionTwips(const Control& control) {
  constexpr int CharacterTwips = 90;
  constexpr int BoxTwips = 330;
  const int text = static_cast<int>(control.Caption.size()) * CharacterTwips;
  return control.Kind == ControlKind::CheckBox ? text + BoxTwips : text;
}

void CheckDesign(const Window& window) {
  constexpr int StatusBarTwips = 360;
  const bool hasStatusBar =
      std::any_of(window.Controls.begin(), window.Controls.end(),
                  [](const Control* c) { return c->Kind == ControlKind::StatusBar; });
  std::set<std::string> names;
  for (const Control* a : window.Controls) {
    SCOPED_TRACE(window.Name + "." + a->Name);
    EXPECT_TRUE(names.insert(a->Name).second) << "a name twice";
    if (!HasPlace(*a)) continue;
    const int width = a->Container == nullptr ? window.ClientWidthTwips : a->Container->WidthTwips;
    const int height = a->Container == nullptr
                           ? window.ClientHeightTwips - (hasStatusBar ? StatusBarTwips : 0)
                           : a->Container->HeightTwips;
    EXPECT_TRUE(a->LeftTwips >= 0 && a->TopTwips >= 0 && a->WidthTwips > 0 && a->HeightTwips > 0);
    EXPECT_LE(a->LeftTwips + a->WidthTwips, width);
    EXPECT_LE(a->TopTwips + a->HeightTwips, height);
    EXPECT_LE(CaptionTwips(*a), a->WidthTwips) << a->Caption;
    const bool isField = a->Kind == ControlKind::TextBox || a->Kind == ControlKind::ComboBox;
    EXPECT_TRUE(!isField || !a->AccessibleName.empty());
    for (const Control* b : window.Controls) {
      if (b == a || !HasPlace(*b) || b->Container != a->Container || b->Page != a->Page) continue;
      EXPECT_FALSE(Overlap(*a, *b)) << b->Name;
    }
  }
  constexpr int LowScreenTwips = 768 * 15;
  constexpr int NarrowScreenTwips = 1366 * 15;
  EXPECT_LT(window.ClientHeightTwips, LowScreenTwips - 80 * 15) << "title bar and panel fit, too";
  EXPECT_LT(window.ClientWidthTwips, NarrowScreenTwips);
}

TEST(TuningDesign, NothingIsClippedAndNothingOverlaps) {
  DriveDevice device;
  VelocityBench velocity(device);
  PositionBench position(device);
  TuningBench& bench = position.Bench;
  const Form1 current(bench.World, bench.Link, bench.Params, bench.Shell);
  CheckDesign(current);
  CheckDesign(velocity.Window);
  CheckDesign(position.Window);
}

TEST(TuningDesign, EveryPageOfThePositionWindowIsWithinReach) {
  DriveDevice device;
  PositionBench on(device);
  Open(on);
  Form3& window = on.Window;
  for (const Control* control :
       {static_cast<Control*>(&window.Text2), static_cast<Control*>(&window.Text3),
        static_cast<Control*>(&window.Command2), static_cast<Control*>(&window.Command3),
        static_cast<Control*>(&window.Text1[Form3::LowKaff]),
        static_cast<Control*>(&window.Check1[Form3::PRef])}) {
    EXPECT_TRUE(on.Bench.User.CanReach(*control)) << control->Name;
  }
  for (Button& button : window.Command1) EXPECT_TRUE(on.Bench.User.CanReach(button));
}

}  // namespace
}  // namespace gainsmith::test
