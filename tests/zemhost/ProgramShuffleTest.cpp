// `zemhost check` of a shuffle, which plays from a list beside the database.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/player/ShuffleFiles.h"
#include "tests/zemhost/CoverFixture.h"

namespace zemhost {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class Shuffle : public CoverFixture {
 protected:
  static constexpr const char *kList = "iPod/iPod_Control/iTunes/iTunesSD";
  static constexpr const char *kCounts = "iPod/iPod_Control/iTunes/iTunesStats";

  void SetUp() override { makePlayer({{u"A", u"Ann", u"", 0, 1000, 0}, {u"B", u"Bob", u"", 0, 1001, 0}}); }
  Outcome check() const { return runZemhost({"check", player()}); }
  json report() const { return json::parse(runZemhost({"check", player(), "--json"}).out); }
};

const std::vector<std::string> kBoth = {"/iPod_Control/Music/F00/0.mp3", "/iPod_Control/Music/f00/1.MP3"};

TEST_F(Shuffle, ListThatAgreesIsNamedWithItsCounts) {
  for (const std::string &list : {player::olderShuffleList(kBoth), player::newerShuffleList(kBoth)}) {
    folder_.write(kList, list);
    folder_.write(kCounts, player::newerShuffleCounts({{3, 0}, {1, 2}}));
    const Outcome outcome = check();
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_THAT(outcome.out,
                HasSubstr("Shuffle   2 songs in iTunesSD, 4 plays and 2 skips in iTunesStats\n"));
    EXPECT_EQ(report().at("shuffle"), json({{"songs", 2}, {"plays", 4}, {"skips", 2}}));
  }
}

TEST_F(Shuffle, OtherPlayersHaveNone) {
  EXPECT_THAT(check().out, Not(HasSubstr("Shuffle")));
  EXPECT_FALSE(report().contains("shuffle"));
}

TEST_F(Shuffle, SongsThatOneOfTheTwoLacksAreReported) {
  folder_.write(kList, player::newerShuffleList({kBoth[0], "/iPod_Control/Music/F00/other.mp3", kBoth[0]}));
  const Outcome outcome = check();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("iTunesSD: it lists 3 songs, and the database has 2 songs\n"));
  EXPECT_THAT(outcome.out, HasSubstr("iTunesSD: it does not list song 1 \"B\" by Bob\n"));
  EXPECT_THAT(
      outcome.out,
      HasSubstr("iTunesSD: no song of the database has the file \"/iPod_Control/Music/F00/other.mp3\"\n"));
  EXPECT_EQ(report().at("finding_counts").at("unused-file"), 3);
}

TEST_F(Shuffle, OtherPersistentIdIsReported) {
  folder_.write(kList, player::newerShuffleList({kBoth[1], kBoth[0]}));
  EXPECT_THAT(check().out,
              HasSubstr("it gives song 0 \"A\" by Ann another persistent ID than the database\n"));
}

TEST_F(Shuffle, OtherOrderIsReported) {
  makePlayer({{u"A", u"Ann", u"", 0, 1000, 0}, {u"B", u"Bob", u"", 0, 1001, 0}}, {}, {0, 1});
  folder_.write(kList, player::olderShuffleList({kBoth[1], kBoth[0]}));
  const Outcome outcome = check();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out,
              HasSubstr("iTunesSD: its songs stand in another order than the library's, beginning "
                        "with song 0 \"A\" by Ann\n"));
}

TEST_F(Shuffle, CutShortListIsReported) {
  const std::string whole = player::newerShuffleList(kBoth);
  folder_.write(kList, whole.substr(0, whole.size() - 1));
  EXPECT_THAT(check().out, HasSubstr("iTunesSD: it is cut short: it lists 1 song, and announces 2\n"));
}

TEST_F(Shuffle, OtherFilesInTheirPlacesAreReported) {
  folder_.write(kList, player::olderShuffleList(kBoth));
  folder_.write(kCounts, "no counts of anything");
  EXPECT_THAT(check().out, HasSubstr("iTunesStats: it holds no counts of a shuffle\n"));
  folder_.write(kCounts, player::olderShuffleCounts({{1, 1}}));
  EXPECT_THAT(check().out, HasSubstr("iTunesStats: it counts 1 song, and iTunesSD lists 2\n"));
  folder_.write(kList, "no list");
  EXPECT_THAT(check().out, HasSubstr("iTunesSD: it is no list of a shuffle's songs\n"));
}

TEST_F(Shuffle, ListOutsideThePlayerIsNotRead) {
  fs::create_symlink(folder_.write("outside", player::olderShuffleList(kBoth)), folder_.path() / kList);
  const Outcome outcome = check();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out,
              HasSubstr("- " + (folder_.path() / kList).string() + " lies outside the player\n"));
}

TEST_F(Shuffle, WithoutADatabaseIsNamedForWhatItIs) {
  folder_.write(kList, player::olderShuffleList(kBoth));
  fs::remove(player() / "iPod_Control/iTunes/iTunesDB");
  const Outcome outcome = check();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("no database here, only iTunesSD, the songs of a shuffle"));
}

}  // namespace
}  // namespace zemhost
