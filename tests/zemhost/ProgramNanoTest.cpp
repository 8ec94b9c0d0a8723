// Every command on a newest nano, whose library is SQLite files.

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "samples/SampleLibrary.h"
#include "tests/support/SqliteFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const fs::path kSample = support::SamplesFolder() / "nano";
constexpr const char *kFolder = "iPod_Control/iTunes/iTunes Library.itlp";

class Nano : public testing::Test {
 protected:
  Nano() { fs::copy(kSample, nano_, fs::copy_options::recursive); }

  void change(const char *file, const std::string &sql) const {
    support::runSql(nano_ / kFolder / file, sql);
  }

  static std::string output(const std::vector<std::string> &arguments) {
    const Outcome outcome = runZemhost(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments[0];
    EXPECT_EQ(outcome.err, "") << arguments[0];
    return outcome.out;
  }
  json exported() const { return json::parse(output({"export", nano_, "--format", "json"})); }

  support::TemporaryFolder folder_;
  fs::path nano_ = folder_.path() / "nano";
};

TEST_F(Nano, InfoSaysWhichDatabaseIsReadAndWhichIsNot) {
  const std::string out = output({"info", nano_});
  std::vector<std::string> lines = linesOf(out);
  ASSERT_EQ(lines.size(), 11U);
  EXPECT_THAT(lines.back(), StartsWith("Free       "));
  lines.pop_back();
  EXPECT_THAT(lines, ElementsAre("Database   " + (nano_ / kFolder / "Library.itdb").string(),
                                 "Volume     nano", "Variant    SQLite files, a newest nano's database",
                                 "Not read   iTunesDB: the SQLite files are the player's own library",
                                 "Songs      29", "Playlists  9 with 65 entries", "Time       3:43:33",
                                 "Size       135.0 kB", "Name       Sample nano",
                                 StartsWith("Files      iPod_Control/iTunes/iTunesDB")));
}

TEST_F(Nano, PathsToItsFoldersAndItsFileGiveTheSame) {
  const std::string out = output({"songs", nano_});
  EXPECT_EQ(output({"songs", nano_ / "iPod_Control"}), out);
  EXPECT_EQ(output({"songs", nano_ / kFolder}), out);
  EXPECT_EQ(output({"songs", nano_ / kFolder / "Library.itdb"}), out);
  EXPECT_EQ(runZemhost({"songs", nano_ / "iPod_Control/iTunes/iTunesDB"}).status, 1)
      << "a file that is named";
}

TEST_F(Nano, SongsAndPlaysAreThoseOfTheSamplePlayer) {
  const std::vector<std::string> columns = {"--columns",
                                            "title,artist,album,rating,play_count,skip_count,file_type"};
  const auto songs = [&](const fs::path &player) {
    return output({"songs", player, columns[0], columns[1]});
  };
  EXPECT_EQ(songs(nano_), songs(kPlayer));
  EXPECT_THAT(output({"plays", nano_, "--top", "1"}),
              AllOf(HasSubstr("Most played, 1 of 25\n"), HasSubstr("   59  2015-07-16 22:47:17"),
                    HasSubstr("Skipped, 1 of 6\n"), HasSubstr("Never played, 1 of 4\n")));
}

TEST_F(Nano, PlaylistsHaveTheirKindsAndEntries) {
  const std::vector<std::string> lines = linesOf(output({"playlists", nano_}));
  ASSERT_EQ(lines.size(), 10U);
  EXPECT_THAT(lines[1], StartsWith("0  Sample nano          library      29  3:43:33"));
  EXPECT_THAT(lines[2], StartsWith("1  On the Road          folder        8"));
  EXPECT_THAT(lines[3], StartsWith("2  Four Stars and More  smart         8"));
  EXPECT_THAT(lines[4], StartsWith("3  Night Drives         playlist      6"));
  EXPECT_THAT(output({"playlist", nano_, "night", "--columns", "title"}),
              AllOf(HasSubstr("0  Neon Moon 🌙 Drive\n"), HasSubstr("\n6 songs, 26:36, 16.1 kB\n")));
}

TEST_F(Nano, ExportHasNullForWhatTheClassAloneKnows) {
  const json all = exported();
  const json &song = all["songs"][0];
  for (const char *const name : {"track_id", "track_text", "prop_0", "title_encode", "protected", "bought"})
    EXPECT_TRUE(song.at(name).is_null()) << name;
  EXPECT_EQ(song["play_count"], 33);
  EXPECT_EQ(song["plays_since_sync"], 2);
  EXPECT_EQ(song["play_count_recent"], 0);
  EXPECT_EQ(song["date_added"], "2014-03-12T00:00:00");
  EXPECT_EQ(song["path"], ":iPod_Control:Music:F00:QHLA.m4a");
  EXPECT_EQ(song["absolute_path"], "nano:iPod_Control:Music:F00:QHLA.m4a");
  EXPECT_EQ(song["file"], (nano_ / "iPod_Control/Music/F00/QHLA.m4a").string());
  EXPECT_EQ(song["media_kind"], "music");
  EXPECT_EQ(song["compilation"], false);
  EXPECT_EQ(all["songs"][14]["album_artist"], "Various Artists");
  EXPECT_EQ(all["songs"][27]["feed_url"], "http://attic-radio.example/feed.xml");
  EXPECT_EQ(all["songs"][26]["movie"], true);
  const json &list = all["playlists"][2];
  EXPECT_EQ(list["kind"], "smart");
  EXPECT_TRUE(list["type_1"].is_null());
  EXPECT_EQ(list["entries"][1], json({{"position", 1},
                                      {"song_index", 4},
                                      {"track_id", nullptr},
                                      {"play", nullptr},
                                      {"flags", nullptr},
                                      {"podcast", nullptr}}));
  EXPECT_THAT(list["rules"].get<std::string>(), StartsWith("Rating is "));
  const fs::path file = folder_.path() / "out.sqlite";
  EXPECT_EQ(output({"export", nano_, "--format", "sqlite", "--output", file}), "");
  EXPECT_GT(fs::file_size(file), 10'000U);
}

TEST_F(Nano, ListensAreMomentsOfTheDatesInUtc) {
  RunOptions options;
  options.environment = {{"TZ", "JST-9"}};
  const Outcome outcome = runZemhost({"export", nano_, "--since-sync", "--format", "listenbrainz"}, options);
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::vector<std::string> lines = linesOf(outcome.out);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(json::parse(lines[0])["listened_at"],
            samples::SampleFactsOf(0).newLastPlayed + int64_t{3287} * 86400);
}

TEST_F(Nano, RescueCopiesItsMusicAndPlaylists) {
  const fs::path music = folder_.path() / "music";
  const Outcome outcome = runZemhost({"rescue", nano_, music});
  EXPECT_EQ(outcome.status, 3) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("\n28 songs copied, 133.0 kB\n8 playlists written\n"));
  EXPECT_THAT(outcome.out, HasSubstr("song 24 \"Lost Reel\" by Idris Calloway: its file is missing"));
  EXPECT_TRUE(fs::exists(music / "Four Stars and More.m3u8"));
  EXPECT_FALSE(fs::exists(music / "Sample nano.m3u8"));
  EXPECT_EQ(support::contentOf(music / "Mira Solvang/Northern Ferries/01 Harbour Lights at Five.m4a"),
            samples::PlaceholderFile(samples::SampleSongs()[0]));
  const Outcome again = runZemhost({"rescue", nano_, music});
  EXPECT_THAT(again.out, StartsWith("0 songs copied, 0 B\n28 songs are already there\n"));
}

TEST_F(Nano, CompareAndDuplicatesFindItsSongs) {
  const std::string out = output({"compare", kPlayer, nano_});
  EXPECT_THAT(out, AllOf(HasSubstr("\nOnly in A  0\nOnly in B  0\nIn both    29\n")));
  EXPECT_THAT(output({"compare", kPlayer, nano_, "--by", "artist"}), HasSubstr("\nOnly in B  0\n"));
  EXPECT_EQ(output({"duplicates", nano_}), "No song occurs twice.\n");
  change("Library.itdb",
         "UPDATE item SET title = 'Home', artist = 'X', album = 'Y', total_time_ms = 200000 "
         "WHERE physical_order < 2");
  EXPECT_THAT(output({"duplicates", nano_}),
              EndsWith("1 song is in the library more than once; 1 copy too many, "
                       "1.9 kB\n"));
}

TEST_F(Nano, CheckCountsTablesAndFindsWhatIsWrong) {
  const Outcome sound = runZemhost({"check", nano_});
  EXPECT_EQ(sound.status, 3);
  EXPECT_THAT(sound.out,
              AllOf(HasSubstr("Version   1.105\n"), HasSubstr("Files     28 of 29 songs have theirs, 0 "),
                    HasSubstr("Dynamic.itdb    item_stats           29\n"),
                    HasSubstr("\nentries       65    65\n"), HasSubstr("\n1 finding\n- song 24")));
  support::runSql(nano_ / kFolder / "Locations.itdb",
                  "UPDATE location SET file_size = 7000000 WHERE location = 'F00/QHLA.m4a'");
  change("Library.itdb", "UPDATE item_to_container SET item_pid = 77 WHERE physical_order = 5");
  folder_.write("nano/iPod_Control/Music/F00/NONE.mp3", "x");
  const json found = json::parse(runZemhost({"check", nano_, "--json"}).out);
  EXPECT_EQ(found["variant"], "sqlite");
  EXPECT_EQ(found["tables"][0], json({{"file", "Library.itdb"}, {"table", "item"}, {"rows", 29}}));
  EXPECT_EQ(found["counts"]["playlists"], json({{"found", 9}, {"read", 9}}));
  const json &counts = found["finding_counts"];
  EXPECT_EQ(counts["short-file"], 1);
  EXPECT_EQ(counts["missing-file"], 1);
  EXPECT_EQ(counts["unnamed-file"], 1);
  EXPECT_EQ(counts["entry-without-song"], 4);
  EXPECT_EQ(counts["wrong-count"], 1);
  EXPECT_THAT(runZemhost({"playlist", nano_, "0"}).out, HasSubstr("(no song has the ID 000000000000004D)"));
}

TEST_F(Nano, CallSaysWhyTheClassCannotReadIt) {
  const Outcome outcome = runZemhost({"call", nano_, "CountSongs"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err,
              EndsWith("Library.itdb: the newest nanos keep their library in SQLite files, and the class "
                       "reads iTunesDB alone\n"));
}

TEST_F(Nano, MissingFileOfTheFiveIsSaidInOneLineByEveryCommand) {
  fs::remove(nano_ / kFolder / "Dynamic.itdb");
  fs::remove(nano_ / kFolder / "Extras.itdb");
  const std::string line = "zemhost: " + (nano_ / kFolder).string() +
                           ": it has no Dynamic.itdb, Extras.itdb; what belongs there is not known\n";
  const fs::path out = folder_.path() / "out";
  for (const std::vector<std::string> &arguments :
       std::vector<std::vector<std::string>>{{"info", nano_},
                                             {"songs", nano_},
                                             {"playlists", nano_},
                                             {"playlist", nano_, "1"},
                                             {"plays", nano_},
                                             {"export", nano_, "--format", "csv"},
                                             {"duplicates", nano_},
                                             {"rescue", nano_, out, "--dry-run"}}) {
    const Outcome outcome = runZemhost(arguments);
    EXPECT_EQ(outcome.status, arguments[0] == "rescue" ? 3 : 0) << arguments[0];
    EXPECT_EQ(outcome.err, line) << arguments[0];
    EXPECT_NE(outcome.out, "") << arguments[0];
  }
  const Outcome check = runZemhost({"check", nano_});
  EXPECT_EQ(check.status, 3);
  EXPECT_THAT(check.out, HasSubstr("- " + line.substr(9)));
}

TEST_F(Nano, DamagedLibraryIsReadUpToTheDamageOrRefused) {
  const fs::path library = nano_ / kFolder / "Library.itdb";
  const std::string bytes = support::contentOf(library);
  size_t readable = 0;
  for (size_t page = 0; page * 4096 < bytes.size(); ++page) {
    std::string damaged = bytes;
    std::fill_n(damaged.begin() + static_cast<ptrdiff_t>(page) * 4096, 4096, '\xA5');
    folder_.write(fs::path("nano") / kFolder / "Library.itdb", damaged);
    const Outcome outcome = runZemhost({"songs", nano_});
    EXPECT_THAT(outcome.err, StartsWith("zemhost: " + library.string() + ": ")) << page;
    EXPECT_THAT(outcome.err, testing::AnyOf(HasSubstr("damaged"), HasSubstr("no SQLite file")));
    if (outcome.status == 0) ++readable;
  }
  EXPECT_GT(readable, bytes.size() / 4096 / 2);
}

TEST_F(Nano, LinkOutOfThePlayerIsRefused) {
  for (const char *const name : {"Library.itdb", "Locations.itdb", "Genius.itdb"}) {
    const fs::path file = nano_ / kFolder / name;
    const fs::path outside = folder_.path() / name;
    fs::rename(file, outside);
    fs::create_symlink(outside, file);
    const Outcome outcome = runZemhost({"songs", nano_});
    EXPECT_EQ(outcome.status, 1) << name;
    EXPECT_EQ(outcome.err, "zemhost: " + file.string() + ": a symbolic link leads out of the player\n");
    fs::remove(file);
    fs::rename(outside, file);
  }
}

TEST_F(Nano, PlayCountsOutsideThePlayerAreLeftOut) {
  const fs::path file = nano_ / "iPod_Control/iTunes/Play Counts";
  fs::rename(file, folder_.path() / "Play Counts");
  fs::create_symlink(folder_.path() / "Play Counts", file);
  const Outcome outcome = runZemhost({"songs", nano_, "--columns", "play_count"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "zemhost: " + file.string() +
                             ": a symbolic link leads out of the player; plays since the "
                             "last synchronisation are left out\n");
  EXPECT_EQ(linesOf(outcome.out).at(1), " 0     31");
}

TEST_F(Nano, SongOutsideThePlayerIsNotTaken) {
  folder_.write("secret.mp3", "secret");
  change("Locations.itdb",
         "UPDATE location SET location = '../../../secret.mp3' WHERE location = 'F00/QHLA.m4a'");
  const Outcome outcome = runZemhost({"rescue", nano_, folder_.path() / "music"});
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("\n1 music file that no song names belongs into Unnamed\n28 songs copied"),
                    HasSubstr("song 0 \"Harbour Lights at Five\"")));
  for (const auto &[name, content] : support::filesBelow(folder_.path() / "music"))
    EXPECT_NE(content, "secret") << name;
  EXPECT_THAT(output({"export", nano_, "--format", "csv", "--fields", "title,file"}),
              Not(HasSubstr("secret")));
}

TEST_F(Nano, NothingIsWrittenAndAReadOnlyPlayerIsRead) {
  const auto before = support::filesBelow(nano_);
  const std::vector<std::vector<std::string>> commands = {{"info", nano_},
                                                          {"songs", nano_},
                                                          {"playlists", nano_},
                                                          {"playlist", nano_, "1"},
                                                          {"plays", nano_},
                                                          {"check", nano_},
                                                          {"export", nano_, "--format", "json"},
                                                          {"duplicates", nano_},
                                                          {"compare", nano_, nano_},
                                                          {"call", nano_, "CountSongs"}};
  for (const auto &arguments : commands) runZemhost(arguments);
  EXPECT_EQ(support::filesBelow(nano_), before) << "and no journal or log stands there";
  for (const auto &entry : fs::recursive_directory_iterator(nano_)) {
    fs::permissions(entry.path(), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
  }
  RunOptions options;
  options.asOwner = true;
  const Outcome outcome = runZemhost({"songs", nano_}, options);
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(support::filesBelow(nano_), before);
  for (const auto &entry : fs::recursive_directory_iterator(nano_))
    fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);
}

}  // namespace
}  // namespace zemhost
