// Tool: the whole program but its world. Owns every window and all process-wide state.
#pragma once

#include <optional>

#include "app/bench_menu.h"
#include "app/drive_watch.h"
#include "connect/connect_window.h"
#include "diagnostics/error_log_window.h"
#include "diagnostics/test_console_window.h"
#include "link/link.h"
#include "params/bulk_transfer.h"
#include "params/config_file.h"
#include "params/drive_commands.h"
#include "params/drive_page.h"
#include "params/grid_window.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "properties/properties_window.h"
#include "shell/about_window.h"
#include "shell/commands.h"
#include "shell/main_window.h"
#include "shell/progress_window.h"
#include "shell/shell_state.h"
#include "shell/trouble_window.h"
#include "shell/waiting_window.h"
#include "trace/scope_window.h"
#include "trace/trace_state.h"
#include "tuning/current_loop_window.h"
#include "tuning/position_window.h"
#include "tuning/velocity_window.h"

namespace gainsmith {

// The tool itself, and the same with the service bench's menu.
enum class Edition { Standard, ServiceBench };

// Made once by a program, and as often as it likes by a test. Everything in it lives as long as it
// does; nothing is freed by hand.
struct Tool {
  // `world` outlives the tool.
  explicit Tool(World& world, Edition edition = Edition::Standard);
  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;

  // Shows the main window. No port is opened and no file is read: work begins with Drive, Connect.
  void Start();

  // --- Process-wide state.
  ShellState shell;
  Link link;
  ParameterStore parameters;
  TraceState trace;

  // --- Shell.
  MDIForm1 mdiForm1;
  frmWaitingMessage waiting;
  Form9 form9;
  Dialog dialog;
  frmTroubles troubles;

  // --- Bulk operations.
  BulkTransfer transfer;
  ConfigFiles files;
  DriveCommands driveCommands;

  // --- Windows.
  Form2 form2;
  Form1 form1;
  Form3 form3;
  Form4 form4;
  Form5 form5;
  Form110 form110;
  Form8 form8;
  sysConfigFrm sysConfig;
  velocityModeTune velocityMode;

  Commands commands;
  // What the main window says of the drive.
  DriveWatch watch;
  DrivePage page;
  // Present in the service bench's edition only.
  std::optional<BenchMenu> benchMenu;

 private:
  Routes MakeRoutes();
  [[nodiscard]] DriveWatch::Hands HandsOnMotor() const;

  World& world_;
};

}  // namespace gainsmith
