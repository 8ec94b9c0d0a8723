// What the program shows of plays, ratings and other facts that the class does not hold.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "samples/SampleLibrary.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"

namespace zemhost {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

RunOptions inZone(const std::string &zone) {
  RunOptions options;
  options.environment = {{"TZ", zone}};
  return options;
}

class PlaysTest : public testing::Test {
 protected:
  // A player with the sample's database and these counts.
  std::filesystem::path playerWith(const std::string &counts) const {
    folder_.write("iPod_Control/iTunes/iTunesDB", samples::SamplePlayerDatabase());
    folder_.write("iPod_Control/iTunes/Play Counts", counts);
    return folder_.path();
  }

  support::TemporaryFolder folder_;
};

std::vector<std::string> linesOfSection(const std::string &out, const std::string &title) {
  std::vector<std::string> lines;
  bool isInside = false;
  for (const std::string &line : linesOf(out)) {
    if (line.empty()) isInside = false;
    if (isInside) lines.push_back(line);
    if (line.starts_with(title)) isInside = true;
  }
  return lines;
}

TEST(PlaysCommand, ListsWhatWasPlayedMostWithTheLatestPlaysCounted) {
  const Outcome outcome = runZemhost({"plays", kPlayer, "--top", "3"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, StartsWith("Most played, 3 of 25\n"));
  const std::vector<std::string> most = linesOfSection(outcome.out, "Most played");
  ASSERT_EQ(most.size(), 4U);
  EXPECT_THAT(most[1], StartsWith("   59  2006-07-16 22:47:17"));
  EXPECT_THAT(most[1], HasSubstr("Home"));
  EXPECT_THAT(most[2], StartsWith("   44"));
  EXPECT_THAT(most[3], StartsWith("   40"));
}

TEST(PlaysCommand, ListsWhatWasPlayedLatelySkippedAndNever) {
  const Outcome outcome = runZemhost({"plays", kPlayer});
  const std::vector<std::string> lately = linesOfSection(outcome.out, "Lately played");
  EXPECT_THAT(lately.at(1), HasSubstr("Neon Moon"));
  EXPECT_THAT(lately.at(2), HasSubstr("Harbour Lights at Five"));
  const std::vector<std::string> skipped = linesOfSection(outcome.out, "Skipped");
  ASSERT_EQ(skipped.size(), 7U);
  EXPECT_THAT(skipped[1], HasSubstr("Small Hours"));
  const std::vector<std::string> never = linesOfSection(outcome.out, "Never played");
  ASSERT_EQ(never.size(), 5U);
  EXPECT_THAT(never[1], HasSubstr("Untitled Demo 3"));
}

TEST(PlaysCommand, AddsUpThePlaysOfAnArtistOrAlbum) {
  const std::vector<std::string> artists =
      linesOfSection(runZemhost({"plays", kPlayer, "--by", "artist"}).out, "Most played");
  EXPECT_THAT(artists.at(1), StartsWith("   79"));  // 44, 27 and 8
  const std::vector<std::string> albums =
      linesOfSection(runZemhost({"plays", kPlayer, "--by", "album"}).out, "Most played");
  EXPECT_THAT(albums.at(2), HasSubstr("Second Gear"));
  EXPECT_THAT(albums.at(2), StartsWith("   61"));
}

TEST_F(PlaysTest, CountsOfAnotherNumberOfSongsAreLeftOutWithOneLine) {
  std::string counts = samples::SamplePlayCounts();
  counts[12] = static_cast<char>(counts[12] - 1);
  const std::filesystem::path player = playerWith(counts);
  const Outcome outcome = runZemhost({"songs", player, "--columns", "title,play_count"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(linesOf(outcome.err).size(), 1U);
  EXPECT_THAT(outcome.err, HasSubstr("Play Counts: it counts 28 songs, and the database has 29"));
  EXPECT_THAT(linesOf(outcome.out).at(1), HasSubstr("31"));  // as the database has it
  const Outcome check = runZemhost({"check", player, "--json"});
  EXPECT_EQ(check.status, 3);
  EXPECT_EQ(json::parse(check.out).at("finding_counts").at("unused-file"), 1);
}

TEST_F(PlaysTest, CountsThatAreCutShortOrNoneAreLeftOutWithOneLine) {
  const std::string counts = samples::SamplePlayCounts();
  for (const std::string &bad :
       {std::string(), std::string("no counts"), counts.substr(0, counts.size() - 1)}) {
    const Outcome outcome = runZemhost({"plays", playerWith(bad)});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(linesOf(outcome.err).size(), 1U) << outcome.err;
    EXPECT_THAT(linesOfSection(outcome.out, "Most played").at(1), StartsWith("   58"));
  }
}

TEST_F(PlaysTest, DatabaseWithoutCountsHasItsOwnPlays) {
  const std::filesystem::path file = folder_.write("other", samples::SamplePlayerDatabase());
  const Outcome outcome = runZemhost({"plays", file, "--top", "1"});
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, HasSubstr("\n   58  2006-07-13"));
}

TEST(SongColumns, AreThoseThatAreAskedForInTheirOrder) {
  const Outcome outcome = runZemhost({"songs", kPlayer, "--columns", "rating,title,heard,bookmark,disc"});
  const std::vector<std::string> lines = linesOf(outcome.out);
  EXPECT_THAT(lines.at(0), testing::MatchesRegex(" # +Rating +Title +Heard +Bookmark +Disc"));
  EXPECT_THAT(lines.at(26), testing::MatchesRegex("25 +The Cartographer: Chapter 7 +12:34"));
  EXPECT_THAT(lines.at(28), testing::MatchesRegex("27 +\\*\\*\\* +Episode 12: Tape Hiss +yes"));
  EXPECT_THAT(lines.at(6), testing::MatchesRegex(" 5 +\\*\\* +Home +1/2"));
}

TEST(SongColumns, UnknownNameIsRefusedWithThoseThatThereAre) {
  const Outcome outcome = runZemhost({"songs", kPlayer, "--columns", "title,nonsense"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("no column is named \"nonsense\"; there are: title, artist"));
}

TEST(SongColumns, DayAddedIsShownAndNotTheDayTheFileChanged) {
  const Outcome outcome = runZemhost({"songs", kPlayer, "--columns", "date_added,date_modified"});
  EXPECT_THAT(linesOf(outcome.out).at(26), HasSubstr("2006-02-15 10:40:00  2006-02-13 10:40:00"));
}

TEST(ExportSinceSync, HoldsTheSongsThatWerePlayedOrSkipped) {
  const Outcome outcome =
      runZemhost({"export", kPlayer, "--since-sync", "--format", "csv", "--fields",
                  "song_index,play_count,plays_since_sync,skips_since_sync,last_skipped"});
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(linesOf(outcome.out),
              ElementsAre("song_index,play_count,plays_since_sync,skips_since_sync,last_skipped\r",
                          "0,33,2,0,\r", "4,59,1,0,\r", "7,27,0,1,2006-07-17T22:47:54\r", "22,40,3,0,\r"));
}

TEST(ExportSinceSync, SqliteAndJsonHoldSongsAlone) {
  const Outcome outcome = runZemhost({"export", kPlayer, "--since-sync", "--format", "json"});
  const json library = json::parse(outcome.out);
  EXPECT_EQ(library.at("songs").size(), 4U);
  EXPECT_EQ(library.at("playlists").size(), 0U);
  const support::TemporaryFolder folder;
  EXPECT_EQ(
      runZemhost({"export", kPlayer, "--since-sync", "--format", "sqlite", "-o", folder.path() / "s"}).status,
      0);
}

TEST(ExportSinceSync, ListenIsALineForEachSongPlayed) {
  const Outcome outcome =
      runZemhost({"export", kPlayer, "--since-sync", "--format", "listenbrainz"}, inZone("UTC"));
  EXPECT_EQ(outcome.err, "");
  const std::vector<std::string> lines = linesOf(outcome.out);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(json::parse(lines[0]), json({{"listened_at", 1153262911},
                                         {"track_metadata",
                                          {{"artist_name", "Mira Solvang"},
                                           {"track_name", "Harbour Lights at Five"},
                                           {"release_name", "Northern Ferries"},
                                           {"additional_info",
                                            {{"submission_client", "zemhost"},
                                             {"plays_since_sync", 2},
                                             {"duration_ms", 221400},
                                             {"tracknumber", 1}}}}}}));
}

TEST(ExportSinceSync, TimeOfAListenIsReadInTheZoneOfThisMachine) {
  const Outcome outcome =
      runZemhost({"export", kPlayer, "--since-sync", "--format", "listenbrainz"}, inZone("EAST-2"));
  EXPECT_EQ(json::parse(linesOf(outcome.out).at(0)).at("listened_at"), 1153262911 - 2 * 3600);
}

TEST_F(PlaysTest, ExportSinceSyncSaysThatThereAreNoCounts) {
  const std::filesystem::path file = folder_.write("other", samples::SamplePlayerDatabase());
  const Outcome outcome = runZemhost({"export", file, "--since-sync", "--format", "ndjson"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("no counts since the last synchronisation"));
}

TEST(ExportSinceSync, ListensNeedIt) {
  const Outcome outcome = runZemhost({"export", kPlayer, "--format", "listenbrainz"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("--since-sync"));
}

// The class reads fields at their places, in a short header from the texts that follow.
TEST_F(PlaysTest, FieldBehindAShortHeaderIsUnknown) {
  samples::Track track;
  track.id = 1;
  track.headerLength = 0x9c;
  track.objects = samples::SongObjects(
      samples::Variant::LittleEndian,
      {.title = u"A title that is long enough to reach the field", .path = u":iPod_Control:Music:F00:A.mp3"});
  const std::string bytes =
      samples::WriteLibrary(samples::OrdinaryLibrary({track}, {}), samples::Variant::LittleEndian);
  const Outcome outcome = runZemhost({"export", folder_.write("db", bytes), "--format", "ndjson", "--fields",
                                      "media_type,movie,media_kind,play_count,skip_count,heard"});
  EXPECT_EQ(json::parse(outcome.out), json({{"media_type", nullptr},
                                            {"movie", nullptr},
                                            {"media_kind", nullptr},
                                            {"play_count", 0},
                                            {"skip_count", 0},
                                            {"heard", nullptr}}));
}

}  // namespace
}  // namespace zemhost
