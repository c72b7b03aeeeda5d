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
#include "support/virtual_user.h"

namespace gainsmith::test {

struct Bench {
  using Texts = std::vector<std::string>;

  explicit Bench(sim::DriveOptions options = {}, Edition edition = Edition::Standard)
      : device(std::move(options)), tool(world, edition) {
    world.Devices[1] = &device;
    std::ifstream factory(DEFAULT_INI, std::ios::binary);
    world.Files["/program/default.ini"] =
        std::string(std::istreambuf_iterator<char>(factory), std::istreambuf_iterator<char>());
    tool.Start();
  }
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  // Drive, Connect, Open: returns when the settings have come in, or not.
  void Connect() {
    user.Click(tool.mdiForm1.mnuConnect);
    user.Click(tool.form2.openPort);
  }

  // Frames sent since the last call.
  Texts TakeFrames() {
    Texts frames = world.Log.Texts();
    world.Log.Clear();
    return frames;
  }
  // Texts of the messages shown since the last call.
  Texts TakeMessages() {
    Texts texts;
    for (const Message& message : world.Messages) texts.push_back(message.Text);
    world.Messages.clear();
    return texts;
  }

  VirtualWorld world;
  VirtualUser user{world};
  DriveDevice device;
  Tool tool;
};

inline constexpr const char* LostLink =
    "Unable to communicate with the connected drive. Check your connection";

}  // namespace gainsmith::test
