// The waiting window.
#include "shell/waiting_window.h"

#include <gtest/gtest.h>

#include "support/virtual_world.h"

namespace gainsmith::test {
namespace {

TEST(WaitingWindow, ARowOfDotsGrowsAndStartsAgainAfterTen) {
  VirtualWorld world;
  const ShellState shell;
  frmWaitingMessage waiting(world, shell);
  waiting.ShowWaitingMessage("Resetting Drive");
  world.RunFor(10 * 500);
  EXPECT_EQ(waiting.lblDots.Caption, "..........");
  world.RunFor(500);
  EXPECT_EQ(waiting.lblDots.Caption, "");
  world.RunFor(500);

  waiting.CloseWaitingMessage();
  waiting.ShowWaitingMessage("Downloading New Settings to Drive");
  EXPECT_EQ(waiting.lblDots.Caption, "");
}

}  // namespace
}  // namespace gainsmith::test
