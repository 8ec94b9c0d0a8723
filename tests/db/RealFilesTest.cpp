#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <string>

#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/db/Questions.h"
#include "tests/model/Loader.h"
#include "tests/support/RealFiles.h"

namespace db_test {
namespace {

using support::RealFile;

std::string BytesOf(const std::filesystem::path &path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

size_t EntriesOf(const CiTunesDB &database) {
  size_t entries = 0;
  for (const CPlayList &list : database.plays) entries += list.refnum.size();
  return entries;
}

class RealFiles : public testing::TestWithParam<RealFile> {};

INSTANTIATE_TEST_SUITE_P(Loader, RealFiles, testing::ValuesIn(support::RealFiles()));

TEST_P(RealFiles, HoldTheSongsPlaylistsAndEntriesThatTheyShould) {
  const std::filesystem::path path = PathOf(GetParam());
  if (!exists(path)) GTEST_SKIP() << "no such real file here";
  const std::string file = BytesOf(path);

  CiTunesDB database;
  ASSERT_EQ(Load(database, file), 1);
  EXPECT_EQ(database.libType, GetParam().libType);
  EXPECT_EQ(database.songs.size(), GetParam().songs);
  EXPECT_EQ(database.plays.size(), GetParam().playlists);
  EXPECT_EQ(EntriesOf(database), GetParam().entries);

  model::Database expected;
  ASSERT_TRUE(model::Load(file, expected));
  EXPECT_EQ(Plain(database), expected);
}

// Whatever they hold: nothing is expected of a file that nobody has looked at yet, but that its answers
// agree.
TEST(NewRealFiles, AreReadAndListedAsUntested) {
  for (const std::filesystem::path &path : support::UntestedRealFiles()) {
    CiTunesDB database;
    const bool isRead = Load(database, BytesOf(path)) == 1;
    EXPECT_EQ(AskEverything(database), "") << path;
    std::cout << "untested: " << path.filename().string() << ", " << (isRead ? "read: " : "rejected: ")
              << database.songs.size() << " songs, " << database.plays.size() << " playlists, "
              << EntriesOf(database) << " entries\n";
  }
}

}  // namespace
}  // namespace db_test
