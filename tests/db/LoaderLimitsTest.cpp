#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/types.h>
#include <unistd.h>

#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/model/Loader.h"

namespace db_test {
namespace {

using namespace std::string_literals;
using samples::ChunkWriter;
using samples::Kind;
using samples::Variant;

// Whether a stream is rejected, and leaves a database that holds something exactly as it was.
void ExpectRejected(FILE *stream) {
  for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
    CiTunesDB database;
    ASSERT_EQ(Load(database, SmallLibrary(variant)), 1);
    const model::Database before = Plain(database);
    EXPECT_EQ(database.LoadiTunesDB(stream), 0);
    EXPECT_EQ(Plain(database), before);
    EXPECT_EQ(database.error, 0);
  }
}

void ExpectRejected(const std::string &bytes) { ExpectRejected(MemoryFile(bytes).Stream()); }

TEST(RejectedFile, NoStream) { ExpectRejected(nullptr); }

TEST(RejectedFile, ShorterThanSixteenBytes) {
  for (size_t n = 0; n < 16; ++n) {
    ExpectRejected(SmallLibrary(Variant::LittleEndian).substr(0, n));
    ExpectRejected(SmallLibrary(Variant::BigEndian).substr(0, n));
  }
}

TEST(RejectedFile, OfAForeignKind) {
  for (const std::string &tag :
       {"mhdb"s, "hdbf"s, "mhfm"s, "mdfm"s, "hDfm"s, "mhBD"s, "dbhm"s, "\0\0\0\0"s, "ID3\3"s}) {
    std::string file = SmallLibrary(Variant::LittleEndian);
    file.replace(0, 4, tag);
    ExpectRejected(file);
  }
}

TEST(RejectedFile, NotSeekable) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const std::string file = SmallLibrary(Variant::LittleEndian);
  ASSERT_EQ(write(ends[1], file.data(), file.size()), static_cast<ssize_t>(file.size()));
  close(ends[1]);
  const OwnedFile stream(fdopen(ends[0], "rb"));
  ExpectRejected(stream.get());
}

TEST(RejectedFile, NotReadable) {
  const OwnedFile scratch(std::tmpfile());
  ASSERT_NE(scratch, nullptr);
  const std::string file = SmallLibrary(Variant::LittleEndian);
  ASSERT_EQ(std::fwrite(file.data(), 1, file.size(), scratch.get()), file.size());
  ASSERT_EQ(std::fflush(scratch.get()), 0);
  const std::string path = "/proc/self/fd/" + std::to_string(fileno(scratch.get()));
  const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) GTEST_SKIP() << "no second look at a temporary file here";
  const OwnedFile stream(fdopen(descriptor, "wb"));
  ExpectRejected(stream.get());
}

TEST(RejectedFile, OfTwoGibibytesAndMore) {
  const OwnedFile stream(std::tmpfile());
  ASSERT_NE(stream, nullptr);
  const std::string file = SmallLibrary(Variant::LittleEndian);
  ASSERT_EQ(std::fwrite(file.data(), 1, file.size(), stream.get()), file.size());
  ASSERT_EQ(std::fflush(stream.get()), 0);
  for (const uint64_t size : {uint64_t{1} << 31, (uint64_t{1} << 32) + 4096}) {
    if (ftruncate(fileno(stream.get()), static_cast<off_t>(size)) != 0)
      GTEST_SKIP() << "no sparse files here";
    ExpectRejected(stream.get());
  }
}

class Cursor : public testing::TestWithParam<Variant> {
 protected:
  static ChunkWriter File(uint32_t headerLength = 16) {
    ChunkWriter out(GetParam());
    samples::BeginFile(out, 1, headerLength);
    return out;
  }
  // The number of songs read; the load succeeds.
  size_t SongsOf(const ChunkWriter &out) {
    CiTunesDB database;
    EXPECT_EQ(Load(database, out.Bytes()), 1);
    return database.songs.size();
  }
};

INSTANTIATE_TEST_SUITE_P(Loader, Cursor, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(Cursor, FileOfItsHeaderAloneIsAnEmptyLibrary) {
  EXPECT_EQ(SongsOf(File()), 0U);
  EXPECT_EQ(SongsOf(File(100)), 0U);
}

TEST_P(Cursor, StartsWhereTheHeaderSays) {
  ChunkWriter out = File(16);
  out.AppendBytes("12345678");
  AppendTrack(out, {.id = 1});
  out.PutWord(4, 24);
  EXPECT_EQ(SongsOf(out), 1U);
}

TEST_P(Cursor, HeaderThatLeadsNowhereGivesAnEmptyLibrary) {
  ChunkWriter out = File();
  AppendTrack(out, {.id = 1});
  for (const uint32_t jump : {0U, static_cast<uint32_t>(out.Size()), 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
    out.PutWord(4, jump);
    EXPECT_EQ(SongsOf(out), 0U) << jump;
  }
}

TEST_P(Cursor, StreamIsReadFromItsStartWhereverItStands) {
  const MemoryFile file(SmallLibrary(GetParam()));
  ASSERT_EQ(std::fseek(file.Stream(), 100, SEEK_SET), 0);
  CiTunesDB database;
  EXPECT_EQ(database.LoadiTunesDB(file.Stream()), 1);
  EXPECT_EQ(database.songs.size(), 3U);
  EXPECT_EQ(std::fseek(file.Stream(), 0, SEEK_SET), 0) << "the stream stays open";
}

TEST_P(Cursor, EndsWithFewerThanSixteenBytesLeft) {
  ChunkWriter out = File();
  AppendTrack(out, {.id = 1});
  out.AppendBytes(Tag(Kind::Track, GetParam()));
  for (int left = 4; left < 16; ++left) {
    EXPECT_EQ(SongsOf(out), 1U) << left;
    out.AppendByte(0);
  }
  EXPECT_EQ(SongsOf(out), 2U);
}

TEST_P(Cursor, EndsAtAnAdvanceOfZero) {
  ChunkWriter out = File();
  AppendTrack(out, {.id = 1});
  const size_t chunk = out.Size();
  AppendTrack(out, {.id = 2});
  AppendTrack(out, {.id = 3});
  out.PutWord(chunk + 4, 0);
  EXPECT_EQ(SongsOf(out), 2U);
}

TEST_P(Cursor, EndsAtAnObjectOfTotalLengthZero) {
  ChunkWriter out = File();
  const size_t track = out.Begin(Kind::Track, 0xd4);
  samples::DataObject object = samples::TextObject(3, u"album");
  object.totalLength = 0;
  AppendObject(out, object);
  AppendTrack(out, {.id = 2});
  out.Finish(track);
  CiTunesDB database;
  ASSERT_EQ(Load(database, out.Bytes()), 1);
  ASSERT_EQ(database.songs.size(), 1U);
  EXPECT_TRUE(std::as_const(database).songs[0].album.obj.empty());
}

TEST_P(Cursor, EndsAtAnObjectOfTotalLengthZeroBeforeItsBodyIsStored) {
  // By its negative header length the raw body would have 20 bytes.
  samples::DataObject object = samples::RawObject(1, std::string(20, 'x'));
  object.headerLength = 0xffffffec;
  object.totalLength = 0;
  for (const uint32_t type : {1U, 2U, 50U}) {
    object.type = type;
    ChunkWriter out = File();
    out.Begin(Kind::Track, 0xd4);
    AppendObject(out, object);
    CiTunesDB database;
    ASSERT_EQ(Load(database, out.Bytes()), 1);
    EXPECT_TRUE(database.songs[0].title.obj.empty());
    EXPECT_TRUE(database.songs[0].unknown.empty());
    EXPECT_EQ(database.odcount, -1) << "it counts even so";
  }
}

TEST_P(Cursor, EndsAtANegativeAdvanceOrOnePastTheEnd) {
  for (const uint32_t jump : {0x80000000U, 0xfffffff0U, 0xffffffffU, 0x7fffffffU, 0x10000U}) {
    ChunkWriter out = File();
    AppendTrack(out, {.id = 1});
    const size_t chunk = out.Begin("abcd", 16);
    AppendTrack(out, {.id = 2});
    EXPECT_EQ(SongsOf(out), 2U);
    out.PutWord(chunk + 4, jump);
    EXPECT_EQ(SongsOf(out), 1U) << jump;
  }
}

TEST_P(Cursor, MayStandAtAnyDistanceEvenInsideAHeader) {
  // The header of the list covers the track's first byte only; the walk goes on from there.
  ChunkWriter out = File();
  const size_t list = out.Begin("abcd", 20);
  out.PutWord(list + 4, 1);
  const std::string tag(Tag(Kind::Track, GetParam()));
  for (size_t i = 0; i < 4; ++i) out.PutByte(list + 1 + i, static_cast<uint8_t>(tag[i]));
  CiTunesDB database;
  model::Database expected;
  EXPECT_EQ(Load(database, out.Bytes()), 1);
  EXPECT_TRUE(model::Load(out.Bytes(), expected));
  EXPECT_EQ(Plain(database), expected);
}

class CutOff : public Cursor {};

INSTANTIATE_TEST_SUITE_P(Loader, CutOff, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(CutOff, TrackReadsZeroForEveryByteThatIsMissing) {
  ChunkWriter whole = File();
  const size_t chunk = whole.Begin(Kind::Track, 0xd4);
  for (uint32_t i = 0x10; i < 0xd4; ++i) whole.PutByte(chunk + i, static_cast<uint8_t>(i));
  const auto load = [&](size_t length) {
    CiTunesDB database;
    EXPECT_EQ(Load(database, whole.Bytes().substr(0, chunk + length)), 1);
    EXPECT_EQ(database.songs.size(), 1U);
    return Plain(database).songs.at(0);
  };
  const bool little = GetParam() == Variant::LittleEndian;
  EXPECT_EQ(load(0x10).id, 0);
  EXPECT_EQ(load(0x10).trackInfo.text, "-");
  EXPECT_EQ(load(0x12).id, little ? 0x1110 : 0x10110000);
  EXPECT_EQ(load(0x13).id, little ? 0x121110 : 0x10111200);
  EXPECT_EQ(load(0x3a).bitrate, 0x38390000U);
  EXPECT_EQ(load(0xb1).moviefileflag, 0);
  EXPECT_EQ(load(0xb2).moviefileflag, 0xb1);
  EXPECT_EQ(load(0xd1).mediaType, little ? 0xd0U : 0xd0000000U);
  EXPECT_EQ(load(0xd4).mediaType, little ? 0xd3d2d1d0U : 0xd0d1d2d3U);
}

TEST_P(CutOff, PlaylistReadsZeroForItsMissingType) {
  ChunkWriter out = File();
  out.Begin(Kind::DataSet, 16, 2);
  const size_t chunk = out.Begin(Kind::Playlist, 0x2d, 3);
  out.PutByte(chunk + 0x2c, 7);
  CiTunesDB database;
  ASSERT_EQ(Load(database, out.Bytes().substr(0, chunk + 0x2c)), 1);
  ASSERT_EQ(Load(database, out.Bytes()), 1);
  EXPECT_EQ(database.plays.at(0).listType, 3);
  EXPECT_EQ(database.plays.at(0).listTypeII, 0);
  EXPECT_EQ(database.plays.at(1).listTypeII, 7);
}

TEST_P(CutOff, ObjectThatRunsPastTheFileStoresNothing) {
  ChunkWriter out = File();
  out.Begin(Kind::Track, 0xd4);
  AppendObject(out, samples::TextObject(3, u"album"));
  AppendObject(out, samples::TextObject(4, u"artist"));
  CiTunesDB whole;
  ASSERT_EQ(Load(whole, out.Bytes()), 1);
  EXPECT_EQ(whole.SongsObject(0, 4).View(), HighByteFirst(u"artist"));
  CiTunesDB cut;
  ASSERT_EQ(Load(cut, out.Bytes().substr(0, out.Size() - 1)), 1);
  EXPECT_EQ(cut.SongsObject(0, 3).View(), HighByteFirst(u"album"));
  EXPECT_EQ(cut.SongsObject(0, 4).View(), "");
}

TEST_P(CutOff, RawBodyThatRunsPastTheFileStoresNothing) {
  // A header length below 24 makes the body longer than the object.
  samples::DataObject object = samples::RawObject(4, "artist");
  object.headerLength = 20;
  ChunkWriter out = File();
  out.Begin(Kind::Track, 0xd4);
  AppendObject(out, object);
  CiTunesDB cut;
  ASSERT_EQ(Load(cut, out.Bytes() + "abc"), 1);
  EXPECT_EQ(cut.SongsObject(0, 4).View(), "");
  CiTunesDB whole;
  ASSERT_EQ(Load(whole, out.Bytes() + "abcd"), 1);
  EXPECT_EQ(whole.SongsObject(0, 4).View(), "artistabcd");
}

TEST_P(CutOff, RawBodyTakenFromTheNextObjectIsThatObjectsBytesBeforeItsSwap) {
  samples::DataObject longBody = samples::RawObject(4, "artist");
  longBody.headerLength = 0;
  ChunkWriter out = File();
  out.Begin(Kind::Track, 0xd4);
  AppendObject(out, longBody);
  const size_t next = out.Size();
  AppendObject(out, samples::TextObject(3, u"album"));
  CiTunesDB database;
  ASSERT_EQ(Load(database, out.Bytes()), 1);
  EXPECT_EQ(database.SongsObject(0, 4).View(), "artist" + out.Bytes().substr(next, 24));
  EXPECT_EQ(database.SongsObject(0, 3).View(), HighByteFirst(u"album"));
}

TEST_P(CutOff, NameShorterThanItsHeaderStoresNothing) {
  const uint32_t type = GetParam() == Variant::LittleEndian ? 1 : 100;
  ChunkWriter out = File();
  out.Begin(Kind::DataSet, 16, 2);
  AppendPlaylist(out, {.name = u"name"});
  samples::DataObject object = samples::RawObject(type, std::string(15, 'x'));
  AppendObject(out, object);
  CiTunesDB database;
  ASSERT_EQ(Load(database, out.Bytes()), 1);
  EXPECT_EQ(database.plays[0].name.obj.View(), HighByteFirst(u"name"));
  EXPECT_EQ(database.plays[0].name.enc, Utf16Code(GetParam()));
}

TEST_P(CutOff, RecordsForNobodyAreLost) {
  ChunkWriter out = File();
  AppendObject(out, samples::TextObject(1, u"nobody's"));
  out.Begin(Kind::DataSet, 16, 2);
  AppendEntry(out, {.ref = 1});
  AppendObject(out, samples::TextObject(100, u"nobody's"));
  AppendTrack(out, {.id = 1});
  AppendPlaylist(out, {});
  CiTunesDB database;
  ASSERT_EQ(Load(database, out.Bytes()), 1);
  EXPECT_TRUE(std::as_const(database).songs[0].title.obj.empty());
  EXPECT_TRUE(std::as_const(database).songs[0].unknown.empty());
  EXPECT_TRUE(database.plays[0].refnum.empty());
  EXPECT_TRUE(database.plays[0].name.obj.empty());
}

TEST(OddText, SwapsItsLastByteWithTheFirstOfTheNextChunk) {
  ChunkWriter out(Variant::LittleEndian);
  samples::BeginFile(out, 1, 16);
  out.Begin(Kind::Track, 0xd4);
  AppendObject(out, samples::EightBitObject(3, "abc", 1));
  AppendObject(out, samples::TextObject(4, u"x"));
  AppendObject(out, samples::EightBitObject(5, "abc", 1));
  CiTunesDB database;
  ASSERT_EQ(Load(database, out.Bytes()), 1);
  EXPECT_EQ(database.SongsObject(0, 3).View(), "bam");
  EXPECT_EQ(database.SongsObject(0, 4).View(), "\0x"s);
  EXPECT_EQ(database.SongsObject(0, 5).View(), "ba\0"s) << "the file's end has one spare zero byte";
}

TEST(OddText, MayHideTheNextChunkWhenThatHasABigEndianTag) {
  ChunkWriter out(Variant::LittleEndian);
  samples::BeginFile(out, 1, 16);
  out.Begin(Kind::Track, 0xd4);
  AppendObject(out, samples::EightBitObject(3, "abc", 1));
  out.Begin(Tag(Kind::Track, Variant::BigEndian), 16);
  out.Begin(Tag(Kind::Track, Variant::BigEndian), 16);
  CiTunesDB database;
  ASSERT_EQ(Load(database, out.Bytes()), 1);
  EXPECT_EQ(database.songs.size(), 2U);
}

TEST(OddText, OfABigEndianFileStaysAsItIs) {
  CiTunesDB database;
  const samples::Library library =
      samples::OrdinaryLibrary({{.objects = {samples::EightBitObject(3, "abc", 1)}}}, {});
  ASSERT_EQ(Load(database, samples::WriteLibrary(library, Variant::BigEndian)), 1);
  EXPECT_EQ(database.SongsObject(0, 3).View(), "abc");
}

}  // namespace
}  // namespace db_test
