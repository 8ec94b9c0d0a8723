// The room that a load makes for the records that a list announces.
#include <gtest/gtest.h>
#include <string>

#include "tests/db/DatabaseFiles.h"

namespace db_test {
namespace {

using samples::ChunkWriter;
using samples::Kind;
using samples::Variant;

class Reservation : public testing::TestWithParam<Variant> {
 protected:
  // A file of two tracks and two playlists whose lists announce `count`.
  static std::string Announcing(uint32_t count, uint32_t playlistSet = 2, uint32_t trackSet = 1) {
    samples::Library library =
        samples::OrdinaryLibrary({{.id = 1}, {.id = 2}}, {{.name = u"a"}, {.name = u"b"}});
    library.sets[0].declaredCount = count;
    library.sets[1].declaredCount = count;
    library.sets[0].type = trackSet;
    library.sets[1].type = playlistSet;
    return samples::WriteLibrary(library, GetParam());
  }
};

INSTANTIATE_TEST_SUITE_P(Loader, Reservation, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(Reservation, IsOneMoreThanTheListAnnounces) {
  CiTunesDB database;
  ASSERT_EQ(Load(database, Announcing(5)), 1);
  EXPECT_EQ(database.songs.size(), 2U);
  EXPECT_EQ(database.songs.capacity(), 6U);
  EXPECT_EQ(database.plays.size(), 2U);
  EXPECT_EQ(database.plays.capacity(), 6U);
}

TEST_P(Reservation, IsNeverMoreThanTheRestOfTheFileCouldHold) {
  for (const uint32_t count : {100000U, 0x7fffffffU, 0x80000000U, 0xfffffffeU}) {
    const std::string file = Announcing(count);
    CiTunesDB database;
    ASSERT_EQ(Load(database, file), 1);
    EXPECT_EQ(database.songs.size(), 2U);
    EXPECT_LE(database.songs.capacity(), file.size() / 16);
    EXPECT_LE(database.plays.capacity(), file.size() / 16);
  }
}

TEST_P(Reservation, OfTheGreatestCountWrapsToNothing) {
  CiTunesDB database;
  ASSERT_EQ(Load(database, Announcing(0xffffffff)), 1);
  EXPECT_EQ(database.songs.size(), 2U);
  EXPECT_LE(database.songs.capacity(), 2U);
  EXPECT_EQ(database.plays.size(), 2U);
}

TEST_P(Reservation, IsMadeForPlaylistsInAPlaylistDataSetAlone) {
  CiTunesDB database;
  ASSERT_EQ(Load(database, Announcing(5, 3)), 1);
  EXPECT_EQ(database.plays.capacity(), 0U);
}

TEST_P(Reservation, IsMadeForSongsInAnyDataSet) {
  for (const uint32_t set : {0U, 1U, 2U, 3U, 0xffffffffU}) {
    CiTunesDB database;
    ASSERT_EQ(Load(database, Announcing(5, 2, set)), 1);
    EXPECT_EQ(database.songs.capacity(), 6U) << set;
  }
}

TEST_P(Reservation, IsBoundByTheRestOfTheFileNotByAllOfIt) {
  ChunkWriter out(GetParam());
  samples::BeginFile(out, 1, 16);
  out.Begin(Kind::DataSet, 16, 2);
  out.Begin("abcd", 32000);
  const size_t list = out.Size();
  for (const Kind kind : {Kind::TrackList, Kind::PlaylistList}) out.PutWord(out.Begin(kind, 16) + 8, 1000000);
  out.Begin("abcd", 1600);
  CiTunesDB database;
  ASSERT_EQ(Load(database, out.Bytes()), 1);
  EXPECT_EQ(database.songs.capacity(), (out.Size() - list) / 16);
  EXPECT_EQ(database.plays.capacity(), (out.Size() - list) / 16 - 1);
}

}  // namespace
}  // namespace db_test
