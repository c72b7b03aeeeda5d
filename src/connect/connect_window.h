// Form2, "Connect to Drive": where a connection begins and ends.
//
// Its room stands above the store's and the shell's, as its Open action ends in the read of all
// settings.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "link/link.h"
#include "params/bulk_transfer.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "shell/main_window.h"
#include "shell/shell_state.h"

namespace gainsmith {

struct Form2 : Window {
  Form2(World& world, Link& link, ParameterStore& store, ShellState& shell, MDIForm1& main,
        BulkTransfer& transfer);

  // Indices of Combo1.
  enum : std::size_t { PortList = 0, BaudList = 1, DeviceList = 2 };

  Label Label3;
  // Beside the port and the line speed; Label2 beside the device number.
  std::array<Label, 2> Label1;
  Label Label2;
  std::array<ComboBox, 3> Combo1;
  Button openPort, Command1;

  // What the drive gave for its two identity registers at the last connection, in decimal. Kept
  // and never shown.
  std::string FirstIdentity, SecondIdentity;

  // Fills the lists. With the port closed it chooses COM1, 38400 baud and device 1, with the effect
  // of a choice; with the port open it shows what is in force, and changes nothing.
  void Form_Load() override;
  // Takes the chosen entry of a list into the link's state. While a bulk transfer runs the device
  // number stays, and its list shows it again.
  void Combo1_Click(std::size_t index);
  // Opens the connection with what the lists show, or closes it. Opening waits for the drive, hides
  // the window and reads all settings; a failure before that leaves the port closed and the window
  // open. While a bulk transfer runs there is no opening; closing ends the transfer.
  void openPort_Click();
  void Command1_Click();

 private:
  void Design();
  void ShowAction(const char* caption);
  void FillLists();
  void DescribePorts();
  void TakeChoices();
  void TakeDevice();
  void Open();
  void Close();
  void TellReason();
  void ReportFailure();
  // Opens the port and reads the drive's three first registers. False when that failed.
  bool MakeContact();
  bool ReadIdentity(Register reg, std::string& text);
  void ApplyOperatingMode();
  // The open connection in words, with the device number in force.
  [[nodiscard]] std::string PortText() const;

  World& world_;
  Link& link_;
  ParameterStore& store_;
  ShellState& shell_;
  MDIForm1& main_;
  BulkTransfer& transfer_;
  // Port, device behind it and line speed of the open connection, in words.
  std::string openedAs_;
  // Entries of the port and line speed lists that it was opened with.
  int openedPort_ = 0;
  int openedBaud_ = 0;
};

}  // namespace gainsmith
