// The command line of kvt518-sim.
#include "simulator/sim_options.h"

#include <gtest/gtest.h>

namespace gainsmith::sim {
namespace {

TEST(SimOptions, BothSpellingsOfEveryOption) {
  std::string problem;
  const auto options =
      ParseOptions({"--address", "63", "--baud=9600", "--seed", "4294967295", "--eeprom=a b",
                    "--link", "bench/COM3", "--fault", "drop-nth:4", "--fault=silent:@2", "--motor",
                    "heavy-load", "--set", "friction=0.5", "--quiet"},
                   problem);
  ASSERT_TRUE(options) << problem;
  EXPECT_EQ(options->Drive.Address, 63);
  EXPECT_EQ(options->Drive.Baud, 9600);
  EXPECT_FALSE(options->FollowHostBaud);
  EXPECT_EQ(options->Drive.Seed, 4294967295U);
  EXPECT_EQ(options->Drive.EepromPath, "a b");
  EXPECT_EQ(options->LinkPath, "bench/COM3");
  EXPECT_EQ(options->Drive.Motor.Name, "heavy-load");
  EXPECT_EQ(options->Drive.Motor.CoulombNm, 0.5);
  EXPECT_TRUE(options->Quiet);
  ASSERT_EQ(options->Faults.size(), 2U);
  EXPECT_EQ(options->Faults[0].Kind, Fault::DropNth);
  EXPECT_EQ(options->Faults[1].When.N, 2);
  EXPECT_TRUE(ParseOptions({"--help"}, problem)->Help);
}

TEST(SimOptions, RefusesWhatItDoesNotUnderstandByName) {
  const struct {
    std::vector<std::string> Arguments;
    const char* Problem;
  } cases[] = {
      {{"--frobnicate", "1"}, "unknown option --frobnicate"},
      {{"--address", "248"}, "--address does not take \"248\""},
      {{"--seed=1x"}, "--seed does not take \"1x\""},
      {{"--fault", "silence"}, "--fault does not take \"silence\""},
      {{"--motor", "warp"}, "--motor does not take \"warp\""},
      {{"--set", "friction"}, "--set does not take \"friction\""},
      {{"--link"}, "--link does not take \"\""},
  };
  for (const auto& test : cases) {
    std::string problem;
    EXPECT_FALSE(ParseOptions(test.Arguments, problem));
    EXPECT_EQ(problem, test.Problem);
  }
}

}  // namespace
}  // namespace gainsmith::sim
