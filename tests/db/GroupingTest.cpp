#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "samples/GeneratedLibrary.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/model/Loader.h"
#include "tests/model/Queries.h"

namespace db_test {
namespace {

using samples::Random;
using samples::Variant;

struct CellPair {
  songInfo CSongList::*real;
  model::Cell model::Song::*plain;
};

constexpr CellPair kCells[] = {{&CSongList::artist, &model::Song::artist},
                               {&CSongList::album, &model::Song::album},
                               {&CSongList::genre, &model::Song::genre},
                               {&CSongList::composer, &model::Song::composer},
                               {&CSongList::filetype, &model::Song::filetype}};

// Songs in the database and in the plain records alike.
class Songs {
 public:
  void Add() {
    database_.songs.push_back(CSongList());
    plain_.push_back(Plain(CSongList()));
  }
  void Set(size_t song, const CellPair &cell, int32_t idx, const std::string &text) {
    database_.songs[song].*cell.real = {idx, 0, text};
    plain_[song].*cell.plain = {idx, 0, text};
  }
  void Number() {
    database_.SetSongsObjectIndex();
    model::SetSongsObjectIndex(plain_);
  }
  [[nodiscard]] bool Agree() const { return Plain(database_).songs == plain_; }
  [[nodiscard]] int32_t Idx(size_t song, const CellPair &cell) const {
    return (database_.songs[song].*cell.real).idx;
  }
  CiTunesDB &Database() { return database_; }

 private:
  CiTunesDB database_;
  std::vector<model::Song> plain_;
};

TEST(Grouping, OfThreeSongsWithoutTextsCrossesItsCounters) {
  Songs songs;
  for (size_t i = 0; i < 3; ++i) {
    songs.Add();
    for (const CellPair &cell : kCells) songs.Set(i, cell, -1, "");
  }
  songs.Number();
  EXPECT_EQ(songs.Idx(0, kCells[0]), 2);
  for (size_t cell = 1; cell < 5; ++cell) EXPECT_EQ(songs.Idx(0, kCells[cell]), -1);
  for (size_t song = 1; song < 3; ++song) {
    for (const CellPair &cell : kCells) EXPECT_EQ(songs.Idx(song, cell), 1);
  }
  EXPECT_TRUE(songs.Agree());
}

TEST(Grouping, OfNoSongOrOneDoesNothing) {
  Songs none;
  none.Number();
  EXPECT_TRUE(none.Agree());
  Songs one;
  one.Add();
  for (const CellPair &cell : kCells) one.Set(0, cell, -1, "x");
  one.Number();
  for (const CellPair &cell : kCells) EXPECT_EQ(one.Idx(0, cell), -1);
}

TEST(Grouping, NeverTakesTheLastSongAsAFirst) {
  Songs songs;
  for (size_t i = 0; i < 2; ++i) {
    songs.Add();
    for (const CellPair &cell : kCells) songs.Set(i, cell, -1, std::to_string(i));
  }
  songs.Number();
  for (const CellPair &cell : kCells) EXPECT_EQ(songs.Idx(1, cell), -1);
  EXPECT_EQ(songs.Idx(0, kCells[0]), 2);
}

TEST(Grouping, ComposerAndFileTypeMatchesTakeTheGenresCounter) {
  Songs songs;
  for (size_t i = 0; i < 4; ++i) {
    songs.Add();
    for (const CellPair &cell : kCells) songs.Set(i, cell, 5, "");
    songs.Set(i, kCells[2], -1, std::to_string(i));
  }
  // Genres of songs 0 to 2 count to 3; the composer's own counter only to 1.
  songs.Set(2, kCells[3], -1, "c");
  songs.Set(3, kCells[3], -1, "c");
  songs.Number();
  EXPECT_EQ(songs.Idx(3, kCells[3]), 3);
  EXPECT_EQ(songs.Idx(2, kCells[3]), -1);
  EXPECT_EQ(songs.Idx(2, kCells[0]), 1)
      << "the composer's count lands in the artist's cell, after the genre's";
  EXPECT_TRUE(songs.Agree());
}

TEST(Grouping, LeavesNumberedCellsAlone) {
  Songs songs;
  for (size_t i = 0; i < 3; ++i) {
    songs.Add();
    for (const CellPair &cell : kCells) songs.Set(i, cell, static_cast<int32_t>(i), "same");
  }
  songs.Number();
  for (size_t i = 0; i < 3; ++i) {
    for (const CellPair &cell : kCells) EXPECT_EQ(songs.Idx(i, cell), static_cast<int32_t>(i));
  }
}

TEST(Grouping, AlbumsOfOneNameBelongTogetherByTheirArtist) {
  Songs songs;
  for (size_t i = 0; i < 4; ++i) {
    songs.Add();
    for (const CellPair &cell : kCells) songs.Set(i, cell, 9, "");
    songs.Set(i, kCells[0], 9, i % 2 == 0 ? "a" : "b");
    songs.Set(i, kCells[1], -1, "Greatest Hits");
  }
  songs.Number();
  EXPECT_EQ(songs.Idx(2, kCells[1]), 1);
  EXPECT_EQ(songs.Idx(3, kCells[1]), 2);
  EXPECT_TRUE(songs.Agree());
}

TEST(Grouping, TextsThatJoinAlikeAreNotTheSameAlbum) {
  Songs songs;
  for (size_t i = 0; i < 3; ++i) {
    songs.Add();
    for (const CellPair &cell : kCells) songs.Set(i, cell, 9, "");
  }
  songs.Set(0, kCells[1], -1, "ab");
  songs.Set(0, kCells[0], 9, "c");
  songs.Set(1, kCells[1], -1, "a");
  songs.Set(1, kCells[0], 9, "bc");
  songs.Number();
  EXPECT_EQ(songs.Idx(1, kCells[1]), -1);
  EXPECT_TRUE(songs.Agree());
}

// Adds songs with random texts from a few, and idx of either sign.
void AddRandomSongs(Songs &songs, Random &random, uint32_t count, uint32_t texts, uint32_t oneNegativeIn) {
  for (uint32_t i = 0; i < count; ++i) {
    songs.Add();
    for (const CellPair &cell : kCells) {
      const auto idx = random.OneIn(oneNegativeIn) ? -1 - static_cast<int32_t>(random.Below(3))
                                                   : static_cast<int32_t>(random.Below(4));
      std::string text = random.OneIn(3) ? "" : std::to_string(random.Below(texts));
      if (random.OneIn(4)) text += std::string(20, 'x');
      songs.Set(i, cell, idx, text);
    }
  }
}

TEST(Grouping, OfRandomSongsIsThatOfComparingEveryPair) {
  Random random(31);
  for (int round = 0; round < 3000; ++round) {
    const uint32_t oneNegativeIn = 1 + random.Below(4);
    Songs songs;
    AddRandomSongs(songs, random, random.Below(14), 1 + random.Below(4), oneNegativeIn);
    songs.Number();
    ASSERT_TRUE(songs.Agree()) << "round " << round;
    songs.Number();
    ASSERT_TRUE(songs.Agree()) << "round " << round << ", numbered once more";
  }
}

TEST(Grouping, OfManySongsIsThatOfComparingEveryPair) {
  Random random(32);
  for (const uint32_t texts : {3U, 40U, 2000U}) {
    Songs songs;
    AddRandomSongs(songs, random, 1200, texts, 1);
    songs.Number();
    ASSERT_TRUE(songs.Agree());
  }
}

TEST(Grouping, OfTextsMadeToMeetIsThatOfComparingEveryPair) {
  Songs songs;
  for (uint32_t i = 0; i < 300; ++i) {
    songs.Add();
    const std::string text = HighByteFirst(samples::CancellingText(i % 200));
    for (const CellPair &cell : kCells) songs.Set(i, cell, -1, text);
  }
  songs.Number();
  EXPECT_TRUE(songs.Agree());
}

TEST(Grouping, KeepsTheTrackIDs) {
  Songs songs;
  for (size_t i = 0; i < 3; ++i) {
    songs.Add();
    songs.Database().songs[i].id = static_cast<int32_t>(50 + i);
  }
  EXPECT_EQ(songs.Database().FindRefIdx(52), 2);
  songs.Database().SetSongsObjectIndex();
  EXPECT_EQ(songs.Database().FindRefIdx(52), 2);
}

class GroupingOfAFile : public testing::TestWithParam<Variant> {};

INSTANTIATE_TEST_SUITE_P(Loader, GroupingOfAFile, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(GroupingOfAFile, IsThatOfComparingEveryPair) {
  Random random(33);
  for (int round = 0; round < 200; ++round) {
    std::vector<samples::Track> tracks(random.Below(9));
    for (samples::Track &track : tracks) {
      for (const uint32_t type : {1U, 3U, 4U, 5U, 6U, 12U}) {
        if (!random.OneIn(2)) continue;
        track.objects.push_back(
            samples::TextObject(type, std::u16string(1, static_cast<char16_t>(u'a' + random.Below(3)))));
      }
    }
    const std::string file = samples::WriteLibrary(samples::OrdinaryLibrary(tracks, {}), GetParam());
    CiTunesDB database;
    model::Database expected;
    ASSERT_EQ(Load(database, file), 1);
    ASSERT_TRUE(model::Load(file, expected));
    ASSERT_EQ(Plain(database), expected);
  }
}

}  // namespace
}  // namespace db_test
