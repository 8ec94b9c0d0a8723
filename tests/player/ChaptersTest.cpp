// The chapters of a song.

#include <gtest/gtest.h>
#include <string>

#include "player/Chapters.h"
#include "samples/SmartObjects.h"

namespace player {
namespace {

std::vector<Chapter> chaptersOf(const std::string &body) { return readChapters(chapterAtoms(body)); }

const std::vector<samples::ChapterMark> kMarks = {
    {0, u"Opening", {}}, {61000, u"Zw\u00f6lf \U0001D11E", "http://example.org/"}, {125000, {}, {}}};

TEST(ChaptersTest, StartsTitlesAndAddressesAreRead) {
  const auto chapters = chaptersOf(ChapterObject(kMarks).bytes);
  ASSERT_EQ(chapters.size(), 3U);
  EXPECT_EQ(chapters[0].start, 0U);  // stored as 1
  EXPECT_EQ(chapters[0].title, "Opening");
  EXPECT_EQ(chapters[1].start, 61000U);
  EXPECT_EQ(chapters[1].title, "Zw\u00f6lf \U0001D11E");
  EXPECT_EQ(chapters[1].url, "http://example.org/");
  EXPECT_EQ(chapters[2].title, "");
}

TEST(ChaptersTest, AtomsThatAreNotKnownArePassedOver) {
  const std::string body = ChapterObject(kMarks).bytes;
  const std::string other = std::string("\0\0\0\x18", 4) + "free" + std::string(16, '\0');
  EXPECT_EQ(chaptersOf(body.substr(0, 12) + other + body.substr(12)).size(), 3U);
}

TEST(ChaptersTest, BytesCutAnywhereGiveNoMoreThanTheyHold) {
  const std::string body = ChapterObject(kMarks).bytes;
  for (size_t size = 0; size < body.size(); ++size)
    EXPECT_TRUE(chaptersOf(body.substr(0, size)).empty()) << size;
}

TEST(ChaptersTest, AtomOfAnImpossibleSizeEndsThem) {
  std::string body = ChapterObject(kMarks).bytes;
  const size_t second = body.find("chap", body.find("chap") + 4) - 4;
  for (const char *const size : {"\0\0\0\x13", "\xff\xff\xff\xff", "\0\0\0\0"}) {
    body.replace(second, 4, size, 4);
    EXPECT_EQ(chaptersOf(body).size(), 1U);
  }
}

TEST(ChaptersTest, TitleOfMoreCharactersThanThereAreIsCut) {
  std::string body = ChapterObject(kMarks).bytes;
  const size_t name = body.find("name") + 16;
  body.replace(name, 2, "\xff\xff");
  EXPECT_EQ(chaptersOf(body).at(0).title, "Opening");
}

}  // namespace
}  // namespace player
