#include <gtest/gtest.h>
#include <string>

#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"

namespace db_test {
namespace {

using namespace std::string_literals;
using samples::ChunkWriter;
using samples::Kind;
using samples::Variant;

// A chunk of the kind whose bytes from 0x10 on are their own offsets.
size_t AppendPattern(ChunkWriter &out, Kind kind, uint32_t length, uint32_t count = 0) {
  const size_t chunk = out.Begin(kind, length, count);
  for (uint32_t i = 0x10; i < length; ++i) out.PutByte(chunk + i, static_cast<uint8_t>(i));
  return chunk;
}

class EachVariant : public testing::TestWithParam<Variant> {
 protected:
  static bool Little() { return GetParam() == Variant::LittleEndian; }
  // The word whose four bytes are their own offsets from `first` on.
  static uint32_t Word(uint32_t first) {
    const uint32_t big = first << 24 | (first + 1) << 16 | (first + 2) << 8 | (first + 3);
    const uint32_t little = first | (first + 1) << 8 | (first + 2) << 16 | (first + 3) << 24;
    return Little() ? little : big;
  }
  static int32_t Signed(uint32_t first) { return static_cast<int32_t>(Word(first)); }

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

INSTANTIATE_TEST_SUITE_P(Loader, EachVariant, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(EachVariant, IsRememberedAsLibType) {
  ASSERT_EQ(Load(File(1)), 1);
  EXPECT_EQ(database_.libType, Little() ? 1 : 0);
}

TEST_P(EachVariant, TrackFieldsStandAtTheirOffsets) {
  ChunkWriter out = File(1);
  AppendPattern(out, Kind::Track, 0xd4);
  ASSERT_EQ(Load(out), 1);
  ASSERT_EQ(database_.songs.size(), 1U);
  const CSongList &song = database_.songs[0];
  EXPECT_EQ(song.id, Signed(0x10));
  EXPECT_EQ(song.res[0], Signed(0x14));
  EXPECT_EQ(song.res[1], Signed(0x18));
  EXPECT_EQ(song.res[2], Signed(0x1c));
  EXPECT_EQ(song.res[3], Signed(0x20));
  EXPECT_EQ(song.filesize, Word(0x24));
  EXPECT_EQ(song.duration, Word(0x28));
  EXPECT_EQ(song.track.num, Word(0x2c));
  EXPECT_EQ(song.track.total, Word(0x30));
  EXPECT_EQ(song.year, Word(0x34));
  EXPECT_EQ(song.moviefileflag, 0xb1);
  EXPECT_EQ(song.mediaType, Word(0xd0));
  EXPECT_EQ(song.error, 0);
}

TEST_P(EachVariant, BitRateAndSampleRateAreTakenHighByteFirst) {
  ChunkWriter out = File(1);
  AppendPattern(out, Kind::Track, 0xd4);
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(std::as_const(database_).songs[0].bitrate, 0x38393a3bU);
  EXPECT_EQ(std::as_const(database_).songs[0].samplerate, 0x3c3d3e3fU);
}

TEST(LittleEndianFile, BitRate128StoredAs80000000IsKept0x80000000) {
  CiTunesDB database;
  const samples::Library library = samples::OrdinaryLibrary({{.bitrate = 128}}, {});
  ASSERT_EQ(Load(database, samples::WriteLibrary(library, Variant::LittleEndian)), 1);
  EXPECT_EQ(database.SongsProp(0, 8), INT32_MIN);
}

TEST_P(EachVariant, TrackGetsItsDisplayText) {
  ASSERT_EQ(
      db_test::Load(database_, samples::WriteLibrary(
                                   samples::OrdinaryLibrary({{.number = 5, .total = 12}}, {}), GetParam())),
      1);
  EXPECT_EQ(database_.SongsObject(0, -100).View(), "05/12");
}

TEST_P(EachVariant, TrackHeaderShorterThanItsFieldsTakesThemFromWhatFollows) {
  ChunkWriter out = File(1);
  const size_t chunk = AppendPattern(out, Kind::Track, 0xd4);
  out.PutWord(chunk + 4, 0x9c);
  ASSERT_EQ(Load(out), 1);
  const CSongList &song = database_.songs[0];
  EXPECT_EQ(song.moviefileflag, 0xb1);
  EXPECT_EQ(song.mediaType, Word(0xd0));
}

TEST_P(EachVariant, PlaylistTakesItsTypesAndItsName) {
  ChunkWriter out = File(2);
  AppendPattern(out, Kind::Playlist, 0x2d, 0x80000001);
  AppendObject(out, samples::TextObject(Little() ? 1 : 100, u"Nocturnes"));
  ASSERT_EQ(Load(out), 1);
  ASSERT_EQ(database_.plays.size(), 1U);
  const CPlayList &list = database_.plays[0];
  EXPECT_EQ(list.listType, INT32_MIN + 1);
  EXPECT_EQ(list.listTypeII, 0x2c);
  EXPECT_EQ(list.name.obj.View(), HighByteFirst(u"Nocturnes"));
  EXPECT_EQ(list.name.enc, Utf16Code(GetParam()));
  EXPECT_EQ(list.name.idx, -1);
}

TEST_P(EachVariant, SecondPlaylistTypeIsAnUnsignedByte) {
  ChunkWriter out = File(2);
  const size_t chunk = AppendPattern(out, Kind::Playlist, 0x2d);
  out.PutByte(chunk + 0x2c, 0xff);
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.plays[0].listTypeII, 255);
}

TEST_P(EachVariant, EntryFieldsStandAtTheirOffsets) {
  ChunkWriter out = File(2);
  out.Begin(Kind::Playlist, 0x30);
  AppendPattern(out, Kind::Entry, 0x20);
  ASSERT_EQ(Load(out), 1);
  ASSERT_EQ(database_.plays[0].refnum.size(), 1U);
  const refidx &entry = database_.plays[0].refnum[0];
  EXPECT_EQ(entry.ply, Signed(0x10));
  EXPECT_EQ(entry.ref, Signed(0x18));
  EXPECT_EQ(entry.idx, 0);
  EXPECT_EQ(entry.flg, 0);
}

TEST_P(EachVariant, EntriesAreResolvedToTheSongsTheyName) {
  const samples::Library library =
      samples::OrdinaryLibrary({{.id = 10}, {.id = 20}, {.id = 30}, {.id = 20}},
                               {{.name = u"a", .entries = {{.ref = 30}, {.ref = 20, .ply = 1}, {.ref = 10}}},
                                {.entries = {{.ref = 20}}}});
  ASSERT_EQ(db_test::Load(database_, samples::WriteLibrary(library, GetParam())), 1);
  const std::vector<model::Entry> expected = {{30, 2, 0, 0}, {20, 1, 1, 0}, {10, 0, 0, 0}};
  EXPECT_EQ(Plain(database_).plays[0].entries, expected);
  EXPECT_EQ(Plain(database_).plays[1].entries, (std::vector<model::Entry>{{20, 1, 0, 0}}));
}

TEST_P(EachVariant, EntryWithUnknownTrackPointsAtFirstSong) {
  const samples::Library library =
      samples::OrdinaryLibrary({{.id = 10}, {.id = 20}}, {{.entries = {{.ref = 77}, {.ref = 0xffffffff}}}});
  ASSERT_EQ(db_test::Load(database_, samples::WriteLibrary(library, GetParam())), 1);
  const std::vector<model::Entry> expected = {{77, 0, 0, 0}, {-1, 0, 0, 0}};
  EXPECT_EQ(Plain(database_).plays[0].entries, expected);
}

TEST_P(EachVariant, PlaylistDataSetBeforeTheTracksResolvesEveryEntryToTheFirstSong) {
  samples::Library library =
      samples::OrdinaryLibrary({{.id = 10}, {.id = 20}}, {{.entries = {{.ref = 20}, {.ref = 10}}}});
  std::swap(library.sets[0], library.sets[1]);
  ASSERT_EQ(db_test::Load(database_, samples::WriteLibrary(library, GetParam())), 1);
  EXPECT_EQ(database_.songs.size(), 2U);
  const std::vector<model::Entry> expected = {{20, 0, 0, 0}, {10, 0, 0, 0}};
  EXPECT_EQ(Plain(database_).plays[0].entries, expected);
}

TEST_P(EachVariant, PlaylistsAreReadInDataSetsOfType2Alone) {
  for (const uint32_t type : {0U, 1U, 3U, 4U, 0x10002U, 0xfffffffeU}) {
    ChunkWriter out = File(type);
    out.Begin(Kind::PlaylistList, 16);
    AppendPlaylist(out, {.name = u"x", .entries = {{.ref = 1}}});
    ASSERT_EQ(Load(out), 1);
    EXPECT_TRUE(database_.plays.empty()) << type;
    EXPECT_EQ(database_.listType, static_cast<int32_t>(type));
  }
}

TEST_P(EachVariant, TracksAreReadInAnyDataSet) {
  for (const uint32_t type : {0U, 2U, 3U, 0xffffffffU}) {
    ChunkWriter out = File(type);
    AppendTrack(out, {.id = type});
    CiTunesDB database;
    ASSERT_EQ(db_test::Load(database, out.Bytes()), 1);
    ASSERT_EQ(database.songs.size(), 1U);
    EXPECT_EQ(database.SongsID(0), static_cast<int32_t>(type));
  }
}

TEST_P(EachVariant, TracksNeedNoListBeforeThem) {
  ChunkWriter out(GetParam());
  samples::BeginFile(out, 0, 16);
  AppendTrack(out, {.id = 5});
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.SongsID(0), 5);
}

TEST_P(EachVariant, ObjectsOfAnEntryAreIgnored) {
  ChunkWriter out = File(2);
  AppendTrack(out, {});
  AppendPlaylist(out, {.name = u"n"});
  out.Begin(Kind::Entry, 0x20);
  for (const uint32_t type : {1U, 2U, 7U, 100U}) AppendObject(out, samples::TextObject(type, u"entry"));
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.plays[0].name.obj.View(), HighByteFirst(u"n"));
  EXPECT_TRUE(std::as_const(database_).songs[0].title.obj.empty());
  EXPECT_TRUE(std::as_const(database_).songs[0].unknown.empty());
}

TEST_P(EachVariant, ObjectsOfAPlaylistOfAnotherDataSetAreIgnored) {
  ChunkWriter out = File(1);
  AppendTrack(out, {});
  out.Begin(Kind::DataSet, 16, 2);
  AppendPlaylist(out, {.name = u"n"});
  out.Begin(Kind::DataSet, 16, 3);
  out.Begin(Kind::Playlist, 0x30);
  AppendObject(out, samples::TextObject(Little() ? 1 : 100, u"podcast"));
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.plays[0].name.obj.View(), HighByteFirst(u"n"));
  EXPECT_TRUE(std::as_const(database_).songs[0].title.obj.empty());
}

TEST_P(EachVariant, NameObjectsInAPlaylistDataSetGoToTheLastPlaylistRead) {
  // The playlist chunk of the other data set makes no playlist, but the next data set opens its objects
  // again.
  ChunkWriter out = File(2);
  AppendPlaylist(out, {.name = u"n"});
  out.Begin(Kind::DataSet, 16, 3);
  out.Begin(Kind::Playlist, 0x30);
  out.Begin(Kind::DataSet, 16, 2);
  AppendObject(out, samples::TextObject(Little() ? 1 : 100, u"+"));
  ASSERT_EQ(Load(out), 1);
  EXPECT_EQ(database_.plays[0].name.obj.View(), HighByteFirst(u"n+"));
}

TEST_P(EachVariant, ObjectsAfterTheLastTrackInAnUnknownDataSetGoToThatTrack) {
  ChunkWriter out = File(1);
  out.Begin(Kind::TrackList, 16);
  AppendTrack(out, {.id = 1});
  AppendTrack(out, {.id = 2});
  out.Begin(Kind::DataSet, 16, 4);
  out.Begin("abcd", 20);
  AppendObject(out, samples::TextObject(200, u"album art"));
  AppendObject(out, samples::TextObject(3, u"late"));
  ASSERT_EQ(Load(out), 1);
  const CSongList &last = database_.songs[1];
  EXPECT_EQ(last.album.obj.View(), HighByteFirst(u"late"));
  if (Little()) {
    ASSERT_EQ(last.unknown.size(), 1U);
    EXPECT_EQ(last.unknown[0].idx, 200);
    EXPECT_EQ(last.unknown[0].obj.View(), HighByteFirst(u"album art"));
  }
  EXPECT_TRUE(std::as_const(database_).songs[0].unknown.empty());
}

TEST_P(EachVariant, SecondTrackListLeavesTheLastTrackOpen) {
  ChunkWriter out = File(1);
  AppendTrack(out, {.id = 1});
  const size_t list = out.Begin(Kind::TrackList, 16);
  out.PutWord(list + 8, 1000);
  AppendObject(out, samples::TextObject(4, std::u16string(4000, u'x')));
  ASSERT_EQ(Load(out), 1);
  EXPECT_GT(database_.songs.capacity(), 100U);
  EXPECT_EQ(std::as_const(database_).songs[0].artist.obj.size(), 8000U);
}

TEST_P(EachVariant, SecondPlaylistListLeavesTheLastPlaylistOpen) {
  ChunkWriter out = File(2);
  AppendPlaylist(out, {});
  const size_t list = out.Begin(Kind::PlaylistList, 16);
  out.PutWord(list + 8, 1000);
  AppendObject(out, samples::TextObject(Little() ? 1 : 100, std::u16string(4000, u'x')));
  AppendEntry(out, {.ref = 9});
  ASSERT_EQ(Load(out), 1);
  EXPECT_GT(database_.plays.capacity(), 100U);
  EXPECT_EQ(database_.plays[0].name.obj.size(), 8000U);
  EXPECT_EQ(database_.plays[0].refnum.size(), 1U);
}

TEST_P(EachVariant, UnknownChunkIsSteppedOverByItsHeaderAlone) {
  ChunkWriter out = File(1);
  const size_t container = out.Begin("zzzz", 28, 2);
  AppendTrack(out, {.id = 3});
  out.Finish(container);
  ASSERT_EQ(Load(out), 1);
  ASSERT_EQ(database_.songs.size(), 1U);
  EXPECT_EQ(database_.SongsID(0), 3);
}

TEST_P(EachVariant, ObjectWhoseWordAt0x14IsNotZeroIsSkippedWhole) {
  for (const uint32_t used : {1U, 0x01000000U, 0xffffffffU}) {
    CiTunesDB database;
    ChunkWriter out = File(1);
    out.Begin(Kind::Track, 0xd4);
    samples::DataObject object = samples::TextObject(4, u"no");
    object.usedWord = used;
    AppendObject(out, object);
    AppendObject(out, samples::TextObject(3, u"yes"));
    ASSERT_EQ(db_test::Load(database, out.Bytes()), 1);
    EXPECT_TRUE(std::as_const(database).songs[0].artist.obj.empty());
    EXPECT_EQ(std::as_const(database).songs[0].album.obj.View(), HighByteFirst(u"yes"));
  }
}

TEST_P(EachVariant, TagOfTheOtherVariantIsReadInTheFilesOwnByteOrder) {
  const Variant other = Little() ? Variant::BigEndian : Variant::LittleEndian;
  ChunkWriter out(GetParam());
  samples::BeginFile(out, 1, 24);
  out.Begin(Tag(Kind::DataSet, other), 16, 2);
  size_t chunk = out.Begin(Tag(Kind::Track, other), 0xd4);
  out.PutWord(chunk + 0x10, 7);
  chunk = out.Begin(Tag(Kind::Object, other), 0x28, 3);
  out.PutWord(chunk + 0x18, 1);
  out.AppendUtf16(u"Al");
  out.Finish(chunk);
  out.Begin(Tag(Kind::Playlist, other), 0x30, 9);
  chunk = out.Begin(Tag(Kind::Entry, other), 0x20);
  out.PutWord(chunk + 0x18, 7);
  ASSERT_EQ(Load(out), 1);
  ASSERT_EQ(database_.songs.size(), 1U);
  EXPECT_EQ(database_.SongsID(0), 7);
  EXPECT_EQ(database_.SongsObject(0, 3).View(), HighByteFirst(u"Al"));
  ASSERT_EQ(database_.plays.size(), 1U);
  EXPECT_EQ(database_.plays[0].listType, 9);
  EXPECT_EQ(database_.plays[0].RefNum(0), 7);
}

TEST(LittleEndianFile, IsKnownByTheLastTwoCharactersOfItsTag) {
  for (const std::string &pad : {"xx"s, "hd"s, "\0\xff"s}) {
    std::string file = SmallLibrary(Variant::LittleEndian);
    file.replace(0, 2, pad);
    CiTunesDB database;
    ASSERT_EQ(Load(database, file), 1);
    EXPECT_EQ(database.libType, 1);
    EXPECT_EQ(database.songs.size(), 3U);
  }
}

TEST_P(EachVariant, SongWithoutComposerHasAnEmptyOneWithAGroupNumber) {
  const samples::Library library = samples::OrdinaryLibrary({{.id = 1}, {.id = 2}}, {});
  ASSERT_EQ(db_test::Load(database_, samples::WriteLibrary(library, GetParam())), 1);
  const CSongList &song = database_.songs[1];
  EXPECT_TRUE(song.composer.obj.empty());
  EXPECT_EQ(song.composer.enc, 0U);
  EXPECT_EQ(song.composer.idx, 1);
}

TEST_P(EachVariant, SecondLoadAppends) {
  const std::string file = SmallLibrary(GetParam());
  ASSERT_EQ(db_test::Load(database_, file), 1);
  ASSERT_EQ(db_test::Load(database_, file), 1);
  ASSERT_EQ(database_.songs.size(), 6U);
  ASSERT_EQ(database_.plays.size(), 6U);
  for (size_t i = 0; i < 3; ++i) {
    const CSongList &first = std::as_const(database_).songs[i];
    const CSongList &second = std::as_const(database_).songs[i + 3];
    EXPECT_EQ(first.id, second.id);
    EXPECT_EQ(first.title.obj, second.title.obj);
    EXPECT_EQ(first.path.obj, second.path.obj);
    EXPECT_EQ(first.unknown.size(), second.unknown.size());
  }
  // An ID that both files hold is found in the first.
  EXPECT_EQ(database_.plays[4].name.obj, database_.plays[1].name.obj);
  EXPECT_EQ(database_.plays[3].Index(1), 1);
}

TEST(Loader, FilesOfBothVariantsMayBeReadOneAfterTheOther) {
  CiTunesDB database;
  ASSERT_EQ(Load(database, SmallLibrary(Variant::LittleEndian)), 1);
  ASSERT_EQ(Load(database, SmallLibrary(Variant::BigEndian)), 1);
  EXPECT_EQ(database.libType, 0);
  ASSERT_EQ(database.songs.size(), 6U);
  EXPECT_EQ(std::as_const(database).songs[0].title.enc, 16777216U);
  EXPECT_EQ(std::as_const(database).songs[3].title.enc, 1U);
}

}  // namespace
}  // namespace db_test
