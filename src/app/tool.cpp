// Tool: see the header.
#include "app/tool.h"

namespace gainsmith {

Tool::Tool(World& world, Edition edition)
    : link(world),
      mdiForm1(world, shell),
      waiting(world, shell),
      form9(world, shell),
      dialog(world),
      troubles(world, mdiForm1),
      transfer(world, link, parameters, shell, mdiForm1, waiting),
      files(world, parameters, shell, mdiForm1, waiting, transfer),
      driveCommands(world, shell, mdiForm1, waiting, transfer, files),
      form2(world, link, parameters, shell, mdiForm1, transfer),
      form1(world, link, parameters, shell),
      form3(world, link, parameters, shell, trace, form9),
      form4(world, link, shell),
      form5(world, link, parameters, shell, trace),
      form110(world, link),
      form8(world, link, parameters, shell, mdiForm1, transfer),
      sysConfig(world, link, parameters, shell, mdiForm1),
      velocityMode(world, link, parameters, shell, trace),
      commands(world, shell, mdiForm1, MakeRoutes()),
      watch(world, link, mdiForm1),
      page(world, parameters, files, mdiForm1),
      world_(world) {
  mdiForm1.OnRefresh = [this] {
    watch.Refresh(HandsOnMotor());
    page.Refresh();
  };
  mdiForm1.OnTroubleClick = [this] { world_.Show(troubles); };
  if (edition == Edition::ServiceBench) benchMenu.emplace(mdiForm1, commands);
}

void Tool::Start() { world_.Show(mdiForm1); }

DriveWatch::Hands Tool::HandsOnMotor() const {
  const bool running =
      (form3.Loaded && form3.Command1[Form3::MainStart].Caption == RunScheme::StopCaption) ||
      (velocityMode.Loaded && velocityMode.Command1.Caption == RunScheme::StopCaption);
  // The drive stays in the current test until the window's closing ends it.
  return {.OnTest = running || form1.Loaded, .OnJog = form3.JogHeld()};
}

Routes Tool::MakeRoutes() {
  Routes routes;
  routes.Connect = &form2;
  routes.Properties = &sysConfig;
  routes.CurrentLoop = &form1;
  routes.PositionLoop = &form3;
  routes.VelocityLoop = &velocityMode;
  routes.Scope = &form5;
  routes.ScopeCycle = &form5.Timer1;
  routes.ErrorLog = &form4;
  routes.ParametersGrid = &form8;
  routes.TestConsole = &form110;
  routes.About = &dialog;
  routes.Waiting = &waiting;
  routes.OpenConfigFile = [this] { files.OpenConfigFile(); };
  routes.Save = [this] { files.mnuSave_Click(); };
  routes.SaveAs = [this] { files.SaveConfigAs(); };
  routes.DownloadToDrive = [this] { driveCommands.mnuDownloadToDrive_Click(); };
  routes.ResetDrive = [this] { driveCommands.mnuReset_Click(); };
  routes.ReadFromDrive = [this] { driveCommands.ReadFromDrive_Click(); };
  routes.LineInUse = [this] { return link.HandlerUnderWay(); };
  routes.ForgetClosingPositionWindow = [this] { trace.ClosingPositionWindow = false; };
  return routes;
}

}  // namespace gainsmith
