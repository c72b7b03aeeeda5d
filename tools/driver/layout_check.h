// LayoutFaults: what a person would find clipped or overlapping in a window on the screen.
#pragma once

#include <string>
#include <vector>

class QWidget;

namespace gainsmith::test {

// One line for each visible text that is wider or higher than its place, each control that
// reaches out of what it lies in, and each two controls side by side that overlap. Empty: none.
std::vector<std::string> LayoutFaults(const QWidget& window);

}  // namespace gainsmith::test
