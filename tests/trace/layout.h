// Misplaced: what of a window's design overlaps or leaves its container.
#pragma once

#include <string>
#include <vector>

#include "platform/window.h"

namespace gainsmith::test {

// One line for each control that reaches out of its container, or of the client area, and for each
// two controls in one container that overlap.
inline std::vector<std::string> Misplaced(const Window& window) {
  std::vector<std::string> faults;
  for (const Control* a : window.Controls) {
    const Control* in = a->Container;
    const int right = a->LeftTwips + a->WidthTwips;
    const int bottom = a->TopTwips + a->HeightTwips;
    if (a->LeftTwips < 0 || a->TopTwips < 0 ||
        right > (in == nullptr ? window.ClientWidthTwips : in->WidthTwips) ||
        bottom > (in == nullptr ? window.ClientHeightTwips : in->HeightTwips)) {
      faults.push_back(a->Name + " outside");
    }
    for (const Control* b : window.Controls) {
      if (a < b && in == b->Container && a->LeftTwips < b->LeftTwips + b->WidthTwips &&
          b->LeftTwips < right && a->TopTwips < b->TopTwips + b->HeightTwips &&
          b->TopTwips < bottom) {
        faults.push_back(a->Name + " over " + b->Name);
      }
    }
  }
  return faults;
}

}  // namespace gainsmith::test
