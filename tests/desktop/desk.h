// Desk: a desktop world in a directory of its own and someone who works its windows.
#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <string>
#include <vector>

#include "desktop/desktop_world.h"
#include "driver/desktop_driver.h"

namespace gainsmith::test {

using Lines = std::vector<std::string>;

// A window for a test to fill; keeps a log of what its handlers saw.
struct PlainWindow : Window {
  explicit PlainWindow(std::string name) {
    Name = std::move(name);
    Caption = "Plain";
    ClientWidthTwips = 6000;
    ClientHeightTwips = 4500;
  }
  void Form_Load() override {
    if (OnLoad) OnLoad();
  }
  bool Form_Unload() override { return !OnUnload || OnUnload(); }
  std::function<void()> OnLoad;
  std::function<bool()> OnUnload;
};

class Desk : public testing::Test {
 protected:
  void WaitMs(std::int64_t ms) {
    const std::int64_t deadlineMs = world.NowMs() + ms;
    while (!world.Ended() && world.NowMs() <= deadlineMs) world.PumpEvents(deadlineMs);
  }
  void Show() {
    world.Show(window);
    driver.Settle();
  }
  void Click(const std::string& name) {
    driver.Click(name);
    driver.Settle();
  }
  void Press(const std::string& name) {
    driver.Press(name);
    driver.Settle();
  }
  void Key(const std::string& name, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    driver.Key(name, key, modifiers);
    driver.Settle();
  }
  std::string Path(const std::string& name) { return directory.path().toStdString() + "/" + name; }

  QTemporaryDir directory;
  Lines log;
  // Outlives the world, whose widgets show it.
  PlainWindow window{"Form"};
  DesktopWorld world{directory.path().toStdString()};
  DesktopDriver driver{world};
};

}  // namespace gainsmith::test
