// `zemhost photos` through the built program.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/zemhost/CoverFixture.h"

namespace zemhost {
namespace {

using samples::StoredImage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Photos : public CoverFixture {
 protected:
  static constexpr uint32_t kBytes = 2 * 320 * 240;

  // An image with a smaller picture in a file of its own, and perhaps the photo itself.
  static StoredImage image(uint32_t id, const std::string &whole = {}) {
    StoredImage image{id, 0, {{1024, 0, kBytes, 0, 0, 240, 320, ":F00:T" + std::to_string(id) + ".ithmb"}}};
    if (!whole.empty()) image.sizes.push_back({.file = whole, .whole = true});
    return image;
  }
  void makePhotos(const std::vector<StoredImage> &images,
                  const std::vector<samples::ImageAlbum> &albums) const {
    folder_.write("iPod/Photos/Photo Database", samples::WriteImageDatabase(images, albums));
    for (const StoredImage &one : images) {
      folder_.write("iPod/Photos/Thumbs/F00/T" + std::to_string(one.id) + ".ithmb",
                    std::string(kBytes, static_cast<char>(one.id)));
    }
  }
  Outcome photos(const fs::path &from) const { return runZemhost({"photos", from, destination()}); }
  Outcome photos() const { return photos(player()); }
};

TEST_F(Photos, LieInFoldersThatAreCalledAsTheAlbums) {
  makePhotos({image(11), image(12), image(13)},
             {{"All", 1, {11, 12, 13}}, {"Summer", 6, {12, 11, 12}}, {"Winter", 6, {12}}});
  const Outcome outcome = photos();
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("4 photos written\n"));
  EXPECT_THAT(names(), ElementsAre("Photo 13.png", "Summer/Photo 11.png", "Summer/Photo 12.png",
                                   "Winter/Photo 12.png"));
  EXPECT_EQ(shown("Winter/Photo 12.png"), 12U);
  EXPECT_EQ(pngIn(destination() / "Photo 13.png").width, 320U);
  EXPECT_EQ(photos().out, "0 photos written\n4 photos are already there\n");
}

TEST_F(Photos, PhotoItselfIsCopiedAsItIs) {
  makePhotos({image(11, ":Full Resolution:2006:IMG_1.JPG"), image(12, ":Full Resolution:2006:GONE.JPG"),
              image(13, ":Full Resolution:2006:run.exe")},
             {});
  folder_.write("iPod/Photos/Full Resolution/2006/IMG_1.JPG", "the photo");
  folder_.write("iPod/Photos/Full Resolution/2006/run.exe", "a program");
  EXPECT_EQ(photos().status, 0);
  EXPECT_THAT(names(), ElementsAre("GONE.png", "IMG_1.JPG", "run.bin"));
  EXPECT_EQ(contentOf(destination() / "IMG_1.JPG"), "the photo");
}

TEST_F(Photos, PhotosOfOneNameGetNumbers) {
  makePhotos({image(11, ":Full Resolution:1:A.JPG"), image(12, ":Full Resolution:2:A.JPG")}, {});
  folder_.write("iPod/Photos/Full Resolution/1/A.JPG", "one");
  folder_.write("iPod/Photos/Full Resolution/2/A.JPG", "two");
  EXPECT_EQ(photos().status, 0);
  EXPECT_THAT(names(), ElementsAre("A (2).JPG", "A.JPG"));
  EXPECT_THAT(photos().out, HasSubstr("2 photos are already there"));
}

TEST_F(Photos, HostileNamesStayInTheFolder) {
  makePhotos({image(11, ":::::etc:passwd"), image(12, "E::DCIM:B.JPG"), image(13)},
             {{"../../escape", 6, {13}}, {"", 6, {13}}, {"../../escape", 6, {13}}});
  EXPECT_EQ(photos().status, 0);
  EXPECT_THAT(names(), ElementsAre("Album 1/Photo 13.png", "Photo 11.png", "Photo 12.png",
                                   "_._.._escape (2)/Photo 13.png", "_._.._escape/Photo 13.png"));
}

TEST_F(Photos, AreFoundFromThePlayerItsFoldersAndTheirList) {
  makePhotos({image(11)}, {});
  folder_.makeDirectory("iPod/iPod_Control");
  EXPECT_EQ(photos(player() / "iPod_Control").status, 0);
  EXPECT_EQ(photos(player() / "").status, 0);
  EXPECT_EQ(photos(player() / "Photos" / "Photo Database").status, 0);
  EXPECT_THAT(names(), ElementsAre("Photo 11.png"));
}

TEST_F(Photos, PlayerWithoutPhotosIsAnErrorThatSaysSo) {
  folder_.makeDirectory("iPod");
  EXPECT_THAT(photos().err, HasSubstr("no photos here: the player has no Photos/Photo Database\n"));
  EXPECT_EQ(photos().status, 1);
  EXPECT_THAT(photos(folder_.path() / "missing").err, HasSubstr("missing: No such file or directory\n"));
  EXPECT_THAT(photos(folder_.write("file", "x")).err, HasSubstr("name the player, or its Photo Database\n"));
  EXPECT_FALSE(fs::exists(destination()));
}

TEST_F(Photos, NothingIsWrittenOnThePlayer) {
  makePhotos({image(11)}, {});
  const Outcome outcome = runZemhost({"photos", player(), player() / "out"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("this lies on the player"));
}

TEST_F(Photos, WhatIsMissingIsAProblemAndTheRestIsWritten) {
  makePhotos({image(11), image(12)}, {{"Summer", 6, {11, 99}}});
  fs::remove(player() / "Photos/Thumbs/F00/T12.ithmb");
  const Outcome outcome = photos();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("- album \"Summer\": no photo has the ID 99\n"));
  EXPECT_THAT(outcome.out, HasSubstr("- Photo 12: "));
  EXPECT_THAT(names(), ElementsAre("Summer/Photo 11.png"));
}

TEST_F(Photos, DamagedListIsAProblem) {
  folder_.write("iPod/Photos/Photo Database", "no list");
  const Outcome outcome = photos();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("it is no list of pictures; its pictures are left out\n"));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Photos, PictureInJpegIsHandedOn) {
  const std::string jpeg = "\xFF\xD8 a picture \xFF\xD9";
  const std::string slot = jpeg + std::string(50, '\0');
  folder_.write("iPod/Photos/Photo Database",
                samples::WriteImageDatabase(
                    {{11, 0, {{1081, 4, static_cast<uint32_t>(slot.size()), 0, 0, 480, 640, ":T.ithmb"}}}}));
  folder_.write("iPod/Photos/Thumbs/T.ithmb", "xxxx" + slot);
  EXPECT_EQ(photos().status, 0);
  EXPECT_EQ(contentOf(destination() / "Photo 11.jpg"), jpeg);
}

}  // namespace
}  // namespace zemhost
