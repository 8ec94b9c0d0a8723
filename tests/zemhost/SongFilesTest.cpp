#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "tests/support/TemporaryFolder.h"
#include "zemhost/library/SongFiles.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;

constexpr bool kOfAPlayer = false;
constexpr bool kOfADesktop = true;

class SongFilesTest : public testing::Test {
 protected:
  player::DatabaseLocation location(const fs::path &root) const {
    return {root / "iPod_Control/iTunes/iTunesDB", "iTunesDB", root};
  }

  support::TemporaryFolder folder_;
  fs::path root_ = folder_.makeDirectory("S");
};

TEST_F(SongFilesTest, FileIsFoundByItsPathFromTheRoot) {
  const fs::path file = folder_.write("S/iPod_Control/Music/F00/a:b.mp3", "music");
  SongFiles files(location(root_), kOfAPlayer);
  const SongFile found = files.find(":iPod_Control:Music:F00:a/b.mp3");
  EXPECT_TRUE(found.isThere());
  EXPECT_EQ(found.path, file);
  EXPECT_EQ(found.size, 5U);
  EXPECT_EQ(found.name, "S:iPod_Control:Music:F00:a/b.mp3");
  EXPECT_EQ(found.place, file.string());
  EXPECT_TRUE(files.open(found));
  EXPECT_TRUE(
      files.find(":iPod_Control:Music:F01::F00:a/b.mp3").path.empty());  // there is no F01 to go up from
  EXPECT_TRUE(files.find(":iPod_Control:Music::Music:F00:a/b.mp3").isThere());
}

TEST_F(SongFilesTest, MissingFileHasThePlaceWhereItWouldBe) {
  folder_.makeDirectory("S/F00");
  SongFiles files(location(root_), kOfAPlayer);
  EXPECT_EQ(files.find(":F00:a.mp3").error, ENOENT);
  EXPECT_EQ(files.find(":F00:a.mp3").path, root_ / "F00" / "a.mp3");
  EXPECT_EQ(files.find(":F01:a.mp3").error, ENOENT);
  EXPECT_TRUE(files.find(":F01:a.mp3").path.empty());
  EXPECT_EQ(files.find(":F01:a/b.mp3").place, (root_ / "F01" / "a:b.mp3").string());
  EXPECT_EQ(files.find(":F00").error, EISDIR);
  EXPECT_EQ(files.find("").error, ENOENT);
  EXPECT_EQ(files.find(":F00:..:F00").error, ENOENT);
}

TEST_F(SongFilesTest, PathJoinedToAnotherVolumesNameIsOutside) {
  SongFiles files(location(root_), kOfAPlayer);
  for (const char *path :
       {"ystem:etc:passwd", "System:etc:passwd", "etc:passwd", "/etc/passwd", ":::etc:passwd"}) {
    const SongFile file = files.find(path);
    EXPECT_TRUE(file.isOutside()) << path;
    EXPECT_TRUE(file.path.empty()) << path;
    EXPECT_FALSE(files.open(file)) << path;
  }
}

TEST_F(SongFilesTest, LinksAreFollowedOnThePlayerAndNotOutOfIt) {
  folder_.write("outside/secret", "x");
  const fs::path file = folder_.write("S/F00/song.mp3", "x");
  fs::create_symlink("../outside", root_ / "F01");
  fs::create_symlink("../../outside/secret", root_ / "F00" / "secret");
  fs::create_symlink("F00", root_ / "F02");
  SongFiles files(location(root_), kOfAPlayer);
  for (const char *path : {":F01:secret", ":f01:SECRET", ":F00:secret", ":F00:SECRET"}) {
    EXPECT_TRUE(files.find(path).isOutside()) << path;
    EXPECT_TRUE(files.find(path).path.empty()) << path;
  }
  EXPECT_TRUE(files.find(":F02:song.mp3").isThere());
  EXPECT_EQ(files.find(":F02:song.mp3").path, file);
}

TEST_F(SongFilesTest, FileThatBecomesALinkOutAfterItWasFoundIsNotOpened) {
  folder_.write("outside/song.mp3", "x");
  folder_.write("S/F00/song.mp3", "x");
  SongFiles files(location(root_), kOfAPlayer);
  const SongFile found = files.find(":F00:song.mp3");
  EXPECT_TRUE(files.open(found));
  fs::rename(root_ / "F00", root_ / "F01");
  fs::create_symlink("../outside", root_ / "F00");
  EXPECT_FALSE(files.open(found));
  EXPECT_EQ(errno, EXDEV);
}

TEST_F(SongFilesTest, NamesMatchExactlyFirstAndThenWithoutCaseAndComposition) {
  folder_.write("S/F00/Song.mp3", "exact");
  folder_.write("S/F00/song.mp3", "small");
  folder_.write("S/F00/caf\u00E9.mp3", "x");
  SongFiles files(location(root_), kOfAPlayer);
  EXPECT_EQ(files.find(":F00:song.mp3").path.filename(), "song.mp3");
  EXPECT_EQ(files.find(":F00:Song.mp3").path.filename(), "Song.mp3");
  EXPECT_EQ(files.find(":f00:SONG.MP3").path, root_ / "F00" / "Song.mp3");  // the least of the two
  EXPECT_TRUE(files.find(":F00:CAFE\u0301.MP3").isThere());
}

TEST_F(SongFilesTest, DesktopLibraryNamesOtherVolumesUnlessItLiesOnAPlayer) {
  const fs::path file = folder_.write("S/F00/song.mp3", "x");
  std::string path = "System" + file.string();
  for (char &c : path) c = c == '/' ? ':' : c;
  SongFiles alone({file, "library", {}}, kOfADesktop);
  EXPECT_EQ(alone.find(path).path, file);
  EXPECT_TRUE(alone.find(path).isThere());
  EXPECT_TRUE(alone.open(alone.find(path)));
  SongFiles onPlayer(location(root_), kOfADesktop);
  EXPECT_TRUE(onPlayer.find(path).isOutside());
  EXPECT_TRUE(onPlayer.find("S:F00:song.mp3").isThere());
  SongFiles nowhere({file, "library", {}}, kOfAPlayer);
  EXPECT_TRUE(nowhere.find(":F00:song.mp3").path.empty());
}

TEST_F(SongFilesTest, FolderIsReadOnceForAnyNumberOfNamesThatDiffer) {
  constexpr int kFiles = 500;
  for (int i = 0; i < kFiles; ++i) folder_.write("S/F00/song" + std::to_string(i) + ".MP3");
  SongFiles files(location(root_), kOfAPlayer);
  for (int i = 0; i < kFiles; ++i) {
    EXPECT_TRUE(files.find(":F00:SONG" + std::to_string(i) + ".mp3").isThere());
    EXPECT_FALSE(files.find(":F00:none" + std::to_string(i) + ".mp3").isThere());
    EXPECT_FALSE(files.find(":none" + std::to_string(i) + ":song.mp3").isThere());
  }
  // The folder's and the root's, each with its own and its parent's entry.
  EXPECT_EQ(files.entriesRead(), kFiles + 2U + 1U + 2U);
}

TEST_F(SongFilesTest, NothingIsLookedUpBelowAFolderThatIsNotThere) {
  std::string path;
  for (int i = 0; i < 5000; ++i) path += ":none";
  SongFiles files(location(root_), kOfAPlayer);
  EXPECT_EQ(files.find(path + ":song.mp3").error, ENOENT);
  EXPECT_EQ(files.foldersTried(), 2U);  // the root and the first of them
}

}  // namespace
}  // namespace zemhost
