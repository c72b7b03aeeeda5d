// Commands: what the menus and the tool bar of the main window do, and when they may.
//
// Each command is a row of one table (shell/commands.cpp): what gives it, its steps in their order,
// and what it starts when it has taken them all. The steps differ from command to command: Download
// and Reset look at open windows and not at the port; the scope looks for a free line last, since
// its command also stops a cycle that runs. Connect, Exit and Help are no rows: they work at any
// time.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/world.h"
#include "shell/main_window.h"
#include "shell/shell_state.h"

namespace gainsmith {

// Where the commands lead. All windows outlive the commands.
struct Routes {
  Window* Connect = nullptr;
  Window* Properties = nullptr;
  Window* CurrentLoop = nullptr;
  Window* PositionLoop = nullptr;
  Window* VelocityLoop = nullptr;
  Window* Scope = nullptr;
  Window* ErrorLog = nullptr;
  Window* ParametersGrid = nullptr;
  Window* TestConsole = nullptr;
  Window* About = nullptr;
  Window* Waiting = nullptr;
  // The scope's capture cycle.
  Timer* ScopeCycle = nullptr;
  std::function<void()> OpenConfigFile;
  std::function<void()> Save;
  std::function<void()> SaveAs;
  std::function<void()> DownloadToDrive;
  std::function<void()> ResetDrive;
  std::function<void()> ReadFromDrive;
  // A handler is at work on the line.
  std::function<bool()> LineInUse = [] { return false; };
  // Clears the mark by which a closing position window ends its upload.
  std::function<void()> ForgetClosingPositionWindow;
};

enum class Command {
  OpenFile,
  SaveFile,
  SaveFileAs,
  CloseFile,
  // The menu item opens the window modal; the tool bar modeless and without a look at the port.
  Properties,
  PropertiesButton,
  CurrentLoop,
  PositionLoop,
  PositionLoopButton,
  ReadFromDrive,
  Download,
  Reset,
  Parameters,
  Scope,
  ErrorLog,
  // Reached from the service bench's menu only.
  BenchVelocityLoop,
  BenchReadFromDrive,
  BenchTestConsole,
};

class Commands {
 public:
  // Puts the handlers on the main window's items and buttons.
  Commands(World& world, ShellState& shell, MDIForm1& main, Routes routes);
  Commands(const Commands&) = delete;
  Commands& operator=(const Commands&) = delete;

  // Takes the command's steps, and starts it unless one of them ends it.
  void Run(Command name);

 private:
  // On the way of a command to its start.
  enum class Step {
    // Ends it without a word while a bulk transfer runs.
    NoTransfer,
    // For what reads the drive or writes to it. While a handler, perhaps of a window that is closed
    // by now, is at work on the line the command waits under the hourglass and is run anew then:
    // what it reads would be about to change. Of several that wait the newest runs.
    FreeLine,
    // The communication test: ends it with the message of a lost link when the port is closed.
    OpenPort,
    // The same, and the pointer and a waiting window left behind are put away.
    OpenPortOrTidyUp,
    // The exclusion test: ends it when another window holds the drive.
    NoOtherWindow,
    // The hourglass on the main window until the command has ended.
    Hourglass,
    // A closing position window no longer ends its upload.
    ForgetClosing,
  };
  // The exclusion test of a command, and what follows for the next one.
  struct Exclusion {
    const char* Refusal = "";
    MessageIcon Icon = MessageIcon::None;
    // What the command opens holds the drive.
    bool Holds = false;
    // The mark of its own window: while it is set WhenOpen runs, if there is one, and nothing is
    // said.
    std::optional<OpenMark> OwnMark = {};
    std::function<void()> WhenOpen = {};
  };
  // Starts what the command leads to; calls `afterwards`, which may be empty, when that has ended.
  using Starter = std::function<void(std::function<void()> afterwards)>;
  // What gives a command; the service bench's menu gives its own.
  struct Givers {
    MenuItem* Item = nullptr;
    ToolButton* Button = nullptr;
  };
  struct Row {
    Command Name;
    Givers From;
    std::vector<Step> Steps;
    Starter Start;
    Exclusion Windows = {};
  };

  std::vector<Row> Table();
  Starter Modal(Window* window);
  Starter Modeless(Window* window);
  // Shows a window, and meanwhile that it is being opened.
  void Opening(const Window& window, const std::function<void()>& show);
  static Starter Call(std::function<void()> routine);

  void RouteHelpMenu();
  // False: the step has ended the command.
  bool Take(Step step, const Row& row);
  bool CommunicationTest();
  bool ExclusionTest(const Exclusion& windows);
  void WaitForLine(Command name);
  void LineWatch_Timer();
  void CloseFile();
  void StartOrStopScope();

  World& world_;
  ShellState& shell_;
  MDIForm1& main_;
  Routes routes_;
  const std::vector<Row> rows_;
  // The command that waits for the line.
  std::optional<Command> waiting_;
};

}  // namespace gainsmith
