// The model's queries by hand-made examples.
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/model/Queries.h"

namespace {

using model::By;
using namespace std::string_literals;

model::Database ThreeSongs() {
  model::Database database;
  database.libType = 1;
  database.songs.resize(3);
  for (int32_t i = 0; i < 3; ++i) database.songs[static_cast<size_t>(i)].id = i == 2 ? 11 : 10 + i;
  return database;
}

TEST(ModelQueries, NumberGroupsWithCrossedCounters) {
  std::vector<model::Song> songs(3);
  for (model::Song &song : songs) song.filetype.idx = -1;
  model::SetSongsObjectIndex(songs);
  const auto numbers = [](const model::Song &song) {
    return std::vector<int32_t>{song.artist.idx, song.album.idx, song.genre.idx, song.composer.idx,
                                song.filetype.idx};
  };
  EXPECT_THAT(numbers(songs[0]), testing::ElementsAre(2, -1, -1, -1, -1));
  EXPECT_THAT(numbers(songs[1]), testing::ElementsAre(1, 1, 1, 1, 1));
  EXPECT_THAT(numbers(songs[2]), testing::ElementsAre(1, 1, 1, 1, 1));
}

TEST(ModelQueries, FindTheFirstSongWithAnIDAndElseTheFirstSong) {
  const model::Database database = ThreeSongs();
  EXPECT_EQ(model::FindRefIdx(database.songs, 11), 1);
  EXPECT_EQ(model::FindRefIdx(database.songs, 99), 0);
  EXPECT_EQ(model::FindRefIdx({}, 99), 0);
}

TEST(ModelQueries, CompareAlbumsTogetherWithArtists) {
  model::Database database = ThreeSongs();
  database.songs[0].album.text = database.songs[1].album.text = "Album";
  database.songs[0].artist.text = "A";
  EXPECT_FALSE(model::CompareSongsObjects(database.songs, 3, 0, 1, By::Text));
  database.songs[1].artist.text = "A";
  EXPECT_TRUE(model::CompareSongsObjects(database.songs, 3, 0, 1, By::Text));
  EXPECT_FALSE(model::CompareSongsObjects(database.songs, 1, 0, 0, By::Text));
  EXPECT_FALSE(model::CompareSongsObjects(database.songs, 4, 0, 3, By::Text));
  EXPECT_TRUE(model::CompareSongsObjects(database.songs, 5, 0, 2, By::Text));
}

TEST(ModelQueries, ReduceOnlyTheLittleEndianPathToOneByteACharacter) {
  model::Database database = ThreeSongs();
  database.songs[0].path.text = "\0:\x30\x42\0i\0"s;
  EXPECT_EQ(model::SongsObjectInfo(database, 0, 2).text, ":i");
  database.libType = 0;
  EXPECT_EQ(model::SongsObjectInfo(database, 0, 2).text, database.songs[0].path.text);
}

TEST(ModelQueries, SetNoPathAndAddNoObject) {
  model::Database database = ThreeSongs();
  const model::Database before = database;
  model::SetSongsObjectInfo(database, 0, 2, "x", 5);
  model::SetSongsObjectInfo(database, 0, 7, "x", 5);
  model::SetSongsObjectInfo(database, 3, 1, "x", 5);
  EXPECT_EQ(database, before);
  database.songs[0].unknown = {{7, 0, "a"}, {7, 0, "b"}};
  model::SetSongsObjectInfo(database, 0, 7, "x", 5);
  EXPECT_EQ(database.songs[0].unknown, (std::vector<model::Cell>{{7, 5, "x"}, {7, 0, "b"}}));
  EXPECT_EQ(model::SongsUnknownObjectInfo(database, 0, 8), (model::Cell{-1, 0, ""}));
  EXPECT_EQ(model::SongsUnknownObjectInfo(database, 0, -100), model::Cell{});
}

TEST(ModelQueries, KnowThePropsFromMinusTwoToNine) {
  model::Database database = ThreeSongs();
  for (int32_t num = -3; num <= 10; ++num)
    model::SetSongsProp(database, 1, num, static_cast<uint32_t>(100 + num));
  std::vector<int32_t> read;
  for (int32_t num = -3; num <= 10; ++num) read.push_back(model::SongsProp(database, 1, num));
  EXPECT_THAT(read, testing::ElementsAre(0, 98, 99, 100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 0));
  EXPECT_EQ(database.songs[1].total, 105U);
  EXPECT_EQ(database.songs[1].samplerate, 109U);
}

}  // namespace
