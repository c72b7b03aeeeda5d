// BenchMenu: the menu that the service bench's program has beyond the tool's own. It opens what the
// other menus do not lead to.
#pragma once

#include "platform/window.h"
#include "shell/commands.h"
#include "shell/main_window.h"

namespace gainsmith {

struct BenchMenu {
  // Appends itself to the main window's menus. Both outlive it.
  BenchMenu(MDIForm1& main, Commands& commands);

  MenuItem mnuBench, mnuVelocityLoop, mnuParameters, mnuReadFromDrive, mnuTestConsole;
};

}  // namespace gainsmith
