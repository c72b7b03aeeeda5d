// Bench: the whole tool in the virtual world, with the simulated drive behind COM1. A test reads
// like an hour at the bench.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "app/tool.h"
#include "params/drive_flags.h"
#include "params/parameter_table.h"
#include "support/messages.h"
#include "support/virtual_user.h"

namespace gainsmith::test {

struct Bench {
  explicit Bench(sim::DriveOptions options = {}, Edition edition = Edition::Standard)
      : device(std::move(options)), tool(world, edition) {
    world.Devices[1] = &device;
    std::ifstream factory(DEFAULT_INI, std::ios::binary);
    world.Files["/program/default.ini"].assign(std::istreambuf_iterator<char>(factory), {});
    tool.Start();
  }
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  // Drive, Connect, Open: returns when the settings have come in, or not.
  void Connect() {
    user.Click(tool.mdiForm1.mnuConnect);
    user.Click(tool.form2.openPort);
  }

  Texts TakeFrames() { return world.TakeFrames(); }
  Texts TakeMessages() { return world.TakeMessages(); }

  // The line as new, the cable in its place.
  void Repair() {
    device.Drive.ClearFaults();
    if (device.Drive.HungUp()) device.Drive.Reconnect();
  }
  // No transfer under way, and no mark of one left.
  void ExpectAtRest() {
    EXPECT_FALSE(tool.shell.BulkTransferRunning);
    EXPECT_FALSE(tool.waiting.Loaded);
    EXPECT_EQ(tool.mdiForm1.lblActivity.Caption, "");
    EXPECT_EQ(world.ScreenPointer, MousePointer::Default);
    EXPECT_TRUE(tool.form2.openPort.Enabled);
  }

  // Each setting of the table is one word with the drive's register.
  void ExpectSettingsInTheDrive() {
    for (const Slot slot : WriteOrder()) {
      const ParameterRow& row = RowOf(slot);
      const bool flags = row.Source == Register::Flags;
      const float value =
          flags ? FlagsToSend(tool.parameters) : ValueToRaw(slot, tool.parameters[slot]);
      const auto reg = static_cast<std::size_t>(row.Source);
      EXPECT_EQ(PackWord(value), device.Drive.Registers().Values[reg]) << row.Name;
    }
  }

  VirtualWorld world;
  VirtualUser user{world};
  DriveDevice device;
  Tool tool;
};

}  // namespace gainsmith::test
