// A program of its own, since it replaces the allocation functions.

#include <gtest/gtest.h>
#include <string>

#include "samples/GeneratedLibrary.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/model/Loader.h"
#include "tests/support/Allocations.h"

namespace db_test {
namespace {

using samples::Variant;

class OutOfMemory : public testing::TestWithParam<Variant> {
 protected:
  ~OutOfMemory() override { support::GrantAllAllocations(); }

  // A load with only the first `allocations` granted.
  static int32_t LoadWith(long allocations, CiTunesDB &database, FILE *stream) {
    support::GrantAllocations(allocations);
    const int32_t result = database.LoadiTunesDB(stream);
    support::GrantAllAllocations();
    return result;
  }

  // A library with everything in it, odd texts and concatenated objects included.
  static std::string File() {
    const std::string small = SmallLibrary(GetParam());
    const samples::GeneratedLibrary more{
        .seed = 9, .songs = 40, .playlists = 2, .entries = 30, .variant = GetParam()};
    return small + more.Bytes();
  }
};

INSTANTIATE_TEST_SUITE_P(Loader, OutOfMemory, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(OutOfMemory, LoadThatRunsOutAnswers0AndLeavesAValidDatabase) {
  const MemoryFile file(File());
  model::Database whole;
  ASSERT_TRUE(model::Load(File(), whole));
  long allocations = 0;
  for (;; ++allocations) {
    ASSERT_LT(allocations, 5000);
    CiTunesDB database;
    if (LoadWith(allocations, database, file.Stream()) == 1) {
      EXPECT_EQ(Plain(database), whole);
      break;
    }
    // What was read before stays and can be asked for.
    const model::Database rest = Plain(database);
    ASSERT_LE(rest.songs.size(), whole.songs.size());
    ASSERT_LE(rest.plays.size(), whole.plays.size());
    for (size_t i = 0; i < rest.songs.size(); ++i) ASSERT_EQ(rest.songs[i].id, whole.songs[i].id);
    for (int32_t i = -1; i < 4; ++i) {
      (void)database.SongsObjectInfo(i, 1);
      (void)database.PlayListNameInfo(i);
      (void)database.FindRefIdx(53);
    }
    // The same database reads on when there is memory again.
    ASSERT_EQ(database.LoadiTunesDB(file.Stream()), 1);
    ASSERT_EQ(database.songs.size(), rest.songs.size() + whole.songs.size());
    ASSERT_EQ(database.plays.size(), rest.plays.size() + whole.plays.size());
  }
  EXPECT_GT(allocations, 10) << "the load makes more allocations than that";
}

TEST_P(OutOfMemory, NothingIsKeptPastTheDatabasesLife) {
  const MemoryFile file(File());
  int32_t result = 0;
  for (long allocations = 0; result == 0; ++allocations) {
    ASSERT_LT(allocations, 5000);
    const size_t before = support::BytesInUse();
    {
      CiTunesDB database;
      result = LoadWith(allocations, database, file.Stream());
    }
    ASSERT_EQ(support::BytesInUse(), before) << allocations;
  }
}

// The most bytes that loading the file takes at once.
size_t MemoryToLoad(const std::string &bytes) {
  const MemoryFile file(bytes);
  support::ForgetMostBytes();
  const size_t before = support::BytesInUse();
  CiTunesDB database;
  (void)database.LoadiTunesDB(file.Stream());
  return support::MostBytesInUse() - before;
}

TEST_P(OutOfMemory, NoWordOfAFileMakesTheLoadTakeMuchMemory) {
  const std::string file = SmallLibrary(GetParam());
  // A record for every 16 bytes of the file is the worst that a file can ask for.
  const size_t limit = file.size() * (3 * (sizeof(CSongList) + sizeof(CPlayList)) / 16 + 64);
  EXPECT_LT(MemoryToLoad(file), limit);
  for (size_t at = 0; at + 4 <= file.size(); at += 4) {
    for (const uint32_t value : {0U, 1U, 16U, 0x1000U, 0x7fffffffU, 0x80000000U, 0xfffffffeU, 0xffffffffU}) {
      samples::ChunkWriter word(GetParam());
      word.AppendWord(value);
      std::string damaged = file;
      damaged.replace(at, 4, word.Bytes());
      ASSERT_LT(MemoryToLoad(damaged), limit) << "word " << value << " at " << at;
    }
  }
}

TEST(SongTableOutOfMemory, IDsThatTheIndexHasNoRoomForAreFoundOnceThereIsSome) {
  constexpr int32_t kSongs = 1000;
  SongTable songs;
  // Room for the first song's ID is enough for those that have the same.
  for (int32_t i = 0; i < kSongs; ++i) {
    songs.Append(5);
    songs.IndexIDs();
  }
  support::GrantAllocations(0);
  for (int32_t i = 0; i < kSongs; ++i) songs.SetID(static_cast<size_t>(i), 100 + i);
  support::GrantAllAllocations();
  EXPECT_TRUE(support::AllocationFailed());
  for (int32_t i = 0; i < kSongs; ++i) EXPECT_EQ(songs.FindID(100 + i), i);
  EXPECT_EQ(songs.FindID(5), -1);
}

}  // namespace
}  // namespace db_test
