#include <climits>
#include <gtest/gtest.h>
#include <string>

#include "db/CiTunesDB.h"
#include "samples/GeneratedLibrary.h"

namespace db_test {
namespace {

using namespace std::string_literals;

constexpr int32_t kIdx = 0;
constexpr int32_t kText = 1;
constexpr int32_t kCode = 2;

class CompareSongs : public testing::Test {
 protected:
  CompareSongs() {
    database_.songs.push_back(CSongList());
    database_.songs.push_back(CSongList());
  }
  CSongList &A() { return database_.songs[0]; }
  CSongList &B() { return database_.songs[1]; }
  [[nodiscard]] bool Same(int32_t num, int32_t mode = kText) const {
    const bool same = database_.CompareSongsObjects(num, 0, 1, mode);
    EXPECT_EQ(database_.CompareSongsObjects(num, 1, 0, mode), same) << "the order of the songs matters";
    return same;
  }

  CiTunesDB database_;
};

constexpr std::pair<int32_t, songInfo CSongList::*> kSingle[] = {
    {4, &CSongList::artist}, {5, &CSongList::genre}, {6, &CSongList::filetype}, {12, &CSongList::composer}};

TEST_F(CompareSongs, EachObjectIsComparedByItsOwnText) {
  for (const auto &[num, field] : kSingle) {
    (A().*field).obj = "x";
    EXPECT_FALSE(Same(num)) << num;
    (B().*field).obj = "x";
    EXPECT_TRUE(Same(num)) << num;
    (B().*field).obj = "y";
    EXPECT_FALSE(Same(num)) << num;
    (B().*field).obj = "x";
  }
}

TEST_F(CompareSongs, EachModeLooksAtItsOwnPart) {
  for (const auto &[num, field] : kSingle) {
    A().*field = {1, 2, "text"};
    B().*field = {1, 3, "other"};
    EXPECT_TRUE(Same(num, kIdx)) << num;
    EXPECT_FALSE(Same(num, kText));
    EXPECT_FALSE(Same(num, kCode));
    B().*field = {9, 2, "other"};
    EXPECT_FALSE(Same(num, kIdx));
    EXPECT_TRUE(Same(num, kCode));
    B().*field = {9, 9, "text"};
    EXPECT_TRUE(Same(num, kText));
    EXPECT_FALSE(Same(num, kCode));
  }
}

TEST_F(CompareSongs, WordsAreComparedWhole) {
  A().artist = {INT_MIN, 0x80000000, ""};
  B().artist = {0, 0, ""};
  EXPECT_FALSE(Same(4, kIdx));
  EXPECT_FALSE(Same(4, kCode));
}

TEST_F(CompareSongs, AlbumNeedsTheSameArtistInEveryMode) {
  A().album = {1, 1, "album"};
  B().album = {1, 1, "album"};
  A().artist = {2, 2, "one"};
  B().artist = {2, 2, "one"};
  for (const int32_t mode : {kIdx, kText, kCode}) EXPECT_TRUE(Same(3, mode));
  B().artist = {3, 3, "two"};
  for (const int32_t mode : {kIdx, kText, kCode}) EXPECT_FALSE(Same(3, mode));
  B().artist = {2, 2, "one"};
  B().album = {3, 3, "other"};
  for (const int32_t mode : {kIdx, kText, kCode}) EXPECT_FALSE(Same(3, mode));
}

TEST_F(CompareSongs, TwoSongsWithoutAnArtistHaveTheSameOne) {
  EXPECT_TRUE(Same(4));
  EXPECT_TRUE(Same(3));
}

TEST_F(CompareSongs, TitlePathAndEveryOtherNumberAreNotComparable) {
  for (int32_t num = -200; num <= 200; ++num) {
    const bool comparable = (num >= 3 && num <= 6) || num == 12;
    EXPECT_EQ(database_.CompareSongsObjects(num, 0, 0, kText), comparable) << num;
  }
  for (const int32_t num : {INT_MIN, INT_MAX}) EXPECT_FALSE(database_.CompareSongsObjects(num, 0, 0, kText));
}

TEST_F(CompareSongs, AnyOtherModeIsFalse) {
  for (const int32_t mode : {-1, 3, 4, INT_MAX, INT_MIN}) {
    for (const int32_t num : {3, 4, 5, 6, 12}) {
      EXPECT_FALSE(database_.CompareSongsObjects(num, 0, 0, mode)) << mode;
    }
  }
}

TEST_F(CompareSongs, InvalidIndexIsFalse) {
  for (const int32_t index : {-1, 2, INT_MAX, INT_MIN}) {
    for (const int32_t mode : {kIdx, kText, kCode}) {
      EXPECT_FALSE(database_.CompareSongsObjects(4, index, 0, mode));
      EXPECT_FALSE(database_.CompareSongsObjects(4, 0, index, mode));
      EXPECT_FALSE(database_.CompareSongsObjects(4, index, index, mode));
    }
  }
}

TEST_F(CompareSongs, SongEqualsItself) {
  A().artist = {3, 4, "a\0b"s};
  for (const int32_t num : {3, 4, 5, 6, 12}) {
    for (const int32_t mode : {kIdx, kText, kCode}) {
      EXPECT_TRUE(database_.CompareSongsObjects(num, 0, 0, mode));
    }
  }
}

TEST_F(CompareSongs, TextThatBeginsWithTheOtherIsDifferent) {
  A().artist.obj = "abc";
  B().artist.obj = "abcd";
  EXPECT_FALSE(Same(4));
  B().artist.obj = "abc\0"s;
  EXPECT_FALSE(Same(4));
  B().artist.obj = "";
  EXPECT_FALSE(Same(4));
}

TEST_F(CompareSongs, LetterCaseSpacesAndArticlesCount) {
  A().artist.obj = "The Band";
  for (const char *other : {"the Band", "Band", "The Band ", " The Band", "The  Band"}) {
    B().artist.obj = other;
    EXPECT_FALSE(Same(4)) << other;
  }
}

TEST_F(CompareSongs, CodesOfTheTextsDoNotCount) {
  A().artist = {4, 1, "\0a"s};
  B().artist = {4, 16777216, "\0a"s};
  EXPECT_TRUE(Same(4));
}

TEST_F(CompareSongs, BytesAreComparedToTheLast) {
  samples::Random random(21);
  for (int round = 0; round < 2000; ++round) {
    std::string a(random.Below(6), '\0');
    std::string b(random.OneIn(2) ? a.size() : random.Below(6), '\0');
    for (char &byte : a) byte = static_cast<char>(random.Below(2) * 0xff);
    for (char &byte : b) byte = static_cast<char>(random.Below(2) * 0xff);
    A().genre.obj = a;
    B().genre.obj = b;
    ASSERT_EQ(Same(5), a == b);
  }
}

}  // namespace
}  // namespace db_test
