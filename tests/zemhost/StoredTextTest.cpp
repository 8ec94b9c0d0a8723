#include <gtest/gtest.h>
#include <string>

#include "zemhost/library/StoredText.h"

namespace zemhost {
namespace {

using namespace std::string_literals;

constexpr int32_t kPlayer = 1;
constexpr int32_t kDesktop = 0;
constexpr uint32_t kPlayerUtf16 = 16777216;

std::string record(uint32_t word, std::string_view text, bool bigEndian = true) {
  std::string bytes;
  for (const uint32_t value : {word, static_cast<uint32_t>(text.size()), 0U, 0U}) {
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> (bigEndian ? 24 - 8 * i : 8 * i));
  }
  return bytes.append(text);
}

TEST(SongText, Utf16IsConverted) {
  EXPECT_EQ(songText("\x00\x4A\x97\xF3"s, kPlayerUtf16, kPlayer), "J\u97F3");
  EXPECT_EQ(songText("\x00\x4A\x97\xF3"s, 1, kDesktop), "J\u97F3");
  EXPECT_EQ(songText("\xD8\x3C\xDF\xB5"s, 1, kDesktop), "\U0001F3B5");
}

TEST(SongText, EightBitRecordIsMacRoman) {
  EXPECT_EQ(songText(record(0, "Bela Bart\x97k"), 0, kDesktop), "Bela Bart\u00F3k");
  EXPECT_EQ(songText(record(3, "Bela Bart\x97k"), 0, kDesktop), "Bela Bart\u00F3k");
}

TEST(SongText, EightBitRecordIsUtf8WhereItsWordSaysSo) {
  EXPECT_EQ(songText(record(2, "Bart\u00F3k"), 0, kDesktop), "Bart\u00F3k");
  EXPECT_EQ(songText(record(2, "Bart\x97k"), 0, kDesktop), "Bart\uFFFDk");
}

TEST(SongText, RecordOfALittleEndianFileHasLittleEndianWords) {
  EXPECT_EQ(songText(record(3, "Jazz", false), 0, kPlayer), "Jazz");
  EXPECT_EQ(songText(record(2, "Bart\u00F3k", false), 0, kPlayer), "Bart\u00F3k");
}

TEST(SongText, RecordEndsWhereItsLengthSays) {
  EXPECT_EQ(songText(record(0, "Jazz") + "\0padding"s, 0, kDesktop), "Jazz");
  EXPECT_EQ(songText(record(0, "Jazz").substr(0, 18), 0, kDesktop), "Ja");
  EXPECT_EQ(songText(record(0, ""), 0, kDesktop), "");
}

TEST(SongText, BodyShorterThanARecordIsShownByte) { EXPECT_EQ(songText("Jazz", 0, kDesktop), "Jazz"); }

TEST(SongText, MissingTextIsEmpty) {
  EXPECT_EQ(songText("", 0, kDesktop), "");
  EXPECT_EQ(songText("", kPlayerUtf16, kPlayer), "");
}

TEST(SongText, BrokenUtf16IsReplacedNotDropped) {
  EXPECT_EQ(songText("\xD8\x3C\x00\x41"s, kPlayerUtf16, kPlayer), "\uFFFDA");
  EXPECT_EQ(songText("\x00\x41\x00"s, kPlayerUtf16, kPlayer), "A\uFFFD");
}

TEST(PlaylistName, Utf16IsConverted) {
  EXPECT_EQ(playlistNameText("\x97\xF3"s, 1, kDesktop), "\u97F3");
  EXPECT_EQ(playlistNameText("\x97\xF3"s, kPlayerUtf16, kPlayer), "\u97F3");
}

TEST(PlaylistName, EightBitNameIsTheBytesAlone) {
  EXPECT_EQ(playlistNameText("Bart\x97k", 0, kDesktop), "Bart\u00F3k");
  EXPECT_EQ(playlistNameText("Bart\u00F3k", 2, kDesktop), "Bart\u00F3k");
}

TEST(PlaylistName, GuessedNameComesEitherAsUtf16OrAsBytes) {
  EXPECT_EQ(playlistNameText("\0M\0i\0m\0i"s, 3, kDesktop), "Mimi");
  EXPECT_EQ(playlistNameText("Bart\x97k", 3, kDesktop), "Bart\u00F3k");
}

TEST(PlaylistName, EightBitNameOfALittleEndianFileHasItsSwappedPairsPutStraight) {
  EXPECT_EQ(playlistNameText("aJzz", 0x02000000, kPlayer), "Jazz");
  EXPECT_EQ(playlistNameText("aJzz", 0, kPlayer), "Jazz");
}

TEST(Path, PlayerPathIsOneBytePerCharacter) {
  EXPECT_EQ(pathText(":iPod_Control:Music:F00:caf\xE9.mp3", kPlayer),
            ":iPod_Control:Music:F00:caf\u00E9.mp3");
}

TEST(Path, DesktopPathIsMacRoman) { EXPECT_EQ(pathText("Disk:Bart\x97k", kDesktop), "Disk:Bart\u00F3k"); }

TEST(OtherText, IsUtf16OrARecordOfBytes) {
  using namespace std::string_literals;
  EXPECT_EQ(otherText("\0a\x30\x42"s), "a\u3042");
  EXPECT_EQ(otherText("\2\0\0\0\3\0\0\0\0\0\0\0\0\0\0\0\xE3\x81\x82"s), "\u3042");
  EXPECT_EQ(otherText("\0\0\0\0\2\0\0\0\0\0\0\0\0\0\0\0o\x8E"s), "o\u00E9");
  EXPECT_EQ(otherText(""), "");
}

TEST(OtherText, BytesThatAreNoTextComeAsDigits) {
  using namespace std::string_literals;
  EXPECT_EQ(otherText("\0a\x30"s), "0x006130");        // an odd byte
  EXPECT_EQ(otherText("\xDF\x19\0a"s), "0xDF190061");  // half a pair
  EXPECT_EQ(otherText("\0\1\0\0"s), "0x00010000");     // control characters
}

TEST(AddressText, IsPlainBytesOrAnyOtherText) {
  using namespace std::string_literals;
  EXPECT_EQ(addressText("http://a.example/\xE3\x81\x82"), "http://a.example/\u3042");
  EXPECT_EQ(addressText("\0h\0t"s), "ht");
  EXPECT_EQ(addressText("\xFF\xFE\xFD"s), "0xFFFEFD");
}

}  // namespace
}  // namespace zemhost
