// Lists that were made on the player.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "player/Error.h"
#include "player/OnTheGo.h"
#include "samples/SmartObjects.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using samples::OnTheGoFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class OnTheGoTest : public testing::Test {
 protected:
  OnTheGoLists read(size_t songs = 10) const {
    return readOnTheGo(folder_.path() / "iTunesDB", folder_.path(), songs);
  }

  support::TemporaryFolder folder_;
};

TEST(OnTheGoPositions, AreReadInBothByteOrders) {
  for (const samples::Variant variant : {samples::Variant::LittleEndian, samples::Variant::BigEndian})
    EXPECT_THAT(onTheGoPositions(OnTheGoFile({3, 0, 3, 0x12345}, variant)), ElementsAre(3, 0, 3, 0x12345));
}

TEST(OnTheGoPositions, EntriesOfNoStatedLengthAreOfTheUsualOne) {
  std::string file = OnTheGoFile({1, 2});
  file[8] = 0;
  EXPECT_THAT(onTheGoPositions(file), ElementsAre(1, 2));
  file[8] = 8;
  EXPECT_THROW(onTheGoPositions(file), PlayerError);
}

TEST(OnTheGoPositions, EveryOtherLengthIsRefused) {
  const std::string file = OnTheGoFile({1, 2, 3});
  for (size_t size = 0; size < file.size(); ++size)
    EXPECT_THROW(onTheGoPositions(file.substr(0, size)), PlayerError) << size;
  EXPECT_THROW(onTheGoPositions(file + std::string(4, '\0')), PlayerError);
  std::string many = file;
  many.replace(12, 4, "\xff\xff\xff\xff");
  EXPECT_THROW(onTheGoPositions(many), PlayerError);
  EXPECT_THROW(onTheGoPositions("mhdp" + file.substr(4)), PlayerError);
}

TEST_F(OnTheGoTest, ListsAreNumberedAsTheirFilesToTheFirstThatIsMissing) {
  folder_.write("OTGPlaylistInfo", OnTheGoFile({4, 1}));
  folder_.write("OTGPlaylistInfo_1", OnTheGoFile({}));
  folder_.write("otgplaylistinfo_2", OnTheGoFile({9}));
  folder_.write("OTGPlaylistInfo_4", OnTheGoFile({1}));
  const OnTheGoLists found = read();
  ASSERT_EQ(found.lists.size(), 2U);  // one without songs is not shown
  EXPECT_EQ(found.lists[0].name(), "On-The-Go 1");
  EXPECT_THAT(found.lists[0].songs, ElementsAre(4, 1));
  EXPECT_EQ(found.lists[1].name(), "On-The-Go 3");
  EXPECT_THAT(found.warnings, IsEmpty());
}

TEST_F(OnTheGoTest, EntriesForSongsThatThereAreNotAreLeftOutWithALine) {
  folder_.write("OTGPlaylistInfo", OnTheGoFile({4, 10, 1}));
  const OnTheGoLists found = read();
  EXPECT_THAT(found.lists.at(0).songs, ElementsAre(4, 1));
  EXPECT_THAT(found.warnings, ElementsAre(HasSubstr("1 of 3 entries")));
}

TEST_F(OnTheGoTest, FileThatIsNoneOrCannotBeReadIsLeftOutWithALine) {
  folder_.write("OTGPlaylistInfo", "no playlist at all");
  folder_.makeDirectory("OTGPlaylistInfo_1");
  folder_.write("OTGPlaylistInfo_2", OnTheGoFile({1}));
  const OnTheGoLists found = read();
  EXPECT_EQ(found.lists.size(), 1U);
  EXPECT_THAT(found.warnings,
              ElementsAre(HasSubstr("OTGPlaylistInfo: it holds no playlist; the playlist in it is "
                                    "left out"),
                          HasSubstr("OTGPlaylistInfo_1: it is no regular file")));
}

TEST_F(OnTheGoTest, LinkOutOfThePlayerIsNotFollowed) {
  const support::TemporaryFolder outside;
  std::filesystem::create_symlink(outside.write("list", OnTheGoFile({1})),
                                  folder_.path() / "OTGPlaylistInfo");
  const OnTheGoLists found = read();
  EXPECT_THAT(found.lists, IsEmpty());
  EXPECT_THAT(found.warnings, ElementsAre(HasSubstr("a symbolic link leads out of the player")));
}

TEST_F(OnTheGoTest, DatabaseOfAnotherNameHasNone) {
  folder_.write("OTGPlaylistInfo", OnTheGoFile({1}));
  EXPECT_THAT(readOnTheGo(folder_.path() / "copy.db", folder_.path(), 10).lists, IsEmpty());
}

}  // namespace
}  // namespace player
