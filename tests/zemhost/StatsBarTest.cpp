#include <gtest/gtest.h>

#include "zemhost/output/Bar.h"

namespace zemhost {
namespace {

TEST(StatsBar, IsRoundedToEighthsOfACell) {
  EXPECT_EQ(barText(1, 1, 3, BarStyle::Blocks), "███");
  EXPECT_EQ(barText(1, 2, 3, BarStyle::Blocks), "█▌");
  EXPECT_EQ(barText(1, 24, 3, BarStyle::Blocks), "▏");
  EXPECT_EQ(barText(7, 24, 3, BarStyle::Blocks), "▉");
  EXPECT_EQ(barText(8, 24, 3, BarStyle::Blocks), "█");
  EXPECT_EQ(barText(15, 240, 3, BarStyle::Blocks), "▎");  // 1.5 eighths
}

TEST(StatsBar, IsOfWholeCellsInAscii) {
  EXPECT_EQ(barText(1, 1, 4, BarStyle::Ascii), "####");
  EXPECT_EQ(barText(5, 8, 4, BarStyle::Ascii), "###");
  EXPECT_EQ(barText(4, 8, 4, BarStyle::Ascii), "##");
}

TEST(StatsBar, ShowsTheLeastValueAndNeverMoreThanItsWidth) {
  EXPECT_EQ(barText(1, UINT64_MAX, 3, BarStyle::Blocks), "▏");
  EXPECT_EQ(barText(1, UINT64_MAX, 3, BarStyle::Ascii), "#");
  EXPECT_EQ(barText(UINT64_MAX, UINT64_MAX, 2, BarStyle::Blocks), "██");
  EXPECT_EQ(barText(9, 3, 2, BarStyle::Ascii), "##");
  EXPECT_EQ(barText(0, 3, 2, BarStyle::Ascii), "");
  EXPECT_EQ(barText(0, 0, 2, BarStyle::Blocks), "");
}

}  // namespace
}  // namespace zemhost
