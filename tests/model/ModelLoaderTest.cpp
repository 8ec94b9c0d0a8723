// The model's loader by hand-made files.
#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "tests/model/Loader.h"

namespace {

using samples::ChunkWriter;
using samples::DataObject;
using samples::Kind;
using samples::Variant;
using namespace std::string_literals;

constexpr uint32_t kLittleText = 0x01000000;

model::Database Loaded(const std::string &file) {
  model::Database database;
  EXPECT_TRUE(model::Load(file, database));
  return database;
}

std::string OneTrack(Variant variant, std::vector<DataObject> objects, uint32_t id = 52) {
  samples::Track track;
  track.id = id;
  track.objects = std::move(objects);
  return samples::WriteLibrary(samples::OrdinaryLibrary({track}, {}), variant);
}

model::Song OnlySong(const std::string &file) {
  const model::Database database = Loaded(file);
  EXPECT_EQ(database.songs.size(), 1U);
  return database.songs.empty() ? model::Song{} : database.songs[0];
}

TEST(ModelLoader, RejectsOtherFilesAndShortOnes) {
  model::Database database;
  EXPECT_FALSE(model::Load("", database));
  EXPECT_FALSE(model::Load("mhbd\0\0\0\0\0\0\0\0\0\0\0"s, database));
  EXPECT_FALSE(model::Load("mhsd\0\0\0\0\0\0\0\0\0\0\0\0"s, database));
  EXPECT_FALSE(model::Load("xxfm\0\0\0\0\0\0\0\0\0\0\0\0"s, database));
  EXPECT_EQ(database, model::Database{});
  EXPECT_TRUE(model::Load("xxbd\0\0\0\0\0\0\0\0\0\0\0\0"s, database));
  EXPECT_EQ(database.libType, 1);
  EXPECT_TRUE(model::Load("hdfm\xFF\0\0\0\0\0\0\0\0\0\0\0"s, database));
  EXPECT_EQ(database.libType, 0);
}

TEST(ModelLoader, ReadsATracksNumbersAndLeavesTheRatesReversed) {
  samples::Track track;
  track.id = 52;
  track.res = {1, 2, 3, 4};
  track.filesize = 5;
  track.duration = 6;
  track.number = 7;
  track.total = 150;
  track.year = 2001;
  track.bitrate = 128;
  track.samplerate = 0x01020304;
  track.moviefileflag = 1;
  track.mediaType = 9;
  const model::Database database =
      Loaded(samples::WriteLibrary(samples::OrdinaryLibrary({track}, {}), Variant::LittleEndian));
  model::Song song;
  song.id = 52;
  for (int i = 0; i < 4; ++i) song.res[i] = i + 1;
  song.filesize = 5;
  song.duration = 6;
  song.number = 7;
  song.total = 150;
  song.year = 2001;
  song.bitrate = 0x80000000;
  song.samplerate = 0x04030201;
  song.moviefileflag = 1;
  song.mediaType = 9;
  song.trackInfo.text = "007/150";
  EXPECT_THAT(database.songs, testing::ElementsAre(song));
}

TEST(ModelLoader, WritesTrackNumbersByTheSizeOfTheTotal) {
  const auto text = [](uint32_t number, uint32_t total) {
    samples::Track track;
    track.number = number;
    track.total = total;
    return OnlySong(samples::WriteLibrary(samples::OrdinaryLibrary({track}, {}), Variant::BigEndian))
        .trackInfo.text;
  };
  EXPECT_EQ(text(0, 0), "-");
  EXPECT_EQ(text(5, 0), "5");
  EXPECT_EQ(text(5, 12), "05/12");
  EXPECT_EQ(text(3, 1200), "0003/1200");
  EXPECT_EQ(text(0xFFFFFFFF, 0xFFFFFFFE), "-001/-002");
}

TEST(ModelLoader, FilesLittleEndianObjectsByType) {
  const model::Song song = OnlySong(
      OneTrack(Variant::LittleEndian, {samples::TextObject(3, u"ab"), samples::TextObject(3, u"c"),
                                       samples::TextObject(8, u"d"), samples::RawObject(100, "raw")}));
  EXPECT_EQ(song.album, (model::Cell{3, kLittleText, "\0a\0b\0c"s}));
  EXPECT_THAT(song.unknown,
              testing::ElementsAre(model::Cell{8, kLittleText, "\0d"s}, model::Cell{100, 0, "raw"}));
}

TEST(ModelLoader, EndsAtAnObjectOfTotalLengthZeroBeforeItsBodyIsStored) {
  DataObject object = samples::RawObject(1, std::string(20, 'x'));
  object.headerLength = 0xffffffec;
  object.totalLength = 0;
  for (const uint32_t type : {1U, 2U, 50U}) {
    object.type = type;
    for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
      const model::Song song = OnlySong(OneTrack(variant, {object}));
      EXPECT_EQ(song.title.text, "");
      EXPECT_THAT(song.unknown, testing::IsEmpty());
    }
  }
}

TEST(ModelLoader, FilesBigEndianObjectsByTypeAndDropsOthers) {
  const model::Song song = OnlySong(OneTrack(
      Variant::BigEndian, {samples::TextObject(2, u"ab"), samples::TextObject(8, u"d"),
                           samples::LocationObject("Disk:Music:A.mp3"), samples::EightBitObject(4, "x")}));
  EXPECT_EQ(song.title, (model::Cell{-1, 1, "\0a\0b"s}));
  EXPECT_EQ(song.path, (model::Cell{-1, 1, "Disk:Music:A.mp3"}));
  EXPECT_EQ(song.artist, (model::Cell{-1, 0, "\0\0\0\3\0\0\0\1\0\0\0\0\0\0\0\0x"s}));
  EXPECT_THAT(song.unknown, testing::IsEmpty());
}

TEST(ModelLoader, KeepsALocationOnlyWhenTheNameIsMetAgainAndAllOfItIsThere) {
  DataObject location = samples::LocationObject("Disk:Music:A.mp3");
  const size_t met = location.bytes.rfind("Disk:");
  ASSERT_NE(met, std::string::npos);
  location.bytes[met] = 'd';
  EXPECT_EQ(OnlySong(OneTrack(Variant::BigEndian, {location})).path, (model::Cell{-1, 0, ""}));
  location.bytes[met] = 'D';
  location.bytes[met - 2] = 1;
  EXPECT_EQ(OnlySong(OneTrack(Variant::BigEndian, {location})).path, (model::Cell{-1, 0, ""}));
}

TEST(ModelLoader, SkipsAnObjectThatIsInUseOrEmptyOrRunsPastTheFile) {
  DataObject used = samples::TextObject(1, u"used");
  used.usedWord = 1;
  DataObject tooLong = samples::TextObject(1, u"long");
  tooLong.totalLength = 4000;
  EXPECT_EQ(OnlySong(OneTrack(Variant::LittleEndian, {used, samples::TextObject(1, u"")})).title,
            (model::Cell{-1, 0, ""}));
  EXPECT_EQ(OnlySong(OneTrack(Variant::LittleEndian, {tooLong})).title, (model::Cell{-1, 0, ""}));
}

TEST(ModelLoader, KeepsARawBodyThatReachesIntoTheNextObject) {
  DataObject reaching = samples::RawObject(9, "1234567890");
  reaching.headerLength = 24 - 4;
  const model::Song song =
      OnlySong(OneTrack(Variant::LittleEndian, {reaching, samples::TextObject(1, u"next")}));
  ASSERT_EQ(song.unknown.size(), 1U);
  EXPECT_EQ(song.unknown[0].text, "1234567890mhod");
  const std::string alone = OneTrack(Variant::LittleEndian, {reaching});
  const size_t object = alone.find("mhod");
  EXPECT_THAT(OnlySong(alone.substr(0, object + 34)).unknown, testing::IsEmpty());
}

TEST(ModelLoader, SwapsAnOddLastByteWithTheByteAfterIt) {
  DataObject odd;
  odd.type = 1;
  odd.form = DataObject::Form::Bytes;
  odd.bytes = "abc";
  const model::Song song = OnlySong(OneTrack(Variant::LittleEndian, {odd, samples::TextObject(3, u"x")}));
  EXPECT_EQ(song.title.text, "bam");
  EXPECT_EQ(song.album.text, "\0x"s);
}

TEST(ModelLoader, ReadsPlaylistsOnlyInADataSetOfTypeTwo) {
  samples::Track track;
  track.id = 7;
  samples::Playlist playlist;
  playlist.name = u"n";
  playlist.type = 3;
  playlist.typeII = 200;
  playlist.entries = {{.ref = 7, .ply = 1}, {.ref = 8}};
  samples::Library library;
  library.sets.resize(3);
  library.sets[0].content = std::vector<samples::Track>{samples::Track{}, track};
  library.sets[1].type = 3;
  library.sets[1].content = std::vector<samples::Playlist>{playlist};
  library.sets[2].type = 2;
  library.sets[2].content = std::vector<samples::Playlist>{playlist};
  const model::Database database = Loaded(samples::WriteLibrary(library, Variant::LittleEndian));
  ASSERT_EQ(database.plays.size(), 1U);
  EXPECT_EQ(database.plays[0].listType, 3);
  EXPECT_EQ(database.plays[0].listTypeII, 200);
  EXPECT_EQ(database.plays[0].name, (model::Cell{-1, kLittleText, "\0n"s}));
  EXPECT_THAT(database.plays[0].entries,
              testing::ElementsAre(model::Entry{7, 1, 1, 0}, model::Entry{8, 0, 0, 0}));
  std::swap(library.sets[0], library.sets[2]);
  EXPECT_EQ(Loaded(samples::WriteLibrary(library, Variant::BigEndian)).plays[0].entries[0].idx, 0);
}

TEST(ModelLoader, ReadsZeroPastTheEndAndStopsAtAnAdvanceOfZero) {
  ChunkWriter out(Variant::BigEndian);
  out.Begin(Kind::File, 16);
  out.Begin("mhit", 32);
  out.PutWord(32, 99);
  EXPECT_EQ(OnlySong(out.Bytes()).id, 99);
  out.PutWord(20, 0);
  out.Begin("mhit", 32);
  EXPECT_EQ(Loaded(out.Bytes()).songs.size(), 1U);
}

}  // namespace
