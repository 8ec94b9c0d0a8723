// Directory identifiers stay with their directory, or name nothing; never another directory.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <thread>

#include "tests/platform/MountedVolume.h"

namespace {

namespace fs = std::filesystem;

class DirectoryIdentifier : public MountedVolume {
 protected:
  static FSSpec specOf(const std::string &path) {
    FSSpec spec = {};
    const OSErr result = makeSpec(path, spec);
    EXPECT_TRUE(result == noErr || result == fnfErr) << path << ": " << result;
    return spec;
  }

  static void expectGone(const FSSpec &spec) {
    EXPECT_EQ(posixPath(spec), std::to_string(dirNFErr));
    EXPECT_EQ(macPath(spec), std::to_string(fnfErr));
    FSSpec other = specification(7, 8, "untouched");
    EXPECT_EQ(makeSpec(spec.vRefNum, spec.parID, "file", other), dirNFErr);
    EXPECT_EQ(nameOf(other), "untouched");
  }
};

TEST_F(DirectoryIdentifier, IsTheSameForOneDirectoryHoweverOftenAndHoweverNamed) {
  folder_.write("Music/F00/file");
  const int32_t id = specOf("iPod:Music:F00:file").parID;
  const int32_t parent = specOf("iPod:Music:F00").parID;
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(specOf("iPod:music:f00:other").parID, id);
    ASSERT_EQ(specOf("iPod:Music:F00:::Music:F00:file").parID, id);
    fs::rename(at("Music/F00"), at("Music/F01"));
    ASSERT_EQ(specOf("iPod:Music:F01:file").parID, id);
    fs::rename(at("Music/F01"), at("Music/F00"));
  }
  folder_.makeDirectory("Next/New");
  EXPECT_LE(specOf("iPod:Next:New:file").parID, std::max(id, parent) + 2)
      << "no number was used up meanwhile";
}

TEST_F(DirectoryIdentifier, FollowsARenamedDirectory) {
  folder_.write("before/file");
  const FSSpec spec = specOf("iPod:before:file");
  fs::rename(at("before"), at("after"));
  EXPECT_EQ(posixPath(spec), at("after/file"));
  EXPECT_EQ(macPath(spec), "iPod:after:file");
  FSSpec other;
  EXPECT_EQ(makeSpec(spec.vRefNum, spec.parID, "FILE", other), noErr);
}

TEST_F(DirectoryIdentifier, FollowsARenamedDirectoryFurtherUp) {
  folder_.write("one/two/three/file");
  const FSSpec spec = specOf("iPod:one:two:three:file");
  fs::rename(at("one"), at("uno"));
  fs::rename(at("uno/two/three"), at("uno/two/tre"));
  EXPECT_EQ(posixPath(spec), at("uno/two/tre/file"));
}

TEST_F(DirectoryIdentifier, FollowsDirectoriesThatSwapNames) {
  folder_.write("a/from a");
  folder_.write("b/from b");
  const FSSpec fromA = specOf("iPod:a:from a");
  const FSSpec fromB = specOf("iPod:b:from b");
  fs::rename(at("a"), at("c"));
  fs::rename(at("b"), at("a"));
  fs::rename(at("c"), at("b"));
  EXPECT_EQ(posixPath(fromA), at("b/from a"));
  EXPECT_EQ(posixPath(fromB), at("a/from b"));
  EXPECT_EQ(specOf("iPod:a:from b").parID, fromB.parID);
}

TEST_F(DirectoryIdentifier, ReferenceFollowsARenamedDirectory) {
  folder_.write("before/file");
  const FSSpec spec = specOf("iPod:before:file");
  FSRef ref;
  ASSERT_EQ(FSpMakeFSRef(&spec, &ref), noErr);
  fs::rename(at("before"), at("after"));
  std::string path(4096, '\0');
  ASSERT_EQ(FSRefMakePath(&ref, reinterpret_cast<uint8_t *>(path.data()), 4096), noErr);
  EXPECT_EQ(path.c_str(), at("after/file"));
}

TEST_F(DirectoryIdentifier, NamesNothingOnceTheDirectoryIsRemoved) {
  folder_.write("gone/file");
  const FSSpec spec = specOf("iPod:gone:file");
  FSRef ref;
  ASSERT_EQ(FSpMakeFSRef(&spec, &ref), noErr);
  fs::remove_all(at("gone"));
  expectGone(spec);
  uint8_t byte = 0;
  EXPECT_EQ(FSRefMakePath(&ref, &byte, 1), fnfErr);
}

TEST_F(DirectoryIdentifier, NamesNothingOnceAFileTookTheDirectorysName) {
  folder_.write("name/file");
  const FSSpec spec = specOf("iPod:name:file");
  fs::remove_all(at("name"));
  folder_.write("name");
  expectGone(spec);
}

// Some file systems give the second directory the inode number of the first.
TEST_F(DirectoryIdentifier, IsNotInheritedByALaterDirectory) {
  for (int i = 0; i < 20; ++i) {
    folder_.makeDirectory("old");
    const FSSpec spec = specOf("iPod:old:file");
    fs::remove(at("old"));
    std::this_thread::sleep_for(std::chrono::milliseconds(15));  // file times have steps
    folder_.makeDirectory("new");
    expectGone(spec);
    EXPECT_NE(specOf("iPod:new:file").parID, spec.parID);
    fs::remove(at("new"));
  }
}

TEST_F(DirectoryIdentifier, IsNotInheritedByALaterDirectoryOfTheSameName) {
  folder_.write("name/file");
  const FSSpec before = specOf("iPod:name:file");
  fs::remove_all(at("name"));
  std::this_thread::sleep_for(std::chrono::milliseconds(20));  // file times have steps
  folder_.write("name/file");
  expectGone(before);
  const FSSpec after = specOf("iPod:name:file");
  EXPECT_NE(after.parID, before.parID);
  EXPECT_EQ(posixPath(after), at("name/file"));
}

TEST_F(DirectoryIdentifier, NamesNothingWhileTheDirectoryIsMovedAway) {
  folder_.write("one/folder/file");
  folder_.makeDirectory("two");
  const FSSpec spec = specOf("iPod:one:folder:file");
  fs::rename(at("one/folder"), at("two/folder"));
  expectGone(spec);
  EXPECT_EQ(posixPath(specOf("iPod:two:folder:file")), at("two/folder/file"));
  fs::rename(at("two/folder"), at("one/back"));
  EXPECT_EQ(posixPath(spec), at("one/back/file"));
}

TEST_F(DirectoryIdentifier, RenamedToANameTooLongStillHoldsItsFiles) {
  folder_.write("short/file");
  const FSSpec spec = specOf("iPod:short:file");
  const std::string tooLong(200, 'n');
  fs::rename(at("short"), at(tooLong));
  EXPECT_EQ(posixPath(spec), at(tooLong + "/file"));
  FSSpec itself;
  EXPECT_EQ(makeSpec(spec.vRefNum, spec.parID, ":", itself), bdNamErr);
}

TEST_F(DirectoryIdentifier, NeverGivenOutNamesNothing) {
  for (const int32_t id :
       {0, -1, -2, 1000000, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()}) {
    const FSSpec spec = specification(volume_, id, "file");
    EXPECT_EQ(posixPath(spec), std::to_string(dirNFErr)) << id;
    EXPECT_EQ(macPath(spec), std::to_string(fnfErr)) << id;
  }
  FSSpec spec;
  EXPECT_EQ(makeSpec(volume_, 1000000, "file", spec), dirNFErr);
}

TEST_F(DirectoryIdentifier, KeepsNoDirectoryOpen) {
  folder_.write("one/two/file");
  const auto openFiles = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  if (!fs::exists("/proc/self/fd")) GTEST_SKIP() << "the system does not list open files";
  const auto before = openFiles();
  const FSSpec spec = specOf("iPod:ONE:two:FILE");
  posixPath(spec);
  macPath(spec);
  FSSpec other;
  makeSpec("iPod:absent:file", other);
  makeSpec("absent:file", other);
  CarbonSpecFromPath(at("one/two/file").c_str(), &other);
  EXPECT_EQ(openFiles(), before);
}

}  // namespace
