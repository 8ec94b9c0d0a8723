#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "zemhost/check/SongComparison.h"

namespace zemhost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A song as the class answers it, with what the file's header holds.
Song songOfBoth() {
  Song song;
  song.title = "Late Train";
  song.artist = "Idris Calloway";
  song.path = ":Music:\u97F3.mp3";
  song.year = 1998;
  song.facts.year = 1998;
  return song;
}

TEST(SongDifferences, NoneWhereBothReadersAgree) {
  EXPECT_THAT(songDifferences(songOfBoth(), ":a.mp3", {{1, "Late Train"}, {2, ":a.mp3"}}, false), IsEmpty());
}

TEST(SongDifferences, NameEachNumberAndTextThatDiffers) {
  Song song = songOfBoth();
  song.year = 1999;
  EXPECT_THAT(
      songDifferences(song, "", {{4, "Idris"}}, false),
      ElementsAre("the class answers 1999 as the year, and the file holds 1998",
                  "the class answers \"Idris Calloway\" as the artist, and the file holds \"Idris\""));
}

TEST(SongDifferences, PathIsTheOneThatTheClassAnswers) {
  EXPECT_THAT(songDifferences(songOfBoth(), ":Music:.mp3", {{2, ":Music:\u97F3.mp3"}}, false),
              ElementsAre("the class answers \":Music:.mp3\" as the path, and the file holds "
                          "\":Music:\u97F3.mp3\""));
}

TEST(SongDifferences, TextsThatTheFileHoldsTwiceAreNotCompared) {
  EXPECT_THAT(songDifferences(songOfBoth(), "", {{1, "Early"}, {1, "Late"}}, false), IsEmpty());
}

TEST(SongDifferences, DesktopLibrariesNumberTextsOtherwise) {
  EXPECT_THAT(songDifferences(songOfBoth(), "", {{2, "Late Train"}, {1, ":a.mp3"}}, true), IsEmpty());
}

}  // namespace
}  // namespace zemhost
