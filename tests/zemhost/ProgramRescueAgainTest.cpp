// `zemhost rescue` into a folder that holds something: copies and lists of earlier runs, the files of others,
// links, and the player itself.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
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

class RescueAgain : public RescueFixture {};

TEST_F(RescueAgain, SecondTimeCopiesNothingAndChangesNothing) {
  run(kPlayer);
  const Files before = filesBelow(destination_);
  const Outcome again = run(kPlayer);
  EXPECT_THAT(again.out,
              testing::StartsWith("0 songs copied, 0 B\n28 songs are already there\n8 playlists written\n"));
  EXPECT_EQ(filesBelow(destination_), before);
}

TEST_F(RescueAgain, CompleteCopyWithAnotherTimeIsKnownByItsContent) {
  run(kPlayer);
  for (const auto &entry : fs::recursive_directory_iterator(destination_)) {
    if (entry.is_regular_file()) fs::last_write_time(entry.path(), fs::file_time_type::clock::now());
  }
  EXPECT_THAT(run(kPlayer).out, HasSubstr("\n28 songs are already there\n"));
}

TEST_F(RescueAgain, CopyOnAFileSystemThatKeepsTwoSecondsIsKnownByItsTime) {
  const fs::path player = makePlayer({{u"One", u"A"}});
  const fs::path source = player / "iPod_Control/Music/F00/0.mp3";
  const fs::file_time_type even = std::chrono::floor<std::chrono::minutes>(fs::last_write_time(source));
  fs::last_write_time(source, even + std::chrono::milliseconds(1234));
  run(player);
  // Another content shows that the report and the time were enough.
  const fs::path copy = folder_.write("music/of mine/A/Unknown Album/One.mp3", "SONG 0");
  fs::last_write_time(copy, even);
  EXPECT_THAT(run(player).out, HasSubstr("1 song is already there\n"));
  fs::last_write_time(copy, even + std::chrono::milliseconds(1235));
  EXPECT_THAT(run(player).out, HasSubstr("1 song copied, "));
}

TEST_F(RescueAgain, AnotherSongOfTheSameNameSizeAndTimeIsCopiedToo) {
  const fs::path player = makePlayer({{u"One", u"A"}});
  const fs::path file = player / "iPod_Control/Music/F00/0.mp3";
  const fs::file_time_type time = fs::last_write_time(file);
  run(player);
  fs::rename(player, folder_.path() / "first");
  makePlayer({{u"One", u"A"}});
  // The same place on a player of another name; the same place on it by the same name comes last.
  folder_.write("My iPod/iPod_Control/Music/F00/0.mp3", "SONG 0");
  fs::last_write_time(file, time);
  fs::rename(player, folder_.path() / "second");
  EXPECT_THAT(run(folder_.path() / "second").out,
              testing::StartsWith("A/Unknown Album/One (2).mp3\n1 song copied, "));
  EXPECT_THAT(filesBelow(destination_), ElementsAre(Pair("A/Unknown Album/One (2).mp3", "SONG 0"),
                                                    Pair("A/Unknown Album/One.mp3", "song 0")));
  EXPECT_THAT(run(folder_.path() / "second").out, HasSubstr("1 song is already there\n"));
}

TEST_F(RescueAgain, ReportThatIsGoneOrIsNoneLeavesTheContentsToTell) {
  const fs::path player = makePlayer({{u"One", u"A"}});
  run(player);
  fs::remove(destination_ / kReport);
  EXPECT_THAT(run(player).out, HasSubstr("1 song is already there\n"));
  for (const char *other : {"", "my own notes\n", "{\"format\":\"another\"}\n"}) {
    folder_.write(std::string("music/of mine/") + kReport, other);
    EXPECT_THAT(run(player).out, HasSubstr("1 song is already there\n"));
    EXPECT_EQ(contentOf(destination_ / kReport), other);
  }
  EXPECT_THAT(contentOf(destination_ / "rescue-report (2).ndjson"),
              testing::StartsWith("{\"format\":\"zemhost rescue report\",\"version\":1}\n"
                                  "{\"file\":\"A/Unknown Album/One.mp3\",\"size\":6,\"modified\":["));
}

TEST_F(RescueAgain, LinesOfTheReportThatCannotBeReadAreLeftOut) {
  const fs::path player = makePlayer({{u"One", u"A"}, {u"Two", u"B"}});
  run(player);
  std::ofstream(destination_ / kReport, std::ios::app)
      << "{\"file\":1}\n[]\nnull\n{\"file\":\"x\",\"size\":-1,\"modified\":[],\"song\":{}}\n\xFF\n{\"file\":"
         "\"cut";
  makePlayer({{u"One", u"A"}, {u"Two", u"B"}, {u"Three", u"C"}});
  EXPECT_THAT(run(player).out, HasSubstr("2 songs are already there\n"));
  EXPECT_THAT(contentOf(destination_ / kReport), HasSubstr("{\"file\":\"cut\n{\"file\":\""));
}

TEST_F(RescueAgain, OtherFileIsNeverReplaced) {
  const fs::path player = makePlayer({{u"One", u"A"}, {u"Two", u"A"}}, {{.name = u"List"}});
  const std::string other = folder_.write("music/of mine/A/Unknown Album/One.mp3", "SONG 0");
  folder_.write("music/of mine/List.m3u8", "mine");
  for (int round = 0; round < 2; ++round) {
    const Outcome outcome = run(player);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("\n2 names were taken by another file, so a number was added\n"));
    const Files files = filesBelow(destination_);
    EXPECT_THAT(files, SizeIs(5));
    EXPECT_THAT(files, Contains(Pair("A/Unknown Album/One.mp3", "SONG 0")));
    EXPECT_THAT(files, Contains(Pair("A/Unknown Album/One (2).mp3", "song 0")));
    EXPECT_THAT(files, Contains(Pair("A/Unknown Album/Two.mp3", "song 1")));
    EXPECT_THAT(files, Contains(Pair("List.m3u8", "mine")));
    EXPECT_THAT(files, Contains(Key("List (2).m3u8")));
  }
}

TEST_F(RescueAgain, PlaceOnThePlayerIsRefused) {
  const fs::path player = makePlayer({{u"One", u"A"}});
  fs::create_directory_symlink(player, folder_.path() / "link");
  const Files before = filesBelow(player);
  for (const fs::path &place :
       {player, player / "Notes" / "music", player / "x" / ".." / "y", folder_.path() / "link"}) {
    const Outcome outcome = runZemhost({"rescue", player, place});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "zemhost: " + place.string() + ": this lies on the player, and nothing is written there\n");
  }
  EXPECT_EQ(filesBelow(player), before);
}

TEST_F(RescueAgain, ListKeepsTheEntriesWhoseCopiesAreThere) {
  const fs::path player =
      makePlayer({{u"One", u"A"}, {u"Two", u"B"}}, {{.name = u"All", .entries = {{.ref = 52}, {.ref = 53}}}});
  run(player);
  const std::string list = contentOf(destination_ / "All.m3u8");
  EXPECT_THAT(list, HasSubstr("\nA/Unknown Album/One.mp3\n"));
  fs::rename(player / "iPod_Control/Music", folder_.path() / "gone");
  const Outcome outcome = run(player);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("\n2 problems:\n"));
  EXPECT_EQ(contentOf(destination_ / "All.m3u8"), list);
  EXPECT_THAT(filesBelow(destination_), SizeIs(3));
}

TEST_F(RescueAgain, ListThatWouldLoseEntriesStaysAndTheNewOneLiesBesideIt) {
  const fs::path player =
      makePlayer({{u"One", u"A"}, {u"Two", u"B"}}, {{.name = u"All", .entries = {{.ref = 52}, {.ref = 53}}}});
  run(player);
  const std::string list = contentOf(destination_ / "All.m3u8");
  fs::remove(player / "iPod_Control/Music/F00/0.mp3");
  fs::remove(destination_ / "A/Unknown Album/One.mp3");
  for (int round = 0; round < 2; ++round) {
    const Outcome outcome = run(player);
    EXPECT_THAT(outcome.out,
                HasSubstr("\n1 remark:\n- playlist 1 \"All\": All.m3u8 has entries that the new list lacks, "
                          "so it stays as it is; the new list is All (2).m3u8\n"));
    EXPECT_EQ(contentOf(destination_ / "All.m3u8"), list);
    EXPECT_THAT(contentOf(destination_ / "All (2).m3u8"), EndsWith(",B - Two\nB/Unknown Album/Two.mp3\n"));
    EXPECT_THAT(filesBelow(destination_), SizeIs(3));
  }
}

TEST_F(RescueAgain, ListThatGrewIsWrittenAnew) {
  run(makePlayer({{u"One", u"A"}, {u"Two", u"B"}}, {{.name = u"All", .entries = {{.ref = 53}}}}));
  run(makePlayer({{u"One", u"A"}, {u"Two", u"B"}},
                 {{.name = u"All", .entries = {{.ref = 52}, {.ref = 53}}}}));
  EXPECT_THAT(filesBelow(destination_), SizeIs(3));
  EXPECT_THAT(contentOf(destination_ / "All.m3u8"), HasSubstr("\nA/Unknown Album/One.mp3\n"));
}

TEST_F(RescueAgain, ListOfAnotherPlayerIsNotTaken) {
  const fs::path player = makePlayer({{u"One", u"A"}}, {{.name = u"Best", .entries = {{.ref = 52}}}});
  run(player);
  makePlayer({{u"Two", u"B"}}, {{.name = u"Best", .entries = {{.ref = 52}}}});
  run(player);
  EXPECT_THAT(contentOf(destination_ / "Best.m3u8"), HasSubstr("\nA/Unknown Album/One.mp3\n"));
  EXPECT_THAT(contentOf(destination_ / "Best (2).m3u8"), HasSubstr("\nB/Unknown Album/Two.mp3\n"));
}

TEST_F(RescueAgain, FolderThatIsThePlayerUnderAnArtistsNameIsNotWritten) {
  const fs::path player = makePlayer({{u"One", u"My iPod"}, {u"Two", u"B"}, {u"Three", u"link"}});
  fs::create_directory_symlink("My iPod/iPod_Control", folder_.path() / "link");
  const Files before = filesBelow(player);
  const Outcome outcome = runZemhost({"rescue", player, folder_.path()});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("1 song copied, "));
  EXPECT_THAT(
      outcome.out,
      HasSubstr("- song 0 \"One\" by My iPod: " + (player / "iPod_Control/Music/F00/0.mp3").string() + ": " +
                player.string() + ": this lies on the player, and nothing is written there\n"));
  EXPECT_EQ(filesBelow(player), before);
}

TEST_F(RescueAgain, LinkOutOfTheDestinationIsNotFollowed) {
  const fs::path player = makePlayer({{u"One", u"A"}, {u"Two", u"B"}, {u"Three", u"C"}});
  folder_.makeDirectory("elsewhere");
  folder_.makeDirectory("music/of mine/Real C");
  fs::create_directory_symlink("../../elsewhere", destination_ / "A");
  fs::create_directory_symlink("Real C", destination_ / "C");
  const Outcome outcome = run(player);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr(": " + (destination_ / "A/Unknown Album").string() +
                                     ": a symbolic link leads out of " + destination_.string() + "\n"));
  EXPECT_TRUE(fs::is_empty(folder_.path() / "elsewhere"));
  EXPECT_TRUE(fs::exists(destination_ / "Real C/Unknown Album/Three.mp3"));
  EXPECT_THAT(filesBelow(destination_), SizeIs(2));
}

TEST_F(RescueAgain, CopyIsNeverAProgramToWhoeverOpensIt) {
  const fs::path player = makePlayer({{u"autorun", u"A"}});
  const fs::path music = player / "iPod_Control/Music/F00";
  samples::SongTexts texts;
  texts.title = u"autorun";
  texts.path = u":iPod_Control:Music:F00:0.INF";
  samples::Track track;
  track.id = 52;
  track.filesize = 6;
  track.objects = samples::SongObjects(samples::Variant::LittleEndian, texts);
  samples::Playlist master;
  master.name = u"Library";
  folder_.write(
      "My iPod/iPod_Control/iTunes/iTunesDB",
      samples::WriteLibrary(samples::OrdinaryLibrary({track}, {master}), samples::Variant::LittleEndian));
  fs::rename(music / "0.mp3", music / "0.INF");
  const Outcome outcome = run(player, {"--pattern", "{title}"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out,
              EndsWith("\n1 remark:\n- song 0 \"autorun\": " + (music / "0.INF").string() +
                       ": the extension \".INF\" is of neither music nor video; the copy is autorun.bin\n"));
  EXPECT_THAT(filesBelow(destination_), ElementsAre(Pair("autorun.bin", "song 0")));
}

TEST_F(RescueAgain, WhatIsInTheWayIsNeitherRemovedNorWaitedFor) {
  const fs::path player = makePlayer({{u"One", u"A"}, {u"Two", u"A"}}, {{.name = u"List"}});
  folder_.write("music/of mine/.zemhost-rescue.part", "mine");
  folder_.makeDirectory("music/of mine/A/Unknown Album");
  for (const char *pipe : {"A/Unknown Album/One.mp3", "List.m3u8", kReport})
    ASSERT_EQ(mkfifo((destination_ / pipe).c_str(), 0600), 0);
  const Outcome outcome = run(player);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(filesBelow(destination_),
              ElementsAre(Pair(".zemhost-rescue.part", "mine"), Pair("A/Unknown Album/One (2).mp3", "song 0"),
                          Pair("A/Unknown Album/Two.mp3", "song 1"), Key("List (2).m3u8"),
                          Key("rescue-report (2).ndjson")));
  EXPECT_TRUE(fs::is_fifo(destination_ / "List.m3u8"));
}

}  // namespace
}  // namespace zemhost
