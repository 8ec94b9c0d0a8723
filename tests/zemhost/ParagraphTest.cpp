#include <gtest/gtest.h>
#include <string>

#include "zemhost/output/Paragraph.h"

namespace zemhost {
namespace {

TEST(BrokenText, LinesEndBetweenWordsWithinTheWidth) {
  EXPECT_EQ(brokenText("one two three", 13), "one two three");
  EXPECT_EQ(brokenText("one two three", 12), "one two\nthree");
  EXPECT_EQ(brokenText("one two three", 7), "one two\nthree");
  EXPECT_EQ(brokenText("one two three", 6), "one\ntwo\nthree");
  EXPECT_EQ(brokenText("", 5), "");
}

TEST(BrokenText, FollowingLinesAreIndentedWithinTheWidth) {
  EXPECT_EQ(brokenText("- one two three four", 10, 2), "- one two\n  three\n  four");
  EXPECT_EQ(brokenText("- one two three four", 12, 2), "- one two\n  three four");
}

TEST(BrokenText, WordWiderThanALineStaysWhole) {
  EXPECT_EQ(brokenText("a /media/ann/IPOD b", 8), "a\n/media/ann/IPOD\nb");
  EXPECT_EQ(brokenText("/media/ann/IPOD", 8), "/media/ann/IPOD");
}

TEST(BrokenText, BlanksWithinALineStay) {
  EXPECT_EQ(brokenText("Files     28 of 29", 18), "Files     28 of 29");
  EXPECT_EQ(brokenText("Files     28 of 29", 15, 10), "Files     28 of\n          29");
  EXPECT_EQ(brokenText("  x y", 9), "  x y");
}

TEST(BrokenText, WidthIsThatOfCellsAndNotOfBytes) {
  EXPECT_EQ(brokenText("雨の é", 6), "雨の é");
  EXPECT_EQ(brokenText("雨の é", 5), "雨の\né");
}

}  // namespace
}  // namespace zemhost
