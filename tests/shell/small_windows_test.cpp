// The waiting window, the progress flash and the About box.
#include <gtest/gtest.h>

#include "shell/about_window.h"
#include "shell/progress_window.h"
#include "shell/waiting_window.h"
#include "support/virtual_user.h"

namespace gainsmith::test {
namespace {

TEST(WaitingWindow, ARowOfDotsGrowsAndStartsAgainAfterTen) {
  VirtualWorld world;
  const ShellState shell;
  frmWaitingMessage waiting(world, shell);
  waiting.ShowWaitingMessage("Resetting Drive");
  EXPECT_EQ(waiting.Caption, "Resetting Drive");
  world.RunFor(10 * 500);
  EXPECT_EQ(waiting.lblDots.Caption, "..........");
  world.RunFor(500);
  EXPECT_EQ(waiting.lblDots.Caption, "");
  world.RunFor(500);

  waiting.CloseWaitingMessage();
  EXPECT_FALSE(waiting.Visible);
  waiting.ShowWaitingMessage("Downloading New Settings to Drive");
  EXPECT_EQ(waiting.lblDots.Caption, "");
}

TEST(ProgressFlash, RunsToTheEndByItselfAndGoes) {
  VirtualWorld world;
  ShellState shell;
  Form9 flash(world, shell);
  world.Show(flash);
  world.RunFor(8);
  EXPECT_TRUE(flash.Visible);
  world.RunFor(2);
  EXPECT_FALSE(flash.Loaded);
  EXPECT_EQ(flash.Label1.Caption, "100%");
  EXPECT_EQ(flash.ProgressBar1.Value, 2500);
  EXPECT_EQ(world.Repaints, 101);
}

TEST(AboutBox, CarriesThePresentYearAndTwoLinks) {
  VirtualWorld world;
  VirtualUser user(world);
  Dialog about(world);
  world.Show(about);
  EXPECT_NE(about.Label2.Caption.find("2026"), std::string::npos);
  about.lblTorvaneWebLink.OnClick();
  about.lblTorvaneUSAWebLink.OnClick();
  EXPECT_EQ(world.Documents,
            (std::vector<std::string>{"http://www.torvane.example", "http://usa.torvane.example"}));
  user.Click(about.Command1);
  EXPECT_FALSE(about.Loaded);
}

}  // namespace
}  // namespace gainsmith::test
