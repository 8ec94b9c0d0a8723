#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>

#include "samples/SampleLibrary.h"
#include "tests/samples/FileBytes.h"
#include "tests/support/Folders.h"

namespace samples_test {
namespace {

namespace fs = std::filesystem;
using samples::SampleSong;
using samples::SampleSongs;

std::string Contents(const fs::path &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool Holds(std::u16string_view text, char16_t first, char16_t last) {
  return std::any_of(text.begin(), text.end(), [&](char16_t unit) { return unit >= first && unit <= last; });
}

template <typename Test>
size_t Count(Test test) {
  return static_cast<size_t>(std::count_if(SampleSongs().begin(), SampleSongs().end(), test));
}

TEST(SampleLibrary, ShowsWhatRealLibrariesHold) {
  EXPECT_GE(SampleSongs().size(), 24U);
  EXPECT_GE(Count([](const SampleSong &song) { return Holds(song.title, 0x3040, 0x30ff); }), 3U);
  EXPECT_GE(Count([](const SampleSong &song) { return Holds(song.title, 0x00c0, 0x00ff); }), 3U);
  EXPECT_GE(Count([](const SampleSong &song) { return Holds(song.title, 0x0300, 0x036f); }), 2U);
  EXPECT_GE(Count([](const SampleSong &song) { return Holds(song.title, 0xd800, 0xdfff); }), 1U);
  EXPECT_GE(Count([](const SampleSong &song) { return song.compilation; }), 3U);
  EXPECT_GE(Count([](const SampleSong &song) { return song.artist.empty(); }), 1U);
  EXPECT_GE(Count([](const SampleSong &song) { return song.composer.empty(); }), 1U);
  EXPECT_GE(Count([](const SampleSong &song) { return song.mediaType == 2; }), 1U);
  EXPECT_GE(Count([](const SampleSong &song) { return !song.enclosure.empty(); }), 1U);
  EXPECT_EQ(Count([](const SampleSong &song) { return song.missing; }), 1U);

  std::set<uint32_t> extra;
  std::multiset<std::u16string_view> titles;
  for (const SampleSong &song : SampleSongs()) {
    titles.insert(song.title);
    for (const samples::ExtraText &text : song.extra) extra.insert(text.type);
  }
  EXPECT_EQ(extra, (std::set<uint32_t>{7, 8, 13, 14}));
  EXPECT_EQ(titles.count(u"Home"), 2U);
}

TEST(SampleLibrary, MasterPlaylistComesFirstAndOneIsEmpty) {
  const std::vector<samples::SamplePlaylist> lists = samples::SamplePlaylists();
  ASSERT_GE(lists.size(), 6U);
  EXPECT_EQ(std::set<size_t>(lists[0].songs.begin(), lists[0].songs.end()).size(), SampleSongs().size());
  EXPECT_EQ(std::count_if(lists.begin(), lists.end(), [](const auto &list) { return list.songs.empty(); }),
            1);
}

TEST(SampleLibrary, NoTwoSongsShareAFileOrItsBytes) {
  std::set<std::string_view> names;
  std::set<std::string> bytes;
  for (const SampleSong &song : SampleSongs()) {
    names.insert(song.file);
    bytes.insert(PlaceholderFile(song));
  }
  EXPECT_EQ(names.size(), SampleSongs().size());
  EXPECT_EQ(bytes.size(), SampleSongs().size());
}

TEST(SampleLibrary, PlayerDatabaseHasAlbumsTracksPodcastsAndPlaylists) {
  const std::string file = samples::SamplePlayerDatabase();
  const std::vector<ChunkAt> chunks = Walk(file);
  std::vector<uint32_t> types;
  for (const ChunkAt &set : Only(chunks, "mhsd")) types.push_back(set.count);
  EXPECT_EQ(types, (std::vector<uint32_t>{4, 1, 3, 2}));
  EXPECT_EQ(Only(chunks, "mhit").size(), SampleSongs().size());
  EXPECT_EQ(Only(chunks, "mhyp").size(), 2 * samples::SamplePlaylists().size());
  EXPECT_EQ(Only(chunks, "mhla").at(0).length, Only(chunks, "mhia").size());
}

TEST(SampleLibrary, DesktopLibraryKeepsMacRomanTextIn8BitsAndTheRestInUtf16) {
  const std::string file = samples::SampleDesktopLibrary();
  const std::vector<ChunkAt> chunks = Walk(file);
  EXPECT_EQ(Only(chunks, "htim").size(), SampleSongs().size());
  EXPECT_EQ(Only(chunks, "hpim").size(), samples::SamplePlaylists().size());
  std::set<std::string> eightBit;
  std::set<std::string> utf16;
  for (const ChunkAt &object : Only(chunks, "hohm")) {
    if (object.count != 2) continue;
    const std::string text = file.substr(object.at + 40, object.length - 40);
    (Big(file, object.at + 0x18) == 1 ? utf16 : eightBit).insert(text);
  }
  EXPECT_EQ(eightBit.count("Caf\x8e de l'\x83"
                           "cluse"),
            1U);
  EXPECT_EQ(utf16.count("\x7d\x42\x96\xfb\x30\x6e\x30\x42\x30\x68\x30\x67"), 1U);
}

TEST(SamplePlayer, HasTheDatabaseAndEverySongsFileButOne) {
  const fs::path player = support::SamplesFolder() / "player" / "iPod_Control";
  EXPECT_EQ(Contents(player / "iTunes" / "iTunesDB"), samples::SamplePlayerDatabase());
  EXPECT_EQ(Contents(support::SamplesFolder() / "big-endian.library"), samples::SampleDesktopLibrary());
  size_t files = 0;
  for (const SampleSong &song : SampleSongs()) {
    const fs::path path = player / "Music" / song.file;
    if (!fs::exists(path)) continue;
    ++files;
    EXPECT_EQ(Contents(path), PlaceholderFile(song)) << path;
  }
  EXPECT_EQ(files, SampleSongs().size() - 1);
}

}  // namespace
}  // namespace samples_test
