#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

#include "db/CiTunesDB.h"
#include "db/SongRecords.h"

namespace db_test {
namespace {

TEST(SongRecord, FreshOneHasEmptyTextsAndItsMarks) {
  const CSongList song{};
  for (const songInfo *cell : {&song.title, &song.path, &song.album, &song.artist, &song.genre,
                               &song.filetype, &song.comment, &song.composer, &song.trackInfo}) {
    EXPECT_TRUE(cell->obj.empty());
  }
  for (const songInfo *cell :
       {&song.title, &song.path, &song.album, &song.artist, &song.genre, &song.composer}) {
    EXPECT_EQ(cell->idx, -1);
    EXPECT_EQ(cell->enc, 0U);
  }
  EXPECT_EQ(song.trackInfo.idx, -100);
  EXPECT_EQ(song.trackInfo.enc, 0xffffff9cU);
  EXPECT_TRUE(song.unknown.empty());
}

TEST(SongRecord, FieldsWithoutAValueOfTheirOwnStartAsZero) {
  const CSongList song{};
  EXPECT_EQ(song.error, 0);
  EXPECT_EQ(song.id, 0);
  for (const int32_t word : song.res) EXPECT_EQ(word, 0);
  for (const uint32_t word : {song.track.num, song.track.total, song.duration, song.filesize, song.bitrate,
                              song.samplerate, song.mediaType, song.year}) {
    EXPECT_EQ(word, 0U);
  }
  EXPECT_EQ(song.moviefileflag, 0);
  for (const songInfo *cell : {&song.filetype, &song.comment}) {
    EXPECT_EQ(cell->idx, 0);
    EXPECT_EQ(cell->enc, 0U);
  }
}

TEST(SongRecord, AccessorsReadTheirFields) {
  CSongList song;
  song.id = 1;
  song.res[0] = 2;
  song.res[3] = 3;
  song.track = {4, 5};
  song.duration = 6;
  song.filesize = 7;
  song.year = 8;
  song.bitrate = 9;
  song.samplerate = 10;
  song.moviefileflag = 255;
  song.mediaType = 12;
  song.trackInfo.obj = "k";
  song.title.obj = "t";
  song.path.obj = "p";
  song.album.obj = "al";
  song.artist.obj = "ar";
  song.genre.obj = "g";
  song.composer.obj = "c";
  song.filetype.obj = "f";
  song.unknown = {{20, 21, "u"}, {22, 23, "v"}};
  EXPECT_EQ(song.ID(), 1);
  EXPECT_EQ(song.PROP(0), 2);
  EXPECT_EQ(song.PROP(3), 3);
  EXPECT_EQ(song.NUM_OF_TRACK(), 4U);
  EXPECT_EQ(song.TOTAL_TRACK(), 5U);
  EXPECT_EQ(song.DURATION(), 6U);
  EXPECT_EQ(song.FILESIZE(), 7U);
  EXPECT_EQ(song.YEAR(), 8U);
  EXPECT_EQ(song.BITRATE(), 9U);
  EXPECT_EQ(song.SAMPLERATE(), 10U);
  EXPECT_EQ(song.MOVIE_FILE_FLAG(), 255);
  EXPECT_EQ(song.MEDIA_TYPE(), 12U);
  EXPECT_EQ(song.TRACKTOTAL().View(), "k");
  EXPECT_EQ(song.TITLE().View(), "t");
  EXPECT_EQ(song.PATH().View(), "p");
  EXPECT_EQ(song.ALBUM().View(), "al");
  EXPECT_EQ(song.ARTIST().View(), "ar");
  EXPECT_EQ(song.GENRE().View(), "g");
  EXPECT_EQ(song.COMPOSER().View(), "c");
  EXPECT_EQ(song.FILETYPE().View(), "f");
  EXPECT_EQ(&song.TRACK_INFO(), &song.trackInfo);
  EXPECT_EQ(&song.TITLE_INFO(), &song.title);
  EXPECT_EQ(&song.PATH_INFO(), &song.path);
  EXPECT_EQ(&song.ALBUM_INFO(), &song.album);
  EXPECT_EQ(&song.ARTIST_INFO(), &song.artist);
  EXPECT_EQ(&song.GENRE_INFO(), &song.genre);
  EXPECT_EQ(&song.COMPOSER_INFO(), &song.composer);
  EXPECT_EQ(&song.FILETYPE_INFO(), &song.filetype);
  EXPECT_EQ(song.CountUnkown(), 2);
  EXPECT_EQ(song.UNKOWN(1).View(), "v");
  EXPECT_EQ(song.UNKNOWN_INFO(0).idx, 20);
  EXPECT_EQ(song.UNKNOWN_INFO(1).enc, 23U);
}

TEST(SongRecord, CopyHasTextsAndListsOfItsOwn) {
  CSongList song;
  song.title.obj = "title";
  song.unknown = {{7, 1, "other"}};
  CSongList copy = song;
  song.title.obj = "changed";
  song.unknown[0].obj = "changed";
  song.unknown.clear();
  EXPECT_EQ(copy.title.obj.View(), "title");
  ASSERT_EQ(copy.unknown.size(), 1U);
  EXPECT_EQ(copy.unknown[0].obj.View(), "other");
}

TEST(SongRecord, RecordsHaveNoVirtualOperations) {
  EXPECT_FALSE(std::is_polymorphic_v<CSongList>);
  EXPECT_FALSE(std::is_polymorphic_v<CPlayList>);
  EXPECT_FALSE(std::is_polymorphic_v<CiTunesDB>);
  EXPECT_FALSE(std::is_polymorphic_v<songInfo>);
}

TEST(EmptyCell, IsZeroInEveryField) {
  EXPECT_EQ(errSongInfo.idx, 0);
  EXPECT_EQ(errSongInfo.enc, 0U);
  EXPECT_TRUE(errSongInfo.obj.empty());
}

std::string TrackText(uint32_t num, uint32_t total) {
  CSongList song;
  song.SetTrack({num, total});
  EXPECT_EQ(song.track.num, num);
  EXPECT_EQ(song.track.total, total);
  EXPECT_EQ(song.trackInfo.idx, -100);
  EXPECT_EQ(song.trackInfo.enc, kTrackInfoEncode);
  return std::string(song.trackInfo.obj.View());
}

TEST(TrackText, WithoutTotalIsTheNumberOrADash) {
  EXPECT_EQ(TrackText(0, 0), "-");
  EXPECT_EQ(TrackText(5, 0), "5");
  EXPECT_EQ(TrackText(12345, 0), "12345");
}

TEST(TrackText, WidthFollowsTheTotal) {
  EXPECT_EQ(TrackText(5, 12), "05/12");
  EXPECT_EQ(TrackText(0, 1), "00/01");
  EXPECT_EQ(TrackText(7, 99), "07/99");
  EXPECT_EQ(TrackText(7, 100), "007/100");
  EXPECT_EQ(TrackText(7, 150), "007/150");
  EXPECT_EQ(TrackText(7, 999), "007/999");
  EXPECT_EQ(TrackText(3, 1000), "0003/1000");
  EXPECT_EQ(TrackText(3, 1200), "0003/1200");
  EXPECT_EQ(TrackText(123456, 9), "123456/09");
}

TEST(TrackText, NumbersPrintAsSigned) {
  EXPECT_EQ(TrackText(0xffffffffU, 0), "-1");
  EXPECT_EQ(TrackText(0xffffffffU, 12), "-1/12");
  EXPECT_EQ(TrackText(0xffffffffU, 150), "-01/150");
  EXPECT_EQ(TrackText(0xffffffffU, 1200), "-001/1200");
  EXPECT_EQ(TrackText(1, 0xffffffffU), "0001/-001");
  EXPECT_EQ(TrackText(0x80000000U, 0x80000000U), "-2147483648/-2147483648");
}

TEST(TrackText, IsAppendedToWhatIsThere) {
  CSongList song;
  song.SetTrack({1, 2});
  song.SetTrack({3, 0});
  EXPECT_EQ(song.trackInfo.obj.View(), "01/023");
  EXPECT_EQ(song.track.num, 3U);
  EXPECT_EQ(song.track.total, 0U);
}

TEST(PlayListRecord, TakesItsTypeFromTheChunk) {
  fsbbStruct chunk{};
  chunk.count = 0xfffffffeU;
  const CPlayList list(&chunk);
  EXPECT_EQ(list.GetType(), -2);
  EXPECT_EQ(list.error, 0);
  EXPECT_EQ(list.GetTypeII(), 0);
  EXPECT_EQ(list.name.idx, -1);
  EXPECT_EQ(list.name.enc, 0U);
  EXPECT_TRUE(list.GetTitle().empty());
  EXPECT_EQ(list.CountSongs(), 0);
}

TEST(PlayListRecord, AccessorsReadTheirFields) {
  const fsbbStruct chunk{};
  CPlayList list(&chunk);
  list.SetTypeII(0xfe);
  EXPECT_EQ(list.GetTypeII(), 0xfe);
  list.name = {15, 3, "name"};
  EXPECT_EQ(list.GetTitle().View(), "name");
  EXPECT_EQ(&list.GetTitleInfo(), &list.name);
  list.SetRefNum({52, 1, 0, 7});
  list.SetRefNum({53, 2, -1, INT_MIN});
  EXPECT_EQ(list.CountSongs(), 2);
  EXPECT_EQ(list.PlaySong(0), 0);
  EXPECT_EQ(list.PlaySong(1), -1);
  EXPECT_EQ(list.RefNum(0), 52);
  EXPECT_EQ(list.Index(1), 2);
  EXPECT_EQ(list.Flags(0), 7);
  EXPECT_EQ(list.Flags(1), INT_MIN);
  EXPECT_EQ(&list.REFIDX(), &list.refnum);
}

TEST(Database, FreshOneIsEmptyAndZero) {
  const CiTunesDB database{};
  EXPECT_EQ(database.error, 0);
  EXPECT_FALSE(database.UseSJIS());
  EXPECT_EQ(database.LIBTYPE(), 0);
  EXPECT_EQ(database.listType, 0);
  EXPECT_EQ(database.infoType, 0);
  EXPECT_EQ(database.odcount, 0);
  EXPECT_EQ(database.tarSong, nullptr);
  EXPECT_EQ(database.tarPlay, nullptr);
  EXPECT_EQ(database.defaultIndex, 0);
  EXPECT_TRUE(database.songs.empty());
  EXPECT_TRUE(database.plays.empty());
  EXPECT_TRUE(database.VOLNAME().empty());
}

}  // namespace
}  // namespace db_test
