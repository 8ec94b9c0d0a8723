#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "host/Error.h"
#include "host/runtime/FolderItem.h"
#include "host/runtime/LiveHandles.h"
#include "tests/support/TemporaryFolder.h"

namespace zemhost {
namespace {

class FolderItemTest : public testing::Test {
 protected:
  void SetUp() override { mountVolume("Player", scratch_.path()); }
  void TearDown() override { EXPECT_EQ(liveHandles().folderItems, before_); }

  support::TemporaryFolder scratch_;

 private:
  int64_t before_ = liveHandles().folderItems;
};

TEST_F(FolderItemTest, PathOfAFileGoesThroughTheItemAndBack) {
  const auto file = scratch_.write("iPod_Control/iTunes/iTunesDB");
  const FolderItem item = FolderItem::fromPath(file);
  ASSERT_TRUE(item);
  EXPECT_EQ(item.macPath(), "Player:iPod_Control:iTunes:iTunesDB");
  EXPECT_EQ(item.path(), file);
  EXPECT_TRUE(item.exists());
}

TEST_F(FolderItemTest, MacPathNamesTheSameFile) {
  const auto file = scratch_.write("Music/a.mp3");
  EXPECT_EQ(FolderItem::fromMacPath("Player:Music:a.mp3").path(), file);
}

TEST_F(FolderItemTest, FileThatIsNotThereYetHasAnItem) {
  std::filesystem::create_directory(scratch_.path() / "Music");
  const FolderItem item = FolderItem::fromPath(scratch_.path() / "Music" / "new.mp3");
  ASSERT_TRUE(item);
  EXPECT_FALSE(item.exists());
  EXPECT_EQ(item.macPath(), "Player:Music:new.mp3");
  EXPECT_EQ(item.path(), scratch_.path() / "Music" / "new.mp3");
}

TEST_F(FolderItemTest, FileThatIsNotThereYetOnTheRootHasAPath) {
  const FolderItem item = FolderItem::fromPath(scratch_.path() / "new.mp3");
  ASSERT_TRUE(item);
  EXPECT_EQ(item.path(), scratch_.path() / "new.mp3");
}

TEST_F(FolderItemTest, NameWithASlashIsAColonOnDisk) {
  const auto file = scratch_.write("Music/AC:DC.mp3");
  const FolderItem item = FolderItem::fromMacPath("Player:Music:AC/DC.mp3");
  EXPECT_EQ(item.path(), file);
  const FolderItem missing = FolderItem::fromMacPath("Player:Music:9/11.mp3");
  EXPECT_EQ(missing.path(), scratch_.path() / "Music" / "9:11.mp3");
}

TEST_F(FolderItemTest, FileInAMissingFolderIsNil) {
  EXPECT_FALSE(FolderItem::fromPath(scratch_.path() / "none" / "a.mp3"));
  EXPECT_FALSE(FolderItem::fromMacPath("Player:none:a.mp3"));
  EXPECT_FALSE(FolderItem::fromMacPath("No such volume:a.mp3"));
  EXPECT_FALSE(FolderItem::fromMacPath(""));
  EXPECT_FALSE(FolderItem::fromMacPath("Player:" + std::string(300, 'x')));
  EXPECT_FALSE(FolderItem::fromPath(""));
}

TEST_F(FolderItemTest, FolderAndVolumeHaveItems) {
  scratch_.write("Music/a.mp3");
  EXPECT_EQ(FolderItem::fromPath(scratch_.path() / "Music").macPath(), "Player:Music");
  const FolderItem volume = FolderItem::fromPath(scratch_.path());
  ASSERT_TRUE(volume);
  EXPECT_EQ(volume.path(), scratch_.path());
}

TEST_F(FolderItemTest, RelativePathStartsAtTheWorkingFolder) {
  scratch_.write("a.mp3");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(scratch_.path());
  EXPECT_EQ(FolderItem::fromPath("a.mp3").macPath(), "Player:a.mp3");
  std::filesystem::current_path(before);
}

TEST_F(FolderItemTest, NilHasNothing) {
  const FolderItem nil;
  EXPECT_FALSE(nil);
  EXPECT_EQ(nil.path(), "");
  EXPECT_EQ(nil.macPath(), "");
  EXPECT_FALSE(nil.exists());
  EXPECT_EQ(nil.spec().name[0], 0);
}

TEST_F(FolderItemTest, SpecificationThatNamesNothingGivesNil) {
  EXPECT_EQ(newFolderItem(nullptr), nullptr);
  FSSpec spec = {};
  EXPECT_EQ(newFolderItem(&spec), nullptr);
  spec.vRefNum = -32000;
  spec.parID = 77;
  spec.name[0] = 1;
  spec.name[1] = 'x';
  EXPECT_EQ(newFolderItem(&spec), nullptr);
}

TEST_F(FolderItemTest, SpecificationOfAnItemMakesTheSameItem) {
  scratch_.write("a.mp3");
  const FSSpec spec = FolderItem::fromPath(scratch_.path() / "a.mp3").spec();
  EXPECT_EQ(std::string(reinterpret_cast<const char *>(spec.name) + 1, spec.name[0]), "a.mp3");
  EXPECT_EQ(FolderItem::adopt(newFolderItem(&spec)).path(), scratch_.path() / "a.mp3");
}

TEST_F(FolderItemTest, CopiesShareOneItemAndTheLastOneFreesIt) {
  const int64_t before = liveHandles().folderItems;
  FolderItem one = FolderItem::fromPath(scratch_.path() / "a.mp3");
  {
    FolderItem two;
    two = one;
    EXPECT_EQ(two.handle(), one.handle());
    EXPECT_EQ(liveHandles().folderItems, before + 1);
  }
  const FolderItem moved = std::move(one);
  EXPECT_TRUE(moved);
  EXPECT_EQ(liveHandles().folderItems, before + 1);
}

TEST_F(FolderItemTest, ItemOutlivesItsFile) {
  const auto file = scratch_.write("a.mp3");
  const FolderItem item = FolderItem::fromPath(file);
  std::filesystem::remove(file);
  EXPECT_FALSE(item.exists());
  EXPECT_EQ(item.path(), file);
}

TEST_F(FolderItemTest, JapaneseNameKeepsItsText) {
  const auto file = scratch_.write("\u97F3\u697D/\u66F2.mp3");
  const FolderItem item = FolderItem::fromPath(file);
  EXPECT_EQ(item.macPath(), "Player:\u97F3\u697D:\u66F2.mp3");
  EXPECT_EQ(item.path(), file);
}

TEST(MountVolume, MissingFolderOrBadNameIsAnErrorThatNamesBoth) {
  const support::TemporaryFolder scratch;
  try {
    mountVolume("Gone", scratch.path() / "none");
    FAIL();
  } catch (const HostError &error) {
    EXPECT_NE(std::strstr(error.what(), "Gone"), nullptr);
    EXPECT_NE(std::strstr(error.what(), "none"), nullptr);
  }
  EXPECT_THROW(mountVolume("", scratch.path()), HostError);
  EXPECT_THROW(mountVolume(std::string(64, 'x'), scratch.path()), HostError);
}

}  // namespace
}  // namespace zemhost
