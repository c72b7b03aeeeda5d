// The table of commands, the steps of each, and the handlers of the main window.
#include "shell/commands.h"

#include <algorithm>
#include <utility>

#include "platform/common_texts.h"
#include "shell/about_window.h"

namespace gainsmith {

Commands::Commands(World& world, ShellState& shell, MDIForm1& main, Routes routes)
    : world_(world), shell_(shell), main_(main), routes_(std::move(routes)), rows_(Table()) {
  for (const Row& row : rows_) {
    const auto run = [this, name = row.Name] { Run(name); };
    if (row.From.Item) row.From.Item->OnClick = run;
    if (row.From.Button) row.From.Button->OnClick = run;
  }
  main_.nmuExit.OnClick = [this] { world_.Unload(main_); };
  // Also during a transfer: it starts none, and its Close ends the one that runs.
  main_.mnuConnect.OnClick = [this] { world_.Show(*routes_.Connect); };
  RouteHelpMenu();
  main_.LineWatch.OnTimer = [this] { LineWatch_Timer(); };
}

std::vector<Commands::Row> Commands::Table() {
  using enum Step;
  const Exclusion position{"Please close other opened window(s)", MessageIcon::None, true,
                           OpenMark::PositionLoop};
  const Exclusion velocity{"Please close other opened window(s)", MessageIcon::None, true,
                           OpenMark::VelocityLoop};
  const Exclusion scope{"Please close opened window(s) before you can open scope",
                        MessageIcon::None, true, OpenMark::Scope, [this] { StartOrStopScope(); }};
  const Exclusion errorLog{"Please close opened window(s)", MessageIcon::None, true};
  const Exclusion grid{"Please close opend windows", MessageIcon::None, true};
  const Exclusion table{"Please close all other opened window(s)", MessageIcon::Critical};
  const Routes& to = routes_;
  MDIForm1& from = main_;
  // clang-format off
  return {
      {Command::OpenFile, {&from.mnuFileOpen, &from[Tool1::OpenFile]},
       {NoTransfer, FreeLine}, Call(to.OpenConfigFile)},
      {Command::SaveFile, {&from.mnuSave, &from[Tool1::SaveFile]}, {NoTransfer}, Call(to.Save)},
      {Command::SaveFileAs, {&from.mnuSaveAs}, {NoTransfer}, Call(to.SaveAs)},
      {Command::CloseFile, {&from.mnuFileClose}, {NoTransfer}, Call([this] { CloseFile(); })},
      {Command::Properties, {&from.sysConfig},
       {NoTransfer, FreeLine, OpenPortOrTidyUp, Hourglass}, Modal(to.Properties)},
      {Command::PropertiesButton, {nullptr, &from[Tool1::Properties]},
       {NoTransfer, FreeLine, Hourglass}, Modeless(to.Properties)},
      {Command::CurrentLoop, {&from.MnuCurrentLoop, &from[Tool1::CurrentLoop]},
       {NoTransfer, FreeLine, OpenPort}, Modal(to.CurrentLoop)},
      {Command::PositionLoop, {&from.mnuPositionLoop},
       {NoTransfer, FreeLine, ForgetClosing, OpenPort, NoOtherWindow},
       Modal(to.PositionLoop), position},
      {Command::PositionLoopButton, {nullptr, &from[Tool1::PositionLoop]},
       {NoTransfer, FreeLine, Hourglass, ForgetClosing, OpenPort, NoOtherWindow},
       Modal(to.PositionLoop), position},
      {Command::ReadFromDrive, {&from.ReadFromDrive},
       {NoTransfer, FreeLine}, Call(to.ReadFromDrive)},
      {Command::Download, {&from.mnuDownloadToDrive},
       {NoTransfer, FreeLine, NoOtherWindow}, Call(to.DownloadToDrive), table},
      {Command::Reset, {&from.mnuReset},
       {NoTransfer, FreeLine, NoOtherWindow}, Call(to.ResetDrive), table},
      {Command::Parameters, {&from.ParaDataLib},
       {NoTransfer, FreeLine, NoOtherWindow}, Modeless(to.ParametersGrid), grid},
      {Command::Scope, {&from.mnuScope, &from[Tool1::Scope]},
       {NoTransfer, OpenPort, NoOtherWindow, FreeLine}, Modal(to.Scope), scope},
      {Command::ErrorLog, {&from.ErrCheck, &from[Tool1::ErrorLog]},
       {NoTransfer, FreeLine, OpenPort, NoOtherWindow}, Modal(to.ErrorLog), errorLog},
      {Command::BenchVelocityLoop, {},
       {NoTransfer, FreeLine, ForgetClosing, OpenPort, NoOtherWindow},
       Modal(to.VelocityLoop), velocity},
      {Command::BenchReadFromDrive, {}, {NoTransfer, FreeLine, OpenPort}, Call(to.ReadFromDrive)},
      {Command::BenchTestConsole, {}, {NoTransfer, OpenPort}, Modeless(to.TestConsole)},
  };
  // clang-format on
}

Commands::Starter Commands::Modal(Window* window) {
  return [this, window](std::function<void()> afterwards) {
    Opening(*window, [&] { world_.ShowModal(*window, std::move(afterwards)); });
  };
}

Commands::Starter Commands::Modeless(Window* window) {
  return [this, window](const std::function<void()>& afterwards) {
    Opening(*window, [&] { world_.Show(*window); });
    if (afterwards) afterwards();
  };
}

// Some windows read the drive for seconds while they load.
void Commands::Opening(const Window& window, const std::function<void()>& show) {
  const ActivityScope activity(main_, "Opening " + window.Caption);
  const MousePointer before = std::exchange(main_.Pointer, MousePointer::Hourglass);
  show();
  if (main_.Pointer == MousePointer::Hourglass && !waiting_) main_.Pointer = before;
}

Commands::Starter Commands::Call(std::function<void()> routine) {
  return [routine = std::move(routine)](const std::function<void()>& afterwards) {
    routine();
    if (afterwards) afterwards();
  };
}

void Commands::Run(Command name) {
  const auto row = std::find_if(rows_.begin(), rows_.end(),
                                [name](const Row& candidate) { return candidate.Name == name; });
  std::function<void()> afterwards;
  for (const Step step : row->Steps) {
    if (step == Step::Hourglass) {
      main_.Pointer = MousePointer::Hourglass;
      afterwards = [this] { main_.Pointer = MousePointer::Default; };
    } else if (!Take(step, *row)) {
      if (afterwards) afterwards();
      return;
    }
  }
  if (row->Windows.Holds) shell_.ChildWindowOpen = true;
  row->Start(std::move(afterwards));
}

bool Commands::Take(Step step, const Row& row) {
  switch (step) {
    case Step::NoTransfer:
      return !shell_.BulkTransferRunning;
    case Step::FreeLine:
      if (!routes_.LineInUse()) return true;
      WaitForLine(row.Name);
      return false;
    case Step::OpenPort:
      return CommunicationTest();
    case Step::OpenPortOrTidyUp:
      if (CommunicationTest()) return true;
      main_.Pointer = MousePointer::Default;
      world_.Unload(*routes_.Waiting);
      return false;
    case Step::NoOtherWindow:
      return ExclusionTest(row.Windows);
    case Step::ForgetClosing:
      routes_.ForgetClosingPositionWindow();
      return true;
    case Step::Hourglass:
      break;
  }
  return true;
}

bool Commands::CommunicationTest() {
  if (world_.IsPortOpen()) return true;
  main_.TellTrouble("No port is open. Choose Drive, Connect.");
  world_.ShowMessage(LostLinkMessage());
  return false;
}

bool Commands::ExclusionTest(const Exclusion& windows) {
  if (!shell_.ChildWindowOpen) return true;
  if (!windows.OwnMark || !shell_[*windows.OwnMark]) {
    world_.ShowMessage({windows.Refusal, MainTitle, MessageButtons::Ok, windows.Icon});
  } else if (windows.WhenOpen) {
    windows.WhenOpen();
  }
  return false;
}

void Commands::WaitForLine(Command name) {
  waiting_ = name;
  main_.Pointer = MousePointer::Hourglass;
  main_.ShowActivity("Waiting: a value is on its way");
  main_.LineWatch.Start();
}

void Commands::LineWatch_Timer() {
  const bool open = world_.IsPortOpen();
  if (open && routes_.LineInUse()) return;
  main_.LineWatch.Stop();
  main_.Pointer = MousePointer::Default;
  main_.EndActivity();
  const std::optional<Command> name = std::exchange(waiting_, {});
  // What has opened meanwhile has the user's attention.
  if (name && open && world_.ModalWindow() == nullptr) Run(*name);
}

void Commands::CloseFile() {
  main_.mnuFileClose.Enabled = false;
  main_.CurrentConfigFile.clear();
  main_.ShowBaseCaption();
}

// It changes the scope, whoever owns that.
// NOLINTNEXTLINE(readability-make-member-function-const)
void Commands::StartOrStopScope() {
  if (routes_.ScopeCycle->Enabled()) {
    routes_.ScopeCycle->Stop();
  } else {
    routes_.ScopeCycle->Start();
  }
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

}  // namespace gainsmith
