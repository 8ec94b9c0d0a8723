// The file of play counts: what it says, how it joins the database, and what is refused.

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "player/Error.h"
#include "player/PlayCounts.h"
#include "samples/DatabaseWriter.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using testing::HasSubstr;

constexpr uint32_t k2005 = 3187296000;

struct Entry {
  uint32_t plays = 0;
  uint32_t lastPlayed = 0;
  uint32_t bookmark = 0;
  uint32_t rating = 0;
  uint32_t heardMark = 0;
  uint32_t skips = 0;
  uint32_t lastSkipped = 0;
};

std::string fileOf(const std::vector<Entry> &entries, uint32_t length = 0x1c) {
  samples::ChunkWriter out(samples::Variant::LittleEndian);
  out.PutWord(out.Begin("mhdp", 0x60, static_cast<uint32_t>(entries.size())) + 8, length);
  for (const Entry &entry : entries) {
    samples::ChunkWriter words(samples::Variant::LittleEndian);
    for (const uint32_t word : {entry.plays, entry.lastPlayed, entry.bookmark, entry.rating,
                                entry.heardMark << 8, entry.skips, entry.lastSkipped})
      words.AppendWord(word);
    std::string bytes = words.TakeBytes();
    bytes.resize(length, '\0');
    out.AppendBytes(bytes);
  }
  return out.TakeBytes();
}

class PlayCountsTest : public testing::Test {
 protected:
  std::vector<PlayCount> read(const std::string &bytes, uint64_t songs) const {
    return readPlayCounts(folder_.write("Play Counts", bytes), songs);
  }
  std::vector<PlayCount> read(const std::vector<Entry> &entries, uint32_t length = 0x1c) const {
    return read(fileOf(entries, length), entries.size());
  }
  std::string refusal(const std::string &bytes, uint64_t songs) const {
    try {
      read(bytes, songs);
    } catch (const PlayerError &error) {
      return error.what();
    }
    return {};
  }
  SongFacts merged(const std::vector<Entry> &entries, const std::vector<SongFacts> &songs, size_t song,
                   uint32_t length = 0x1c) const {
    return mergeOf(entries, songs, length).merged(song, songs[song]);
  }
  PlayCountMerge mergeOf(const std::vector<Entry> &entries, const std::vector<SongFacts> &songs,
                         uint32_t length = 0x1c) const {
    return {read(entries, length), [&](size_t song) { return songs[song]; }};
  }

  support::TemporaryFolder folder_;
};

SongFacts rated(uint8_t rating) {
  SongFacts facts;
  facts.rating = rating;
  return facts;
}

TEST_F(PlayCountsTest, EntryHasTheFieldsThatItsLengthHolds) {
  const Entry entry{4, k2005, 9000, 80, 1, 2, k2005 + 60};
  const PlayCount whole = read(std::vector<Entry>{entry})[0];
  EXPECT_EQ(whole.plays, 4U);
  EXPECT_EQ(whole.lastPlayed, k2005);
  EXPECT_EQ(whole.bookmark, 9000U);
  EXPECT_EQ(whole.rating, 80);
  EXPECT_EQ(whole.heard, true);
  EXPECT_EQ(whole.skips, 2U);
  EXPECT_EQ(whole.lastSkipped, k2005 + 60);
  const PlayCount newer = read({entry}, 0x28)[0];
  EXPECT_EQ(newer.lastSkipped, k2005 + 60);
  const PlayCount older = read({entry}, 0x10)[0];
  EXPECT_EQ(older.rating, 80);
  EXPECT_EQ(older.heard, std::nullopt);
  EXPECT_EQ(older.skips, std::nullopt);
  EXPECT_EQ(read({entry}, 0x0c)[0].rating, std::nullopt);
}

TEST_F(PlayCountsTest, NeverIsNoDate) {
  const PlayCount count = read(std::vector<Entry>{{.lastPlayed = 0xB6757900 + 3 * 3600}})[0];
  EXPECT_EQ(count.lastPlayed, std::nullopt);
  EXPECT_EQ(count.bookmark, std::nullopt);
}

TEST_F(PlayCountsTest, AnotherNumberOfSongsIsRefused) {
  const std::string message = refusal(fileOf({{}, {}, {}}), 2);
  EXPECT_THAT(message, HasSubstr("Play Counts: it counts 3 songs, and the database has 2"));
}

TEST_F(PlayCountsTest, DamagedFilesAreRefused) {
  const std::string good = fileOf({{}, {}});
  EXPECT_THAT(refusal("", 0), HasSubstr("no play counts"));
  EXPECT_THAT(refusal("mhdp", 0), HasSubstr("no play counts"));
  EXPECT_THAT(refusal("mhbd" + good.substr(4), 2), HasSubstr("no play counts"));
  EXPECT_THAT(refusal(good.substr(0, good.size() - 1), 2), HasSubstr("cut short"));
  EXPECT_THAT(refusal(fileOf({{}}, 8), 1), HasSubstr("header is damaged"));
  std::string huge = good;
  huge.replace(4, 4, "\xff\xff\xff\xff");
  EXPECT_THAT(refusal(huge, 2), HasSubstr("cut short"));
  huge = good;
  huge.replace(8, 8, std::string(8, '\xff'));
  EXPECT_THAT(refusal(huge, 0xFFFFFFFF), HasSubstr("header is damaged"));
}

TEST_F(PlayCountsTest, EveryCutOfAFileIsRefused) {
  const std::string good = fileOf({{1, k2005}, {2, k2005}});
  for (size_t size = 0; size < good.size(); ++size) EXPECT_NE(refusal(good.substr(0, size), 2), "") << size;
  EXPECT_EQ(refusal(good, 2), "");
}

TEST_F(PlayCountsTest, StandsBesideADatabaseOfAPlayersNameAlone) {
  folder_.write("play counts", "");
  EXPECT_EQ(playCountsBeside(folder_.path() / "iTunesDB"), folder_.path() / "play counts");
  EXPECT_EQ(playCountsBeside(folder_.path() / "ITUNESCDB"), folder_.path() / "play counts");
  EXPECT_EQ(playCountsBeside(folder_.path() / "Library.itdb"), folder_.path() / "play counts");
  EXPECT_EQ(playCountsBeside(folder_.path() / "iTunes Library.itlp" / "Library.itdb"),
            folder_.path() / "play counts");
  EXPECT_EQ(playCountsBeside(folder_.path() / "other.itunesdb"), std::filesystem::path());
  EXPECT_EQ(playCountsBeside(folder_.path() / "missing" / "iTunesDB"), std::filesystem::path());
}

TEST_F(PlayCountsTest, PlaysAndSkipsAreAdded) {
  SongFacts stored;
  stored.plays = 10;
  stored.skips = 1;
  const SongFacts facts = merged({{.plays = 2, .skips = 5}}, {stored}, 0);
  EXPECT_EQ(facts.plays, 12U);
  EXPECT_EQ(facts.skips, 6U);
  stored.plays = 0xFFFFFFFF;
  EXPECT_EQ(merged({{.plays = 2}}, {stored}, 0).plays, 0xFFFFFFFFU);
  EXPECT_EQ(merged({{.plays = 2}}, {SongFacts()}, 0).plays, std::nullopt);
}

TEST_F(PlayCountsTest, LaterDateCounts) {
  SongFacts stored;
  stored.lastPlayed = k2005;
  stored.lastSkipped = k2005;
  const SongFacts facts = merged({{.lastPlayed = k2005 + 1, .lastSkipped = k2005 - 1}}, {stored}, 0);
  EXPECT_EQ(facts.lastPlayed, k2005 + 1);
  EXPECT_EQ(facts.lastSkipped, k2005);
  EXPECT_EQ(merged({{.lastPlayed = k2005}}, {SongFacts()}, 0).lastPlayed, k2005);
}

TEST_F(PlayCountsTest, BookmarkAndHeardMarkReplaceThoseOfTheDatabase) {
  SongFacts stored;
  stored.bookmark = 100;
  stored.heard = false;
  EXPECT_EQ(merged({{.bookmark = 200, .heardMark = 1}}, {stored}, 0).bookmark, 200U);
  EXPECT_EQ(merged({{.bookmark = 200, .heardMark = 1}}, {stored}, 0).heard, true);
  EXPECT_EQ(merged({{}}, {stored}, 0).bookmark, 100U);
  EXPECT_EQ(merged({{}}, {stored}, 0).heard, false);
}

TEST_F(PlayCountsTest, RatingTakenAwayOnThePlayerIsGone) {
  const std::vector<SongFacts> songs = {rated(80), rated(60)};
  EXPECT_EQ(merged({{.rating = 80}, {.rating = 0}}, songs, 1).rating, 0);
  EXPECT_EQ(merged({{.rating = 80}, {.rating = 20}}, songs, 1).rating, 20);
}

TEST_F(PlayCountsTest, FileWithoutAnyRatingLeavesThoseOfTheDatabase) {
  const std::vector<SongFacts> songs = {rated(80), rated(60), rated(0)};
  EXPECT_EQ(merged({{}, {}, {}}, songs, 0).rating, 80);
  EXPECT_EQ(merged({{}, {}, {.rating = 40}}, songs, 2).rating, 40);
  EXPECT_EQ(merged({{.rating = 20}, {}, {}}, songs, 0, 0x0c).rating, 80);
}

TEST_F(PlayCountsTest, FileOfAnOlderDatabaseIsLeftOver) {
  SongFacts stored;
  stored.lastPlayed = k2005;
  const std::vector<SongFacts> songs = {stored, stored, stored};
  const Entry older{.lastPlayed = k2005 - 86400};
  const Entry same{.lastPlayed = k2005};
  EXPECT_TRUE(mergeOf({older, older, same}, songs).isLeftOver());
  EXPECT_FALSE(mergeOf({older, same, same}, songs).isLeftOver());
  EXPECT_FALSE(mergeOf({{}, {}, {}}, songs).isLeftOver());
}

TEST_F(PlayCountsTest, MostOfTheDatesForNeverShowTheZone) {
  constexpr uint32_t kStartOf2001 = 0xB6757900;
  std::vector<PlayCount> counts = read({{.lastPlayed = kStartOf2001 + 14400, .lastSkipped = k2005},
                                        {.lastPlayed = k2005, .lastSkipped = kStartOf2001 + 14400},
                                        {.lastPlayed = kStartOf2001 - 3600}});
  EXPECT_EQ(zoneOf(counts), 14400);
  makeUtc(counts, 14400);
  EXPECT_EQ(counts[0].lastPlayed, std::nullopt);
  EXPECT_EQ(counts[0].lastSkipped, k2005 - 14400);
  EXPECT_EQ(counts[1].lastPlayed, k2005 - 14400);
  EXPECT_EQ(zoneOf(read({{.lastPlayed = kStartOf2001 - 18000}})), -18000);
  EXPECT_EQ(zoneOf(read({{.lastPlayed = k2005}})), std::nullopt);
}

TEST_F(PlayCountsTest, DatesThatDifferByNoMoreThanTheClocksAreTheSame) {
  const auto facts = [](size_t) {
    SongFacts song;
    song.plays = 1;
    song.lastPlayed = k2005;
    return song;
  };
  const PlayCountMerge earlier(read({{.lastPlayed = k2005 - 3600}}), facts, 7200);
  EXPECT_FALSE(earlier.isLeftOver());
  EXPECT_EQ(earlier.merged(0, facts(0)).lastPlayed, k2005);
  const PlayCountMerge later(read({{.lastPlayed = k2005 + 7200}, {.lastPlayed = k2005 + 7201}}), facts, 7200);
  EXPECT_EQ(later.merged(0, facts(0)).lastPlayed, k2005);
  EXPECT_EQ(later.merged(1, facts(0)).lastPlayed, k2005 + 7201);
  EXPECT_TRUE(PlayCountMerge(read({{.lastPlayed = k2005 - 7201}}), facts, 7200).isLeftOver());
}

}  // namespace
}  // namespace player
