// Lists of pictures: what they say, and what is made of damaged ones.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "player/Error.h"
#include "player/ImageDatabase.h"
#include "samples/ImageDatabaseWriter.h"

namespace player {
namespace {

using samples::StoredImage;
using testing::ElementsAre;

constexpr size_t kFileHeader = 0x84;
constexpr size_t kFirstImage = kFileHeader + 0x60 + 0x5c;
constexpr size_t kImageHeader = 0x98;
constexpr size_t kObjectHeader = 0x18;

std::vector<StoredImage> twoImages() {
  return {{100,
           0x1122334455667788,
           {{1028, 20000, 20000, 9, -1, 91, 100, ":F1028_1.ithmb"},
            {1029, 80000, 80000, 0, 0, 200, 200, ":F1029_1.ithmb"}}},
          {101, 7, {{1028, 0, 20000, 0, 0, 100, 100, ":F1028_1.ithmb"}}}};
}

std::string with(std::string bytes, size_t at, const std::string &patch) {
  return bytes.replace(at, patch.size(), patch);
}

TEST(ImageDatabase, HoldsImagesWithTheirSizesAndFiles) {
  const ImageDatabase found = readImageDatabase(samples::WriteImageDatabase(twoImages()));
  EXPECT_EQ(found.brokenAt, std::nullopt);
  ASSERT_EQ(found.images.size(), 2U);
  const Image &image = found.images[0];
  EXPECT_EQ(image.id, 100U);
  EXPECT_EQ(image.song, 0x1122334455667788U);
  ASSERT_EQ(image.pictures.size(), 2U);
  EXPECT_EQ(image.pictures[0],
            (StoredPicture{1028, 20000, 20000, {9, -1, 91, 100}, ":F1028_1.ithmb", false}));
  EXPECT_EQ(image.pictures[1].file, ":F1029_1.ithmb");
  EXPECT_EQ(found.images[1].pictures.size(), 1U);
}

TEST(ImageDatabase, AlbumsHoldPhotosInTheirOrder) {
  const ImageDatabase found = readImageDatabase(
      samples::WriteImageDatabase({{1,
                                    0,
                                    {{1024, 0, 153600, 0, 0, 240, 320, ":F00:T1.ithmb"},
                                     {.file = ":Full Resolution:A.JPG", .whole = true}}}},
                                  {{"My Pictures", 1, {1, 2, 3}}, {"S\xC3\xA8te", 6, {3, 1}}}));
  EXPECT_TRUE(found.images.at(0).pictures.at(1).isWhole);
  ASSERT_EQ(found.albums.size(), 2U);
  EXPECT_TRUE(found.albums[0].isAll);
  EXPECT_FALSE(found.albums[1].isAll);
  EXPECT_EQ(found.albums[1].name, "S\xC3\xA8te");
  EXPECT_THAT(found.albums[1].images, ElementsAre(3, 1));
}

TEST(ImageDatabase, FirstImageOfAnIdOrSongIsFound) {
  const ImageDatabase found = readImageDatabase(
      samples::WriteImageDatabase({{5, 50, {}}, {4, 40, {{1, 1, 1}}}, {4, 40, {}}, {3, 50, {{1, 1, 1}}}}));
  EXPECT_EQ(found.withId(4), &found.images[1]);
  EXPECT_EQ(found.withId(3), &found.images[3]);
  EXPECT_EQ(found.ofSong(50), &found.images[0]);
  EXPECT_EQ(found.ofSong(40), &found.images[1]);
  EXPECT_EQ(found.withId(6), nullptr);
  EXPECT_EQ(found.ofSong(51), nullptr);
}

TEST(ImageDatabase, OtherFilesAreRefused) {
  for (const std::string &other :
       {std::string(), std::string("mhfd"), std::string("mhbd") + std::string(200, '\0'),
        "mhfd\xFF\xFF\xFF\xFF" + std::string(200, '\0')})
    EXPECT_THROW(readImageDatabase(other), PlayerError);
}

// Whole images before the cut are there, and the place of the cut is known.
TEST(ImageDatabase, EveryCutOfAFileKeepsWhatStandsBeforeIt) {
  const std::string whole = samples::WriteImageDatabase(twoImages());
  size_t most = 0;
  for (size_t size = 12; size < whole.size(); ++size) {
    const ImageDatabase found = readImageDatabase(whole.substr(0, size));
    EXPECT_GE(found.images.size() + 1, most) << size;
    most = std::max(most, found.images.size());
    ASSERT_TRUE(found.brokenAt) << size;
    EXPECT_LE(*found.brokenAt, size);
  }
  EXPECT_EQ(most, 2U);
}

TEST(ImageDatabase, ImageThatRunsPastItsListEndsIt) {
  const std::string whole = samples::WriteImageDatabase(twoImages());
  const ImageDatabase found = readImageDatabase(with(whole, kFirstImage + 8, "\xFF\xFF\xFF\x7F"));
  EXPECT_EQ(found.images.size(), 0U);
  EXPECT_EQ(found.brokenAt, kFirstImage);
}

TEST(ImageDatabase, ImageWithoutLengthDoesNotHoldTheReaderUp) {
  const std::string whole = samples::WriteImageDatabase(twoImages());
  for (const char *const length : {"\0\0\0\0", "\x0B\0\0\0"}) {
    const ImageDatabase found = readImageDatabase(with(whole, kFirstImage + 8, std::string(length, 4)));
    EXPECT_EQ(found.brokenAt, kFirstImage);
  }
}

TEST(ImageDatabase, BrokenPictureLeavesTheNextImageWhole) {
  const std::string whole = samples::WriteImageDatabase(twoImages());
  const size_t picture = kFirstImage + kImageHeader + kObjectHeader;
  const ImageDatabase found = readImageDatabase(with(whole, picture, "gone"));
  ASSERT_EQ(found.images.size(), 2U);
  EXPECT_EQ(found.images[0].pictures.size(), 1U);
  EXPECT_EQ(found.images[1].pictures.size(), 1U);
  EXPECT_EQ(found.brokenAt, picture);
}

TEST(ImageDatabase, NameLongerThanItsObjectIsNone) {
  const std::string whole = samples::WriteImageDatabase(twoImages());
  const size_t length = kFirstImage + kImageHeader + kObjectHeader + 0x4c + 0x18;
  for (const char *const bytes : {"\xFF\xFF\xFF\xFF", "\x00\x10\x00\x00"}) {
    const ImageDatabase found = readImageDatabase(with(whole, length, std::string(bytes, 4)));
    EXPECT_EQ(found.images.at(0).pictures.at(0).file, "");
    EXPECT_EQ(found.images.at(0).pictures.at(0).format, 1028U);
  }
}

TEST(ImageDatabase, ShortHeaderHasOnlyTheFieldsThatItHolds) {
  std::string image = "mhii" + std::string("\x10\0\0\0\x10\0\0\0\0\0\0\0", 12);
  std::string file = samples::WriteImageDatabase({});
  const size_t set = kFileHeader;
  file = with(file.insert(kFirstImage, image), set + 8, std::string("\xCC\0\0\0", 4));
  const ImageDatabase found = readImageDatabase(file);
  ASSERT_EQ(found.images.size(), 1U);
  EXPECT_EQ(found.images[0].id, 0U);
  EXPECT_EQ(found.images[0].song, 0U);
}

}  // namespace
}  // namespace player
