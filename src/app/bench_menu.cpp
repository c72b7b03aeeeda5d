// BenchMenu: see the header.
#include "app/bench_menu.h"

namespace gainsmith {

BenchMenu::BenchMenu(MDIForm1& main, Commands& commands) {
  const auto describe = [](MenuItem& item, const char* name, const char* caption) {
    item.Name = name;
    item.Caption = caption;
  };
  describe(mnuBench, "mnuBench", "&Bench");
  describe(mnuVelocityLoop, "mnuVelocityLoop", "&Velocity Loop");
  describe(mnuParameters, "mnuParameters", "&Parameters");
  describe(mnuReadFromDrive, "mnuReadFromDrive", "&Read From Drive");
  describe(mnuTestConsole, "mnuTestConsole", "&Test Console");

  mnuVelocityLoop.OnClick = [&commands] { commands.Run(Command::BenchVelocityLoop); };
  mnuParameters.OnClick = main.ParaDataLib.OnClick;
  mnuReadFromDrive.OnClick = [&commands] { commands.Run(Command::BenchReadFromDrive); };
  mnuTestConsole.OnClick = [&commands] { commands.Run(Command::BenchTestConsole); };
  mnuBench.Items = {&mnuVelocityLoop, &mnuParameters, &mnuReadFromDrive, &mnuTestConsole};
  main.Menus.push_back(&mnuBench);
}

}  // namespace gainsmith
