#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "db/ByteOrder.h"
#include "samples/GeneratedLibrary.h"

namespace db_test {
namespace {

using namespace std::string_literals;

std::string Removed(const std::string &text) {
  const ByteString bytes(text);
  return std::string(RemoveZeroFromAsciiUTF16(&bytes).View());
}

TEST(ByteOrder, WordIsTakenMostSignificantByteFirst) {
  constexpr std::array<uint8_t, 4> kBytes{0x12, 0x34, 0x56, 0x78};
  EXPECT_EQ(BigEndianWord(kBytes.data()), 0x12345678U);
  constexpr std::array<uint8_t, 4> kHigh{0xff, 0x80, 0, 1};
  EXPECT_EQ(BigEndianWord(kHigh.data()), 0xff800001U);
}

TEST(ByteOrder, Swap4ByteReversesTheBytesInMemory) {
  std::array<uint8_t, 4> bytes{0x12, 0x34, 0x56, 0x78};
  uint32_t word = 0;
  std::memcpy(&word, bytes.data(), 4);
  Swap4Byte(&word);
  std::memcpy(bytes.data(), &word, 4);
  EXPECT_EQ(bytes, (std::array<uint8_t, 4>{0x78, 0x56, 0x34, 0x12}));
}

TEST(ByteOrder, LittleEndianEncodingWordReadHighByteFirstSwapsTo1) {
  constexpr std::array<uint8_t, 4> kFile{1, 0, 0, 0};
  uint32_t word = BigEndianWord(kFile.data());
  EXPECT_EQ(word, 16777216U);
  Swap4Byte(&word);
  EXPECT_EQ(word, 1U);
}

TEST(ByteOrder, Swap4ByteTwiceChangesNothing) {
  for (const uint32_t value : {0U, 1U, 0x80000000U, 0xffffffffU, 0xdeadbeefU}) {
    uint32_t word = value;
    Swap4Byte(&word);
    Swap4Byte(&word);
    EXPECT_EQ(word, value);
  }
}

TEST(ByteOrder, Swap2ByteMWExchangesTheTwoBytes) {
  uint16_t word = 0x1234;
  Swap2ByteMW(&word);
  EXPECT_EQ(word, 0x3412);
  word = 0x00ff;
  Swap2ByteMW(&word);
  EXPECT_EQ(word, 0xff00);
}

TEST(ByteOrder, Swap2ByteStringExchangesEachPair) {
  std::array<uint8_t, 5> bytes{0x61, 0x00, 0x62, 0x00, 0x99};
  Swap2ByteString(bytes.data(), 4);
  EXPECT_EQ(bytes, (std::array<uint8_t, 5>{0x00, 0x61, 0x00, 0x62, 0x99}));
}

TEST(ByteOrder, Swap2ByteStringOfOddLengthTakesInTheByteJustPast) {
  std::array<uint8_t, 4> bytes{1, 2, 3, 4};
  Swap2ByteString(bytes.data(), 3);
  EXPECT_EQ(bytes, (std::array<uint8_t, 4>{2, 1, 4, 3}));
  Swap2ByteString(bytes.data(), 1);
  EXPECT_EQ(bytes, (std::array<uint8_t, 4>{1, 2, 4, 3}));
}

TEST(ByteOrder, Swap2ByteStringOfNothingDoesNothing) {
  std::array<uint8_t, 2> bytes{1, 2};
  Swap2ByteString(bytes.data(), 0);
  EXPECT_EQ(bytes, (std::array<uint8_t, 2>{1, 2}));
  Swap2ByteString(nullptr, 0);
  Swap2ByteString(nullptr, 4);
}

TEST(RemoveZeroFromAsciiUTF16, KeepsTheLowByteOfEachSingleByteUnit) {
  EXPECT_EQ(Removed("\0A\0B"s), "AB");
  EXPECT_EQ(Removed("\x30\x42\0C"s), "C");
  EXPECT_EQ(Removed("\0\0\0D"s), "D");
  EXPECT_EQ(Removed("\0A\0"s), "A");
}

TEST(RemoveZeroFromAsciiUTF16, KeepsEveryNonzeroByteUpToFF) {
  EXPECT_EQ(Removed("\0\xe9\0\xff"s), "\xe9\xff");
}

TEST(RemoveZeroFromAsciiUTF16, DropsTheSingleByteOfAnOddLength) {
  EXPECT_EQ(Removed("\0"s), "");
  EXPECT_EQ(Removed("A"s), "");
  EXPECT_EQ(Removed("\0A\0B\0"s), "AB");
}

TEST(RemoveZeroFromAsciiUTF16, OfNothingIsEmpty) {
  EXPECT_EQ(Removed(""), "");
  EXPECT_TRUE(RemoveZeroFromAsciiUTF16(nullptr).empty());
}

TEST(RemoveZeroFromAsciiUTF16, LeavesItsInputAlone) {
  const ByteString text("\0A\x30\x42"s);
  EXPECT_EQ(RemoveZeroFromAsciiUTF16(&text).View(), "A");
  EXPECT_EQ(text.View(), "\0A\x30\x42"s);
}

TEST(RemoveZeroFromAsciiUTF16, OfRandomTextsIsWhatAPlainLoopGives) {
  samples::Random random(3);
  for (int round = 0; round < 400; ++round) {
    std::string text(random.Below(3000), '\0');
    for (char &byte : text) byte = static_cast<char>(random.OneIn(2) ? 0 : random.Below(256));
    std::string expected;
    const std::string padded = text + '\0';
    for (size_t i = 0; i < text.size(); i += 2) {
      if (padded[i] == 0 && padded[i + 1] != 0) expected += padded[i + 1];
    }
    ASSERT_EQ(Removed(text), expected);
  }
}

}  // namespace
}  // namespace db_test
