// Which form a picture has: by its number, its bytes, and what the player states.

#include <gtest/gtest.h>
#include <string>

#include "player/PictureFormat.h"
#include "player/StatedFormats.h"

namespace player {
namespace {

using enum PixelForm;

PictureFormat formatOf(uint32_t number, uint64_t bytes) {
  return pictureFormat(number, bytes, {}).value_or(PictureFormat());
}

TEST(PictureFormats, NumberUsedTwiceIsDecidedByTheBytes) {
  EXPECT_EQ(formatOf(1013, 77440), (PictureFormat{1013, 220, 176, Rgb565Turned}));
  EXPECT_EQ(formatOf(1013, 5000), (PictureFormat{1013, 50, 50}));
  EXPECT_EQ(formatOf(1061, 6160), (PictureFormat{1061, 56, 55}));
  EXPECT_EQ(formatOf(1061, 6272), (PictureFormat{1061, 56, 56}));
  EXPECT_EQ(formatOf(1016, 6612), (PictureFormat{1016, 57, 57, Rgb565, 116}));
}

TEST(PictureFormats, SlotMayBeLargerThanThePixels) {
  EXPECT_EQ(formatOf(1067, 691200).pixels, I420);
  EXPECT_EQ(formatOf(1067, 518400).pixels, I420);
  EXPECT_EQ(formatOf(3006, 8192).width, 56U);
  EXPECT_EQ(formatOf(3006, 6272).width, 56U);
}

TEST(PictureFormats, UnknownNumberIsASquareOrNothing) {
  EXPECT_EQ(formatOf(4711, 5000), (PictureFormat{4711, 50, 50}));
  EXPECT_EQ(formatOf(1055, 5000), (PictureFormat{1055, 50, 50}));
  for (const uint64_t bytes : {0ULL, 1ULL, 5001ULL, 5002ULL, 40ULL << 20, ~0ULL})
    EXPECT_EQ(pictureFormat(4711, bytes, {}), std::nullopt) << bytes;
}

TEST(PictureFormats, JpegHasAnyNumberOfBytes) {
  EXPECT_EQ(formatOf(1081, 12345).pixels, Jpeg);
  EXPECT_EQ(pictureFormat(1081, kMostPictureBytes + 1, {}), std::nullopt);
}

TEST(PictureFormats, WhatThePlayerStatesWins) {
  const PictureFormat stated{1055, 64, 256, Rgb555};
  EXPECT_EQ(pictureFormat(1055, 32768, {stated}), stated);
  EXPECT_EQ(pictureFormat(1055, 32768, {{1055, 10, 10}})->width, 128U);  // whose bytes do not fit
}

TEST(PictureFormats, FormatsThatCannotBeTakeNoBytes) {
  EXPECT_EQ(pixelBytes({1, 0, 5}), 0U);
  EXPECT_EQ(pixelBytes({1, 5, 0}), 0U);
  EXPECT_EQ(pixelBytes({1, 65535, 65535}), 0U);
  EXPECT_EQ(pixelBytes({1, 0xFFFFFFFF, 0xFFFFFFFF}), 0U);
  EXPECT_EQ(pixelBytes({1, 3, 2, Uyvy}), 0U);
  EXPECT_EQ(pixelBytes({1, 2, 3, I420}), 0U);
  EXPECT_EQ(pixelBytes({1, 6, 6, Rgb555Quarters}), 0U);
  EXPECT_EQ(pixelBytes({1, 8, 4, Rgb555Quarters}), 0U);
  EXPECT_EQ(pixelBytes({1, 4, 2, Rgb565, 4}), 0U);
  EXPECT_EQ(pixelBytes({1, 4, 2, Rgb565, 12}), 24U);
}

std::string listOf(const std::string &formats) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST "
         "1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\"><dict>" +
         formats + "</dict></plist>";
}

std::string formatText(const std::string &id, const std::string &width, const std::string &pixels,
                       const std::string &more = {}) {
  return "<dict><key>FormatId</key><integer>" + id + "</integer><key>RenderWidth</key><integer>" + width +
         "</integer><key>RenderHeight</key><integer>0020</integer><key>PixelFormat</key><string>" + pixels +
         "</string>" + more + "</dict>";
}

TEST(StatedFormats, StandUnderAlbumArtAndImageSpecifications) {
  const std::string list = listOf(
      "<key>AlbumArt</key><array>" + formatText("1055", "0030", "4C353635") +
      formatText("1056", "30", "42353635") + "</array><key>ImageSpecifications</key><dict><key>1067</key>" +
      formatText("1067", "30", "79343230") + "<key>1</key>" + formatText("1019", "30", "32767579") +
      "</dict><key>Other</key><array>" + formatText("9", "30", "4C353635") + "</array>");
  EXPECT_EQ(statedFormats(list),
            (std::vector<PictureFormat>{
                {1055, 30, 20}, {1056, 30, 20, Rgb565Swapped}, {1067, 30, 20, I420}, {1019, 30, 20, Uyvy}}));
}

TEST(StatedFormats, RowsAreAsLongAsTheirAlignmentWants) {
  const auto formats = statedFormats(listOf(
      "<key>AlbumArt</key><array>" +
      formatText("1016", "57", "4C353635", "<key>RowBytesAlignment</key><integer>4</integer>") + "</array>"));
  EXPECT_EQ(formats.at(0).rowBytes, 116U);
}

TEST(StatedFormats, FormsThatAreNotKnownAreLeftOut) {
  EXPECT_EQ(statedFormats(listOf("<key>AlbumArt</key><array>" + formatText("1", "30", "AAAAAAAA") +
                                 formatText("0", "30", "4C353635") +
                                 formatText("2", "99999999999999", "4C353635") + "<dict></dict></array>"))
                .size(),
            0U);
}

TEST(StatedFormats, BrokenFileKeepsWhatStandsBefore) {
  const std::string list = listOf("<key>AlbumArt</key><array>" + formatText("1055", "30", "4C353635") +
                                  formatText("1056", "30", "42353635") + "</array>");
  for (size_t size = 0; size < list.size(); ++size) EXPECT_LE(statedFormats(list.substr(0, size)).size(), 2U);
  EXPECT_EQ(statedFormats(list.substr(0, list.rfind("<dict>"))).size(), 1U);
  EXPECT_EQ(statedFormats("").size(), 0U);
  EXPECT_EQ(statedFormats("no XML").size(), 0U);
}

// Text that doubles with every entity, files of the machine, and elements without end.
TEST(StatedFormats, HostileFilesStateNothing) {
  const std::string format = "<key>AlbumArt</key><array>" + formatText("1055", "30", "4C353635") + "</array>";
  EXPECT_EQ(
      statedFormats("<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]><plist><dict>" +
                    format + "</dict></plist>")
          .size(),
      0U);
  EXPECT_EQ(statedFormats("<!DOCTYPE plist [<!ENTITY f SYSTEM \"/etc/passwd\">]><plist><dict>" + format +
                          "</dict></plist>")
                .size(),
            0U);
  std::string deep;
  for (int i = 0; i < 100; ++i) deep += "<dict>";
  EXPECT_EQ(statedFormats("<plist>" + deep + format).size(), 0U);
  EXPECT_EQ(statedFormats(listOf(format + std::string(kMostStatedBytes, ' '))).size(), 0U);
}

}  // namespace
}  // namespace player
