// Commands: see the header.
#include "shell/commands.h"

#include <string>
#include <utility>

#include "platform/common_texts.h"
#include "shell/about_window.h"

namespace gainsmith {

Commands::Commands(World& world, ShellState& shell, MDIForm1& main, Routes routes)
    : world_(world), shell_(shell), main_(main), routes_(std::move(routes)) {
  RouteFileMenu();
  RouteDriveMenu();
  RouteHelpMenu();
  RouteToolBar();
  main_.LineWatch.OnTimer = [this] { LineWatch_Timer(); };
}

std::function<void()> Commands::WhenNoTransferRuns(std::function<void()> action) {
  return [this, action = std::move(action)] {
    if (!shell_.BulkTransferRunning) action();
  };
}

std::function<void()> Commands::WhenLineIsFree(std::function<void()> action) {
  return WhenNoTransferRuns([this, action = std::move(action)] { StartOnceLineIsFree(action); });
}

void Commands::StartOnceLineIsFree(std::function<void()> action) {
  if (!routes_.LineInUse()) return action();
  waiting_ = std::move(action);
  main_.Pointer = MousePointer::Hourglass;
  main_.LineWatch.Start();
}

void Commands::LineWatch_Timer() {
  const bool open = world_.IsPortOpen();
  if (open && routes_.LineInUse()) return;
  main_.LineWatch.Stop();
  main_.Pointer = MousePointer::Default;
  const std::function<void()> action = std::exchange(waiting_, {});
  // What has opened meanwhile has the user's attention.
  if (open && !shell_.BulkTransferRunning && world_.ModalWindow() == nullptr) action();
}

void Commands::RouteFileMenu() {
  main_.mnuFileOpen.OnClick = WhenLineIsFree([this] { routes_.OpenConfigFile(); });
  main_.mnuSave.OnClick = WhenNoTransferRuns([this] { routes_.Save(); });
  main_.mnuSaveAs.OnClick = WhenNoTransferRuns([this] { routes_.SaveAs(); });
  main_.mnuFileClose.OnClick = WhenNoTransferRuns([this] { mnuFileClose_Click(); });
  main_.nmuExit.OnClick = [this] { world_.Unload(main_); };
}

void Commands::RouteDriveMenu() {
  // Also during a transfer: it starts none, and its Close ends the one that runs.
  main_.mnuConnect.OnClick = [this] { world_.Show(*routes_.Connect); };
  main_.sysConfig.OnClick = WhenLineIsFree([this] { sysConfig_Click(); });
  main_.MnuCurrentLoop.OnClick = WhenLineIsFree([this] { MnuCurrentLoop_Click(); });
  main_.mnuPositionLoop.OnClick = WhenLineIsFree([this] { mnuPositionLoop_Click(); });
  main_.ReadFromDrive.OnClick = WhenLineIsFree([this] { routes_.ReadFromDrive(); });
  main_.mnuDownloadToDrive.OnClick = WhenLineIsFree([this] { mnuDownloadToDrive_Click(); });
  main_.mnuReset.OnClick = WhenLineIsFree([this] { mnuReset_Click(); });
  main_.ParaDataLib.OnClick = WhenLineIsFree([this] { ParaDataLib_Click(); });
  main_.mnuScope.OnClick = WhenNoTransferRuns([this] { mnuScope_Click(); });
  main_.ErrCheck.OnClick = WhenLineIsFree([this] { ErrCheck_Click(); });
}

void Commands::RouteHelpMenu() {
  main_.mnuContents.OnClick = [this] {
    world_.OpenDocument(world_.ProgramDirectory() + "/help.chm");
  };
  main_.mnuWebUserManual.OnClick = [this] {
    world_.OpenDocument("http://" + std::string(TorvaneHost) + "/uploadfile/kvt518m.pdf");
  };
  main_.mnuSoftwareManualOnWeb.OnClick = [this] {
    world_.OpenDocument("http://" + std::string(TorvaneHost) +
                        "/uploadfile/GainsmithForKVT518.pdf");
  };
  main_.mnuAbout.OnClick = [this] { world_.Show(*routes_.About); };
}

void Commands::RouteToolBar() {
  main_[Tool1::OpenFile].OnClick = main_.mnuFileOpen.OnClick;
  main_[Tool1::SaveFile].OnClick = main_.mnuSave.OnClick;
  main_[Tool1::Properties].OnClick = WhenLineIsFree([this] { PropertiesButton_Click(); });
  main_[Tool1::CurrentLoop].OnClick = main_.MnuCurrentLoop.OnClick;
  main_[Tool1::PositionLoop].OnClick = WhenLineIsFree([this] { PositionLoopButton_Click(); });
  main_[Tool1::Scope].OnClick = main_.mnuScope.OnClick;
  main_[Tool1::ErrorLog].OnClick = main_.ErrCheck.OnClick;
}

bool Commands::CommunicationTest() {
  if (world_.IsPortOpen()) return true;
  world_.ShowMessage(LostLinkMessage());
  return false;
}

void Commands::Refuse(const char* text, MessageIcon icon) {
  world_.ShowMessage({text, MainTitle, MessageButtons::Ok, icon});
}

void Commands::mnuFileClose_Click() {
  main_.mnuFileClose.Enabled = false;
  main_.CurrentConfigFile.clear();
  main_.ShowBaseCaption();
}

void Commands::sysConfig_Click() {
  if (!CommunicationTest()) {
    main_.Pointer = MousePointer::Default;
    world_.Unload(*routes_.Waiting);
    return;
  }
  main_.Pointer = MousePointer::Hourglass;
  world_.ShowModal(*routes_.Properties, [this] { main_.Pointer = MousePointer::Default; });
}

void Commands::PropertiesButton_Click() {
  main_.Pointer = MousePointer::Hourglass;
  world_.Show(*routes_.Properties);
  main_.Pointer = MousePointer::Default;
}

void Commands::MnuCurrentLoop_Click() {
  if (CommunicationTest()) world_.ShowModal(*routes_.CurrentLoop);
}

void Commands::mnuPositionLoop_Click(std::function<void()> afterClosing) {
  routes_.ForgetClosingPositionWindow();
  if (CommunicationTest()) {
    if (!shell_.ChildWindowOpen) {
      shell_.ChildWindowOpen = true;
      world_.ShowModal(*routes_.PositionLoop, std::move(afterClosing));
      return;
    }
    if (!shell_[OpenMark::PositionLoop]) {
      Refuse("Please close other opened window(s)", MessageIcon::None);
    }
  }
  if (afterClosing) afterClosing();
}

void Commands::PositionLoopButton_Click() {
  main_.Pointer = MousePointer::Hourglass;
  mnuPositionLoop_Click([this] { main_.Pointer = MousePointer::Default; });
}

void Commands::mnuScope_Click() {
  if (!CommunicationTest()) return;
  if (!shell_.ChildWindowOpen) {
    if (routes_.LineInUse()) return StartOnceLineIsFree([this] { mnuScope_Click(); });
    shell_.ChildWindowOpen = true;
    world_.ShowModal(*routes_.Scope);
  } else if (!shell_[OpenMark::Scope]) {
    Refuse("Please close opened window(s) before you can open scope", MessageIcon::None);
  } else if (routes_.ScopeCycle->Enabled()) {
    routes_.ScopeCycle->Stop();
  } else {
    routes_.ScopeCycle->Start();
  }
}

void Commands::ErrCheck_Click() {
  if (!CommunicationTest()) return;
  if (shell_.ChildWindowOpen) {
    Refuse("Please close opened window(s)", MessageIcon::None);
    return;
  }
  shell_.ChildWindowOpen = true;
  world_.ShowModal(*routes_.ErrorLog);
}

void Commands::ParaDataLib_Click() {
  if (shell_.ChildWindowOpen) {
    Refuse("Please close opend windows", MessageIcon::None);
    return;
  }
  shell_.ChildWindowOpen = true;
  world_.Show(*routes_.ParametersGrid);
}

void Commands::mnuDownloadToDrive_Click() {
  if (shell_.ChildWindowOpen) {
    Refuse("Please close all other opened window(s)", MessageIcon::Critical);
    return;
  }
  routes_.DownloadToDrive();
}

void Commands::mnuReset_Click() {
  if (shell_.ChildWindowOpen) {
    Refuse("Please close all other opened window(s)", MessageIcon::Critical);
    return;
  }
  routes_.ResetDrive();
}

void Commands::VelocityLoop_Click() {
  if (shell_.BulkTransferRunning) return;
  if (routes_.LineInUse()) return StartOnceLineIsFree([this] { VelocityLoop_Click(); });
  routes_.ForgetClosingPositionWindow();
  if (!CommunicationTest()) return;
  if (!shell_.ChildWindowOpen) {
    shell_.ChildWindowOpen = true;
    world_.ShowModal(*routes_.VelocityLoop);
  } else if (!shell_[OpenMark::VelocityLoop]) {
    Refuse("Please close other opened window(s)", MessageIcon::None);
  }
}

void Commands::ReadFromDrive_Click() {
  if (shell_.BulkTransferRunning) return;
  StartOnceLineIsFree([this] {
    if (CommunicationTest()) routes_.ReadFromDrive();
  });
}

void Commands::TestConsole_Click() {
  if (shell_.BulkTransferRunning) return;
  if (CommunicationTest()) world_.Show(*routes_.TestConsole);
}

}  // namespace gainsmith
