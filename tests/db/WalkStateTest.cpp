// Where a load's walk stands at its end, and what of the database it leaves alone.
#include <gtest/gtest.h>
#include <string>

#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/model/Loader.h"
#include "tests/model/Queries.h"

namespace db_test {
namespace {

using samples::ChunkWriter;
using samples::Kind;
using samples::Variant;

class WalkState : public testing::TestWithParam<Variant> {
 protected:
  static bool Little() { return GetParam() == Variant::LittleEndian; }

  // A file of one data set after the header.
  static ChunkWriter File(uint32_t dataSetType) {
    ChunkWriter out(GetParam());
    samples::BeginFile(out, 1, 24);
    out.Begin(Kind::DataSet, 16, dataSetType);
    return out;
  }

  int32_t Load(const ChunkWriter &out) { return db_test::Load(database_, out.Bytes()); }

  CiTunesDB database_;
};

INSTANTIATE_TEST_SUITE_P(Loader, WalkState, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(WalkState, WalkLeavesItsStateBehind) {
  ChunkWriter out = File(2);
  AppendTrack(out, {.id = 1});
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.infoType, Little() ? 1 : 5);
  EXPECT_EQ(database_.listType, 2);
  EXPECT_EQ(database_.tarSong, &std::as_const(database_).songs[0]);
  out.Begin(Kind::Playlist, 0x30);
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.infoType, Little() ? 2 : 6);
  EXPECT_EQ(database_.tarPlay, &database_.plays[0]);
  out.Begin(Kind::Entry, 0x20);
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.infoType, Little() ? 3 : 7);
  EXPECT_EQ(database_.error, 0);
}

TEST_P(WalkState, CountOfObjectsStillToComeRunsDownWithEachObject) {
  ChunkWriter out = File(2);
  const size_t track = out.Begin(Kind::Track, 0xd4);
  out.PutWord(track + 8, 10);
  for (int i = 0; i < 3; ++i) AppendObject(out, samples::TextObject(50, u"x"));
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.odcount, 7);
  size_t chunk = out.Begin(Kind::Playlist, 0x30);
  out.PutWord(chunk + 8, 0x80000000);
  AppendObject(out, samples::TextObject(50, u"x"));
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.odcount, INT32_MAX);
  chunk = out.Begin(Kind::Entry, 0x20);
  out.PutWord(chunk + 8, 5);
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.odcount, 5);
}

TEST_P(WalkState, CountOfObjectsRunsDownForThoseThatStoreNothingToo) {
  ChunkWriter out = File(2);
  AppendObject(out, samples::TextObject(1, u"nobody's"));
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.odcount, -1);

  const size_t track = out.Begin(Kind::Track, 0xd4);
  out.PutWord(track + 8, 10);
  samples::DataObject unused = samples::TextObject(3, u"unused");
  unused.usedWord = 1;
  AppendObject(out, unused);
  AppendObject(out, samples::TextObject(3, u""));
  AppendObject(out, samples::RawObject(4, ""));
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.odcount, 7);

  const size_t entry = out.Begin(Kind::Entry, 0x20);
  out.PutWord(entry + 8, 20);
  AppendObject(out, samples::PositionObject(GetParam(), 1));
  samples::DataObject endless = samples::TextObject(3, u"endless");
  endless.totalLength = 0;
  AppendObject(out, endless);
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.odcount, -1 + 1 + 18) << "an entry without a playlist counts as well";
}

TEST_P(WalkState, CountOfObjectsIsNotThatOfPlaylistsAndEntriesOfOtherDataSets) {
  ChunkWriter out = File(2);
  const size_t list = out.Begin(Kind::Playlist, 0x30);
  out.PutWord(list + 8, 7);
  out.Begin(Kind::DataSet, 16, 3);
  for (const Kind kind : {Kind::Playlist, Kind::Entry}) out.PutWord(out.Begin(kind, 0x30) + 8, 50);
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.odcount, 7);
  EXPECT_EQ(database_.infoType, Little() ? 3 : 7) << "but the record being filled is that entry";
}

TEST_P(WalkState, IsThatOfTheFileBeforeWhereASecondLoadBegins) {
  ChunkWriter first = File(2);
  AppendTrack(first, {.id = 4});
  const size_t list = first.Begin(Kind::Playlist, 0x30);
  first.PutWord(list + 8, 30);
  ASSERT_EQ(Load(first), 1);
  const CSongList *song = database_.tarSong;
  const CPlayList *playlist = database_.tarPlay;

  ChunkWriter headerAlone(GetParam());
  samples::BeginFile(headerAlone, 0, 16);
  ASSERT_EQ(Load(headerAlone), 1);
  EXPECT_EQ(database_.listType, 2);
  EXPECT_EQ(database_.infoType, Little() ? 2 : 6);
  EXPECT_EQ(database_.odcount, 30);
  EXPECT_EQ(database_.tarSong, song);
  EXPECT_EQ(database_.tarPlay, playlist);

  // The count of objects goes on, and the entry finds its playlist without a data set or a playlist before
  // it.
  AppendObject(headerAlone, samples::TextObject(50, u"x"));
  ASSERT_EQ(Load(headerAlone), 1);
  EXPECT_EQ(database_.odcount, 29);
  AppendEntry(headerAlone, {.ref = 4});
  ASSERT_EQ(Load(headerAlone), 1);
  EXPECT_EQ(database_.plays[0].refnum.size(), 1U);
}

TEST_P(WalkState, LeavesAloneWhatNoFileHolds) {
  ASSERT_EQ(db_test::Load(database_, SmallLibrary(GetParam())), 1);
  database_.songs[0].comment = {1, 2, "a comment"};
  database_.songs[0].error = 3;
  database_.plays[0].error = 4;
  database_.useSJIS = true;
  database_.vln = "Volume";
  database_.error = 5;
  database_.defaultIndex = 6;
  samples::Track track{.id = 9};
  for (uint32_t type = 0; type < 20; ++type) track.objects.push_back(samples::TextObject(type, u"text"));
  const samples::Library library = samples::OrdinaryLibrary({track}, {{.name = u"list"}});
  ASSERT_EQ(db_test::Load(database_, samples::WriteLibrary(library, GetParam())), 1);

  EXPECT_EQ(database_.songs[0].comment.obj.View(), "a comment");
  EXPECT_EQ(database_.songs[0].comment.idx, 1);
  EXPECT_EQ(database_.songs[0].comment.enc, 2U);
  EXPECT_EQ(database_.songs[0].error, 3);
  EXPECT_EQ(database_.plays[0].error, 4);
  EXPECT_TRUE(database_.useSJIS);
  EXPECT_EQ(database_.vln.View(), "Volume");
  EXPECT_EQ(database_.error, 5);
  EXPECT_EQ(database_.defaultIndex, 6);
  ASSERT_EQ(database_.songs.size(), 4U);
  EXPECT_TRUE(database_.songs[3].comment.obj.empty());
  EXPECT_EQ(database_.songs[3].error, 0);
  EXPECT_EQ(database_.plays.back().error, 0);
}

TEST_P(WalkState, GroupsAreNumberedEvenWhenTheFileIsOnlyAHeader) {
  std::vector<model::Song> expected;
  for (const char *artist : {"a", "b", "a", "b"}) {
    CSongList song;
    for (songInfo *cell : {&song.artist, &song.album, &song.filetype}) *cell = {-1, 1, artist};
    database_.songs.push_back(song);
    expected.push_back(Plain(song));
  }
  ChunkWriter headerAlone(GetParam());
  samples::BeginFile(headerAlone, 0, 16);
  ASSERT_EQ(Load(headerAlone), 1);
  model::SetSongsObjectIndex(expected);
  EXPECT_EQ(Plain(database_).songs, expected);
  EXPECT_EQ(database_.songs[2].artist.idx, 1);
}

TEST(LittleEndianFile, ObjectOfAnotherTypeInAPlaylistIsNotSwapped) {
  // The swap of an odd text would reach into the tag of the track behind it.
  for (const uint32_t type : {0U, 2U, 3U, 100U}) {
    ChunkWriter out(Variant::LittleEndian);
    samples::BeginFile(out, 1, 24);
    out.Begin(Kind::DataSet, 16, 2);
    out.Begin(Kind::Playlist, 0x30);
    AppendObject(out, samples::EightBitObject(type, "abc", 1));
    out.Begin(Tag(Kind::Track, Variant::BigEndian), 0xd4);
    CiTunesDB database;
    ASSERT_EQ(Load(database, out.Bytes()), 1);
    EXPECT_EQ(database.songs.size(), 1U) << type;
    EXPECT_TRUE(database.plays[0].name.obj.empty());
  }
}

}  // namespace
}  // namespace db_test
