#include <climits>
#include <gtest/gtest.h>

#include "tests/db/DatabaseFiles.h"

namespace db_test {
namespace {

// Two playlists: an empty one, and one of two entries.
class PlayListQueries : public testing::Test {
 protected:
  PlayListQueries() {
    fsbbStruct chunk{};
    chunk.count = 7;
    database_.plays.emplace_back(&chunk);
    chunk.count = 0xffffffff;
    CPlayList list(&chunk);
    list.SetTypeII(200);
    list.name = {15, 3, "name"};
    list.SetRefNum({52, 0, 0, 0});
    list.SetRefNum({53, 1, 1, 2});
    database_.plays.push_back(list);
  }

  CiTunesDB database_;
};

TEST_F(PlayListQueries, TypesAreThoseOfThePlaylist) {
  EXPECT_EQ(database_.PlayListType(0), 7);
  EXPECT_EQ(database_.PlayListTypeII(0), 0);
  EXPECT_EQ(database_.PlayListType(1), -1);
  EXPECT_EQ(database_.PlayListTypeII(1), 200);
}

TEST_F(PlayListQueries, InvalidIndexHasTypeZeroAndTheEmptyName) {
  for (const int32_t p : {-1, 2, 3, INT_MAX, INT_MIN}) {
    EXPECT_EQ(database_.PlayListType(p), 0) << p;
    EXPECT_EQ(database_.PlayListTypeII(p), 0);
    EXPECT_EQ(database_.PlayListNameInfo(p).idx, 0);
    EXPECT_EQ(database_.PlayListNameInfo(p).enc, 0U);
    EXPECT_TRUE(database_.PlayListNameInfo(p).obj.empty());
  }
}

TEST_F(PlayListQueries, NameInfoIsACopy) {
  songInfo name = database_.PlayListNameInfo(1);
  name.obj = "changed";
  EXPECT_EQ(database_.PlayListNameInfo(1).obj.View(), "name");
  const songInfo before = database_.PlayListNameInfo(1);
  database_.plays[1].name.obj = "later";
  EXPECT_EQ(before.obj.View(), "name");
}

TEST_F(PlayListQueries, NameIsTheWholeCell) {
  EXPECT_EQ(database_.PlayListNameInfo(1).idx, 15);
  EXPECT_EQ(database_.PlayListNameInfo(1).enc, 3U);
  EXPECT_EQ(database_.PlayListNameInfo(1).obj.View(), "name");
  EXPECT_EQ(database_.PlayListNameInfo(0).idx, -1);
}

TEST_F(PlayListQueries, PLRIsFalseForAnEntryThatExists) {
  EXPECT_FALSE(database_.PLR(1, 0));
  EXPECT_FALSE(database_.PLR(1, 1));
}

TEST_F(PlayListQueries, PLRIsTrueForEveryOtherPair) {
  for (const int32_t p : {-1, 0, 1, 2, INT_MAX, INT_MIN}) {
    EXPECT_TRUE(database_.PLR(p, -1)) << p;
    EXPECT_TRUE(database_.PLR(p, 2));
    EXPECT_TRUE(database_.PLR(p, INT_MAX));
    EXPECT_TRUE(database_.PLR(p, INT_MIN));
    EXPECT_EQ(database_.PLR(p, 0), p != 1);
  }
}

TEST_F(PlayListQueries, EntryIsTheOneAtItsPositionOrNull) {
  EXPECT_EQ(database_.Entry(1, 1), &database_.plays[1].refnum[1]);
  EXPECT_EQ(std::as_const(database_).Entry(1, 0), &database_.plays[1].refnum[0]);
  for (const auto &[p, i] : {std::pair{0, 0}, {1, 2}, {1, -1}, {2, 0}, {-1, 0}, {INT_MIN, INT_MIN}}) {
    EXPECT_EQ(database_.Entry(p, i), nullptr);
    EXPECT_EQ(std::as_const(database_).Entry(p, i), nullptr);
  }
}

TEST(PlayListQueriesOfAnEmptyDatabase, AnswerNeutralValues) {
  const CiTunesDB database{};
  EXPECT_EQ(database.PlayListType(0), 0);
  EXPECT_EQ(database.PlayListTypeII(0), 0);
  EXPECT_TRUE(database.PlayListNameInfo(0).obj.empty());
  EXPECT_TRUE(database.PLR(0, 0));
}

TEST(PlayListEntry, WithUnknownTrackReadsTheFirstSong) {
  CiTunesDB database;
  const samples::Library library = samples::OrdinaryLibrary(
      {{.id = 10, .objects = {samples::TextObject(3, u"first")}}, {.id = 20}}, {{.entries = {{.ref = 99}}}});
  ASSERT_EQ(Load(database, samples::WriteLibrary(library, samples::Variant::LittleEndian)), 1);
  const refidx *entry = database.Entry(0, 0);
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->ref, 99);
  EXPECT_EQ(entry->idx, 0);
  EXPECT_EQ(database.SongsObject(entry->idx, 3).View(), HighByteFirst(u"first"));
}

}  // namespace
}  // namespace db_test
