// StoreBench: the tool as far as the File and Drive menus reach without a tuning window, with a
// simulated drive behind COM1 and an engineer at the screen.
#pragma once

#include "connect/connect_window.h"
#include "link/link.h"
#include "params/bulk_transfer.h"
#include "params/config_file.h"
#include "params/drive_commands.h"
#include "shell/commands.h"
#include "shell/waiting_window.h"
#include "simulator/bank/registers.h"
#include "support/messages.h"
#include "support/virtual_user.h"
#include "support/virtual_world.h"

namespace gainsmith::test {

struct StoreBench {
  VirtualWorld World;
  VirtualUser User{World};
  DriveDevice Device;
  ShellState Shell;
  Link Line{World};
  ParameterStore Store;
  MDIForm1 Main{World, Shell};
  frmWaitingMessage Waiting{World, Shell};
  BulkTransfer Transfer{World, Line, Store, Shell, Main, Waiting};
  ConfigFiles Files{World, Store, Shell, Main, Waiting, Transfer};
  DriveCommands Drive{World, Shell, Main, Waiting, Transfer, Files};
  Form2 Connect{World, Line, Store, Shell, Main, Transfer};
  Commands Menu{World, Shell, Main, MakeRoutes()};

  StoreBench() {
    World.Devices[1] = &Device;
    World.Show(Main);
  }

  // Drive, Connect, Open, as the user does it; the log starts behind it.
  void ConnectDrive() {
    User.Click(Main.mnuConnect);
    User.Click(Connect.openPort);
    ASSERT_EQ(Connect.openPort.Caption, "Close");
    ASSERT_TRUE(Main.mnuFileOpen.Enabled);
    World.Log.Clear();
    World.Messages.clear();
    World.ScreenPointers.clear();
  }

  std::uint16_t& Register(int number) {
    return Device.Drive.Registers().Values[static_cast<std::size_t>(number)];
  }
  void Inject(sim::Fault fault, sim::Hits hits = sim::Hits::All()) {
    Device.Drive.Inject(fault, hits);
  }

  // The frames sent, each in hexadecimal: "010300FF0001B43A 010300310001D5C5".
  std::string HexFrames() const {
    constexpr const char* Digits = "0123456789ABCDEF";
    std::string hex;
    for (const LoggedFrame& frame : World.Log.Frames()) {
      if (!hex.empty()) hex += ' ';
      for (const std::uint8_t byte : frame.Bytes) {
        hex += Digits[byte / 16];
        hex += Digits[byte % 16];
      }
    }
    return hex;
  }

  Messages TakeMessages() { return test::TakeMessages(World); }

  // The file that the next file dialog gives.
  void Choose(const std::string& path) {
    World.ChosenFiles.push_back({ChosenFile::Outcome::Chosen, path});
  }

 private:
  Routes MakeRoutes() {
    Routes routes;
    routes.Connect = &Connect;
    routes.Waiting = &Waiting;
    routes.OpenConfigFile = [this] { Files.OpenConfigFile(); };
    routes.Save = [this] { Files.mnuSave_Click(); };
    routes.SaveAs = [this] { Files.SaveConfigAs(); };
    routes.DownloadToDrive = [this] { Drive.mnuDownloadToDrive_Click(); };
    routes.ResetDrive = [this] { Drive.mnuReset_Click(); };
    routes.ReadFromDrive = [this] { Drive.ReadFromDrive_Click(); };
    return routes;
  }
};

}  // namespace gainsmith::test
