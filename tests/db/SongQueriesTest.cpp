#include <array>
#include <climits>
#include <gtest/gtest.h>
#include <string>

#include "db/CiTunesDB.h"
#include "tests/db/PlainRecords.h"

namespace db_test {
namespace {

using namespace std::string_literals;

constexpr std::array<int32_t, 6> kNoIndex{-1, 3, 4, INT_MAX, INT_MIN, -100};
constexpr std::array<int32_t, 8> kNamedNumbers{-100, 1, 2, 3, 4, 5, 6, 12};

// Where a prop from -2 on stands in a list of them.
size_t PlaceOf(int32_t num) { return static_cast<size_t>(num) + 2; }

// Three songs set up by hand; song 1 has every field, and other objects 7, 8, 7 and 12.
class SongQueries : public testing::Test {
 protected:
  SongQueries() {
    database_.libType = 1;
    CSongList song;
    song.error = 100;
    song.id = 101;
    for (int i = 0; i < 4; ++i) song.res[i] = 110 + i;
    song.track = {104, 105};
    song.duration = 106;
    song.filesize = 107;
    song.bitrate = 0x80000000;
    song.samplerate = 0xffffffff;
    song.year = 1999;
    song.mediaType = 1998;
    song.trackInfo = {-100, kTrackInfoEncode, "k"};
    song.title = {11, 21, "title"};
    song.path = {12, 22, "\0:\0i\x30\x42"s};
    song.album = {13, 23, "album"};
    song.artist = {14, 24, "artist"};
    song.genre = {15, 25, "genre"};
    song.filetype = {16, 26, "filetype"};
    song.comment = {18, 28, "comment"};
    song.composer = {17, 27, "composer"};
    song.unknown = {
        {7, 1, "seven"}, {8, 2, "eight"}, {7, 3, "second seven"}, {12, 4, "twelve"}, {2, 5, "two"}};
    database_.songs.push_back(CSongList());
    database_.songs.push_back(song);
    database_.songs.push_back(CSongList());
  }

  CSongList &Song() { return database_.songs[1]; }
  // Every field of all songs.
  [[nodiscard]] std::string Everything() const { return Describe(Plain(database_)); }

  CiTunesDB database_;
};

TEST_F(SongQueries, InvalidIndexesAnswerNeutralValues) {
  for (const int32_t index : kNoIndex) {
    EXPECT_EQ(database_.SongsID(index), 0);
    EXPECT_EQ(database_.CountSongUnknown(index), 0);
    for (int32_t num = -3; num <= 13; ++num) {
      EXPECT_EQ(database_.SongsProp(index, num), 0);
      EXPECT_EQ(database_.SongsObject(index, num).View(), "");
      EXPECT_EQ(database_.SongsObjectInfo(index, num).idx, 0);
      EXPECT_EQ(database_.SongsObjectInfo(index, num).enc, 0U);
      EXPECT_EQ(database_.SongsUnknownObjectInfo(index, num).idx, 0);
      EXPECT_TRUE(database_.SongsUnknownObjectInfo(index, num).obj.empty());
    }
    EXPECT_EQ(&database_.SongsCell(index, 1), &errSongInfo);
  }
}

TEST_F(SongQueries, IDIsThatOfTheSong) {
  EXPECT_EQ(database_.SongsID(1), 101);
  EXPECT_EQ(database_.SongsID(0), 0);
}

TEST_F(SongQueries, PropNumbersCountTheWordsOfTheRecord) {
  const std::array<int32_t, 12> expected{100, 101, 110, 111, 112, 113, 104, 105, 106, 107, INT_MIN, -1};
  for (int32_t num = -2; num <= 9; ++num) {
    EXPECT_EQ(database_.SongsProp(1, num), expected.at(PlaceOf(num))) << num;
  }
}

TEST_F(SongQueries, PropNumbersOutsideTheRecordReadZeroAndWriteNothing) {
  const std::string before = Everything();
  for (const int32_t num : {-3, -4, 10, 11, 12, 100, INT_MAX, INT_MIN}) {
    EXPECT_EQ(database_.SongsProp(1, num), 0) << num;
    database_.SetSongsProp(1, num, 77);
    EXPECT_EQ(database_.SongsProp(1, num), 0) << num;
  }
  EXPECT_EQ(Everything(), before);
  EXPECT_EQ(Song().error, 100);
}

TEST_F(SongQueries, SetPropWritesThatWordAlone) {
  for (int32_t num = -2; num <= 9; ++num) {
    std::array<int32_t, 12> expected{};
    for (int32_t other = -2; other <= 9; ++other) {
      expected.at(PlaceOf(other)) = database_.SongsProp(1, other);
    }
    expected.at(PlaceOf(num)) = -5 - num;
    database_.SetSongsProp(1, num, static_cast<uint32_t>(-5 - num));
    for (int32_t other = -2; other <= 9; ++other) {
      EXPECT_EQ(database_.SongsProp(1, other), expected.at(PlaceOf(other))) << num << other;
    }
  }
  EXPECT_EQ(Song().error, -3);
  EXPECT_EQ(Song().id, -4);
  EXPECT_EQ(Song().res[0], -5);
  EXPECT_EQ(Song().track.num, static_cast<uint32_t>(-9));
  EXPECT_EQ(Song().samplerate, static_cast<uint32_t>(-14));
  EXPECT_EQ(Song().year, 1999U);
  EXPECT_EQ(Song().mediaType, 1998U);
  EXPECT_EQ(Song().trackInfo.obj.View(), "k");
}

TEST_F(SongQueries, SetPropOfAnInvalidIndexWritesNothing) {
  const std::string before = Everything();
  for (const int32_t index : kNoIndex) {
    for (int32_t num = -3; num <= 10; ++num) database_.SetSongsProp(index, num, 77);
  }
  EXPECT_EQ(Everything(), before);
}

TEST_F(SongQueries, OtherObjectsAreCounted) {
  EXPECT_EQ(database_.CountSongUnknown(1), 5);
  EXPECT_EQ(database_.CountSongUnknown(0), 0);
}

TEST_F(SongQueries, NamedObjectsHaveTheirNumbers) {
  EXPECT_EQ(database_.SongsObject(1, -100).View(), "k");
  EXPECT_EQ(database_.SongsObject(1, 1).View(), "title");
  EXPECT_EQ(database_.SongsObject(1, 3).View(), "album");
  EXPECT_EQ(database_.SongsObject(1, 4).View(), "artist");
  EXPECT_EQ(database_.SongsObject(1, 5).View(), "genre");
  EXPECT_EQ(database_.SongsObject(1, 6).View(), "filetype");
  EXPECT_EQ(database_.SongsObject(1, 12).View(), "composer");
}

TEST_F(SongQueries, ObjectInfoIsTheWholeCell) {
  for (const int32_t num : kNamedNumbers) {
    const songInfo info = database_.SongsObjectInfo(1, num);
    EXPECT_EQ(info.obj, database_.SongsObject(1, num)) << num;
    EXPECT_EQ(info.idx, num == -100 ? -100 : num == 12 ? 17 : num + 10) << num;
    EXPECT_EQ(info.enc, num == -100 ? kTrackInfoEncode : static_cast<uint32_t>(num == 12 ? 27 : num + 20));
  }
}

TEST_F(SongQueries, NumbersWithoutANamedFieldGiveAnEmptyObject) {
  for (const int32_t num : {7, 8, 9, 10, 11, 13, 15, 100, 0, -1, -99, -101, INT_MAX, INT_MIN}) {
    EXPECT_EQ(database_.SongsObject(1, num).View(), "") << num;
    EXPECT_EQ(database_.SongsObjectInfo(1, num).obj.View(), "");
    EXPECT_EQ(database_.SongsObjectInfo(1, num).idx, 0);
    EXPECT_EQ(database_.SongsObjectInfo(1, num).enc, 0U);
  }
}

TEST_F(SongQueries, UnknownObjectInfoIsACopy) {
  const songInfo before = database_.SongsUnknownObjectInfo(1, 7);
  database_.SetSongsObjectInfo(1, 7, "later", 0);
  EXPECT_EQ(before.obj.View(), "seven");
}

TEST_F(SongQueries, ObjectsSevenAndEightAreReachedThroughTheOtherObjects) {
  EXPECT_EQ(database_.SongsObject(1, 7).View(), "");
  EXPECT_EQ(database_.SongsObject(1, 8).View(), "");
  EXPECT_EQ(database_.SongsUnknownObjectInfo(1, 7).obj.View(), "seven");
  EXPECT_EQ(database_.SongsUnknownObjectInfo(1, 8).obj.View(), "eight");
}

TEST_F(SongQueries, PathOfALittleEndianFileIsReducedToItsSingleByteUnits) {
  EXPECT_EQ(database_.SongsObject(1, 2).View(), "\x3a\x69");
  EXPECT_EQ(database_.SongsObjectInfo(1, 2).obj.View(), "\x3a\x69");
  EXPECT_EQ(database_.SongsCell(1, 2).obj.View(), "\0:\0i\x30\x42"s);
}

TEST_F(SongQueries, PathIsReducedInEveryVariantButTheBigEndianOne) {
  database_.libType = -1;
  EXPECT_EQ(database_.SongsObject(1, 2).View(), ":i");
  database_.libType = 2;
  EXPECT_EQ(database_.SongsObject(1, 2).View(), ":i");
  database_.libType = 0;
  EXPECT_EQ(database_.SongsObject(1, 2).View(), "\0:\0i\x30\x42"s);
  EXPECT_EQ(database_.SongsObjectInfo(1, 2).obj.View(), "\0:\0i\x30\x42"s);
}

TEST_F(SongQueries, LongPathIsReducedWhole) {
  std::string stored;
  for (int i = 0; i < 5000; ++i) stored += "\0p"s;
  Song().path.obj = stored;
  EXPECT_EQ(database_.SongsObject(1, 2).View(), std::string(5000, 'p'));
}

TEST_F(SongQueries, AnswersAreCopies) {
  const ByteString text = database_.SongsObject(1, 1);
  const songInfo info = database_.SongsObjectInfo(1, 1);
  Song().title = {0, 0, "changed"};
  EXPECT_EQ(text.View(), "title");
  EXPECT_EQ(info.obj.View(), "title");
  EXPECT_EQ(info.idx, 11);
}

TEST_F(SongQueries, UnknownObjectIsTheFirstOfItsNumber) {
  EXPECT_EQ(database_.SongsUnknownObjectInfo(1, 7).enc, 1U);
  EXPECT_EQ(database_.SongsUnknownObjectInfo(1, 12).obj.View(), "twelve");
  EXPECT_EQ(database_.SongsUnknownObjectInfo(1, 2).obj.View(), "two");
}

TEST_F(SongQueries, UnknownObjectThatTheSongLacksHasIdxMinus1) {
  for (const int32_t num : {0, 1, 9, 100, INT_MAX}) {
    const songInfo info = database_.SongsUnknownObjectInfo(1, num);
    EXPECT_EQ(info.idx, -1) << num;
    EXPECT_EQ(info.enc, 0U);
    EXPECT_TRUE(info.obj.empty());
  }
}

TEST_F(SongQueries, UnknownObjectOfANegativeNumberIsTheEmptyCell) {
  Song().unknown.push_back({-7, 9, "hidden"});
  for (const int32_t num : {-1, -7, -100, INT_MIN}) {
    EXPECT_EQ(database_.SongsUnknownObjectInfo(1, num).idx, 0) << num;
    EXPECT_TRUE(database_.SongsUnknownObjectInfo(1, num).obj.empty());
  }
}

TEST_F(SongQueries, SetObjectReplacesTextAndCodeButNotIdx) {
  for (const int32_t num : {-100, 1, 3, 4, 5, 6, 12}) {
    const int32_t idx = database_.SongsObjectInfo(1, num).idx;
    const std::string text = "new " + std::to_string(num);
    database_.SetSongsObjectInfo(1, num, text, 0x08000100);
    const songInfo info = database_.SongsObjectInfo(1, num);
    EXPECT_EQ(info.obj.View(), text);
    EXPECT_EQ(info.enc, 0x08000100U);
    EXPECT_EQ(info.idx, idx);
  }
  EXPECT_EQ(Song().comment.obj.View(), "comment");
  EXPECT_EQ(Song().unknown[3].obj.View(), "twelve");
}

TEST_F(SongQueries, SetObjectLeavesThePathAlone) {
  Song().unknown.pop_back();
  const std::string before = Everything();
  database_.SetSongsObjectInfo(1, 2, "new", 9);
  EXPECT_EQ(Everything(), before);
}

TEST_F(SongQueries, SetObjectOfNumber2ChangesAnOtherObjectOfThatNumber) {
  database_.SetSongsObjectInfo(1, 2, "new", 9);
  EXPECT_EQ(Song().path.obj.View(), "\0:\0i\x30\x42"s);
  EXPECT_EQ(Song().unknown[4].obj.View(), "new");
  EXPECT_EQ(Song().unknown[4].enc, 9U);
}

TEST_F(SongQueries, SetObjectChangesTheFirstOtherObjectOfItsNumber) {
  database_.SetSongsObjectInfo(1, 7, "new", 9);
  EXPECT_EQ(Song().unknown[0].obj.View(), "new");
  EXPECT_EQ(Song().unknown[0].enc, 9U);
  EXPECT_EQ(Song().unknown[0].idx, 7);
  EXPECT_EQ(Song().unknown[2].obj.View(), "second seven");
}

TEST_F(SongQueries, SetObjectOfNumber0ChangesTheFirstOtherObjectOfThatNumber) {
  database_.songs[1].unknown = {{7, 1, "seven"}, {0, 2, "zero"}, {0, 3, "again"}};
  database_.SetSongsObjectInfo(1, 0, "new", 9);
  EXPECT_EQ(database_.songs[1].unknown[0].obj.View(), "seven");
  EXPECT_EQ(database_.songs[1].unknown[1].obj.View(), "new");
  EXPECT_EQ(database_.songs[1].unknown[1].enc, 9U);
  EXPECT_EQ(database_.songs[1].unknown[1].idx, 0);
  EXPECT_EQ(database_.songs[1].unknown[2].obj.View(), "again");
}

TEST_F(SongQueries, SetObjectAddsNothing) {
  const std::string before = Everything();
  for (const int32_t num : {0, 9, 100, INT_MAX}) database_.SetSongsObjectInfo(1, num, "new", 9);
  EXPECT_EQ(Everything(), before);
}

TEST_F(SongQueries, SetObjectOfAnyOtherNegativeNumberChangesNothing) {
  Song().unknown.push_back({-7, 9, "hidden"});
  const std::string before = Everything();
  for (const int32_t num : {-1, -2, -7, -99, -101, INT_MIN}) database_.SetSongsObjectInfo(1, num, "new", 9);
  EXPECT_EQ(Everything(), before);
}

TEST_F(SongQueries, SetObjectOfAnInvalidIndexChangesNothing) {
  const std::string before = Everything();
  for (const int32_t index : kNoIndex) {
    for (int32_t num = -101; num <= 13; ++num) database_.SetSongsObjectInfo(index, num, "new", 9);
  }
  EXPECT_EQ(Everything(), before);
}

TEST_F(SongQueries, SetObjectOfAnEmptyTextEmptiesTheField) {
  database_.SetSongsObjectInfo(1, 1, "", 0);
  EXPECT_TRUE(Song().title.obj.empty());
  EXPECT_EQ(Song().title.enc, 0U);
}

TEST(SongQueriesOfAnEmptyDatabase, AnswerNeutralValues) {
  CiTunesDB database;
  EXPECT_EQ(database.SongsID(0), 0);
  EXPECT_EQ(database.SongsProp(0, 0), 0);
  EXPECT_EQ(database.SongsObject(0, 1).View(), "");
  EXPECT_EQ(database.CountSongUnknown(0), 0);
  database.SetSongsProp(0, 0, 1);
  database.SetSongsObjectInfo(0, 1, "x", 1);
  database.SetSongsObjectIndex();
  EXPECT_TRUE(database.songs.empty());
}

}  // namespace
}  // namespace db_test
