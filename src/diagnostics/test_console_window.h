// Form110, "110": a bench console that watches five locations of the drive.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "link/link.h"
#include "platform/world.h"

namespace gainsmith {

struct Form110 : Window {
  Form110(World& world, Link& link);

  static constexpr std::size_t WatchCount = 5;
  // Bytes of the checksum's array.
  static constexpr std::size_t AccBytes = 1301;
  using AccArray = std::array<std::uint8_t, AccBytes>;

  // Location n of the five; at load the number of its register.
  std::array<TextBox, WatchCount> Text1;
  Button Command1, Command2;
  Timer Timer1;

  // Checksum of the last file that Command2 could read; nothing shows it.
  std::optional<Crc16> AccChecksum;

  void Form_Load() override;
  // Starts and stops the watching by its caption: "Ok?" starts, anything else stops.
  void Command1_Click();
  // Runs the checksum over the numbers of the file ACCTxt in the program's directory.
  void Command2_Click();
  // Reads the five locations; the first that fails ends the tick with a message. With the port
  // closed it stops the watching.
  void Timer1_Timer();

  // The numbers of `text` (0 to 255, apart by blanks, commas or line ends) but for the last two,
  // with zeros behind them. Nothing for a text with anything else in it, with no number, or with
  // more than 1301.
  static std::optional<AccArray> ReadAccNumbers(std::string_view text);

 private:
  void Design();
  void StopWatching();

  World& world_;
  Link& link_;
};

}  // namespace gainsmith
