// The library of a newest nano, joined from its SQLite files.

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "player/Error.h"
#include "player/SqliteLibrary.h"
#include "samples/SampleLibrary.h"
#include "samples/SampleNano.h"
#include "tests/support/Folders.h"
#include "tests/support/SqliteFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uint32_t kFrom1904To2001 = 0xB6757900;

class SqliteLibraryTest : public testing::Test {
 protected:
  SqliteLibraryTest() { samples::WriteSampleNano(files_); }

  SqliteLibrary read() const { return SqliteLibrary(sqliteFilesBeside(files_ / "Library.itdb")); }
  void change(const char *file, const std::string &sql) const { support::runSql(files_ / file, sql); }
  void writeCounts(const std::string &bytes) const { folder_.write("iTunes/Play Counts", bytes); }

  static std::vector<std::string> findings(const SqliteLibrary &library) {
    std::vector<std::string> texts;
    for (const Finding &finding : library.findings().kept())
      texts.push_back(std::string(kindName(finding.kind)) + ": " + finding.text);
    return texts;
  }
  static const SqliteSong &songNamed(const SqliteLibrary &library, const std::string &title) {
    const auto &songs = library.songs();
    return *std::find_if(songs.begin(), songs.end(),
                         [&](const SqliteSong &song) { return song.title == title; });
  }
  static std::string textOf(const SqliteSong &song, uint32_t type) {
    for (const SongText &text : song.texts) {
      if (text.type == type) return text.text;
    }
    return {};
  }

  support::TemporaryFolder folder_;
  fs::path files_ = folder_.makeDirectory("iTunes/iTunes Library.itlp");
};

TEST_F(SqliteLibraryTest, SongHasWhatEachOfTheFilesSaysOfIt) {
  const SqliteLibrary library = read();
  EXPECT_THAT(findings(library), IsEmpty());
  EXPECT_EQ(library.version(), "1.105");
  ASSERT_EQ(library.songs().size(), samples::SampleSongs().size());
  const SqliteSong &song = library.songs().front();
  EXPECT_EQ(song.title, "Harbour Lights at Five");
  EXPECT_EQ(song.album, "Northern Ferries");
  EXPECT_EQ(song.genre, "Folk");
  EXPECT_EQ(song.kind, "AAC audio file");
  EXPECT_EQ(song.path, ":iPod_Control:Music:F00:QHLA.m4a");
  EXPECT_EQ(song.facts.persistentId, samples::SamplePersistentId(0));
  EXPECT_EQ(song.facts.duration, 221400U);
  EXPECT_EQ(song.facts.size, samples::PlaceholderFile(samples::SampleSongs()[0]).size());
  EXPECT_EQ(song.facts.added, static_cast<uint32_t>(1110585600 + 3287 * 86400 - 978307200) + kFrom1904To2001);
  EXPECT_EQ(song.facts.plays, 31U);
  EXPECT_EQ(song.facts.recentPlays, 0U);
  EXPECT_EQ(song.facts.rating, 80);
  EXPECT_EQ(song.facts.bpm, 96);
  EXPECT_EQ(song.facts.lyrics, true);
  EXPECT_EQ(song.facts.gapless, true);
  EXPECT_EQ(song.facts.samples, 221400U * 441 / 10);
  EXPECT_EQ(song.facts.bought, std::nullopt) << "without a table of what was bought";
  EXPECT_EQ(song.facts.disc, std::nullopt);
  EXPECT_EQ(song.facts.channels, std::nullopt);
  EXPECT_EQ(song.sampleRate, 44100U);
  EXPECT_EQ(song.facts.picture, false);
  const std::vector<Chapter> &chapters = songNamed(library, "The Cartographer: Chapter 7").chapters;
  ASSERT_EQ(chapters.size(), 3U);
  EXPECT_EQ(chapters[1].start, 412000U);
  EXPECT_EQ(chapters[1].title, "A Map without Names");
  const SqliteSong &episode = songNamed(library, "Episode 12: Tape Hiss");
  EXPECT_EQ(textOf(episode, 16), "http://attic-radio.example/feed.xml");
  EXPECT_EQ(episode.facts.gapless, false);
  EXPECT_EQ(episode.facts.samples, std::nullopt);
  EXPECT_EQ(songNamed(library, "Episode 13: Two Turntables").facts.heard, false);
}

TEST_F(SqliteLibraryTest, NameThatTheItemLacksIsThatOfItsTable) {
  const SqliteLibrary library = read();
  EXPECT_EQ(songNamed(library, "Truckstop Waltz").artist, "Lena Birdwell") << "the item's own is NULL";
  change("Library.itdb",
         "ALTER TABLE item DROP COLUMN album; ALTER TABLE track_artist ADD COLUMN is_unknown;"
         "UPDATE track_artist SET is_unknown = 1 WHERE name = 'Lena Birdwell'");
  const SqliteLibrary changed = read();
  EXPECT_EQ(songNamed(changed, "Truckstop Waltz").album, "Roadside Jukebox");
  EXPECT_EQ(songNamed(changed, "Truckstop Waltz").artist, "") << "what stands for no artist is no name";
}

TEST_F(SqliteLibraryTest, SongsStandByTheirPlacesAndThoseWithoutOneBehind) {
  change("Library.itdb", "UPDATE item SET physical_order = 28 - physical_order");
  EXPECT_EQ(read().songs().front().title, "Episode 13: Two Turntables");
  change("Library.itdb", "UPDATE item SET physical_order = NULL WHERE physical_order = 0");
  const SqliteLibrary library = read();
  EXPECT_EQ(library.songs().back().title, "Episode 13: Two Turntables");
  EXPECT_THAT(findings(library),
              testing::Contains("wrong-count: the places of the 29 songs are not 0 to 28"));
}

TEST_F(SqliteLibraryTest, ListsStandByTheirNamesBehindThatOfAllSongs) {
  const SqliteLibrary library = read();
  std::vector<std::string> names;
  for (const SqliteList &list : library.lists()) names.push_back(list.name);
  EXPECT_THAT(names, ElementsAre("Sample nano", "On the Road", "Four Stars and More", "Night Drives",
                                 "夏のプレイリスト", "Café du matin", "Empty for Now", "Roadside Jukebox",
                                 "Podcasts"));
  EXPECT_EQ(library.categories(), 1U);
  EXPECT_EQ(library.lists()[0].kind, SqliteListKind::Library);
  EXPECT_EQ(library.lists()[1].kind, SqliteListKind::Folder);
  EXPECT_EQ(library.lists()[2].kind, SqliteListKind::Smart);
  EXPECT_EQ(library.lists()[2].criteria.substr(0, 4), "SLst");
  EXPECT_EQ(library.lists()[2].criteria.size(), 136U + 56 + 68);
  EXPECT_EQ(library.lists()[2].usesRules, true);
  EXPECT_EQ(library.lists()[2].limit, 25U);
  EXPECT_EQ(library.lists()[3].kind, SqliteListKind::Ordinary);
  EXPECT_EQ(library.lists()[3].parent, library.lists()[1].pid);
  std::vector<size_t> songs;
  for (const SqliteList::Entry &entry : library.lists()[3].entries) songs.push_back(entry.song.value_or(99));
  EXPECT_THAT(songs, ElementsAre(22, 6, 7, 4, 15, 22));
}

TEST_F(SqliteLibraryTest, PlayCountsAreJoinedInUtc) {
  writeCounts(samples::SampleNanoPlayCounts());
  const SqliteLibrary library = read();
  EXPECT_THAT(library.warnings(), IsEmpty());
  ASSERT_TRUE(library.hasCounts());
  const samples::SampleFacts facts = samples::SampleFactsOf(0);
  EXPECT_EQ(library.songs()[0].facts.plays, facts.plays + facts.newPlays);
  const int64_t moment = facts.newLastPlayed + int64_t{3287} * 86400 - 978307200;
  EXPECT_EQ(library.songs()[0].facts.lastPlayed, static_cast<uint32_t>(moment) + kFrom1904To2001);
  EXPECT_EQ(library.counted(0)->plays, facts.newPlays);
  EXPECT_EQ(songNamed(library, "Episode 12: Tape Hiss").facts.rating, 60) << "given on the player";
}

TEST_F(SqliteLibraryTest, PlayCountsAreLeftOutWhereTheirSongsAreNotSure) {
  writeCounts(samples::SampleNanoPlayCounts());
  change("Library.itdb", "UPDATE item SET physical_order = 40 WHERE physical_order = 28");
  const SqliteLibrary library = read();
  EXPECT_FALSE(library.hasCounts());
  EXPECT_THAT(library.warnings(),
              ElementsAre(HasSubstr("Play Counts: the songs are not numbered as its entries")));
  EXPECT_EQ(library.songs()[0].facts.plays, 31U);
  change("Library.itdb", "DELETE FROM item WHERE physical_order = 40");
  EXPECT_THAT(read().warnings(), ElementsAre(HasSubstr("it counts 29 songs, and the database has 28")));
}

TEST_F(SqliteLibraryTest, FilesThatAreNotThereAreNamedInOneLine) {
  fs::remove(files_ / "Dynamic.itdb");
  fs::remove(files_ / "Genius.itdb");
  const SqliteLibrary library = read();
  EXPECT_THAT(library.warnings(), ElementsAre(files_.string() + ": it has no Dynamic.itdb, Genius.itdb; what "
                                                                "belongs there is not known"));
  EXPECT_EQ(library.findings().count(FindingKind::AbsentFile), 1U);
  EXPECT_EQ(library.songs()[0].facts.plays, std::nullopt);
  EXPECT_EQ(library.songs()[0].path, ":iPod_Control:Music:F00:QHLA.m4a");
}

TEST_F(SqliteLibraryTest, DamagedFileLeavesWhatTheOthersSay) {
  folder_.write("iTunes/iTunes Library.itlp/Locations.itdb", "no such file");
  change("Dynamic.itdb", "DROP TABLE item_stats");
  const SqliteLibrary library = read();
  EXPECT_THAT(library.warnings(),
              ElementsAre(HasSubstr("Locations.itdb: the file is no SQLite file; what it says is left out"),
                          HasSubstr("Dynamic.itdb: it has no table item_stats")));
  EXPECT_EQ(library.songs()[0].title, "Harbour Lights at Five");
  EXPECT_EQ(library.songs()[0].path, "");
  EXPECT_EQ(library.songs()[0].facts.size, std::nullopt);
}

TEST_F(SqliteLibraryTest, LibraryWithoutSongsIsRefused) {
  change("Library.itdb", "DROP TABLE item");
  EXPECT_THROW(
      {
        try {
          read();
        } catch (const PlayerError &error) {
          EXPECT_THAT(error.what(), HasSubstr("Library.itdb: it has no table of songs"));
          throw;
        }
      },
      PlayerError);
}

TEST_F(SqliteLibraryTest, IdsThatLeadNowhereAreFound) {
  change("Library.itdb",
         "UPDATE item SET genre_id = 99 WHERE physical_order = 0;"
         "INSERT INTO item_to_container VALUES (12, 34, 0);"
         "UPDATE item_to_container SET item_pid = 77 WHERE physical_order = 28");
  change("Locations.itdb",
         "INSERT INTO location (item_pid) VALUES (255);"
         "UPDATE location SET base_location_id = 9 WHERE location = 'F01/SORX.m4a'");
  change("Dynamic.itdb", "INSERT INTO item_stats (item_pid) VALUES (-2)");
  const SqliteLibrary library = read();
  EXPECT_THAT(
      findings(library),
      ElementsAre(HasSubstr("has an ID that is not in the table genre_map"),
                  "unresolved-id: an entry belongs to the playlist 0000000000000022, which is not there",
                  "wrong-count: the list of all songs has another order than the songs",
                  "unresolved-id: the table location names the song 00000000000000FF, which is not there",
                  HasSubstr("lies in a folder that is not in the table base_location"),
                  "unresolved-id: the table item_stats names the song FFFFFFFFFFFFFFFE, which is not there"));
  const SqliteList::Entry &last = library.lists()[0].entries.back();
  EXPECT_EQ(last.pid, 77);
  EXPECT_EQ(last.song, std::nullopt);
}

TEST_F(SqliteLibraryTest, OddValuesAreNoValues) {
  change("Library.itdb",
         "UPDATE item SET year = -1, total_time_ms = 1e20, bpm = 70000, title = x'41', "
         "content_rating = 9, date_modified = 0, relative_volume = 256 WHERE physical_order = 0;"
         "UPDATE item SET title = CAST(x'41ff' AS TEXT) WHERE physical_order = 1");
  change("Dynamic.itdb", "UPDATE item_stats SET user_rating = 101, play_count_user = 'many'");
  const SqliteLibrary library = read();
  const SqliteSong &song = library.songs()[0];
  EXPECT_EQ(song.title, "");
  for (const bool isKnown :
       {song.facts.year.has_value(), song.facts.duration.has_value(), song.facts.bpm.has_value(),
        song.facts.explicitContent.has_value(), song.facts.modified.has_value(),
        song.facts.volume.has_value(), song.facts.rating.has_value(), song.facts.plays.has_value()})
    EXPECT_FALSE(isKnown);
  EXPECT_EQ(library.songs()[1].title, "A\uFFFD");
  EXPECT_THAT(library.songs()[1].lossyTexts, ElementsAre("title"));
}

TEST_F(SqliteLibraryTest, PathsAreMadeOfNamesAlone) {
  change("Locations.itdb",
         "UPDATE base_location SET path = '/iPod_Control//Music/';"
         "UPDATE location SET location = 'F00//a:b.m4a' WHERE location = 'F00/QHLA.m4a';"
         "UPDATE location SET location_type = 0 WHERE location = 'F01/SORX.m4a'");
  const SqliteLibrary library = read();
  EXPECT_EQ(library.songs()[0].path, ":iPod_Control:Music:F00:a/b.m4a");
  EXPECT_EQ(library.songs()[1].path, "") << "what is no file";
}

TEST_F(SqliteLibraryTest, LongNameOfManySongsIsNotRepeatedWithoutEnd) {
  change("Library.itdb",
         "UPDATE item SET genre_id = 1; UPDATE genre_map SET genre = hex(zeroblob(450000)) WHERE id = 1");
  const SqliteLibrary library = read();
  size_t bytes = 0;
  for (const SqliteSong &song : library.songs()) bytes += song.genre.size();
  EXPECT_GE(bytes, 900'000U);
  EXPECT_LE(bytes, (1U << 20) + 4 * library.bytes());
  EXPECT_THAT(findings(library),
              ElementsAre("damaged-file: the names that songs share are longer than the file "
                          "explains"));
}

TEST_F(SqliteLibraryTest, SongsThatTheSizeOfTheFileDoesNotExplainAreLeftOut) {
  change("Library.itdb",
         "DROP TABLE item; CREATE TABLE item (pid INTEGER PRIMARY KEY);"
         "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50000)"
         "INSERT INTO item SELECT i FROM n");
  const SqliteLibrary library = read();
  EXPECT_LE(library.songs().size(), fs::file_size(files_ / "Library.itdb") / 32);
  EXPECT_THAT(findings(library),
              testing::Contains(HasSubstr("there are more songs than the file's size explains")));
}

TEST(RealNano, IsReadWholeWithItsPlayCounts) {
  const fs::path file = support::SharedFolder() / "data/players/nano-7/Library.itdb";
  if (!fs::exists(file)) GTEST_SKIP() << "no " << file;
  const SqliteLibrary library(sqliteFilesBeside(file));
  EXPECT_EQ(library.songs().size(), 1377U);
  EXPECT_TRUE(library.hasCounts());
  ASSERT_EQ(library.lists().size(), 2U);
  EXPECT_EQ(library.lists()[1].entries.size(), 1377U);
  EXPECT_EQ(library.categories(), 5U);
  EXPECT_EQ(library.findings().total(), 1U) << "four files are not there";
}

}  // namespace
}  // namespace player
