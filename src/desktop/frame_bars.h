// The menu bar and the tool bar of a frame window.
#pragma once

#include <functional>

#include "platform/window.h"

class QMainWindow;

namespace gainsmith {

class WindowView;

// Builds both bars from the record; the function it gives brings them up to date with it and may
// be called as long as the view is not detached.
std::function<void()> MakeFrameBars(WindowView& view, FrameWindow& record, QMainWindow& window);

}  // namespace gainsmith
