// The tables of the built program, on the sample player, its big-endian twin and libraries made here.

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "host/text/TextEncoding.h"
#include "samples/GeneratedLibrary.h"
#include "samples/SampleLibrary.h"
#include "tests/support/Folders.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const fs::path kDesktopLibrary = support::SamplesFolder() / "big-endian.library";

std::string utf8(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit >> 8);
    bytes += static_cast<char>(unit & 0xFF);
  }
  return convertText(bytes, kUtf16, kUtf8).bytes;
}

std::string date(int64_t unixTime) {
  const auto seconds = static_cast<std::time_t>(unixTime);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
  return text;
}

// What the row of this song of the sample should show, in the order of its columns; empty cells left out.
std::vector<std::string> cellsOf(size_t index, size_t number, bool desktop) {
  const samples::SampleSong &song = samples::SampleSongs()[index];
  std::vector<std::string> cells = {std::to_string(number), utf8(song.title), utf8(song.artist),
                                    utf8(song.album)};
  if (song.total != 0) {
    cells.push_back(std::to_string(song.number) + "/" + std::to_string(song.total));
  } else if (song.number != 0) {
    cells.push_back(std::to_string(song.number));
  }
  const unsigned seconds = song.duration / 1000;
  char time[32];
  std::snprintf(time, sizeof time, "%u:%02u", seconds / 60, seconds % 60);
  cells.emplace_back(time);  // no sample is as long as an hour
  cells.push_back(utf8(song.genre));
  if (song.year != 0) cells.push_back(std::to_string(song.year));
  const samples::SampleFacts facts = samples::SampleFactsOf(index);
  const uint8_t rating = !desktop && facts.newRating != 0 ? facts.newRating : facts.rating;
  if (rating != 0) cells.emplace_back(rating / 20, '*');
  const uint32_t plays = facts.plays + (desktop ? 0 : facts.newPlays);
  if (plays != 0) cells.push_back(std::to_string(plays));
  if (plays != 0)
    cells.push_back(date(!desktop && facts.newPlays != 0 ? facts.newLastPlayed : facts.lastPlayed));
  cells.push_back(date(song.added));
  cells.push_back(std::to_string(song.bitrate) + " kbit/s");
  char rate[32];
  std::snprintf(rate, sizeof rate, "%g kHz", song.rate / 1000.0);
  cells.emplace_back(rate);
  if (!desktop) cells.push_back(utf8(song.filetype));
  cells.push_back(utf8(song.composer));
  std::string file(song.file);
  std::replace(file.begin(), file.end(), '/', ':');
  cells.push_back((desktop ? "Sample Disk:Music:" : ":iPod_Control:Music:") + file);
  return cells;
}

void expectCellsInOrder(const std::string &line, const std::vector<std::string> &cells) {
  size_t at = 0;
  for (const std::string &cell : cells) {
    const size_t found = line.find(cell, at);
    ASSERT_NE(found, std::string::npos) << cell << "\nin " << line;
    at = found + cell.size();
  }
}

TEST(SongsCommand, ShowsEveryFieldOfEverySongOfThePlayer) {
  const Outcome outcome = runZemhost({"songs", kPlayer});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  const std::vector<std::string> lines = linesOf(outcome.out);
  const auto &songs = samples::SampleSongs();
  ASSERT_EQ(lines.size(), songs.size() + 3);
  expectCellsInOrder(
      lines[0], {"#", "Title", "Artist", "Album", "Track", "Time", "Genre", "Year", "Size", "Rating", "Plays",
                 "Last played", "Added", "Bit rate", "Sample rate", "Kind", "Composer", "File"});
  for (size_t i = 0; i < songs.size(); ++i) expectCellsInOrder(lines[i + 1], cellsOf(i, i, false));
  EXPECT_THAT(lines.back(), StartsWith(std::to_string(songs.size()) + " songs, "));
}

TEST(SongsCommand, ShowsTheWordsOfA8BitDesktopLibrary) {
  const Outcome outcome = runZemhost({"songs", kDesktopLibrary});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const std::vector<std::string> lines = linesOf(outcome.out);
  const auto &songs = samples::SampleSongs();
  ASSERT_EQ(lines.size(), songs.size() + 3);
  for (size_t i = 0; i < songs.size(); ++i) expectCellsInOrder(lines[i + 1], cellsOf(i, i, true));
}

TEST(SongsCommand, ColumnsStandInLineWhateverTheScript) {
  const std::vector<std::string> lines = linesOf(runZemhost({"songs", kPlayer}).out);
  const auto cellBefore = [](const std::string &line, const std::string &text) {
    return displayWidth(line.substr(0, line.find(text)));
  };
  const size_t artists = cellBefore(lines[0], "Artist");
  const auto &songs = samples::SampleSongs();
  for (size_t i = 0; i < songs.size(); ++i) {
    if (songs[i].artist.empty()) continue;
    // The artist may be in the title too, or before it stands nothing but the title and blanks.
    const std::string padded = "  " + utf8(songs[i].artist);
    EXPECT_EQ(cellBefore(lines[i + 1], padded) + 2, artists) << lines[i + 1];
  }
}

TEST(SongsCommand, PlayerItsFolderAndItsFileGiveTheSame) {
  const std::string expected = runZemhost({"songs", kPlayer}).out;
  EXPECT_EQ(runZemhost({"songs", kPlayer / "iPod_Control"}).out, expected);
  EXPECT_EQ(runZemhost({"songs", kPlayer / "iPod_Control" / "iTunes" / "iTunesDB"}).out, expected);
  EXPECT_THAT(expected, Not(testing::IsEmpty()));
}

TEST(SongsCommand, FitsTheTerminal) {
  for (const int width : {20, 40, 60, 80, 100, 132, 200, 400}) {
    RunOptions terminal;
    terminal.terminalWidth = static_cast<unsigned short>(width);
    const Outcome outcome = runZemhost({"songs", kPlayer}, terminal);
    EXPECT_EQ(outcome.status, 0);
    const std::vector<std::string> lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), samples::SampleSongs().size() + 3) << width;
    for (size_t i = 0; i + 1 < lines.size(); ++i)
      EXPECT_LE(displayWidth(lines[i]), static_cast<size_t>(width)) << lines[i];
    EXPECT_EQ(outcome.out.find("\u2026") != std::string::npos, width < 300) << width;
  }
}

TEST(SongsCommand, TellsTitleArtistAlbumAndTimeIn80Columns) {
  RunOptions terminal;
  terminal.terminalWidth = 80;
  const std::vector<std::string> lines = linesOf(runZemhost({"songs", kPlayer}, terminal).out);
  expectCellsInOrder(lines.at(0), {"#", "Title", "Artist", "Album", "Time"});
}

TEST(SongsCommand, IsNotCutInAPipe) {
  const Outcome outcome = runZemhost({"songs", kPlayer});
  EXPECT_THAT(outcome.out, Not(HasSubstr("\u2026")));
}

TEST(SongsCommand, HundredThousandSongsAreListedWhole) {
  const support::TemporaryFolder folder;
  const fs::path file = folder.path() / "large.itunesdb";
  samples::GeneratedLibrary library;
  library.songs = 100'000;
  library.playlists = 3;
  library.entries = 100'000;
  std::ofstream stream(file, std::ios::binary);
  library.WriteTo(stream);
  stream.close();
  const Outcome songs = runZemhost({"songs", file});
  const Outcome playlists = runZemhost({"playlists", file});
  EXPECT_EQ(linesOf(songs.out).size(), 100'003U) << songs.err;
  EXPECT_EQ(linesOf(playlists.out).size(), 4U) << playlists.err;
}

std::string kindOf(const samples::SamplePlaylist &list, size_t place) {
  if (list.smart) return "smart";
  if (list.podcasts) return "podcasts";
  return place == 0 ? "library" : "playlist";
}

TEST(PlaylistsCommand, ListsNamesKindsAndNumbersOfSongs) {
  const Outcome outcome = runZemhost({"playlists", kPlayer});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const std::vector<std::string> lines = linesOf(outcome.out);
  const auto playlists = samples::SamplePlaylists();
  ASSERT_EQ(lines.size(), playlists.size() + 2);
  for (size_t i = 0; i < playlists.size(); ++i) {
    uint64_t duration = 0;
    for (const size_t song : playlists[i].songs) duration += samples::SampleSongs()[song].duration;
    char time[32];
    const auto seconds = static_cast<unsigned>(duration / 1000);
    if (seconds < 3600) {
      std::snprintf(time, sizeof time, "%u:%02u", seconds / 60, seconds % 60);
    } else {
      std::snprintf(time, sizeof time, "%u:%02u:%02u", seconds / 3600, seconds / 60 % 60, seconds % 60);
    }
    expectCellsInOrder(lines[i + 1], {std::to_string(i), utf8(playlists[i].name), kindOf(playlists[i], i),
                                      std::to_string(playlists[i].songs.size()), time});
  }
  expectCellsInOrder(lines.back(), {"8", "On-The-Go 1", "on-the-go", "3", "13:02"});
}

TEST(PlaylistsCommand, DesktopLibraryHasTheSameNames) {
  const std::string out = runZemhost({"playlists", kDesktopLibrary}).out;
  for (const auto &playlist : samples::SamplePlaylists()) EXPECT_THAT(out, HasSubstr(utf8(playlist.name)));
}

TEST(PlaylistCommand, ListsItsSongsInTheirOrderByNumberAndName) {
  const auto playlists = samples::SamplePlaylists();
  for (size_t i = 0; i < playlists.size(); ++i) {
    const Outcome outcome = runZemhost({"playlist", kPlayer, std::to_string(i)});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const std::vector<std::string> lines = linesOf(outcome.out);
    // A heading before the podcasts, a line about the list, and one about its rules.
    const size_t heading = playlists[i].podcasts ? 1 : 0;
    ASSERT_EQ(lines.size(), playlists[i].songs.size() + heading + (playlists[i].smart ? 5 : 4));
    for (size_t k = 0; k < playlists[i].songs.size(); ++k) {
      expectCellsInOrder(lines[k + heading + 1], cellsOf(playlists[i].songs[k], k, false));
    }
    EXPECT_EQ(runZemhost({"playlist", kPlayer, utf8(playlists[i].name)}).out, outcome.out);
  }
}

samples::Track track(uint32_t id, std::u16string title) {
  samples::Track result;
  result.id = id;
  result.duration = 60'000;
  result.filesize = 1'000'000;
  result.objects.push_back(samples::TextObject(1, std::move(title)));
  return result;
}

samples::Playlist playlist(std::u16string name, const std::vector<uint32_t> &ids) {
  samples::Playlist result;
  result.name = std::move(name);
  for (const uint32_t id : ids) result.entries.push_back({.ref = id});
  return result;
}

std::string playerFile(std::vector<samples::Track> tracks, std::vector<samples::Playlist> playlists) {
  return samples::WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), std::move(playlists)),
                               samples::Variant::LittleEndian);
}

TEST(PlaylistCommand, NameThatSeveralHaveIsRefusedWithAList) {
  const support::TemporaryFolder folder;
  const fs::path file =
      folder.write("db", playerFile({}, {playlist(u"Jazz One", {}), playlist(u"Jazz Two", {})}));
  const Outcome outcome = runZemhost({"playlist", file, "jazz"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "zemhost: " + file.string() +
                             ": \"jazz\" may be any of the playlists 0 \"Jazz One\", 1 \"Jazz Two\"\n");
}

TEST(PlaylistCommand, NameThatNoneHasIsRefused) {
  const Outcome outcome = runZemhost({"playlist", kPlayer, "No Such Playlist"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("no playlist is named \"No Such Playlist\""));
}

TEST(PlaylistCommand, NameOfACommandIsANameAllTheSame) {
  const support::TemporaryFolder folder;
  const fs::path file =
      folder.write("db", playerFile({track(1, u"One")}, {playlist(u"All", {}), playlist(u"songs", {1})}));
  const Outcome outcome = runZemhost({"playlist", file, "songs"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("One"));
}

TEST(PlaylistCommand, EntryWithoutASongIsSaidToBeRatherThanShownAsTheFirstSong) {
  const support::TemporaryFolder folder;
  const fs::path file = folder.write(
      "db", playerFile({track(1, u"First"), track(2, u"Second")}, {playlist(u"List", {2, 99, 1})}));
  const std::vector<std::string> lines = linesOf(runZemhost({"playlist", file, "0"}).out);
  ASSERT_EQ(lines.size(), 7U);
  EXPECT_THAT(lines[1], HasSubstr("Second"));
  EXPECT_THAT(lines[2], HasSubstr("(no song has the ID 99)"));
  EXPECT_THAT(lines[3], HasSubstr("First"));
  EXPECT_EQ(lines[5], "2 songs, 1 entry without a song, 2:00, 2.0 MB");
}

TEST(InfoCommand, SumsUpThePlayer) {
  uint64_t duration = 0;
  for (const auto &song : samples::SampleSongs()) duration += song.duration;
  size_t entries = 3;  // of the list that was made on the player
  for (const auto &playlist : samples::SamplePlaylists()) entries += playlist.songs.size();
  const std::vector<std::string> lines = linesOf(runZemhost({"info", kPlayer}).out);
  const auto seconds = static_cast<unsigned>(duration / 1000);
  char time[32];
  std::snprintf(time, sizeof time, "%u:%02u:%02u", seconds / 3600, seconds / 60 % 60, seconds % 60);
  ASSERT_EQ(lines.size(), 14U);
  EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 7),
              ElementsAre("Database   " + (kPlayer / "iPod_Control" / "iTunes" / "iTunesDB").string(),
                          "Volume     player", "Variant    little-endian, a player's database",
                          "Songs      " + std::to_string(samples::SampleSongs().size()),
                          "Playlists  " + std::to_string(samples::SamplePlaylists().size() + 1) + " with " +
                              std::to_string(entries) + " entries",
                          std::string("Time       ") + time, StartsWith("Size       ")));
  EXPECT_THAT(
      std::vector(lines.begin() + 7, lines.end()),
      ElementsAre("Name       Sample Player", "Model      iPod (generation 5), 30 GB, white, number MA002",
                  "Serial     XX000000SZ9", "Firmware   1.2.1", "Last sync  in the zone UTC+2",
                  StartsWith("Files      iPod_Control/iTunes/iTunesDB, iPod_Control/iTunes/Play Counts, "
                             "iPod_Control/iTunes/OTGPlaylistInfo, "),
                  StartsWith("Free       ")));
}

TEST(InfoCommand, NamesTheVariantOfADesktopLibrary) {
  const std::string out = runZemhost({"info", kDesktopLibrary}).out;
  EXPECT_THAT(out, HasSubstr("Variant    big-endian, a desktop program's library\n"));
  EXPECT_THAT(out, HasSubstr("Volume     none, a database file by itself\n"));
}

TEST(InfoCommand, VolumeHasTheNameOfThePlayersDirectory) {
  const support::TemporaryFolder folder;
  folder.write("AC:DC \u97F3/iPod_Control/iTunes/iTunesDB", playerFile({}, {}));
  EXPECT_THAT(runZemhost({"info", folder.path() / "AC:DC \u97F3"}).out,
              HasSubstr("Volume     AC/DC \u97F3\n"));
}

TEST(InfoCommand, LongDirectoryNamesDoNoHarm) {
  const support::TemporaryFolder folder;
  const std::string name(100, 'd');
  const fs::path alone = folder.write(fs::path(name) / name / "db", playerFile({track(1, u"One")}, {}));
  EXPECT_THAT(runZemhost({"info", alone}).out, HasSubstr("Songs      1\n"));
  folder.write(fs::path(name) / "iPod_Control/iTunes/iTunesDB", playerFile({track(1, u"One")}, {}));
  const std::string out = runZemhost({"info", folder.path() / name}).out;
  EXPECT_THAT(out, HasSubstr("Songs      1\n"));
  EXPECT_THAT(out, HasSubstr("Volume     " + std::string(63, 'd') + "\n"));
}

TEST(Commands, ControlCharactersOfALibraryNeverReachTheTerminal) {
  const support::TemporaryFolder folder;
  const fs::path file = folder.write("evil\x1B[31m\n.itunesdb",
                                     playerFile({track(1, u"a\u001B]0;title\u0007\r\n\u009B2Jb\u202Ec")},
                                                {playlist(u"p\u001B[2J\u0085", {1})}));
  const std::vector<std::vector<std::string>> runs = {
      {"songs", file},
      {"playlists", file},
      {"playlist", file, "0"},
      {"info", file},
      {"playlist", file, "\x1B[1m"},
      {"songs", file.string() + "\x1B"},
      {"call", file, "GetTitle(0)", "\x1B", "GetPlayListName(0)"},
      {"\x1B[2J"}};
  for (const auto &arguments : runs) {
    const Outcome outcome = runZemhost(arguments);
    const std::string all = outcome.out + outcome.err;
    EXPECT_FALSE(all.empty());
    for (size_t i = 0; i < all.size(); ++i) {
      const auto byte = static_cast<unsigned char>(all[i]);
      EXPECT_TRUE(byte >= ' ' || byte == '\n') << arguments[0] << ": " << all;
      EXPECT_NE(byte, 0x7F);
      const auto next = i + 1 < all.size() ? static_cast<unsigned char>(all[i + 1]) : 0U;
      EXPECT_FALSE(byte == 0xC2 && next < 0xA0) << arguments[0];
    }
    EXPECT_THAT(all, Not(HasSubstr(std::string{'\xE2', '\x80', '\xAE'})));  // the right-to-left override
  }
}

}  // namespace
}  // namespace zemhost
