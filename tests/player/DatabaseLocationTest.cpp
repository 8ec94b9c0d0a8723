#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "player/DatabaseLocation.h"
#include "player/Error.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class DatabaseLocationTest : public testing::Test {
 protected:
  std::string refusal(const fs::path &path) const {
    try {
      return "found " + locateDatabase(path).file.string();
    } catch (const PlayerError &error) {
      return error.what();
    }
  }

  support::TemporaryFolder folder_;
  fs::path root_ = folder_.path() / "My iPod";
};

TEST_F(DatabaseLocationTest, PlayerItsFolderAndItsFileGiveTheSame) {
  const fs::path file = folder_.write("My iPod/iPod_Control/iTunes/iTunesDB", "x");
  for (const fs::path &path : {root_, root_ / "", root_ / "iPod_Control", root_ / "iPod_Control" / "", file,
                               root_ / "iPod_Control" / ".." / "." / ""}) {
    const DatabaseLocation location = locateDatabase(path);
    EXPECT_EQ(location.file, file) << path;
    EXPECT_EQ(location.volumeRoot, root_) << path;
  }
}

TEST_F(DatabaseLocationTest, RelativePathsAreMadeAbsolute) {
  const fs::path file = folder_.write("My iPod/iPod_Control/iTunes/iTunesDB", "x");
  const fs::path before = fs::current_path();
  fs::current_path(root_ / "iPod_Control" / "iTunes");
  const DatabaseLocation fromFile = locateDatabase("iTunesDB");
  const DatabaseLocation fromFolder = locateDatabase("..");
  const DatabaseLocation fromRoot = locateDatabase("../../");
  fs::current_path(before);
  for (const DatabaseLocation &location : {fromFile, fromFolder, fromRoot}) {
    EXPECT_EQ(location.file, file);
    EXPECT_EQ(location.volumeRoot, root_);
  }
}

TEST_F(DatabaseLocationTest, FoldersOfAPlayerMatchWithoutRegardToCase) {
  const fs::path file = folder_.write("My iPod/IPOD_CONTROL/itunes/ITUNESDB", "x");
  for (const fs::path &path : {root_, root_ / "IPOD_CONTROL", file}) {
    EXPECT_EQ(locateDatabase(path).file, file);
    EXPECT_EQ(locateDatabase(path).volumeRoot, root_);
  }
}

TEST_F(DatabaseLocationTest, ExactNameComesBeforeOneOfAnotherCase) {
  folder_.write("My iPod/IPOD_CONTROL/iTunes/iTunesDB", "x");
  const fs::path file = folder_.write("My iPod/iPod_Control/iTunes/iTunesDB", "x");
  EXPECT_EQ(locateDatabase(root_).file, file);
}

TEST_F(DatabaseLocationTest, FileElsewhereIsOnNoPlayer) {
  const fs::path file = folder_.write("backup/iTunes/iTunesDB", "x");
  EXPECT_EQ(locateDatabase(file).file, file);
  EXPECT_EQ(locateDatabase(file).volumeRoot, "");
}

TEST_F(DatabaseLocationTest, CompressedDatabaseStandsInForAnEmptyOrMissingOne) {
  const fs::path compressed = folder_.write("My iPod/iPod_Control/iTunes/iTunesCDB", "x");
  EXPECT_EQ(locateDatabase(root_).file, compressed);
  const fs::path usual = folder_.write("My iPod/iPod_Control/iTunes/iTunesDB", "");
  EXPECT_EQ(locateDatabase(root_).file, compressed);
  folder_.write("My iPod/iPod_Control/iTunes/iTunesDB", "x");
  EXPECT_EQ(locateDatabase(root_).file, usual);
  folder_.write("My iPod/iPod_Control/iTunes/iTunesCDB", "xx");
  EXPECT_EQ(locateDatabase(root_).file, compressed);
}

TEST_F(DatabaseLocationTest, EmptyDatabaseAloneIsTheDatabase) {
  const fs::path file = folder_.write("My iPod/iPod_Control/iTunes/iTunesDB", "");
  EXPECT_EQ(locateDatabase(root_).file, file);
}

TEST_F(DatabaseLocationTest, LinksOutOfThePlayerAreNotFollowed) {
  const std::string reason = ": a symbolic link leads out of the player";
  folder_.write("elsewhere/iTunes/ITUNESDB", "x");
  const fs::path control = root_ / "iPod_Control";
  fs::create_directory(root_);
  fs::create_directory_symlink("../elsewhere", control);
  EXPECT_EQ(refusal(root_), control.string() + reason);
  fs::remove(control);
  fs::create_directory(control);
  fs::create_directory_symlink(folder_.path() / "elsewhere/iTunes", control / "iTunes");
  EXPECT_EQ(refusal(root_), (control / "iTunes").string() + reason);
  fs::remove(control / "iTunes");
  fs::create_directory(control / "iTunes");
  fs::create_symlink("../../../elsewhere/iTunes/ITUNESDB", control / "iTunes/iTunesDB");
  EXPECT_EQ(refusal(root_), (control / "iTunes/iTunesDB").string() + reason);
  EXPECT_EQ(refusal(control / "iTunes/iTunesDB"), (control / "iTunes/iTunesDB").string() + reason);
}

TEST_F(DatabaseLocationTest, LinksThatStayOnThePlayerAreFollowed) {
  folder_.write("My iPod/kept/iTunesDB", "x");
  fs::create_directory(root_ / "iPod_Control");
  fs::create_directory_symlink("../kept", root_ / "iPod_Control/iTunes");
  EXPECT_EQ(locateDatabase(root_).file, root_ / "iPod_Control/iTunes/iTunesDB");
  // The player itself may be reached through a link.
  fs::create_directory_symlink(root_, folder_.path() / "here");
  EXPECT_EQ(locateDatabase(folder_.path() / "here").volumeRoot, folder_.path() / "here");
}

TEST_F(DatabaseLocationTest, MissingPathIsNamed) {
  const fs::path none = folder_.path() / "none";
  EXPECT_EQ(refusal(none), none.string() + ": No such file or directory");
  const fs::path file = folder_.write("file", "x");
  EXPECT_EQ(refusal(file / "below"), (file / "below").string() + ": Not a directory");
}

TEST_F(DatabaseLocationTest, DirectoryWithoutADatabaseIsNamedWithWhatItLacks) {
  fs::create_directories(root_);
  EXPECT_THAT(refusal(root_), AllOf(StartsWith(root_.string() + ": "), HasSubstr("no iPod_Control folder")));
  fs::create_directories(root_ / "iPod_Control");
  EXPECT_THAT(refusal(root_), AllOf(StartsWith(root_.string() + ": "), EndsWith("has no iTunes folder")));
  fs::create_directories(root_ / "iPod_Control" / "iTunes");
  EXPECT_THAT(refusal(root_), AllOf(StartsWith(root_.string() + ": "), EndsWith("has no iTunesDB")));
  EXPECT_THAT(refusal(root_ / "iPod_Control"), EndsWith("has no iTunesDB"));
}

TEST_F(DatabaseLocationTest, FileInPlaceOfAFolderIsNamed) {
  const fs::path control = folder_.write("My iPod/iPod_Control", "x");
  EXPECT_EQ(refusal(root_), control.string() + ": Not a directory");
}

TEST_F(DatabaseLocationTest, FolderOfSqliteFilesGoesBeforeTheOtherDatabases) {
  folder_.write("My iPod/iPod_Control/iTunes/iTunesDB", "longer");
  folder_.write("My iPod/iPod_Control/iTunes/iTunesCDB", "longer still");
  const fs::path folder = folder_.makeDirectory("My iPod/iPod_Control/iTunes/iTunes library.ITLP");
  EXPECT_FALSE(locateDatabase(root_).isSqlite()) << "the folder holds no library";
  const fs::path file = folder_.write("My iPod/iPod_Control/iTunes/iTunes library.ITLP/library.itdb", "x");
  for (const fs::path &path : {root_, root_ / "iPod_Control", folder, folder / "", file}) {
    const DatabaseLocation location = locateDatabase(path);
    EXPECT_TRUE(location.isSqlite()) << path;
    EXPECT_EQ(location.file, file) << path;
    EXPECT_EQ(location.volumeRoot, root_) << path;
  }
  EXPECT_FALSE(locateDatabase(root_ / "iPod_Control/iTunes/iTunesDB").isSqlite()) << "a file that is named";
}

TEST_F(DatabaseLocationTest, FolderOfSqliteFilesMayLieAnywhereAndMustHoldALibrary) {
  const fs::path file = folder_.write("copy/Library.itdb", "x");
  EXPECT_EQ(locateDatabase(folder_.path() / "copy").file, file);
  EXPECT_EQ(locateDatabase(file).volumeRoot, "");
  const fs::path empty = folder_.makeDirectory("iTunes Library.itlp");
  EXPECT_THAT(refusal(empty), EndsWith("no database here: the folder has no Library.itdb"));
}

}  // namespace
}  // namespace player
