// What the program shows of smart playlists, podcasts, lists made on the player, and the player itself.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

#include "samples/SampleLibrary.h"
#include "samples/SmartObjects.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"

namespace zemhost {
namespace {

using nlohmann::json;
using samples::Variant;
using testing::EndsWith;
using testing::HasSubstr;

constexpr uint32_t kJuly2006 = 3236457600;  // the end of the 22nd

class PlaylistsOfPlayer : public testing::Test {
 protected:
  // Makes a player of three songs, of which the first two were played in July 2006, and this list.
  std::string withList(const std::vector<samples::SmartRule> &rules, const std::vector<uint32_t> &songs,
                       const samples::SmartSettings &settings = {}) const {
    std::vector<samples::Track> tracks(3);
    for (uint32_t i = 0; i < 3; ++i) {
      tracks[i].id = 10 + i;
      tracks[i].objects = {
          samples::TextObject(1, u"Song " + std::u16string(1, static_cast<char16_t>(u'A' + i)))};
      tracks[i].words[0x58] = i < 2 ? kJuly2006 - 86400 * (i + 1) : 0;
    }
    samples::Playlist all{.name = u"All", .master = true};
    samples::Playlist list{.name = u"Smart"};
    list.objects = SmartObjects(Variant::LittleEndian, settings, rules);
    for (const uint32_t song : songs) list.entries.push_back({.ref = 10 + song});
    folder_.write("iPod_Control/iTunes/iTunesDB",
                  WriteLibrary(samples::OrdinaryLibrary(tracks, {all, list}), Variant::LittleEndian));
    return folder_.path();
  }

  static Outcome evaluate(const std::string &player, const std::string &day = "2006-07-22") {
    return runZemhost({"playlist", player, "Smart", "--evaluate", "--day", day});
  }

  support::TemporaryFolder folder_;
};

samples::SmartRule inTheLast(int64_t days) {
  return {
      .field = 0x17, .action = 0x200, .from = {.value = samples::kSmartNow, .date = -days, .unit = 86400}};
}

TEST_F(PlaylistsOfPlayer, ListThatHoldsWhatItsRulesChooseIsSaidTo) {
  const Outcome outcome = evaluate(withList({inTheLast(3)}, {0, 1}));
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("\nRules: Last played is in the last 3 days\n"));
  EXPECT_THAT(outcome.out, HasSubstr("as of the end of 2006-07-22.\n"));
  EXPECT_THAT(outcome.out, EndsWith("\nThe list holds what its rules choose.\n"));
}

TEST_F(PlaylistsOfPlayer, SongsThatDifferAreNamed) {
  const Outcome outcome = evaluate(withList({inTheLast(3)}, {0, 2}));
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out,
              EndsWith("\n1 song missing from the list:\n- song 1 \"Song B\"\n"
                       "1 song in the list, and not chosen by its rules:\n- song 2 \"Song C\"\n"));
}

TEST_F(PlaylistsOfPlayer, AnotherDayHasOtherSongs) {
  const std::string player = withList({inTheLast(3)}, {});
  EXPECT_THAT(evaluate(player).out, HasSubstr("The rules choose 2 songs.\n2 songs missing"));
  EXPECT_THAT(evaluate(player, "2006-07-24").out, HasSubstr("The rules choose 1 song.\n1 song missing"));
  EXPECT_THAT(evaluate(player, "2007-01-01").out, EndsWith("The list holds what its rules choose.\n"));
  EXPECT_THAT(runZemhost({"playlist", player, "Smart", "--evaluate"}).out,
              EndsWith("The list holds what its rules choose.\n"));  // today
}

TEST_F(PlaylistsOfPlayer, RuleThatNobodyCanJudgeIsSaid) {
  const Outcome outcome = evaluate(withList({{.field = 0x9a, .action = 1, .from = {.value = 1}}}, {0}));
  EXPECT_THAT(outcome.out,
              HasSubstr("3 songs cannot be judged: the rules ask for what the library does not say.\n"));
  EXPECT_THAT(outcome.out, EndsWith("The list holds what its rules choose.\n"));
}

TEST_F(PlaylistsOfPlayer, OptionsThatDoNotGoTogetherAreRefused) {
  const std::string player = withList({}, {});
  EXPECT_EQ(runZemhost({"playlist", player, "1", "--day", "2006-07-22"}).status, 2);
  EXPECT_EQ(evaluate(player, "2006-02-30").status, 2);
  const Outcome outcome = runZemhost({"playlist", player, "All", "--evaluate"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "zemhost: playlist 0 \"All\" has no rules to evaluate\n");
}

TEST_F(PlaylistsOfPlayer, ListMadeOnThePlayerIsLeftOutWithALineWhenItDoesNotFit) {
  const std::string player = withList({}, {});
  for (const std::string &bad : {std::string("x"), samples::OnTheGoFile({0, 1}).substr(0, 26)}) {
    folder_.write("iPod_Control/iTunes/OTGPlaylistInfo", bad);
    const Outcome outcome = runZemhost({"playlists", player});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(linesOf(outcome.out).size(), 3U);
    EXPECT_EQ(linesOf(outcome.err).size(), 1U) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("OTGPlaylistInfo: it "));
    const json report = json::parse(runZemhost({"check", player, "--json"}).out);
    EXPECT_EQ(report.at("finding_counts").at("unused-file"), 1);
  }
  folder_.write("iPod_Control/iTunes/OTGPlaylistInfo", samples::OnTheGoFile({2, 0}));
  EXPECT_EQ(linesOf(runZemhost({"playlists", player}).out).size(), 4U);
  const json all = json::parse(runZemhost({"export", player, "--format", "json"}).out);
  const json &list = all.at("playlists").at(2);
  EXPECT_EQ(list.at("name"), "On-The-Go 1");
  EXPECT_EQ(list.at("kind"), "on-the-go");
  EXPECT_TRUE(list.at("type_1").is_null());
  EXPECT_EQ(list.at("entries").at(0).at("song_index"), 2);
  EXPECT_EQ(list.at("entries").at(0).at("track_id"), 12);
  EXPECT_TRUE(list.at("entries").at(0).at("play").is_null());
}

TEST_F(PlaylistsOfPlayer, FileThatSaysNothingOfThePlayerIsLeftOutWithALine) {
  const std::string player = withList({}, {});
  folder_.write("iPod_Control/Device/SysInfo", "this is something else");
  folder_.write("iPod_Control/iTunes/DeviceInfo", samples::DeviceInfoFile({u"Anna\u2019s \u202eiPod"}));
  const Outcome outcome = runZemhost({"info", player});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(linesOf(outcome.err).size(), 1U) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("SysInfo: it does not say what the player is; "));
  EXPECT_THAT(outcome.out, HasSubstr("\nName       Anna\u2019s \ufffdiPod\n"));
  EXPECT_EQ(runZemhost({"check", player}).status, 3);
}

TEST(PodcastsOfPlayer, StandUnderTheHeadingsOfTheirPodcasts) {
  const std::vector<std::string> lines =
      linesOf(runZemhost({"playlist", kPlayer, "Podcasts", "--columns", "title"}).out);
  ASSERT_GE(lines.size(), 4U);
  EXPECT_EQ(lines[1], "   Attic Radio Weekly");
  EXPECT_EQ(lines[2], "0  Episode 12: Tape Hiss");
  const json all = json::parse(runZemhost({"export", kPlayer, "--format", "json"}).out);
  EXPECT_EQ(all.at("playlists").at(6).at("entries").at(1).at("podcast"), "Attic Radio Weekly");
  EXPECT_TRUE(all.at("playlists").at(1).at("entries").at(1).at("podcast").is_null());
  EXPECT_EQ(all.at("songs").at(25).at("chapters").at(1),
            json({{"start_ms", 412000}, {"title", "A Map without Names"}, {"url", nullptr}}));
}

}  // namespace
}  // namespace zemhost
