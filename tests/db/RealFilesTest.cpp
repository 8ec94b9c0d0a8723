#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/model/Loader.h"
#include "tests/support/Folders.h"

namespace db_test {
namespace {

struct RealFile {
  const char *name;
  int32_t libType;
  size_t songs;
  size_t playlists;
  size_t entries;
};

void PrintTo(const RealFile &file, std::ostream *out) { *out << file.name; }

class RealFiles : public testing::TestWithParam<RealFile> {};

INSTANTIATE_TEST_SUITE_P(Loader, RealFiles,
                         testing::Values(RealFile{"small-japanese.itunesdb", 1, 2, 1, 2},
                                         RealFile{"library-1181-songs.itunesdb", 1, 1181, 8, 2205},
                                         RealFile{"one-song-old-header.itunesdb", 1, 1, 1, 1},
                                         RealFile{"empty-two-playlists.itunesdb", 1, 0, 2, 0},
                                         RealFile{"big-endian-1.1.2.library", 0, 5, 4, 11},
                                         RealFile{"big-endian-3.0.library", 0, 1, 1, 1},
                                         RealFile{"big-endian-4.6.library", 0, 1, 5, 4},
                                         RealFile{"encrypted.library", 0, 0, 0, 0}));

TEST_P(RealFiles, HoldTheSongsPlaylistsAndEntriesThatTheyShould) {
  const std::filesystem::path path = support::SharedFolder() / "data/real" / GetParam().name;
  if (!exists(path)) GTEST_SKIP() << "no collection of real files here";
  std::ifstream stream(path, std::ios::binary);
  const std::string file{std::istreambuf_iterator<char>(stream), {}};

  CiTunesDB database;
  ASSERT_EQ(Load(database, file), 1);
  EXPECT_EQ(database.libType, GetParam().libType);
  EXPECT_EQ(database.songs.size(), GetParam().songs);
  EXPECT_EQ(database.plays.size(), GetParam().playlists);
  size_t entries = 0;
  for (const CPlayList &list : database.plays) entries += list.refnum.size();
  EXPECT_EQ(entries, GetParam().entries);

  model::Database expected;
  ASSERT_TRUE(model::Load(file, expected));
  EXPECT_EQ(Plain(database), expected);
}

}  // namespace
}  // namespace db_test
