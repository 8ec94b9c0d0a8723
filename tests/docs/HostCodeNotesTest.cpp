// What the notes for host code say that its transcripts cannot show.

#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/Host.h"
#include "samples/DatabaseWriter.h"
#include "tests/support/Folders.h"
#include "tests/support/RealFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace docs_test {
namespace {

using zemhost::HostString;

class HostCodeNotes : public testing::Test {
 protected:
  HostCodeNotes() : library_(host_.make("ZemiTunesDB")) {
    if (!library_.call("Load", {file_}).boolean())
      throw std::runtime_error("the sample player cannot be loaded");
  }

  const zemhost::FolderItem file_ = zemhost::FolderItem::fromPath(support::SamplesFolder() / "player" /
                                                                  "iPod_Control" / "iTunes" / "iTunesDB");
  const zemhost::Host host_ = zemhost::Host::load({support::PluginFile(), 5.9, {}});
  const zemhost::Object library_;
};

constexpr uint32_t kMacRoman = 0;
constexpr uint32_t kMacKorean = 3;
constexpr uint32_t kUtf16 = 0x0100;
constexpr uint32_t kAscii = 0x0600;
constexpr uint32_t kShiftJis = 0x0A01;
constexpr uint32_t kUtf8 = 0x08000100;

TEST_F(HostCodeNotes, SetTextsComeBackFromUtf8ShiftJisAndUtf16Alone) {
  const auto comesBack = [&](std::string_view bytes, uint32_t encoding) {
    const HostString text = HostString::fromBytes(bytes, encoding);
    library_.call("SetTitle", {0, text});
    return library_.call("GetTitle", {0}).text() == text.text();
  };
  EXPECT_TRUE(comesBack("Caf\xC3\xA9", kUtf8));
  EXPECT_TRUE(comesBack("\x82\xA0", kShiftJis));
  EXPECT_TRUE(comesBack(std::string_view("\0C\0a\0f\0\xE9", 8), kUtf16));
  EXPECT_FALSE(comesBack("Cafe", kAscii));
  EXPECT_FALSE(comesBack("Caf\x8E", kMacRoman));
}

TEST_F(HostCodeNotes, SetTextOfMacKoreanComesBackWhenItIsPlainAscii) {
  library_.call("SetTitle", {0, HostString::fromBytes("Cafe", kMacKorean)});
  EXPECT_EQ(library_.call("GetTitle", {0}).text(), "Cafe");
  library_.call("SetTitle", {0, HostString::fromBytes("\xB0\xA1", kMacKorean)});
  EXPECT_NE(library_.call("GetTitle", {0}).text(), "\uAC00");
}

TEST_F(HostCodeNotes, UseSJISLeavesTextsThatWereSetInShiftJisOrUtf16) {
  library_.set("UseSJIS", true);
  library_.call("SetTitle", {0, HostString::fromBytes("\x82\xA0", kShiftJis)});
  EXPECT_EQ(library_.call("GetTitle", {0}).text(), "\u3042");
  library_.call("SetTitle", {0, HostString::fromBytes("\x30\x42", kUtf16)});
  EXPECT_EQ(library_.call("GetTitle", {0}).text(), "\u3042");
  library_.call("SetTitle", {0, HostString::fromBytes("\xE3\x81\x82", kUtf8)});
  EXPECT_NE(library_.call("GetTitle", {0}).text(), "\u3042");
}

TEST_F(HostCodeNotes, SetTextDiffersFromTheSameTextOfTheFile) {
  ASSERT_TRUE(library_.call("CompareArtist", {0, 1}).boolean());
  library_.call("SetArtist", {1, library_.call("GetArtist", {0})});
  EXPECT_EQ(library_.call("GetArtist", {1}).text(), library_.call("GetArtist", {0}).text());
  EXPECT_FALSE(library_.call("CompareArtist", {0, 1}).boolean());
}

// A player whose songs are what a test wants, and a playlist.
class HostCodeNotesOfAPlayer : public testing::Test {
 protected:
  zemhost::Object Loaded(std::vector<samples::Track> tracks, std::vector<samples::Playlist> playlists = {}) {
    const std::string file = samples::WriteLibrary(
        samples::OrdinaryLibrary(std::move(tracks), std::move(playlists)), samples::Variant::LittleEndian);
    const auto path = folder_.write("iPod_Control/iTunes/iTunesDB", file);
    folder_.makeDirectory("iPod_Control/Music");
    zemhost::mountVolume("Pod", folder_.path());
    zemhost::Object library = host_.make("ZemiTunesDB");
    if (!library.call("Load", {zemhost::FolderItem::fromPath(path)}).boolean())
      throw std::runtime_error("the database cannot be loaded");
    return library;
  }

  // A song with this path.
  static samples::Track At(const std::u16string &path) {
    return {.objects = samples::SongObjects(samples::Variant::LittleEndian, {.path = path})};
  }

  const support::TemporaryFolder folder_;
  const zemhost::Host host_ = zemhost::Host::load({support::PluginFile(), 5.9, {}});
};

TEST_F(HostCodeNotesOfAPlayer, EntryWithoutASongAnswersItsOwnIDMarkAndFlags) {
  samples::Track first{.id = 7, .year = 1999, .objects = {samples::TextObject(1, u"First")}};
  samples::Track ofIDZero{.id = 0, .moviefileflag = 1};
  const zemhost::Object library = Loaded(
      {first, ofIDZero}, {{.name = u"Library"}, {.name = u"List", .entries = {{.ref = 999, .ply = 1}}}});
  library.call("SetFlags", {1, 0, 5});
  EXPECT_EQ(library.call("GetTitle", {1, 0}).text(), "First");
  EXPECT_EQ(library.call("GetYear", {1, 0}).integer(), 1999);
  EXPECT_EQ(library.call("GetRefNum", {1, 0}).integer(), 999);
  EXPECT_FALSE(library.call("GetPlaySong", {1, 0}).boolean());
  EXPECT_EQ(library.call("GetFlags", {1, 0}).integer(), 5);
  EXPECT_TRUE(library.call("GetMovieFileFlag", {1, 0}).boolean()) << "the song with the ID 0";
}

TEST_F(HostCodeNotesOfAPlayer, FilmFlagOfNoEntryOrIDIsThatOfTheSongWithTheIDZero) {
  samples::Track film{.id = 7, .moviefileflag = 1};
  const zemhost::Object without = Loaded({film, {.id = 8}});
  EXPECT_TRUE(without.call("GetMovieFileFlag", {0, 99}).boolean()) << "song 0";
  EXPECT_TRUE(without.call("GetReferMovieFileFlag", {999}).boolean());
  const zemhost::Object with = Loaded({film, {.id = 0}});
  EXPECT_FALSE(with.call("GetMovieFileFlag", {0, 99}).boolean());
  EXPECT_FALSE(with.call("GetReferMovieFileFlag", {999}).boolean());
}

TEST_F(HostCodeNotesOfAPlayer, FolderItemIsNilWithoutItsFolderOrWithALongName) {
  const std::u16string music = u":iPod_Control:Music:";
  const zemhost::Object library =
      Loaded({At(music + std::u16string(63, u'a')), At(music + std::u16string(64, u'a')),
              At(u":iPod_Control:Elsewhere:a"), At(u"-is-no-volume:Music:a")});
  EXPECT_FALSE(library.call("GetFolderItem", {0}).isNil()) << "the file need not exist";
  EXPECT_FALSE(library.call("GetAbsolutePath2", {0}).isNil());
  for (int32_t song = 1; song < 4; ++song) {
    EXPECT_TRUE(library.call("GetFolderItem", {song}).isNil()) << song;
    EXPECT_TRUE(library.call("GetAbsolutePath2", {song}).isNil()) << song;
    EXPECT_FALSE(library.call("GetAbsolutePath", {song}).isNil()) << song;
  }
}

TEST_F(HostCodeNotesOfAPlayer, AccentsBecomeOneByteAndOtherCharactersVanish) {
  const zemhost::Object library = Loaded({At(u":\u00E9\u96E8a")});
  EXPECT_EQ(library.call("GetPath", {0}).text(), ":\uFFFDa");
  library.set("ResultEncode", static_cast<int32_t>(kAscii));
  EXPECT_EQ(library.call("GetPath", {0}).bytes(), ":\xE9\x61");
}

TEST_F(HostCodeNotesOfAPlayer, RatingAndCompilationStandInTheSameWord) {
  const zemhost::Object library = Loaded({{.res = {1, 2, 0x50010000, 4}}});
  EXPECT_EQ(library.call("GetProp", {0, 2}).integer() >> 24, 80);
  EXPECT_TRUE(library.call("GetCompilation", {0}).boolean());
}

TEST(HostCodeNotesOfRealFiles, DesktopLibrariesGiveNoPaths) {
  if (!support::HasRealFiles()) GTEST_SKIP() << "no collection of real files here";
  const zemhost::Host host = zemhost::Host::load({support::PluginFile(), 5.9, {}});
  int32_t songs = 0;
  for (const support::RealFile &file : support::RealFiles()) {
    if (file.libType != 0 || file.encrypted) continue;
    const zemhost::Object library = host.make("ZemiTunesDB");
    ASSERT_TRUE(library.call("Load", {zemhost::FolderItem::fromPath(PathOf(file))}).boolean()) << file.name;
    for (int32_t song = 0; song < library.call("CountSongs").integer(); ++song, ++songs)
      EXPECT_TRUE(library.call("GetPath", {song}).isNil()) << file.name;
  }
  EXPECT_EQ(songs, 8);
}

}  // namespace
}  // namespace docs_test
