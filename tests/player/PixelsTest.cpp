// Pixels of every form, decoded one by one by hand.

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "player/Pixels.h"

namespace player {
namespace {

using enum PixelForm;

std::string bytesOf(const std::vector<int> &values) {
  std::string bytes;
  for (const int value : values) bytes += static_cast<char>(value);
  return bytes;
}

std::string swapped(std::string bytes) {
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  return bytes;
}

// Two pixels by two, 565: red, green, blue, and one of every part.
const std::string kFour = bytesOf({0x00, 0xF8, 0xE0, 0x07, 0x1F, 0x00, 0x21, 0x08});
const std::string kFourRgb = bytesOf({255, 0, 0, 0, 255, 0, 0, 0, 255, 8, 4, 8});

TEST(Pixels, Of565AreWidenedSoThatFullStaysFull) {
  EXPECT_EQ(decodedSlot(kFour, {1, 2, 2}), (Picture{2, 2, kFourRgb}));
  EXPECT_EQ(decodedSlot(swapped(kFour), {1, 2, 2, Rgb565Swapped}), (Picture{2, 2, kFourRgb}));
}

TEST(Pixels, OfRowsWithAGapAreFoundAtTheirRows) {
  const std::string bytes = kFour.substr(0, 4) + "gap." + kFour.substr(4) + "gap.";
  EXPECT_EQ(decodedSlot(bytes, {1, 2, 2, Rgb565, 8}), (Picture{2, 2, kFourRgb}));
}

TEST(Pixels, OfATurnedPictureStandUpright) {
  // Three wide and two high; stored are three rows of two, the first of them the right column.
  const std::string stored =
      bytesOf({0xF8, 0x00, 0x07, 0xE0, 0x00, 0x1F, 0xFF, 0xFF, 0x00, 0x00, 0x08, 0x21});
  EXPECT_EQ(decodedSlot(stored, {1, 3, 2, Rgb565Turned}).rgb,
            bytesOf({0, 0, 0, 0, 0, 255, 255, 0, 0, 8, 4, 8, 255, 255, 255, 0, 255, 0}));
}

TEST(Pixels, Of555HaveFiveBitsEach) {
  EXPECT_EQ(decodedSlot(bytesOf({0x00, 0x7C, 0xE0, 0x83, 0x1F, 0x00, 0x21, 0x04}), {1, 4, 1, Rgb555}).rgb,
            bytesOf({255, 0, 0, 0, 255, 0, 0, 0, 255, 8, 8, 8}));
}

TEST(Pixels, OfQuartersAreTopLeftBottomLeftTopRightBottomRight) {
  // Sixteen pixels whose blue part is their place in the file.
  std::string bytes;
  for (int i = 0; i < 16; ++i) bytes += bytesOf({i, 0});
  const Picture picture = decodedSlot(bytes, {1, 4, 4, Rgb555Quarters});
  std::vector<int> places;
  for (size_t at = 2; at < picture.rgb.size(); at += 3)
    places.push_back(static_cast<unsigned char>(picture.rgb[at]) >> 3);
  EXPECT_EQ(places, (std::vector<int>{0, 2, 8, 10, 1, 3, 9, 11, 4, 6, 12, 14, 5, 7, 13, 15}));
}

TEST(Pixels, OfUyvyHaveTheOddRowsBehindTheEvenOnes) {
  // Four rows of two pixels: white, black, and two greys that two pixels share the colour of.
  const std::string bytes =
      bytesOf({128, 235, 128, 16, 128, 126, 128, 126, 90, 81, 240, 81, 128, 16, 128, 235});
  const Picture picture = decodedSlot(bytes, {1, 2, 4, Uyvy});
  const auto row = [&](size_t y) { return picture.rgb.substr(6 * y, 6); };
  EXPECT_EQ(row(0), bytesOf({255, 255, 255, 0, 0, 0}));
  EXPECT_EQ(row(1), bytesOf({254, 0, 0, 254, 0, 0}));
  EXPECT_EQ(row(2), bytesOf({128, 128, 128, 128, 128, 128}));
  EXPECT_EQ(row(3), bytesOf({0, 0, 0, 255, 255, 255}));
}

TEST(Pixels, OfI420ShareTheirColourByFour) {
  const std::string bytes = bytesOf({235, 16, 126, 81, 128, 128});
  const Picture grey = decodedSlot(bytes, {1, 2, 2, I420});
  EXPECT_EQ(grey.rgb, bytesOf({255, 255, 255, 0, 0, 0, 128, 128, 128, 76, 76, 76}));
  const Picture red = decodedSlot(bytesOf({81, 81, 81, 81, 90, 240}), {1, 2, 2, I420});
  EXPECT_EQ(red.rgb, bytesOf({254, 0, 0, 254, 0, 0, 254, 0, 0, 254, 0, 0}));
}

TEST(Pixels, SlotThatIsTooShortIsNoPicture) {
  for (size_t size = 0; size < kFour.size(); ++size)
    EXPECT_EQ(decodedSlot(std::string_view(kFour).substr(0, size), {1, 2, 2}), Picture());
  EXPECT_EQ(decodedSlot(kFour, {1, 2, 2, Jpeg}), Picture());
  EXPECT_EQ(decodedSlot(kFour, {1, 0, 2}), Picture());
}

// A picture whose pixels name their row and column.
Picture grid(uint32_t width, uint32_t height) {
  Picture picture{width, height, {}};
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x)
      picture.rgb += bytesOf({static_cast<int>(y), static_cast<int>(x), 0});
  }
  return picture;
}

// The first row and column, and how many there are.
std::vector<int> seen(uint32_t width, uint32_t height, const VisiblePart &part) {
  const Picture picture = visiblePart(grid(width, height), part);
  EXPECT_EQ(picture.rgb.size(), 3 * picture.width * picture.height);
  return {static_cast<unsigned char>(picture.rgb[0]), static_cast<unsigned char>(picture.rgb[1]),
          static_cast<int>(picture.height), static_cast<int>(picture.width)};
}

TEST(VisiblePartOfASlot, LeavesOutTheBarsOfAPaddedPicture) {
  EXPECT_EQ(seen(200, 200, {9, 0, 191, 200}), (std::vector<int>{9, 0, 182, 200}));
  EXPECT_EQ(seen(100, 100, {0, 20, 100, 80}), (std::vector<int>{0, 20, 100, 60}));
}

TEST(VisiblePartOfASlot, PixelLostInRoundingIsSeen) {
  EXPECT_EQ(seen(100, 100, {4, 0, 95, 100}), (std::vector<int>{4, 0, 92, 100}));
}

TEST(VisiblePartOfASlot, SmallerPictureStandsAtTheTopLeft) {
  EXPECT_EQ(seen(56, 55, {0, 0, 52, 43}), (std::vector<int>{0, 0, 52, 43}));
}

TEST(VisiblePartOfASlot, SizesThatCannotBeShowAll) {
  const std::vector<int> all = {0, 0, 10, 12};
  EXPECT_EQ(seen(12, 10, {0, 0, 0, 0}), all);
  EXPECT_EQ(seen(12, 10, {-3, -3, 7, 7}), all);
  EXPECT_EQ(seen(12, 10, {0, 0, 60000, 60000}), all);
  EXPECT_EQ(seen(12, 10, {5, 6, 5, 6}), all);
  EXPECT_EQ(seen(12, 10, {32767, 32767, 65535, 65535}), all);
  EXPECT_EQ(seen(12, 10, {9, 11, 2, 2}), all);
}

TEST(JpegInASlot, ReachesFromItsFirstMarkToItsLast) {
  const std::string jpeg = "\xFF\xD8 picture \xFF\xD9";
  EXPECT_EQ(jpegIn("xx" + jpeg + std::string(9, '\0')), jpeg);
  EXPECT_EQ(jpegIn("\xFF\xD8 no end"), "");
  EXPECT_EQ(jpegIn("\xFF\xD9\xFF\xD8"), "");
  EXPECT_EQ(jpegIn(""), "");
}

}  // namespace
}  // namespace player
