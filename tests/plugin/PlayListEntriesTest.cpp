#include <cstdint>
#include <vector>

#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

constexpr const char *kGetPlaySong = "GetPlaySong(playlist As Integer, index As Integer) As Boolean";
constexpr const char *kSetPlaySong = "SetPlaySong(playlist As Integer, index As Integer, play As Boolean)";
constexpr const char *kGetFlags = "GetFlags(playlist As Integer, index As Integer) As Integer";
constexpr const char *kSetFlags = "SetFlags(playlist As Integer, index As Integer, flags As Integer)";

class PlayListEntries : public PluginTestOfEachVariant {
 protected:
  PlayListEntries() {
    const auto song = [](uint32_t id, const std::u16string &artist, const std::u16string &album) {
      samples::Track track;
      track.id = id;
      if (!artist.empty()) track.objects.push_back(samples::TextObject(4, artist));
      if (!album.empty()) track.objects.push_back(samples::TextObject(3, album));
      return track;
    };
    object_ = Loaded(Bytes(
        {song(10, u"A", u"One"), song(20, u"B", u"One"), song(30, u"A", u"One"), song(40, u"", u""),
         song(50, u"", u"")},
        {{.name = u"First", .entries = {{.ref = 10}, {.ref = 20, .ply = 1}, {.ref = 30, .ply = 0xffffffff}}},
         {.name = u"Second", .entries = {{.ref = 20, .ply = 1}, {.ref = 40}, {.ref = 50}}}}));
  }

  int32_t Plays(int32_t playlist, int32_t index) {
    return Host().Call<int32_t>(object_, kGetPlaySong, playlist, index);
  }
  void SetPlays(int32_t playlist, int32_t index, int32_t play) {
    Host().Call<void>(object_, kSetPlaySong, playlist, index, play);
  }
  int32_t Flags(int32_t playlist, int32_t index) {
    return Host().Call<int32_t>(object_, kGetFlags, playlist, index);
  }
  void SetFlags(int32_t playlist, int32_t index, int32_t flags) {
    Host().Call<void>(object_, kSetFlags, playlist, index, flags);
  }
  int32_t Compare(const char *what, int32_t a, int32_t b) {
    return Host().Call<int32_t>(
        object_, "Compare" + std::string(what) + "(IndexA As Integer, IndexB As Integer) As Boolean", a, b);
  }
  int32_t CompareInPlaylist(const char *what, int32_t playlist, int32_t a, int32_t b) {
    return Host().Call<int32_t>(object_,
                                "ComparePlaylist" + std::string(what) +
                                    "(playlist As Integer, IndexA As Integer, IndexB As Integer) As Boolean",
                                playlist, a, b);
  }

  REALobject object_ = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Plugin, PlayListEntries, BothVariants(), VariantName);

TEST_P(PlayListEntries, OnePlaysWhenItsPlayWordIsZero) {
  EXPECT_EQ(Plays(0, 0), 1);
  EXPECT_EQ(Plays(0, 1), 0);
  EXPECT_EQ(Plays(0, 2), 0);
}

TEST_P(PlayListEntries, OneThatDoesNotExistPlays) {
  EXPECT_EQ(Plays(0, 3), 1);
  EXPECT_EQ(Plays(0, -1), 1);
  EXPECT_EQ(Plays(2, 0), 1);
  EXPECT_EQ(Plays(-1, 0), 1);
}

TEST_P(PlayListEntries, SetPlaySongTurnsOneOffAndOn) {
  SetFlags(0, 0, 3);
  SetPlays(0, 0, 0);
  EXPECT_EQ(Plays(0, 0), 0);
  EXPECT_EQ(Flags(0, 0), 3);
  SetPlays(0, 0, 1);
  EXPECT_EQ(Plays(0, 0), 1);
  EXPECT_EQ(Flags(0, 0), 3);
  EXPECT_EQ(Plays(0, 1), 0) << "the other entry";
}

TEST_P(PlayListEntries, SetPlaySongStoresTheTopBitOfItsNegationForAnyOtherBoolean) {
  // Stored is the top bit of -(value XOR 1); an entry plays when that is 0.
  const std::vector<std::pair<int32_t, int32_t>> table = {{1, 1},         {0, 0},
                                                          {2, 0},         {3, 0},
                                                          {-1, 1},        {-2, 1},
                                                          {-3, 1},        {256, 0},
                                                          {INT32_MAX, 0}, {INT32_MAX - 1, 0},
                                                          {INT32_MIN, 1}, {INT32_MIN + 1, 0}};
  for (const auto &[value, plays] : table) {
    SetPlays(0, 0, value);
    EXPECT_EQ(Plays(0, 0), plays) << value;
  }
}

TEST_P(PlayListEntries, FlagsAreAFreeWord) {
  EXPECT_EQ(Flags(0, 0), 0);
  for (const int32_t flags : {-1, 1, 0x1234, INT32_MIN, INT32_MAX, 0}) {
    SetFlags(0, 1, flags);
    EXPECT_EQ(Flags(0, 1), flags);
    EXPECT_EQ(Plays(0, 1), 0);
    EXPECT_EQ(Flags(0, 0), 0);
  }
}

TEST_P(PlayListEntries, SettersOutOfRangeChangeNothing) {
  for (const auto &[playlist, index] : std::vector<std::pair<int32_t, int32_t>>{{-1, 0},
                                                                                {2, 0},
                                                                                {0, -1},
                                                                                {0, 3},
                                                                                {INT32_MAX, 0},
                                                                                {INT32_MIN, 0},
                                                                                {0, INT32_MAX},
                                                                                {0, INT32_MIN}}) {
    SetPlays(playlist, index, 0);
    SetFlags(playlist, index, -1);
    EXPECT_EQ(Flags(playlist, index), 0);
  }
  EXPECT_EQ(Plays(0, 0), 1);
  EXPECT_EQ(Plays(1, 1), 1);
  for (int32_t index = 0; index < 3; ++index) {
    EXPECT_EQ(Flags(0, index), 0);
    EXPECT_EQ(Flags(1, index), 0);
  }
}

TEST_P(PlayListEntries, AreNumberedFromTheSecondPlaylistWithZerobasePlayerlist) {
  Host().Set<int32_t>(object_, "ZerobasePlayerlist", 1);
  EXPECT_EQ(Plays(0, 0), 0) << "the second playlist";
  EXPECT_EQ(Plays(-1, 0), 1) << "the first one";
  EXPECT_EQ(Plays(-1, 1), 0);
  SetFlags(-1, 2, 9);
  Host().Set<int32_t>(object_, "ZerobasePlayerlist", 0);
  EXPECT_EQ(Flags(0, 2), 9);
}

TEST_P(PlayListEntries, GetIndexFollowsZerobasePlayerlistOfAnyObject) {
  constexpr const char *kGetIndex = "GetIndex(playlist As Integer, Index As Integer) As Integer";
  EXPECT_EQ(Host().Call<int32_t>(object_, kGetIndex, 0, 1), 1);
  Host().Set<int32_t>(Host().New(), "ZerobasePlayerlist", 1);
  EXPECT_EQ(Host().Call<int32_t>(object_, kGetIndex, 0, 1), 3);
  EXPECT_EQ(Host().Call<int32_t>(object_, kGetIndex, -1, 1), 1);
}

TEST_P(PlayListEntries, SongComparesWithItself) {
  for (const char *what : {"Artist", "Album", "Genre", "Composer"}) {
    for (int32_t index = 0; index < 5; ++index) EXPECT_EQ(Compare(what, index, index), 1) << what;
    for (const int32_t index : {-1, 5, INT32_MAX, INT32_MIN}) {
      EXPECT_EQ(Compare(what, index, index), 0) << what << index;
      EXPECT_EQ(Compare(what, 0, index), 0);
      EXPECT_EQ(Compare(what, index, 0), 0);
    }
  }
}

TEST_P(PlayListEntries, AlbumsCompareWithTheirArtists) {
  EXPECT_EQ(Compare("Artist", 0, 2), 1);
  EXPECT_EQ(Compare("Artist", 0, 1), 0);
  EXPECT_EQ(Compare("Album", 0, 2), 1);
  EXPECT_EQ(Compare("Album", 0, 1), 0) << "one name, two artists";
  EXPECT_EQ(Compare("Artist", 3, 4), 1) << "both have none";
  EXPECT_EQ(Compare("Album", 3, 4), 1);
}

TEST_P(PlayListEntries, ComparePlaylistTakesPositions) {
  EXPECT_EQ(CompareInPlaylist("Artist", 0, 0, 2), 1);
  EXPECT_EQ(CompareInPlaylist("Artist", 0, 0, 1), 0);
  EXPECT_EQ(CompareInPlaylist("Artist", 1, 1, 2), 1) << "songs 3 and 4";
  EXPECT_EQ(CompareInPlaylist("Artist", 1, 0, 1), 0) << "songs 1 and 3";
  EXPECT_EQ(CompareInPlaylist("Album", 0, 0, 2), 1);
  EXPECT_EQ(CompareInPlaylist("Album", 0, 0, 1), 0);
}

TEST_P(PlayListEntries, ComparePlaylistTakesTheFirstSongForAnInvalidPosition) {
  EXPECT_EQ(CompareInPlaylist("Artist", 0, 2, 99), 1) << "song 2 and song 0";
  EXPECT_EQ(CompareInPlaylist("Artist", 0, 99, 2), 1);
  EXPECT_EQ(CompareInPlaylist("Artist", 0, -1, 1), 0) << "song 0 and song 1";
  EXPECT_EQ(CompareInPlaylist("Artist", 7, 1, 2), 1) << "song 0 with itself";
  EXPECT_EQ(CompareInPlaylist("Artist", INT32_MAX, 1, 2), 1);
}

TEST_P(PlayListEntries, ComparePlaylistWithANegativePlaylistTakesLibraryIndexes) {
  EXPECT_EQ(CompareInPlaylist("Artist", -1, 3, 4), 1);
  EXPECT_EQ(CompareInPlaylist("Artist", -5, 0, 1), 0);
  EXPECT_EQ(CompareInPlaylist("Artist", -1, 0, 99), 0) << "out of range, not song 0";
}

TEST_P(PlayListEntries, ComparePlaylistLooksAtTheSignBeforeZerobasePlayerlistShiftsIt) {
  Host().Set<int32_t>(object_, "ZerobasePlayerlist", 1);
  EXPECT_EQ(CompareInPlaylist("Artist", -1, 3, 4), 1) << "library songs";
  EXPECT_EQ(CompareInPlaylist("Artist", -1, 0, 99), 0);
  EXPECT_EQ(CompareInPlaylist("Artist", 0, 1, 2), 1) << "positions of the second playlist";
  EXPECT_EQ(Plays(-1, 1), 0) << "the first playlist";
}

TEST_P(PlayListEntries, PlaylistFormsOfTextsTakeTheFirstSongForAnInvalidPosition) {
  for (const auto &[playlist, index] :
       std::vector<std::pair<int32_t, int32_t>>{{0, 3}, {0, -1}, {9, 0}, {-1, 0}}) {
    EXPECT_EQ(Host().CallText(object_, "GetArtist(playlist As Integer, index As Integer) As String", playlist,
                              index),
              Text("A"));
    EXPECT_NE(
        Host().Call<int32_t>(object_, "GetArtistEncode(playlist As Integer, index As Integer) As Integer",
                             playlist, index),
        0);
    EXPECT_EQ(Host().Call<int32_t>(object_, "GetYear(playlist As Integer, index As Integer) As Integer",
                                   playlist, index),
              0)
        << "numbers do not";
  }
}

}  // namespace
}  // namespace plugin_test
