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
  for (const long allocations : {0L, 1L, 2L, 5L, 10L, 50L, -1L}) {
    const size_t before = support::BytesInUse();
    {
      CiTunesDB database;
      (void)LoadWith(allocations, database, file.Stream());
    }
    EXPECT_EQ(support::BytesInUse(), before) << allocations;
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

TEST_P(OutOfMemory, ObjectsThatAllClaimTheRestOfTheFileDoNotAddUp) {
  constexpr uint32_t kObjects = 2000;
  constexpr uint32_t kLength = 24;
  samples::ChunkWriter out(GetParam());
  samples::BeginFile(out, 1, 16);
  out.Begin(samples::Kind::Track, 0xd4);
  for (uint32_t i = 0; i < kObjects; ++i) {
    samples::DataObject object = samples::RawObject(4, "");
    // The body is as long as the object without its header, here all that is left of the file.
    object.headerLength = kLength - (kObjects - 1 - i) * kLength;
    AppendObject(out, object);
  }
  EXPECT_LT(MemoryToLoad(out.Bytes()), 40 * out.Size());
}

TEST_P(OutOfMemory, RepeatedListsDoNotAddUp) {
  samples::ChunkWriter out(GetParam());
  samples::BeginFile(out, 1, 16);
  out.Begin(samples::Kind::DataSet, 16, 2);
  for (int i = 0; i < 3000; ++i) {
    for (const samples::Kind kind : {samples::Kind::TrackList, samples::Kind::PlaylistList}) {
      out.PutWord(out.Begin(kind, 16) + 8, 0x7ffffff0);
    }
    out.Begin(samples::Kind::Track, 16);
    out.Begin(samples::Kind::Playlist, 16);
  }
  EXPECT_LT(MemoryToLoad(out.Bytes()), out.Size() * (3 * (sizeof(CSongList) + sizeof(CPlayList)) / 16 + 64));
}

}  // namespace
}  // namespace db_test
