// `zemhost rescue` through the built program: what lies where afterwards, and that nothing else is touched.

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/zemhost/RescueFixture.h"

namespace zemhost {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Key;
using testing::Pair;
using testing::SizeIs;

class Rescue : public RescueFixture {};

TEST_F(Rescue, SongsOfThePlayerGetTheirNamesAndKeepContentAndTimes) {
  const Outcome outcome = run(kPlayer);
  EXPECT_EQ(outcome.status, 3);  // one file is missing on the sample player
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out,
              EndsWith("28 songs copied, 133.0 kB\n"
                       "8 playlists written\n"
                       "1 problem:\n"
                       "- song 24 \"Lost Reel\" by Idris Calloway: its file is missing: " +
                       (fs::canonical(kPlayer) / "iPod_Control/Music/F12/LOST.m4a").string() + "\n"));
  const Files files = filesBelow(destination_);
  EXPECT_THAT(files, SizeIs(28 + 8));
  const samples::SampleSong &song = samples::SampleSongs().at(6);
  const std::string name = "月島ひかり/夜行列車/01 雨のプラットホーム.m4a";
  EXPECT_THAT(files, Contains(Pair(name, samples::PlaceholderFile(song))));
  EXPECT_EQ(fs::last_write_time(destination_ / name),
            fs::last_write_time(kPlayer / "iPod_Control" / "Music" / song.file));
  EXPECT_EQ(linesOf(outcome.out).front(), "Mira Solvang/Northern Ferries/01 Harbour Lights at Five.m4a");
}

TEST_F(Rescue, EverySongOfThePlayerIsThereByItsContent) {
  run(kPlayer);
  std::vector<std::string> wanted;
  std::vector<std::string> copied;
  for (const samples::SampleSong &song : samples::SampleSongs()) {
    if (!song.missing) wanted.push_back(samples::PlaceholderFile(song));
  }
  for (const auto &[name, content] : filesBelow(destination_)) {
    if (!name.ends_with(".m3u8")) copied.push_back(content);
  }
  EXPECT_THAT(copied, testing::UnorderedElementsAreArray(wanted));
}

TEST_F(Rescue, PlaylistsNameTheCopies) {
  run(kPlayer);
  EXPECT_THAT(contentOf(destination_ / "Café du matin.m3u8"),
              testing::StartsWith("#EXTM3U\n# written by zemhost rescue\n#PLAYLIST:Café du matin\n"
                                  "#EXTINF:199,Élodie Marchandeau - Café de l'Écluse\n"
                                  "Élodie Marchandeau/À contre-jour/01 Café de l'Écluse.m4a\n"));
  for (const auto &[name, content] : filesBelow(destination_)) {
    if (!name.ends_with(".m3u8")) continue;
    for (const std::string &line : linesOf(content)) {
      EXPECT_TRUE(line.starts_with('#') || fs::exists(destination_ / line)) << name << ": " << line;
    }
  }
}

TEST_F(Rescue, NamesThatDifferInCaseOrCompositionAloneGetNumbers) {
  const fs::path player =
      makePlayer({{u"Home", u"A"}, {u"HOME", u"a"}, {u"hóme", u"A"}, {u"ho\u0301me", u"A"}, {u"home", u"A"}});
  EXPECT_EQ(run(player).status, 0);
  EXPECT_THAT(filesBelow(destination_), ElementsAre(Pair("A/Unknown Album/HOME (2).mp3", "song 1"),
                                                    Pair("A/Unknown Album/Home.mp3", "song 0"),
                                                    Pair("A/Unknown Album/home (3).mp3", "song 4"),
                                                    Pair("A/Unknown Album/hóme (2).mp3", "song 3"),
                                                    Pair("A/Unknown Album/hóme.mp3", "song 2")));
}

TEST_F(Rescue, TextsThatNoFileSystemTakesBecomeNames) {
  const fs::path player =
      makePlayer({{u"../../up", u"AC/DC"}, {u"a:b?", u"CON"}, {u"Wait...", u".hidden"}, {u"", u""}});
  EXPECT_EQ(run(player).status, 0);
  EXPECT_THAT(filesBelow(destination_),
              ElementsAre(Pair("AC_DC/Unknown Album/_._.._up.mp3", "song 0"),
                          Pair("CON_/Unknown Album/a_b_.mp3", "song 1"),
                          Pair("Unknown Artist/Unknown Album/Unknown Title.mp3", "song 3"),
                          Pair("_hidden/Unknown Album/Wait.mp3", "song 2")));
}

TEST_F(Rescue, ManySongsOfOneNameAreAllThere) {
  const fs::path player =
      makePlayer(std::vector<std::pair<std::u16string, std::u16string>>(300, {u"Same", u"A"}));
  EXPECT_EQ(run(player).status, 0);
  const Files files = filesBelow(destination_);
  EXPECT_THAT(files, SizeIs(300));
  EXPECT_THAT(files, Contains(Pair("A/Unknown Album/Same (300).mp3", "song 299")));
}

TEST_F(Rescue, PatternDecidesTheNames) {
  EXPECT_EQ(run(kPlayer, {"--pattern", "{genre}/{year} {title}", "--playlist", "Podcasts"}).status, 0);
  EXPECT_THAT(filesBelow(destination_), Contains(Key("Podcast/2006 Episode 12_ Tape Hiss.mp3")));
}

TEST_F(Rescue, AlbumOfSeveralArtistsLiesInOneFolderWhicheverSongsAreCopied) {
  EXPECT_EQ(run(kPlayer, {"--playlist", "Night Drives"}).status, 0);
  EXPECT_THAT(filesBelow(destination_),
              Contains(Key("Compilations/Roadside Jukebox/02 Nine Volt Heart.mp3")));
  run(kPlayer);
  EXPECT_THAT(filesBelow(destination_),
              testing::IsSupersetOf({Key("Compilations/Roadside Jukebox/01 Truckstop Waltz.mp3"),
                                     Key("Compilations/Roadside Jukebox/04 Grüße aus Überlingen.mp3"),
                                     Key("Idris Calloway/Porch Tapes/1-03 Home.m4a")}));
}

TEST_F(Rescue, PatternKnowsTheFieldsOfAnExport) {
  EXPECT_EQ(
      run(kPlayer, {"--playlist", "Night Drives", "--pattern", "[{comment}/]{bpm:03} {date_added}"}).status,
      0);
  EXPECT_THAT(filesBelow(destination_),
              Contains(Key("Ripped from the first pressing; the B-side is longer/128 2004-05-01.mp3")));
}

TEST_F(Rescue, PlaylistsChooseTheSongs) {
  EXPECT_EQ(run(kPlayer, {"--playlist", "Podcasts", "--playlist", "1", "--playlist", "podcasts"}).status, 0);
  const Files files = filesBelow(destination_);
  EXPECT_THAT(files, SizeIs(2 + 5 + 2));  // one of the six entries of playlist 1 stands twice
  EXPECT_THAT(files, Contains(Key("Podcasts.m3u8")));
  EXPECT_THAT(files, Contains(Key("Night Drives.m3u8")));
}

TEST_F(Rescue, DryRunWritesNothing) {
  const Outcome outcome = run(kPlayer, {"--dry-run", "--playlist", "Podcasts"});
  EXPECT_EQ(outcome.status, 0);
  const std::string source = (kPlayer / "iPod_Control/Music").string();
  EXPECT_THAT(outcome.out, HasSubstr(" -> " + destination_.string() +
                                     "/Attic Radio/Attic Radio Weekly/Episode 12_ Tape Hiss.mp3\n"));
  EXPECT_THAT(outcome.out, testing::StartsWith(source));
  EXPECT_THAT(outcome.out, EndsWith("2 songs to copy, 32.0 kB\n1 playlist to write\n"));
  EXPECT_FALSE(fs::exists(folder_.path() / "music"));
}

TEST_F(Rescue, BareDatabaseIsRefused) {
  const fs::path file = folder_.write("iTunesDB", samples::SamplePlayerDatabase());
  const Outcome outcome = run(file);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "zemhost: " + file.string() +
                             ": the database is on no player, so the files of its songs cannot be found\n");
}

TEST_F(Rescue, PlaceThatIsAFileIsRefused) {
  folder_.write("music/of mine", "x");
  const Outcome outcome = run(kPlayer);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("Not a directory"));
}

TEST_F(Rescue, UnknownFieldIsToldBeforeAnythingIsDone) {
  const Outcome outcome = run(kPlayer, {"--pattern", "{artist}/{mood}"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("there is no field {mood}; the fields are {albumartist}, "));
  EXPECT_FALSE(fs::exists(folder_.path() / "music"));
}

TEST_F(Rescue, SongsThatCannotBeCopiedAreNamedAndTheOthersAreThere) {
  const fs::path player = makePlayer({{u"One", u"A"}, {u"Two", u"B"}, {u"Three", u"C"}},
                                     {{.name = u"All", .entries = {{.ref = 52}, {.ref = 53}, {.ref = 54}}}});
  folder_.write("music/of mine/B", "a file in place of a folder");
  fs::remove(player / "iPod_Control/Music/F00/2.mp3");
  const Outcome outcome = run(player);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, EndsWith("1 song copied, 6 B\n"
                                    "1 playlist written\n"
                                    "3 problems:\n"
                                    "- song 1 \"Two\" by B: " +
                                    (player / "iPod_Control/Music/F00/1.mp3").string() +
                                    ": Not a directory\n"
                                    "- song 2 \"Three\" by C: its file is missing: " +
                                    (player / "iPod_Control/Music/F00/2.mp3").string() +
                                    "\n"
                                    "- playlist 1 \"All\" lacks 2 songs\n"));
  EXPECT_THAT(filesBelow(destination_),
              ElementsAre(Key("A/Unknown Album/One.mp3"), Key("All.m3u8"), Key("B")));
}

TEST_F(Rescue, PlaylistsOfOneNameAreAllThere) {
  run(makePlayer({{u"One", u"A"}},
                 std::vector<samples::Playlist>(300, {.name = u"Same", .entries = {{.ref = 52}}})));
  const Files files = filesBelow(destination_);
  EXPECT_THAT(files, SizeIs(301));
  EXPECT_THAT(files, Contains(Key("Same (300).m3u8")));
}

TEST_F(Rescue, EmptyNameOfAPlaceIsAUsageError) {
  const Outcome outcome = runZemhost({"rescue", kPlayer, ""});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("DEST: the name is empty"));
  for (const char *option : {"-o", "--output"}) {
    const Outcome exported = runZemhost({"export", kPlayer, "--format", "csv", option, ""});
    EXPECT_EQ(exported.status, 2);
    EXPECT_EQ(exported.out, "");
    EXPECT_THAT(exported.err, HasSubstr("--output: the name is empty"));
  }
}

TEST_F(Rescue, FilesThatAreShorterThanTheDatabaseStatesAreCopiedAndEndWithStatus3) {
  const fs::path player = makePlayerOf({{u"One", u"A", u"F00/0.mp3", "cut", 6},
                                        {u"Two", u"A", u"F00/1.mp3", "", 6},
                                        {u"Three", u"A", u"F00/2.mp3", "", 0}});
  const fs::path music = player / "iPod_Control/Music/F00";
  for (int round = 0; round < 2; ++round) {
    const Outcome outcome = run(player);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(
        outcome.out,
        EndsWith("3 files are empty or shorter than the database states, and are copied as they are:\n"
                 "- song 0 \"One\" by A: its file has 3 bytes, and the database states 6: " +
                 (music / "0.mp3").string() +
                 "\n"
                 "- song 1 \"Two\" by A: its file is empty, and the database states 6: " +
                 (music / "1.mp3").string() +
                 "\n"
                 "- song 2 \"Three\" by A: its file is empty: " +
                 (music / "2.mp3").string() + "\n"));
    EXPECT_THAT(filesBelow(destination_), Contains(Pair("A/Unknown Album/One.mp3", "cut")));
  }
}

TEST_F(Rescue, FileThatIsLongerThanTheDatabaseStatesIsARemark) {
  const fs::path player = makePlayerOf(
      {{u"One", u"A", u"F00/0.mp3", "longer", 3}, {u"Two", u"A", u"F00/1.mp3", "not stated", 0}});
  const Outcome outcome = run(player);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out,
              EndsWith("2 songs copied, 16 B\n"
                       "1 remark:\n- song 0 \"One\" by A: its file has 6 bytes, and the database states 3: " +
                       (player / "iPod_Control/Music/F00/0.mp3").string() + "\n"));
}

TEST_F(Rescue, PlayerItselfStaysAsItIs) {
  const fs::path player = makePlayer({{u"One", u"A"}, {u"Two", u"A"}});
  const Files before = filesBelow(player);
  run(player);
  EXPECT_EQ(filesBelow(player), before);
}

}  // namespace
}  // namespace zemhost
