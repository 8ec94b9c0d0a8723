// What a shuffle plays from, in both forms, whole and damaged.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#include "player/ShuffleDatabase.h"
#include "tests/player/ShuffleFiles.h"
#include "tests/support/Folders.h"

namespace player {
namespace {

std::vector<std::string> pathsOf(const std::string &bytes) {
  std::vector<std::string> paths;
  const auto found = readShuffleDatabase(bytes);
  for (size_t i = 0; found && i < found->songs.size(); ++i) paths.push_back(found->songs[i].path);
  return paths;
}

const std::vector<std::string> kPaths = {"/iPod_Control/Music/F00/A.mp3", "/iPod_Control/Music/F01/B.m4a"};

TEST(ShuffleDatabase, OlderFormHoldsPaths) {
  const auto found = readShuffleDatabase(olderShuffleList(kPaths));
  ASSERT_TRUE(found);
  EXPECT_EQ(pathsOf(olderShuffleList(kPaths)), kPaths);
  EXPECT_FALSE(found->isCutShort);
  EXPECT_EQ(found->songs[0].persistentId, std::nullopt);
  EXPECT_EQ(found->summary(), "it lists 2 songs");
}

TEST(ShuffleDatabase, NewerFormHoldsPathsAndIds) {
  const auto found = readShuffleDatabase(newerShuffleList(kPaths));
  ASSERT_TRUE(found);
  EXPECT_EQ(pathsOf(newerShuffleList(kPaths)), kPaths);
  EXPECT_EQ(found->songs[0].persistentId, 1000U);
  EXPECT_EQ(found->songs[1].persistentId, 1001U);
  EXPECT_FALSE(found->isCutShort);
}

TEST(ShuffleDatabase, EmptyListsAreWhole) {
  std::string withPlace = newerShuffleList({});
  withPlace[0x24] = '\x40';
  for (const std::string &bytes : {olderShuffleList({}), newerShuffleList({}), withPlace}) {
    const auto found = readShuffleDatabase(bytes);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->songs.size(), 0U);
    EXPECT_FALSE(found->isCutShort);
  }
}

TEST(ShuffleDatabase, EveryCutKeepsTheSongsBeforeIt) {
  for (const std::string &whole : {olderShuffleList(kPaths), newerShuffleList(kPaths)}) {
    size_t most = 0;
    for (size_t size = 0; size < whole.size(); ++size) {
      const auto found = readShuffleDatabase(whole.substr(0, size));
      if (!found) continue;
      EXPECT_GE(found->songs.size(), most);
      most = found->songs.size();
      EXPECT_LE(most, 1U);
      EXPECT_TRUE(found->isCutShort || found->declaredSongs == 0) << size;
    }
    EXPECT_EQ(most, 1U);
  }
}

TEST(ShuffleDatabase, OtherFilesAreNone) {
  EXPECT_EQ(readShuffleDatabase(""), std::nullopt);
  EXPECT_EQ(readShuffleDatabase(std::string(600, '\0')), std::nullopt);
  EXPECT_EQ(readShuffleDatabase("mhbd" + std::string(600, '\0')), std::nullopt);
  EXPECT_EQ(readShuffleDatabase("bdhs" + std::string(kMostShuffleBytes, '\0')), std::nullopt);
}

TEST(ShuffleDatabase, OffsetsBehindTheEndEndTheList) {
  std::string bytes = newerShuffleList(kPaths);
  bytes.replace(0x40 + 0x18, 4, "\xFF\xFF\xFF\xFF");
  const auto found = readShuffleDatabase(bytes);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->songs.size(), 1U);
  EXPECT_TRUE(found->isCutShort);
  bytes.replace(0x24, 4, "\xFF\xFF\xFF\xFF");
  EXPECT_EQ(readShuffleDatabase(bytes)->songs.size(), 0U);
  bytes = newerShuffleList(kPaths);
  bytes.replace(0x0c, 4, "\xFF\xFF\xFF\xFF");
  EXPECT_EQ(readShuffleDatabase(bytes)->summary(), "it lists 2 songs, and announces 4294967295");
}

TEST(ShuffleDatabase, SongsThatShareAPlaceAreNotMoreThanTheFileHasRoomFor) {
  std::string bytes = newerShuffleList(std::vector<std::string>(100, kPaths[0]));
  const std::string first = bytes.substr(0x40 + 0x14, 4);
  for (size_t i = 1; i < 100; ++i) bytes.replace(0x40 + 0x14 + 4 * i, 4, first);
  bytes.resize(0x40 + 0x14 + 400 + 0x174 * 10);
  const auto found = readShuffleDatabase(bytes);
  ASSERT_TRUE(found);
  EXPECT_LE(found->songs.size() * 0x118, bytes.size());
  EXPECT_TRUE(found->isCutShort);
}

TEST(ShuffleCounts, HoldPlaysAndSkipsOfBothForms) {
  for (const std::string &bytes :
       {olderShuffleCounts({{3, 1}, {0, 2}}), newerShuffleCounts({{3, 1}, {0, 2}})}) {
    const auto counts = readShuffleCounts(bytes);
    ASSERT_TRUE(counts);
    ASSERT_EQ(counts->size(), 2U);
    EXPECT_EQ(counts->at(0).plays, 3U);
    EXPECT_EQ(counts->at(0).skips, 1U);
    EXPECT_EQ(counts->at(1).plays, 0U);
    EXPECT_EQ(counts->at(1).skips, 2U);
  }
  EXPECT_EQ(readShuffleCounts(olderShuffleCounts({}))->size(), 0U);
  EXPECT_EQ(readShuffleCounts(newerShuffleCounts({}))->size(), 0U);
}

TEST(ShuffleCounts, EveryCutKeepsTheEntriesBeforeIt) {
  for (const std::string &whole :
       {olderShuffleCounts({{3, 1}, {4, 2}}), newerShuffleCounts({{3, 1}, {4, 2}})}) {
    for (size_t size = 0; size < whole.size(); ++size) {
      const auto counts = readShuffleCounts(whole.substr(0, size));
      EXPECT_LE(counts ? counts->size() : 0, 1U) << size;
    }
  }
  EXPECT_EQ(readShuffleCounts(std::string(100, 'x')), std::nullopt);
}

TEST(ShuffleDatabase, RealFilesAreReadWhole) {
  const auto folder = support::SharedFolder() / "data" / "players" / "shuffle";
  if (!exists(folder)) GTEST_SKIP() << "the collection of players is not there";
  const auto content = [&](const char *name) {
    std::ifstream in(folder / name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  const auto songs = readShuffleDatabase(content("iTunesSD-4th"));
  ASSERT_TRUE(songs);
  EXPECT_EQ(songs->songs.size(), 13U);
  EXPECT_FALSE(songs->isCutShort);
  EXPECT_EQ(songs->songs.front().path, "/iPod_Control/Music/F01/CWDY.mp3");
  const auto counts = readShuffleCounts(content("iTunesStats-4th"));
  ASSERT_TRUE(counts);
  EXPECT_EQ(counts->size(), 13U);
}

}  // namespace
}  // namespace player
