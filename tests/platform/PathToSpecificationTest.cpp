// POSIX paths become specifications: CarbonSpecFromPath.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "tests/platform/MountedVolume.h"

namespace {

namespace fs = std::filesystem;

class PathToSpecification : public MountedVolume {
 protected:
  void TearDown() override { fs::current_path("/"); }

  // The specification's full path, or the code in its place when that is not the expected one.
  static std::string macPathFrom(const std::string &path, OSErr expected) {
    FSSpec spec;
    const OSErr result = CarbonSpecFromPath(path.c_str(), &spec);
    return result == expected && (result == noErr || result == fnfErr) ? macPath(spec)
                                                                       : std::to_string(result);
  }
};

TEST_F(PathToSpecification, NamesExistingAndMissingFiles) {
  folder_.write("Music/song");
  EXPECT_EQ(macPathFrom(at("Music/song"), noErr), "iPod:Music:song");
  EXPECT_EQ(macPathFrom(at("Music/later"), fnfErr), "iPod:Music:later");
  EXPECT_EQ(macPathFrom(at("Music"), noErr), "iPod:Music");
  EXPECT_EQ(macPathFrom(folder_.path(), noErr), "iPod:");
}

TEST_F(PathToSpecification, MissingParentIsDirectoryNotFound) {
  EXPECT_EQ(macPathFrom(at("absent/file"), dirNFErr), std::to_string(dirNFErr));
  folder_.write("plain");
  EXPECT_EQ(macPathFrom(at("plain/file"), dirNFErr), std::to_string(dirNFErr));
}

TEST_F(PathToSpecification, EmptyPathIsABadName) {
  EXPECT_EQ(macPathFrom("", bdNamErr), std::to_string(bdNamErr));
}

TEST_F(PathToSpecification, TidiesSlashesAndDots) {
  folder_.write("one/two/file");
  EXPECT_EQ(macPathFrom(at("one/./two//file"), noErr), "iPod:one:two:file");
  EXPECT_EQ(macPathFrom(at("one/two/../two/file"), noErr), "iPod:one:two:file");
  EXPECT_EQ(macPathFrom(at("one/two/"), noErr), "iPod:one:two");
  EXPECT_EQ(macPathFrom(at("one/two/.."), noErr), "iPod:one");
  EXPECT_EQ(macPathFrom(at("one/new/"), fnfErr), "iPod:one:new");
  EXPECT_EQ(macPathFrom("//", noErr), "System:");
  EXPECT_EQ(macPathFrom("/absent for sure", fnfErr), "System:absent for sure");
}

TEST_F(PathToSpecification, WayUpBehindALinkIsTheTargetsParent) {
  folder_.write("one/two/file");
  folder_.write("one/mark");
  fs::create_directory_symlink("one/two", at("link"));
  EXPECT_EQ(macPathFrom(at("link/../mark"), noErr), "iPod:one:mark");
}

TEST_F(PathToSpecification, LinkIntoAVolumeLeadsToTheVolume) {
  folder_.write("iPod_Control/file");
  const support::TemporaryFolder elsewhere;
  fs::create_directory_symlink(folder_.path(), elsewhere.path() / "player");
  EXPECT_EQ(macPathFrom(elsewhere.path() / "player/iPod_Control/file", noErr), "iPod:iPod_Control:file");
  EXPECT_EQ(macPathFrom(elsewhere.path() / "player", noErr), "iPod:");
}

TEST_F(PathToSpecification, LinkToAFileKeepsItsOwnName) {
  folder_.write("real");
  fs::create_symlink("real", at("link"));
  EXPECT_EQ(macPathFrom(at("link"), noErr), "iPod:link");
}

TEST_F(PathToSpecification, RelativePathStartsAtTheWorkingDirectory) {
  folder_.write("Music/song");
  fs::current_path(at("Music"));
  EXPECT_EQ(macPathFrom("song", noErr), "iPod:Music:song");
  EXPECT_EQ(macPathFrom("../Music/song", noErr), "iPod:Music:song");
  EXPECT_EQ(macPathFrom("new", fnfErr), "iPod:Music:new");
  EXPECT_EQ(macPathFrom(".", noErr), "iPod:Music");
  EXPECT_EQ(macPathFrom("..", noErr), "iPod:");
}

TEST_F(PathToSpecification, RelativePathInARemovedDirectoryIsDirectoryNotFound) {
  folder_.makeDirectory("gone");
  fs::current_path(at("gone"));
  fs::remove(at("gone"));
  EXPECT_EQ(macPathFrom("file", dirNFErr), std::to_string(dirNFErr));
}

TEST_F(PathToSpecification, NameThatIsNotUtf8IsTakenByItsBytes) {
  const std::string latin1 = folder_.write("caf\xE9");
  FSSpec spec;
  ASSERT_EQ(CarbonSpecFromPath(latin1.c_str(), &spec), noErr);
  EXPECT_EQ(nameOf(spec), "caf\xE9");
  EXPECT_EQ(posixPath(spec), latin1);
}

}  // namespace
