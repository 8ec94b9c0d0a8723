// Records that are taken out of a database, or are changed from outside, as C++ code may do it.
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "samples/GeneratedLibrary.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/support/Allocations.h"

namespace db_test {
namespace {

using samples::Variant;

constexpr size_t kLong = 100000;

// A library with a title, another object and a playlist's name, each of 200,000 bytes.
std::string LongTexts() {
  const std::u16string text(kLong, u'x');
  const samples::Library library = samples::OrdinaryLibrary(
      {{.id = 1, .objects = {samples::TextObject(1, text), samples::TextObject(50, text)}}},
      {{.name = text}});
  return samples::WriteLibrary(library, Variant::LittleEndian);
}

// Takes records out of a database, ends that, and looks whether their texts are still there: memory of that
// size must be in use, and hold the texts. Gives their number of bytes.
template <typename Take>
void ExpectTextsToOutliveTheDatabase(Take take) {
  const std::string text = HighByteFirst(std::u16string(kLong, u'x'));
  const MemoryFile file(LongTexts());
  const size_t before = support::BytesInUse();
  {
    std::vector<CSongList> songs;
    std::vector<CPlayList> lists;
    {
      CiTunesDB database;
      ASSERT_EQ(database.LoadiTunesDB(file.Stream()), 1);
      take(database, songs, lists);
    }
    ASSERT_EQ(songs.size(), 1U);
    ASSERT_EQ(lists.size(), 1U);
    EXPECT_GE(support::BytesInUse() - before, 3 * text.size());
    EXPECT_EQ(songs[0].title.obj.View(), text);
    ASSERT_EQ(songs[0].unknown.size(), 1U);
    EXPECT_EQ(songs[0].unknown[0].obj.View(), text);
    EXPECT_EQ(lists[0].name.obj.View(), text);
  }
  EXPECT_EQ(support::BytesInUse(), before) << "and go with the last of them";
}

TEST(RecordOfADatabase, KeepsItsTextsWhenCopied) {
  ExpectTextsToOutliveTheDatabase([](CiTunesDB &database, auto &songs, auto &lists) {
    songs.push_back(database.songs[0]);
    lists.push_back(database.plays[0]);
  });
}

TEST(RecordOfADatabase, KeepsItsTextsWhenMovedOut) {
  ExpectTextsToOutliveTheDatabase([](CiTunesDB &database, auto &songs, auto &lists) {
    songs.push_back(std::move(database.songs[0]));
    lists.push_back(std::move(database.plays[0]));
  });
}

TEST(RecordOfADatabase, KeepsItsTextsWhenSwappedOut) {
  ExpectTextsToOutliveTheDatabase([](CiTunesDB &database, auto &songs, auto &lists) {
    songs.emplace_back();
    std::swap(songs[0], database.songs[0]);
    std::swap(lists, database.plays);
  });
}

TEST(RecordOfADatabase, KeepsItsTextsWhenTheyAreMovedOneByOne) {
  ExpectTextsToOutliveTheDatabase([](CiTunesDB &database, auto &songs, auto &lists) {
    CSongList &song = database.songs[0];
    songs.emplace_back();
    songs[0].title = std::move(song.title);
    songs[0].unknown = std::move(song.unknown);
    lists.push_back(database.plays[0]);
    lists[0].name.obj = std::move(database.plays[0].name.obj);
  });
}

void LoadGenerated(CiTunesDB &database, uint32_t songs) {
  const samples::GeneratedLibrary library{.seed = 6, .songs = songs, .playlists = 2, .entries = 20};
  ASSERT_EQ(Load(database, library.Bytes()), 1);
}

TEST(IDsOfADatabase, AreNotIndexedAnewWhenTheyChangeThroughTheClass) {
  CiTunesDB database;
  LoadGenerated(database, 300);
  const size_t before = support::AllocationsMade();
  for (int32_t i = 0; i < 1000; ++i) {
    const int32_t song = i * 7 % 300;
    database.SetSongsProp(song, -1, 100000U + static_cast<uint32_t>(song));
    ASSERT_EQ(database.FindRefIdx(100000 + song), song);
  }
  EXPECT_LE(support::AllocationsMade() - before, 2U) << "beside a larger table";
}

TEST(IDsOfADatabase, AreNotIndexedAnewWhenAnotherDatabaseLoads) {
  CiTunesDB database;
  LoadGenerated(database, 300);
  CiTunesDB other;
  LoadGenerated(other, 400);
  const size_t before = support::AllocationsMade();
  for (int32_t i = 0; i < 300; ++i) ASSERT_EQ(database.FindRefIdx(database.SongsID(i)), i);
  EXPECT_EQ(support::AllocationsMade(), before);
}

}  // namespace
}  // namespace db_test
