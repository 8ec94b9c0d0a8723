// What a load does to a database that has loaded before.
#include <gtest/gtest.h>
#include <string>

#include "db/FileWindow.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/model/Loader.h"

namespace db_test {
namespace {

using samples::ChunkWriter;
using samples::Kind;
using samples::Variant;

class SecondLoad : public testing::TestWithParam<Variant> {
 protected:
  static ChunkWriter File() {
    ChunkWriter out(GetParam());
    samples::BeginFile(out, 1, 24);
    return out;
  }
  static samples::DataObject Name(const std::u16string &name) {
    return samples::TextObject(GetParam() == Variant::LittleEndian ? 1 : 100, name);
  }

  // Files after which a song is open, or a playlist, or an entry. Their playlist data set stays open as well.
  static std::string EndingWithASong() {
    ChunkWriter out = File();
    out.Begin(Kind::DataSet, 16, 2);
    AppendPlaylist(out, {.name = u"list", .entries = {{.ref = 7}}});
    AppendTrack(out, {.id = 7, .objects = {samples::TextObject(4, u"artist"), samples::TextObject(3, u"a")}});
    AppendTrack(out, {.id = 8, .objects = {samples::TextObject(4, u"other artist")}});
    return out.TakeBytes();
  }
  static std::string EndingWithAPlaylist() {
    ChunkWriter out = File();
    AppendTrack(out, {.id = 7});
    out.Begin(Kind::DataSet, 16, 2);
    AppendPlaylist(out, {.name = u"first"});
    AppendPlaylist(out, {.name = u"list"});
    return out.TakeBytes();
  }
  static std::string EndingWithAnEntry() {
    ChunkWriter out(GetParam());
    out.AppendBytes(EndingWithAPlaylist());
    AppendEntry(out, {.ref = 7});
    return out.TakeBytes();
  }

  // A file that begins with objects and an entry for whatever is open, and brings records of its own only far
  // behind the first stretch that is read of it.
  static std::string GoingOn() {
    ChunkWriter out = File();
    AppendObject(out, samples::TextObject(4, u" and others"));
    AppendObject(out, samples::TextObject(50, u"another object"));
    AppendObject(out, Name(u"+"));
    AppendEntry(out, {.ref = 7, .ply = 1});
    out.Begin("abcd", 300000);
    out.Begin(Kind::DataSet, 16, 2);
    out.PutWord(out.Begin(Kind::TrackList, 16) + 8, 1000);
    AppendTrack(out, {.id = 9, .objects = {samples::TextObject(4, u"late")}});
    out.PutWord(out.Begin(Kind::PlaylistList, 16) + 8, 1000);
    AppendPlaylist(out, {.name = u"late", .entries = {{.ref = 9}}});
    out.Begin(Kind::DataSet, 16, 5);
    out.Begin("abcd", 300000);
    return out.TakeBytes();
  }

  static std::vector<std::string> FirstFiles() {
    return {EndingWithASong(), EndingWithAPlaylist(), EndingWithAnEntry()};
  }
};

INSTANTIATE_TEST_SUITE_P(Loader, SecondLoad, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(SecondLoad, GoesOnWithTheRecordThatIsOpen) {
  CiTunesDB song;
  ASSERT_EQ(Load(song, EndingWithASong()), 1);
  ASSERT_EQ(Load(song, GoingOn()), 1);
  EXPECT_EQ(song.SongsObject(1, 4).View(), HighByteFirst(u"other artist and others"));
  EXPECT_EQ(song.SongsObject(0, 4).View(), HighByteFirst(u"artist"));
  EXPECT_EQ(song.plays[0].refnum.size(), 2U);
  CiTunesDB list;
  ASSERT_EQ(Load(list, EndingWithAPlaylist()), 1);
  ASSERT_EQ(Load(list, GoingOn()), 1);
  EXPECT_EQ(list.plays[1].name.obj.View(), HighByteFirst(u"list+"));
  EXPECT_EQ(list.plays[1].refnum.size(), 1U);
  CiTunesDB entry;
  ASSERT_EQ(Load(entry, EndingWithAnEntry()), 1);
  ASSERT_EQ(Load(entry, GoingOn()), 1);
  EXPECT_EQ(entry.plays[1].name.obj.View(), HighByteFirst(u"list"));
  EXPECT_EQ(entry.plays[1].refnum.size(), 2U);
}

TEST_P(SecondLoad, LeavesWhatTheModelLeaves) {
  for (const std::string &first : FirstFiles()) {
    CiTunesDB database;
    model::Database expected;
    for (const std::string &file : {first, GoingOn(), SmallLibrary(GetParam()), GoingOn()}) {
      ASSERT_EQ(Load(database, file), 1);
      ASSERT_TRUE(model::Load(file, expected));
      EXPECT_EQ(Plain(database), expected) << Describe(Plain(database)) << "expected\n" << Describe(expected);
    }
  }
}

TEST_P(SecondLoad, OfTheOtherVariantGoesOnWithTheRecordThatIsOpen) {
  CiTunesDB database;
  model::Database expected;
  const Variant other = GetParam() == Variant::LittleEndian ? Variant::BigEndian : Variant::LittleEndian;
  ChunkWriter out(other);
  samples::BeginFile(out, 1, 24);
  AppendObject(out, samples::TextObject(3, u"bum"));
  for (const std::string &file : {EndingWithASong(), out.Bytes()}) {
    ASSERT_EQ(Load(database, file), 1);
    ASSERT_TRUE(model::Load(file, expected));
  }
  EXPECT_EQ(Plain(database), expected);
  EXPECT_EQ(database.SongsObject(1, 3).View(), HighByteFirst(u"bum"));
}

// What a load that fails must leave as it was, where it stands included.
struct Everything {
  explicit Everything(const CiTunesDB &database)
      : records(Plain(database)),
        tarSong(database.tarSong),
        tarPlay(database.tarPlay),
        error(database.error) {}
  bool operator==(const Everything &) const = default;

  model::Database records;
  const CSongList *tarSong;
  const CPlayList *tarPlay;
  int32_t error;
};

TEST_P(SecondLoad, ThatFailsLeavesTheDatabaseExactlyAsItWas) {
  for (const std::string &first : FirstFiles()) {
    FailingFile file{GoingOn(), 0};
    for (const size_t failsAt :
         {size_t{0}, size_t{10}, size_t{100}, FileWindow::kUsualSize, FileWindow::kUsualSize + 1,
          size_t{300500}, file.bytes.size() - 300001, file.bytes.size() - 1}) {
      file.failsAt = failsAt;
      CiTunesDB database;
      ASSERT_EQ(Load(database, first), 1);
      database.songs.reserve(100);  // so that the records can stay where they are
      database.plays.reserve(100);
      database.tarSong = &database.songs.back();
      database.tarPlay = &database.plays.back();
      const Everything before(database);
      EXPECT_EQ(database.LoadiTunesDB(file.Open().get()), 0) << failsAt;
      if (failsAt < 300500) {
        EXPECT_EQ(Everything(database), before) << failsAt << '\n' << Describe(Plain(database));
      }
      EXPECT_EQ(Plain(database), before.records) << failsAt << '\n' << Describe(Plain(database));
    }
  }
}

TEST_P(SecondLoad, ThatIsRejectedLeavesTheDatabaseExactlyAsItWas) {
  for (const std::string &first : FirstFiles()) {
    CiTunesDB database;
    ASSERT_EQ(Load(database, first), 1);
    const Everything before(database);
    EXPECT_EQ(Load(database, first.substr(0, 15)), 0);
    EXPECT_EQ(Load(database, "ID3\3" + first.substr(4)), 0);
    EXPECT_EQ(database.LoadiTunesDB(nullptr), 0);
    EXPECT_EQ(Everything(database), before);
  }
}

TEST_P(SecondLoad, ThatFailsDoesNotComeBetweenTheFirstAndTheThird) {
  FailingFile failing{GoingOn(), 300000};
  for (const std::string &first : FirstFiles()) {
    CiTunesDB database;
    model::Database expected;
    ASSERT_EQ(Load(database, first), 1);
    EXPECT_EQ(Load(database, first.substr(0, 15)), 0);
    EXPECT_EQ(database.LoadiTunesDB(failing.Open().get()), 0);
    ASSERT_EQ(Load(database, GoingOn()), 1);
    ASSERT_TRUE(model::Load(first, expected));
    ASSERT_TRUE(model::Load(GoingOn(), expected));
    EXPECT_EQ(Plain(database), expected) << Describe(Plain(database)) << "expected\n" << Describe(expected);
  }
}

TEST_P(SecondLoad, ThatFailsLeavesIDsToBeFound) {
  FailingFile failing{GoingOn(), 0};
  failing.failsAt = failing.bytes.size() - 1;
  CiTunesDB database;
  ASSERT_EQ(Load(database, EndingWithASong()), 1);
  EXPECT_EQ(database.LoadiTunesDB(failing.Open().get()), 0);
  EXPECT_EQ(database.FindRefIdx(8), 1);
  EXPECT_EQ(database.FindRefIdx(9), 0);
  CSongList song;
  song.id = 9;
  database.songs.push_back(song);
  EXPECT_EQ(database.FindRefIdx(9), 2);
}

TEST_P(SecondLoad, ForgetsAnOpenRecordThatIsNotInItsTableAnyMore) {
  CiTunesDB database;
  ASSERT_EQ(Load(database, EndingWithASong()), 1);
  database.songs.clear();
  database.plays.clear();
  ASSERT_EQ(Load(database, GoingOn()), 1);
  EXPECT_EQ(database.songs.size(), 1U);
  EXPECT_EQ(database.SongsObject(0, 4).View(), HighByteFirst(u"late"));
  EXPECT_EQ(database.plays.size(), 1U);
}

}  // namespace
}  // namespace db_test
