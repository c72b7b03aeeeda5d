// Label texts: each is worked out from its printed neighbour, and the letter of that shows.
#include "trace/axis_labels.h"

#include <gtest/gtest.h>

namespace gainsmith {
namespace {

TEST(AxisLabels, ColumnsOfTheWholeTrace) {
  EXPECT_EQ(LadderTexts(2, 0.4, 3, 0.4),
            (AxisTexts{"-2.000", "-1.600", "-1.200", "-0.800", "-0.400", "0", "0.400", "0.800",
                       "1.200", "1.600", "2.000"}));
  // A division of 4 A takes the label of -2 rpm for the middle, once, and the sum goes on from 0.
  EXPECT_EQ(LadderTexts(10, 2, 0, 4),
            (AxisTexts{"-10", "-8", "-6", "-4", "0", "2", "4", "6", "8", "10", "10"}));
  EXPECT_EQ(TimeTexts(2000), (AxisTexts{"0", "200", "400", "600", "800", "1000", "1200", "1400",
                                        "1600", "1800", "2000"}));
}

TEST(AxisLabels, ZoomedCurrentHasThreeDecimalsThenFive) {
  EXPECT_EQ(ZoomedCurrentTexts(1000, 80, 1),
            (AxisTexts{"0.200", "0.280", "0.360", "0.440", "0.520", "0.600", "0.680", "0.760",
                       "0.840", "0.920", "1.000"}));
  // From the printed top: 0.3333 prints 0.333 and all others follow it.
  EXPECT_EQ(ZoomedCurrentTexts(333.3F, 0.4F, 2)[0], "0.333");
  EXPECT_EQ(ZoomedCurrentTexts(333.3F, 0.4F, 3)[0], "0.32930");
  // Half a step is a tie and goes to the even neighbour.
  EXPECT_EQ(ZoomedCurrentTexts(-2998, 0.5F, 2)[9], "-2.998");
}

TEST(AxisLabels, ZoomedTimeIsInWholeMilliseconds) {
  EXPECT_EQ(ZoomedTimeTexts(31, 20, 50), (AxisTexts{"310", "360", "410", "460", "510", "560", "610",
                                                    "660", "710", "760", "810"}));
  EXPECT_EQ(ZoomedTimeTexts(5, 1, 1)[0], "2");      // 2.5 to even
  EXPECT_EQ(ZoomedTimeTexts(6, 1, 0.1F)[10], "3");  // a tenth never adds up
}

TEST(AxisLabels, RightHandColumnsStandBetweenAsterisks) {
  EXPECT_EQ(ZoomedStarTexts(127, 20, 1),
            (AxisTexts{"*-73*", "*-53*", "*-33*", "*-13*", "*7*", "*27*", "*47*", "*67*", "*87*",
                       "*107*", "*127*"}));
  // Level 1 prints whole numbers, and a division of 0.4 gets lost in them; level 2 has a decimal.
  EXPECT_EQ(ZoomedStarTexts(12, 0.4F, 1)[0], "*12*");
  EXPECT_EQ(ZoomedStarTexts(12, 0.4F, 2)[0], "*8.0*");
  EXPECT_EQ(ZoomedStarTexts(0.25F, 0.25F, 14)[9], "*0.0000000000000*");
}

}  // namespace
}  // namespace gainsmith
