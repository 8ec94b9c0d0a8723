// What the built program makes of a damaged database: every command goes on with what salvage finds, says so
// in one line, and shows each song that is left as it was before the damage.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "samples/SampleLibrary.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char *kDatabase = "iPod_Control/iTunes/iTunesDB";

// A copy of the sample player whose database is damaged.
class DamagedPlayer : public testing::Test {
 protected:
  // Without what is counted by the places of songs, which are others when some are lost.
  DamagedPlayer() {
    for (const fs::path &player : {player_, sound_}) {
      fs::copy(kPlayer, player, fs::copy_options::recursive);
      for (const char *name : {"Play Counts", "OTGPlaylistInfo"})
        fs::remove(player / "iPod_Control/iTunes" / name);
    }
  }

  void write(const std::string &bytes) const { folder_.write(fs::path("player") / kDatabase, bytes); }

  size_t song(int number) const {
    size_t at = database_.find("mhit");
    while (number-- > 0) at = database_.find("mhit", at + 1);
    return at;
  }

  std::string withoutBytes(size_t at, size_t size) const {
    return std::string(database_).replace(at, size, size, '\0');
  }

  // What a command says on standard error when so much was found.
  std::string note(const std::string &found) const {
    return "zemhost: " + (player_ / kDatabase).string() + ": the file is damaged: " + found +
           " were found by salvage; to see what is wrong run: zemhost check " + player_.string() + "\n";
  }

  // The songs of an export, but for what says where they stand.
  static json songsOf(const fs::path &player) {
    json songs = json::parse(runZemhost({"export", player, "--format", "json"}).out).at("songs");
    for (json &song : songs) {
      for (const char *name : {"song_index", "absolute_path", "file"}) song.erase(name);
    }
    return songs;
  }

  support::TemporaryFolder folder_;
  const fs::path player_ = folder_.path() / "player";
  const fs::path sound_ = folder_.path() / "sound";
  const std::string database_ = samples::SamplePlayerDatabase();
};

TEST_F(DamagedPlayer, ThatIsCutOffIsListedAsFarAsItGoes) {
  write(database_.substr(0, song(20) + 100));
  const Outcome songs = runZemhost({"songs", player_});
  EXPECT_EQ(songs.status, 0);
  EXPECT_EQ(songs.err, note("20 of 29 songs and 0 playlists"));
  EXPECT_THAT(songs.out, HasSubstr("\n20 songs"));
  for (const std::vector<std::string> &command : {std::vector<std::string>{"info", player_},
                                                  {"playlists", player_},
                                                  {"plays", player_},
                                                  {"playlist", player_, "0"},
                                                  {"duplicates", player_},
                                                  {"export", player_, "--format", "csv"}}) {
    const Outcome outcome = runZemhost(command);
    EXPECT_EQ(outcome.status, 0) << command.front();
    EXPECT_THAT(outcome.err, StartsWith(note("20 of 29 songs and 0 playlists"))) << command.front();
  }
}

TEST_F(DamagedPlayer, WipedInTheMiddleLosesTheSongsThereAlone) {
  write(withoutBytes(song(10) + 300, 1024));
  const Outcome songs = runZemhost({"songs", player_});
  EXPECT_EQ(songs.status, 0);
  EXPECT_THAT(songs.err, AllOf(HasSubstr("of 29 songs and "), HasSubstr(" were found by salvage")));
  const json before = songsOf(sound_);
  const json after = songsOf(player_);
  ASSERT_GE(after.size(), 26U);
  for (size_t i = 0; i < 10; ++i) EXPECT_EQ(after[i], before[i]);
  for (size_t i = 1; i <= 15; ++i) EXPECT_EQ(after[after.size() - i], before[before.size() - i]);
  EXPECT_THAT(linesOf(runZemhost({"playlists", player_}).out),
              testing::SizeIs(linesOf(runZemhost({"playlists", sound_}).out).size()));
}

TEST_F(DamagedPlayer, TextsOfASongWhoseHeaderIsGoneGoToNoOther) {
  write(withoutBytes(song(10), 16));
  json before = songsOf(sound_);
  before.erase(10);
  EXPECT_EQ(songsOf(player_), before);
  EXPECT_THAT(runZemhost({"songs", player_}).err, HasSubstr("28 of 29 songs"));
}

TEST_F(DamagedPlayer, WithoutHeadersHasAllItsSongs) {
  write(withoutBytes(0, 512));
  EXPECT_EQ(songsOf(player_), songsOf(sound_));
  write(std::string(512, '\xA5') + database_.substr(512));
  EXPECT_EQ(songsOf(player_), songsOf(sound_));
}

TEST_F(DamagedPlayer, IsRescued) {
  write(database_.substr(0, song(20) + 100));
  const Outcome rescue = runZemhost({"rescue", player_, folder_.path() / "music"});
  EXPECT_THAT(rescue.err, StartsWith(note("20 of 29 songs and 0 playlists")));
  // All music that is there: that of the songs which are lost lies in Unnamed.
  EXPECT_THAT(rescue.out, HasSubstr("\n28 songs copied"));
  EXPECT_TRUE(
      fs::exists(folder_.path() / "music/Mira Solvang/Northern Ferries/01 Harbour Lights at Five.m4a"));
  EXPECT_TRUE(fs::exists(folder_.path() / "music/Unnamed"));
}

TEST_F(DamagedPlayer, IsAFindingOfCheck) {
  write(database_.substr(0, song(20) + 100));
  const Outcome text = runZemhost({"check", player_});
  EXPECT_EQ(text.status, 3);
  EXPECT_EQ(text.err, "");
  EXPECT_THAT(text.out, HasSubstr("\nSalvage   20 of 29 songs and 0 playlists were found by salvage\n"));
  EXPECT_THAT(text.out, HasSubstr("\n- the file is truncated: it should hold " +
                                  std::to_string(database_.size()) + " bytes and holds "));
  const json report = json::parse(runZemhost({"check", player_, "--json"}).out);
  EXPECT_EQ(report.at("salvage"), json({{"songs", 20}, {"announced", 29}, {"playlists", 0}}));
  EXPECT_EQ(report.at("bytes").at("total"), song(20) + 100);
  EXPECT_EQ(report.at("counts").at("songs"), json({{"announced", 29}, {"found", 20}, {"read", 20}}));
  EXPECT_EQ(report.at("finding_counts").at("damaged-file"), 2);
}

TEST_F(DamagedPlayer, IsAnsweredByTheClassAsItAlwaysWas) {
  write(database_.substr(0, song(20) + 100));
  const Outcome refused = runZemhost({"call", player_, "CountSongs"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.err, HasSubstr("the file is truncated"));
  std::string damaged = database_;
  damaged.replace(damaged.find("mhod", song(10)) + 8, 4, 4, '\0');
  write(damaged);
  const Outcome call = runZemhost({"call", player_, "CountSongs"});
  EXPECT_EQ(call.out, "11\n");
  EXPECT_THAT(call.err, HasSubstr("29 songs are announced, 29 found, and 11 read"));
  EXPECT_THAT(runZemhost({"songs", player_}).out, HasSubstr("\n29 songs"));
}

TEST_F(DamagedPlayer, CountsOfThePlayerAreLeftOutWhenSongsAreLost) {
  folder_.write("player/iPod_Control/iTunes/Play Counts", [] {
    samples::ChunkWriter out(samples::Variant::LittleEndian);
    out.Begin("mhdp", 0x60, 29);
    out.PutWord(8, 0x10);
    out.AppendBytes(std::string(size_t{29} * 0x10, '\0'));
    return out.TakeBytes();
  }());
  EXPECT_EQ(runZemhost({"songs", player_}).err, "");
  write(withoutBytes(0, 0x60));
  EXPECT_EQ(runZemhost({"songs", player_}).err, note("29 songs and 8 playlists"));
  write(withoutBytes(song(3), 16));
  EXPECT_THAT(runZemhost({"songs", player_}).err,
              HasSubstr("plays since the last synchronisation are left out"));
}

TEST_F(DamagedPlayer, LeavesNoTemporaryFiles) {
  support::TemporaryFolder temporary;
  RunOptions options;
  options.environment = {{"TMPDIR", temporary.path().string()}};
  write(withoutBytes(0, 512));
  EXPECT_EQ(runZemhost({"songs", player_}, options).status, 0);
  EXPECT_TRUE(fs::is_empty(temporary.path()));
}

TEST(DamagedDesktopLibrary, IsListedAsFarAsItGoes) {
  const support::TemporaryFolder folder;
  const std::string whole = samples::SampleDesktopLibrary();
  const fs::path file = folder.write("library", whole.substr(0, whole.find("hpim")));
  const Outcome outcome = runZemhost({"songs", file});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, HasSubstr(" songs and 0 playlists were found by salvage"));
  EXPECT_EQ(outcome.out, runZemhost({"songs", folder.write("whole", whole)}).out);
}

TEST(FileWithoutSongs, IsRefusedAsBefore) {
  const support::TemporaryFolder folder;
  const std::string whole = samples::SamplePlayerDatabase();
  const Outcome outcome = runZemhost({"songs", folder.write("cut", whole.substr(0, 300))});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, EndsWith("the file is truncated: it should hold " + std::to_string(whole.size()) +
                                    " bytes and holds 300\n"));
}

}  // namespace
}  // namespace zemhost
