#include <climits>
#include <gtest/gtest.h>
#include <vector>

#include "samples/GeneratedLibrary.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"

namespace db_test {
namespace {

using samples::Random;

// The search as it reads: from the first song on, 0 for none.
int32_t FindByWalking(const CiTunesDB &database, int32_t id) {
  for (size_t i = 0; i < database.songs.size(); ++i) {
    if (database.songs[i].id == id) return static_cast<int32_t>(i);
  }
  return 0;
}

void AddSong(CiTunesDB &database, int32_t id) {
  CSongList song;
  song.id = id;
  database.songs.push_back(song);
}

TEST(FindRefIdx, GivesTheLowestIndexOfADuplicateID) {
  CiTunesDB database;
  for (int32_t i = 0; i < 12; ++i) AddSong(database, i == 5 || i == 9 ? 1000 : i);
  EXPECT_EQ(database.FindRefIdx(1000), 5);
  EXPECT_EQ(database.FindRefIdx(11), 11);
}

TEST(FindRefIdx, GivesZeroForAnIDThatNoSongCarries) {
  CiTunesDB database;
  for (int32_t i = 0; i < 12; ++i) AddSong(database, 100 + i);
  for (const int32_t id : {0, 99, 112, -1, INT_MAX, INT_MIN}) EXPECT_EQ(database.FindRefIdx(id), 0);
}

TEST(FindRefIdx, GivesZeroForAnEmptyLibrary) {
  const CiTunesDB database{};
  EXPECT_EQ(database.FindRefIdx(0), 0);
  EXPECT_EQ(database.FindRefIdx(5), 0);
}

TEST(FindRefIdx, KnowsZeroAndExtremeIDs) {
  CiTunesDB database;
  for (const int32_t id : {7, INT_MIN, INT_MAX, -1, 0}) AddSong(database, id);
  EXPECT_EQ(database.FindRefIdx(INT_MIN), 1);
  EXPECT_EQ(database.FindRefIdx(INT_MAX), 2);
  EXPECT_EQ(database.FindRefIdx(-1), 3);
  EXPECT_EQ(database.FindRefIdx(0), 4);
}

TEST(FindRefIdx, SeesSongsAppendedAfterASearch) {
  CiTunesDB database;
  AddSong(database, 1);
  EXPECT_EQ(database.FindRefIdx(2), 0);
  AddSong(database, 9);
  AddSong(database, 2);
  EXPECT_EQ(database.FindRefIdx(2), 2);
}

TEST(FindRefIdx, SeesAnIDSetThroughItsProp) {
  CiTunesDB database;
  for (int32_t i = 0; i < 4; ++i) AddSong(database, 10);
  EXPECT_EQ(database.FindRefIdx(10), 0);
  database.SetSongsProp(0, -1, 11);
  EXPECT_EQ(database.FindRefIdx(10), 1);
  EXPECT_EQ(database.FindRefIdx(11), 0);
  database.SetSongsProp(2, -1, 12);
  database.SetSongsProp(1, -1, 12);
  EXPECT_EQ(database.FindRefIdx(10), 3);
  EXPECT_EQ(database.FindRefIdx(12), 1);
  database.SetSongsProp(3, -1, 13);
  EXPECT_EQ(database.FindRefIdx(10), 0) << "no song has it any more";
  database.SetSongsProp(1, -1, 10);
  EXPECT_EQ(database.FindRefIdx(10), 1);
  EXPECT_EQ(database.FindRefIdx(12), 2);
}

TEST(FindRefIdx, SeesAnIDSetInTheRecord) {
  CiTunesDB database;
  for (int32_t i = 0; i < 4; ++i) AddSong(database, i);
  EXPECT_EQ(database.FindRefIdx(3), 3);
  database.songs[2].id = 77;
  EXPECT_EQ(database.FindRefIdx(77), 2);
  EXPECT_EQ(database.FindRefIdx(2), 0);
  database.songs.back().id = 78;
  EXPECT_EQ(database.FindRefIdx(78), 3);
  for (CSongList &song : database.songs) song.id += 1000;
  EXPECT_EQ(database.FindRefIdx(1001), 1);
  database.songs.pop_back();
  EXPECT_EQ(database.FindRefIdx(1078), 0);
  database.songs.clear();
  EXPECT_EQ(database.FindRefIdx(1001), 0);
}

TEST(FindRefIdx, SeesAnIDSetThroughARecordThatWasKept) {
  CiTunesDB database;
  ASSERT_EQ(Load(database, SmallLibrary(samples::Variant::LittleEndian)), 1);
  CSongList &kept = database.songs[1];
  const auto last = database.songs.end() - 1;
  EXPECT_EQ(database.FindRefIdx(53), 1);
  kept.id = 60;
  EXPECT_EQ(database.FindRefIdx(60), 1);
  EXPECT_EQ(database.FindRefIdx(53), 2);
  last->id = 61;
  EXPECT_EQ(database.FindRefIdx(61), 2);
  EXPECT_EQ(database.FindRefIdx(53), 0);
  database.tarSong->id = 62;
  EXPECT_EQ(database.FindRefIdx(62), 2);
  EXPECT_EQ(database.FindRefIdx(61), 0);
  CSongList &first = *database.songs.begin();
  EXPECT_EQ(database.FindRefIdx(62), 2);
  std::swap(first, kept);
  EXPECT_EQ(database.FindRefIdx(52), 1);
  EXPECT_EQ(database.FindRefIdx(60), 0);
  std::swap(first.id, last->id);
  EXPECT_EQ(database.FindRefIdx(60), 2);
  CSongList other;
  other.id = 63;
  *last = other;
  EXPECT_EQ(database.FindRefIdx(63), 2);
  EXPECT_EQ(database.FindRefIdx(60), 0);
}

TEST(FindRefIdx, SeesAnIDSetThroughItsPropAfterOneInAKeptRecord) {
  CiTunesDB database;
  for (const int32_t id : {10, 11, 12, 12}) AddSong(database, id);
  CSongList &last = database.songs[3];
  EXPECT_EQ(database.FindRefIdx(12), 2);
  last.id = 20;
  database.SetSongsProp(2, -1, 21);  // of the two songs that had the ID none is left
  EXPECT_EQ(database.FindRefIdx(12), 0);
  EXPECT_EQ(database.FindRefIdx(20), 3);
  EXPECT_EQ(database.FindRefIdx(21), 2);
}

TEST(FindRefIdx, OfEachDatabaseSeesItsOwnChanges) {
  CiTunesDB one;
  CiTunesDB two;
  for (int32_t i = 0; i < 4; ++i) {
    AddSong(one, 10 + i);
    AddSong(two, 20 + i);
  }
  CSongList &ofOne = one.songs[2];
  CSongList &ofTwo = two.songs[3];
  EXPECT_EQ(one.FindRefIdx(12), 2);
  EXPECT_EQ(two.FindRefIdx(23), 3);
  ofOne.id = 30;
  ofTwo.id = 31;
  EXPECT_EQ(one.FindRefIdx(30), 2);
  EXPECT_EQ(one.FindRefIdx(31), 0);
  EXPECT_EQ(two.FindRefIdx(31), 3);
  EXPECT_EQ(two.FindRefIdx(22), 2);
}

TEST(FindRefIdx, IsAWalkOverTheSongsWhateverHappens) {
  Random random(41);
  for (int round = 0; round < 60; ++round) {
    CiTunesDB database;
    database.songs.reserve(400);  // so that records that are kept stay where they are
    std::vector<CSongList *> kept;
    const uint32_t ids = 1 + random.Below(round % 3 == 0 ? 8 : 400);
    const auto anyID = [&] { return static_cast<int32_t>(random.Below(ids)) - 3; };
    for (int step = 0; step < 400; ++step) {
      const size_t count = database.songs.size();
      switch (random.Below(7)) {
        case 0:
        case 1:
          AddSong(database, anyID());
          kept.push_back(&database.songs.back());
          break;
        case 2:
          database.SetSongsProp(static_cast<int32_t>(random.Below(static_cast<uint32_t>(count + 1))), -1,
                                static_cast<uint32_t>(anyID()));
          break;
        case 3:
          if (count > 0) database.songs[random.Below(static_cast<uint32_t>(count))].id = anyID();
          break;
        case 4:
          if (count > 0 && random.OneIn(4)) {
            database.songs.pop_back();
            kept.pop_back();
          }
          break;
        case 5:
          if (count > 0) kept[random.Below(static_cast<uint32_t>(count))]->id = anyID();
          break;
        default:
          break;
      }
      for (int search = 0; search < 3; ++search) {
        const int32_t id = anyID();
        ASSERT_EQ(database.FindRefIdx(id), FindByWalking(database, id)) << "round " << round << " id " << id;
      }
    }
  }
}

TEST(FindRefIdx, OfIDsThatChangeBackAndForthIsAWalkOverTheSongs) {
  Random random(42);
  CiTunesDB database;
  for (int32_t i = 0; i < 300; ++i) AddSong(database, i % 20);
  for (int step = 0; step < 20000; ++step) {
    const auto index = static_cast<int32_t>(random.Below(300));
    database.SetSongsProp(index, -1, random.Below(40));
    const auto id = static_cast<int32_t>(random.Below(42));
    ASSERT_EQ(database.FindRefIdx(id), FindByWalking(database, id)) << "step " << step;
  }
}

TEST(FindRefIdx, OfIDsFarApartIsAWalkOverTheSongs) {
  CiTunesDB database;
  for (uint32_t i = 0; i < 2000; ++i) AddSong(database, static_cast<int32_t>(i << 21 | i >> 11));
  for (uint32_t i = 0; i < 2000; ++i) {
    const auto id = static_cast<int32_t>(i << 21 | i >> 11);
    ASSERT_EQ(database.FindRefIdx(id), FindByWalking(database, id));
  }
}

TEST(FindRefIdx, OfALoadedFileIsAWalkOverTheSongs) {
  samples::Library library;
  Random random(43);
  std::vector<samples::Track> tracks(500);
  for (samples::Track &track : tracks) track.id = random.Below(300);
  CiTunesDB database;
  ASSERT_EQ(Load(database,
                 samples::WriteLibrary(samples::OrdinaryLibrary(tracks, {}), samples::Variant::LittleEndian)),
            1);
  for (int32_t id = -1; id <= 300; ++id) ASSERT_EQ(database.FindRefIdx(id), FindByWalking(database, id));
}

TEST(TrackIDIndex, FindsTheLowestIndexAdded) {
  TrackIDIndex ids;
  EXPECT_EQ(ids.Find(5), -1);
  ids.Add(5, 3);
  ids.Add(5, 1);
  ids.Add(5, 2);
  EXPECT_EQ(ids.Find(5), 1);
  EXPECT_EQ(ids.Remove(5), 2U);
  ids.SetLowest(5, 2);
  EXPECT_EQ(ids.Find(5), 2);
  EXPECT_EQ(ids.Remove(5), 1U);
  EXPECT_EQ(ids.Remove(5), 0U);
  EXPECT_EQ(ids.Find(5), -1);
  EXPECT_EQ(ids.Remove(5), 0U);
  ids.Add(5, 9);
  ids.Clear();
  EXPECT_EQ(ids.Find(5), -1);
  EXPECT_EQ(ids.Remove(5), 0U);
}

TEST(TrackIDIndex, FindsEveryIDWhileOthersAreRemoved) {
  Random random(44);
  TrackIDIndex ids;
  std::vector<int32_t> held(1000, -1);
  for (int step = 0; step < 60000; ++step) {
    const auto id = static_cast<int32_t>(random.Below(1000));
    const auto at = static_cast<size_t>(id);
    if (held[at] < 0) {
      held[at] = step;
      ids.Add(id * 64, step);
    } else {
      ASSERT_EQ(ids.Find(id * 64), held[at]);
      ASSERT_EQ(ids.Remove(id * 64), 0U);
      held[at] = -1;
    }
    const uint32_t other = random.Below(1000);
    ASSERT_EQ(ids.Find(static_cast<int32_t>(other) * 64), held[other]);
  }
}

}  // namespace
}  // namespace db_test
