#include <gtest/gtest.h>
#include <nettle/base64.h>

#include "host/Error.h"
#include "samples/GeneratedLibrary.h"
#include "zemhost/output/Jpeg.h"
#include "zemhost/report/CoverData.h"

namespace zemhost {
namespace {

player::Picture flat(uint32_t width, uint32_t height, unsigned char level) {
  return {width, height, std::string(size_t{3} * width * height, static_cast<char>(level))};
}

// As little to be made small as there is.
player::Picture noise(uint32_t width, uint32_t height) {
  player::Picture picture = flat(width, height, 0);
  samples::Random random(1);
  for (char &c : picture.rgb) c = static_cast<char>(random.Below(256));
  return picture;
}

std::string jpegIn(const std::string &address) {
  constexpr std::string_view kHead = "data:image/jpeg;base64,";
  EXPECT_TRUE(address.starts_with(kHead));
  base64_decode_ctx state;
  base64_decode_init(&state);
  std::string bytes(BASE64_DECODE_LENGTH(address.size()), '\0');
  size_t size = bytes.size();
  const bool isWhole = base64_decode_update(&state, &size, reinterpret_cast<uint8_t *>(bytes.data()),
                                            address.size() - kHead.size(), &address[kHead.size()]) == 1 &&
                       base64_decode_final(&state) == 1;
  EXPECT_TRUE(isWhole);
  bytes.resize(size);
  return bytes;
}

player::Picture shown(const std::string &address) { return pixelsOfJpeg(jpegIn(address)); }

TEST(ReportCover, StaysAsLargeAsItIsWhereItFits) {
  const player::Picture picture = shown(coverAddress({flat(200, 160, 90), {}}));
  EXPECT_EQ(picture.width, 200);
  EXPECT_EQ(picture.height, 160);
  EXPECT_NEAR(static_cast<unsigned char>(picture.rgb[300]), 90, 2);
}

TEST(ReportCover, IsMadeSmallerUntilItFitsWhateverItShows) {
  for (const auto &[width, height] : {std::pair(320U, 320U), std::pair(1000U, 100U), std::pair(63U, 640U)}) {
    const std::string address = coverAddress({noise(width, height), {}});
    EXPECT_LE(address.size(), kMostCoverBytes);
    const player::Picture picture = shown(address);
    EXPECT_GE(std::max(picture.width, picture.height), 60U);
    EXPECT_NEAR(static_cast<double>(picture.width) * height / width, picture.height,
                1.5 * height / width + 1);
  }
}

TEST(ReportCover, PictureOfOnePixelOrOneRowIsOne) {
  EXPECT_EQ(shown(coverAddress({flat(1, 1, 200), {}})).width, 1);
  const player::Picture row = shown(coverAddress({flat(2000, 1, 200), {}}));
  EXPECT_EQ(row.width, 320);
  EXPECT_EQ(row.height, 1);
}

TEST(ReportCover, SmallerPixelsAreTheMeanOfThoseTheyCover) {
  player::Picture stripes = flat(640, 640, 0);
  for (size_t pixel = 0; pixel < stripes.rgb.size(); pixel += 6) {
    for (size_t colour = 0; colour < 3; ++colour) stripes.rgb[pixel + colour] = static_cast<char>(200);
  }
  const player::Picture picture = shown(coverAddress({stripes, {}}));
  EXPECT_EQ(picture.width, 320);
  for (const size_t place : {0U, 150'000U})
    EXPECT_NEAR(static_cast<unsigned char>(picture.rgb[place]), 100, 2);
}

TEST(ReportCover, JpegIsMadeAnewSoThatNothingBesidePixelsStays) {
  std::string jpeg = jpegOf(flat(40, 30, 120), 90);
  const std::string remark = "taken at home by Ann";
  std::string segment = {'\xFF', '\xFE', '\0', static_cast<char>(remark.size() + 2)};
  jpeg.insert(2, segment + remark);
  ASSERT_EQ(pixelsOfJpeg(jpeg).width, 40);
  const std::string address = coverAddress({{}, jpeg});
  EXPECT_EQ(shown(address).width, 40);
  EXPECT_EQ(jpegIn(address).find("Ann"), std::string::npos);
}

TEST(ReportCover, WhatIsNoWholePictureIsRefused) {
  EXPECT_THROW(coverAddress({{}, "no picture"}), HostError);
  EXPECT_THROW(coverAddress({}), HostError);
  std::string jpeg = jpegOf(noise(64, 64), 90);
  EXPECT_THROW(coverAddress({{}, jpeg.substr(0, jpeg.size() / 2)}), HostError);
  // The header says 65,500 pixels each way.
  const size_t frame = jpeg.find("\xFF\xC0");
  ASSERT_NE(frame, std::string::npos);
  jpeg.replace(frame + 5, 4, "\xFF\xDC\xFF\xDC");
  EXPECT_THROW(coverAddress({{}, jpeg}), HostError);
}

}  // namespace
}  // namespace zemhost
