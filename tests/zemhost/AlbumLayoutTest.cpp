// Which songs are one album: by album artists, marks, and numbers that fit together.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "zemhost/rescue/AlbumLayout.h"

namespace zemhost {
namespace {

using testing::Each;
using testing::ElementsAre;

using Songs = std::vector<AlbumSong>;

AlbumSong songOf(const std::string &artist, uint32_t track = 0, uint32_t total = 0, uint32_t year = 0) {
  AlbumSong song;
  song.album = "Album";
  song.artist = artist;
  song.track = track;
  song.trackTotal = total;
  song.year = year;
  return song;
}

AlbumSong onDisc(uint32_t disc, uint32_t discs) {
  AlbumSong song = songOf("A", 1);
  song.disc = disc;
  song.discs = discs;
  return song;
}

Songs by(const std::string &albumArtist, Songs songs) {
  for (AlbumSong &song : songs) song.albumArtist = albumArtist;
  return songs;
}

Songs marked(Songs songs) {
  for (AlbumSong &song : songs) song.compilation = true;
  return songs;
}

std::vector<std::string> artistsOf(const Songs &songs) {
  const AlbumLayout layout(songs);
  std::vector<std::string> artists;
  for (size_t song = 0; song < songs.size(); ++song) artists.push_back(layout.artistOf(song));
  return artists;
}

std::vector<std::string> discsOf(const Songs &songs) {
  const AlbumLayout layout(songs);
  std::vector<std::string> discs;
  for (size_t song = 0; song < songs.size(); ++song) discs.push_back(layout.discOf(song));
  return discs;
}

TEST(AlbumLayout, AlbumArtistGathersSongsOfSeveralArtists) {
  EXPECT_THAT(artistsOf(by("Slash", {songOf("Slash feat. Ian"), songOf("Myles"), songOf("")})),
              Each("Slash"));
}

TEST(AlbumLayout, ArtistStandsForAnAlbumArtistThatIsNotStated) {
  EXPECT_THAT(artistsOf({songOf("A"), songOf("")}), ElementsAre("A", ""));
  Songs songs = by("A", {songOf("A"), songOf("B")});
  songs.push_back(songOf("a"));
  EXPECT_THAT(artistsOf(songs), Each("A"));
}

TEST(AlbumLayout, MarkedSongsAreACompilation) {
  EXPECT_THAT(artistsOf(marked({songOf("A"), songOf("B"), songOf("B")})), Each("Compilations"));
  EXPECT_THAT(artistsOf(marked({songOf("A")})), Each("Compilations"));
  EXPECT_THAT(artistsOf(marked(by("Studio", {songOf("A"), songOf("B")}))), Each("Compilations"));
}

TEST(AlbumLayout, MarkedAlbumOfTheOneArtistItIsCreditedToIsTheArtists) {
  EXPECT_THAT(artistsOf(marked(by("A", {songOf("A"), songOf("A feat. B")}))), Each("A"));
}

TEST(AlbumLayout, VariousArtistsAreACompilationWithOrWithoutMark) {
  Songs songs = by("Various Artists", {songOf("A"), songOf("B"), songOf("C")});
  songs[1].compilation = true;
  songs[2].albumArtist = "";
  songs[2].compilation = true;
  EXPECT_THAT(artistsOf(songs), Each("Compilations"));
}

TEST(AlbumLayout, NumbersThatFitTogetherMakeOneAlbumOfSeveralArtists) {
  EXPECT_THAT(artistsOf({songOf("A", 1, 19, 2003), songOf("B", 7, 19, 2003)}), Each("Compilations"));
  EXPECT_THAT(artistsOf({songOf("A", 1, 19, 1999), songOf("B", 7, 19, 2003), songOf("C", 8, 19, 2001)}),
              Each("Compilations"));
}

TEST(AlbumLayout, AlbumsOfOneNameStayApartWhereTheirNumbersDoNotFit) {
  EXPECT_THAT(artistsOf({songOf("A", 1, 19), songOf("B", 1, 19)}), ElementsAre("A", "B"));
  EXPECT_THAT(artistsOf({songOf("A", 1, 19), songOf("B", 2, 18)}), ElementsAre("A", "B"));
  EXPECT_THAT(artistsOf({songOf("A", 1), songOf("B", 2)}), ElementsAre("A", "B"));
  EXPECT_THAT(artistsOf({songOf("A", 0, 19), songOf("B", 2, 19)}), ElementsAre("A", "B"));
  EXPECT_THAT(artistsOf({songOf("A", 1, 19, 1999), songOf("B", 7, 19, 2003)}), ElementsAre("A", "B"));
}

TEST(AlbumLayout, GuestsDoNotMakeAnotherAlbum) {
  for (const char *other : {"Mira feat. Jon", "mira FT. Jon", "Mira Featuring Jon", "Mira (feat. Jon)",
                            "Mira & Jon", "Mira, Jon", "Mira with Jon", "Mira / Jon"})
    EXPECT_THAT(artistsOf({songOf("Mira", 1, 9), songOf(other, 2, 9)}), Each("Mira")) << other;
  EXPECT_THAT(artistsOf({songOf("Mira feat. Jon"), songOf("Mira feat. Ann")}), Each("Mira"));
  EXPECT_THAT(artistsOf({songOf("Mira"), songOf("Miranda")}), ElementsAre("Mira", "Miranda"));
  EXPECT_THAT(artistsOf({songOf(" feat. Jon")}), ElementsAre(" feat. Jon"));
}

TEST(AlbumLayout, NamesThatDifferInCaseCompositionOrBlanksAreOne) {
  Songs songs = marked({songOf("A"), songOf("B"), songOf("C")});
  songs[0].album = "Caf\u00E9 ";
  songs[1].album = "cafe\u0301";
  songs[2].album = " CAF\u00C9";
  songs[1].disc = 2;
  EXPECT_THAT(artistsOf(songs), Each("Compilations"));
  songs[0].disc = 1;
  EXPECT_THAT(discsOf(songs), ElementsAre("1", "2", ""));
}

TEST(AlbumLayout, SongsWithoutAnAlbumGoByTheirArtists) {
  Songs songs = marked({songOf("A", 1, 2), songOf("B", 2, 2), songOf("B feat. C", 3, 3)});
  for (AlbumSong &song : songs) song.album = " ";
  songs[0].disc = 2;
  EXPECT_THAT(artistsOf(songs), ElementsAre("A", "B", "B feat. C"));
  EXPECT_THAT(discsOf(songs), Each(""));
}

TEST(AlbumLayout, DiscIsSaidWhereThereAreSeveral) {
  EXPECT_THAT(discsOf({onDisc(1, 1), onDisc(1, 0), onDisc(0, 0)}), Each(""));
  EXPECT_THAT(discsOf({onDisc(1, 2), onDisc(1, 0), onDisc(0, 0)}), ElementsAre("1", "1", ""));
  EXPECT_THAT(discsOf({onDisc(1, 0), onDisc(2, 0)}), ElementsAre("1", "2"));
}

TEST(AlbumLayout, DiscsSortAsTheirNumbersDo) {
  EXPECT_THAT(discsOf({onDisc(2, 0), onDisc(10, 0)}), ElementsAre("02", "10"));
  EXPECT_THAT(discsOf({onDisc(4'294'967'295, 0), onDisc(1, 0)}), ElementsAre("4294967295", "0000000001"));
}

}  // namespace
}  // namespace zemhost
