#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "host/Error.h"
#include "zemhost/rescue/NamePattern.h"
#include "zemhost/rescue/Progress.h"

namespace zemhost {
namespace {

using testing::ElementsAre;

Song exampleSong() {
  Song song;
  song.title = "Salt on the Rail";
  song.artist = "Mira Solvang";
  song.album = "Northern Ferries";
  song.genre = "Folk";
  song.track = 2;
  song.trackTotal = 9;
  song.year = 2003;
  return song;
}

std::string refusal(const std::string &pattern) {
  try {
    const NamePattern read(pattern);
  } catch (const HostError &error) {
    return error.what();
  }
  return "";
}

TEST(NamePattern, UsualOneGivesArtistAlbumAndNumberedTitle) {
  EXPECT_THAT(NamePattern(kUsualPattern).names(exampleSong()),
              ElementsAre("Mira Solvang", "Northern Ferries", "02 Salt on the Rail"));
}

TEST(NamePattern, EveryFieldHasItsValue) {
  EXPECT_THAT(
      NamePattern("{title}-{artist}-{album}-{genre}-{composer}-{track}-{tracks}-{year}").names(exampleSong()),
      ElementsAre("Salt on the Rail-Mira Solvang-Northern Ferries-Folk-Unknown Composer-2-9-2003"));
}

TEST(NamePattern, NumbersTakeTheirWidth) {
  EXPECT_THAT(NamePattern("x{track:3}x{track:04}x{year:02}x{{{track}}}").names(exampleSong()),
              ElementsAre("x  2x0002x2003x{2}"));
}

TEST(NamePattern, EmptyTextsAreUnknownAndEmptyNumbersNothing) {
  EXPECT_THAT(NamePattern(kUsualPattern).names(Song()),
              ElementsAre("Unknown Artist", "Unknown Album", "Unknown Title"));
  EXPECT_THAT(NamePattern("{genre}/{year}/{track:02}").names(Song()),
              ElementsAre("Unknown Genre", "Unknown", "Unknown"));
}

TEST(NamePattern, SlashesOfTextsMakeNoFolders) {
  Song song = exampleSong();
  song.artist = "../AC/DC";
  EXPECT_THAT(NamePattern("{artist}/{title}").names(song), ElementsAre("_._AC_DC", "Salt on the Rail"));
}

TEST(NamePattern, UnknownFieldIsNamedWithTheKnownOnes) {
  EXPECT_EQ(
      refusal("{artist}/{disc}"),
      "the pattern \"{artist}/{disc}\": there is no field {disc}; the fields are {title}, {artist}, {album}, "
      "{genre}, {composer}, {track}, {tracks}, {year}");
}

TEST(NamePattern, FaultsAreNamed) {
  EXPECT_EQ(refusal("{title"), "the pattern \"{title\": there is a '{' without a '}' after it");
  EXPECT_EQ(refusal("title}"), "the pattern \"title}\": there is a '}' without a '{' before it");
  for (const char *empty : {"", "/{title}", "{title}/", "a//{title}"}) {
    EXPECT_THAT(refusal(empty), testing::EndsWith("a part between slashes is empty")) << empty;
  }
  EXPECT_THAT(refusal("../{title}"), testing::EndsWith("a part between slashes is \"..\""));
  EXPECT_THAT(refusal("{track:x}"), testing::EndsWith("x is not a width from 1 to 20"));
  EXPECT_THAT(refusal("{track:021}"), testing::EndsWith("021 is not a width from 1 to 20"));
  EXPECT_THAT(refusal("{track:}"), testing::EndsWith(" is not a width from 1 to 20"));
  EXPECT_THAT(refusal("{title:02}"), testing::EndsWith("only numbers have a width, and {title} is a text"));
}

TEST(ProgressLine, TellsPartSongsRateAndTimeLeft) {
  EXPECT_EQ(progressLine(540, 1200, 2'400'000'000, 4'800'000'000, 200, 80),
            "[##########..........] 50 %  540 of 1200 songs  12.0 MB/s  3:20 left");
  EXPECT_EQ(progressLine(0, 5, 0, 1000, 10, 80), "[....................] 0 %  0 of 5 songs");
  EXPECT_EQ(progressLine(1, 5, 500, 1000, 0.1, 80), "[##########..........] 50 %  1 of 5 songs");
  EXPECT_EQ(progressLine(0, 0, 0, 0, 1, 80), "[####################] 100 %  0 of 0 songs");
}

TEST(ProgressLine, FitsTheTerminal) {
  EXPECT_EQ(progressLine(540, 1200, 2'400'000'000, 4'800'000'000, 200, 30), "[##########..........] 50 %  …");
}

}  // namespace
}  // namespace zemhost
