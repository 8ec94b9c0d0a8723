#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "host/text/EncodingTable.h"
#include "host/text/TextEncoding.h"
#include "tests/host/ReferenceText.h"
#include "tests/support/Folders.h"

namespace zemhost {

// For the names of the tests.
static void PrintTo(const EncodingRow &row, std::ostream *out) { *out << row.name; }

namespace {

using namespace std::literals;

constexpr uint32_t kUtf32Be = 0x18000100;
constexpr uint32_t kEucJp = 0x0920;
constexpr uint32_t kWindowsLatin1 = 0x0500;
constexpr uint32_t kIsoLatin1 = 0x0201;

std::string converted(std::string_view bytes, uint32_t from, uint32_t to) {
  const Conversion result = convertText(bytes, from, to);
  EXPECT_TRUE(result.known);
  EXPECT_EQ(result.replacements, 0U);
  return result.bytes;
}

// What a byte or two means in an encoding.
std::u32string meaning(std::string_view bytes, uint32_t encoding) {
  return reference::charactersOfUtf8(converted(bytes, encoding, kUtf8)).characters;
}

std::u32string withoutReplacements(std::u32string text) {
  std::erase(text, U'\uFFFD');
  return text;
}

std::string randomBytes(std::mt19937 &random, std::string_view palette) {
  std::string bytes(random() % 12, '\0');
  for (char &b : bytes)
    b = random() % 4 == 0 ? static_cast<char>(random()) : palette[random() % palette.size()];
  return bytes;
}

void expectNothingLost(const reference::Found &expected, const Conversion &result) {
  const reference::Found seen = reference::charactersOfUtf8(result.bytes);
  EXPECT_FALSE(seen.invalid);
  EXPECT_EQ(withoutReplacements(seen.characters), withoutReplacements(expected.characters));
  const auto standIns = [](const std::u32string &text) {
    return std::count(text.begin(), text.end(), U'\uFFFD');
  };
  EXPECT_EQ(static_cast<size_t>(standIns(seen.characters) - standIns(expected.characters)),
            result.replacements);
  EXPECT_EQ(expected.invalid, result.replacements > 0);
}

TEST(TextEncoding, Utf16OfAnyBytesKeepsEveryCharacterAndMarksTheRest) {
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    const std::string bytes = randomBytes(random, "\0\xD8\xDC\xDF\xE3\x30\x41"sv);
    if (bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE")) continue;
    SCOPED_TRACE(testing::PrintToString(bytes));
    expectNothingLost(reference::charactersOfUtf16(bytes), convertText(bytes, kUtf16, kUtf8));
    if (HasFailure()) break;
  }
}

TEST(TextEncoding, Utf8OfAnyBytesKeepsEveryCharacterAndMarksTheRest) {
  std::mt19937 random(2);
  for (int i = 0; i < 20000; ++i) {
    const std::string bytes = randomBytes(random, "A\x81\xBF\xC3\xE3\xED\xA0\xF0\x90\xF4"sv);
    SCOPED_TRACE(testing::PrintToString(bytes));
    const reference::Found expected = reference::charactersOfUtf8(bytes);
    EXPECT_EQ(isValidUtf8(bytes), !expected.invalid);
    expectNothingLost(expected, convertText(bytes, kUtf8, kUtf8));
    if (HasFailure()) break;
  }
}

TEST(TextEncoding, LongestRunThatCouldBeginACharacterIsOneReplacement) {
  const Conversion result = convertText(
      "a\xF1\x80\x80\xE1\x80\xC2"
      "b\x80"
      "c\x80\xBF"
      "d\xE3\x81",
      kUtf8, kUtf8);
  EXPECT_EQ(result.bytes, "a\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd\uFFFD");
  EXPECT_EQ(result.replacements, 7U);
  EXPECT_EQ(convertText("\xED\xA0\x80", kUtf8, kUtf8).replacements, 3U);
  EXPECT_EQ(convertText("\xC0\x80", kUtf8, kUtf8).replacements, 2U);
}

TEST(TextEncoding, Utf8IsJudgedRightAfterEveryFirstTwoBytes) {
  for (unsigned lead = 0x80; lead < 0x100; ++lead) {
    for (unsigned second = 0; second < 0x100; ++second) {
      std::string bytes = {static_cast<char>(lead), static_cast<char>(second)};
      for (const std::string_view more : {"", "\x80", "A", "\xBF\xBF", "\x80\x7F", "\x80\xC0"}) {
        const std::string whole = bytes + std::string(more);
        EXPECT_EQ(isValidUtf8(whole), !reference::charactersOfUtf8(whole).invalid)
            << testing::PrintToString(whole);
      }
    }
  }
}

TEST(TextEncoding, EveryCharacterGoesBetweenTheUnicodeForms) {
  std::u32string all;
  for (char32_t c = 0; c < 0x110000; c += c < 0x3000 ? 1 : 7)
    if (c < 0xD800 || c >= 0xE000) all += c;
  const std::string utf8 = reference::utf8(all);
  const std::string utf16 = reference::utf16(all);
  EXPECT_TRUE(converted(utf8, kUtf8, kUtf16) == utf16);
  EXPECT_TRUE(converted(utf16, kUtf16, kUtf8) == utf8);
  EXPECT_TRUE(converted(reference::swappedPairs(utf16), 0x14000100, kUtf8) == utf8);
  EXPECT_TRUE(converted(converted(utf8, kUtf8, kUtf32Be), kUtf32Be, kUtf16) == utf16);
  EXPECT_TRUE(converted(converted(utf8, kUtf8, 0x1C000100), 0x1C000100, kUtf16) == utf16);
}

TEST(TextEncoding, ByteOrderMarkIsFollowedAndNotKept) {
  EXPECT_EQ(converted("\xFE\xFF\0A"sv, kUtf16, kUtf8), "A");
  EXPECT_EQ(converted("\xFF\xFE"
                      "A\0"sv,
                      kUtf16, kUtf8),
            "A");
  EXPECT_EQ(converted("\xFE\xFF"sv, kUtf16, kUtf8), "");
  EXPECT_EQ(converted("\0A"sv, kUtf16, kUtf8), "A");
  EXPECT_EQ(converted("\0\0\xFE\xFF\0\0\0A"sv, 0x0C000100, kUtf8), "A");
  EXPECT_EQ(converted("\xFF\xFE\0\0A\0\0\0"sv, 0x0C000100, kUtf8), "A");
}

TEST(TextEncoding, OnlyTheFirstByteOrderMarkIsTaken) {
  EXPECT_EQ(converted("\xFE\xFF\xFE\xFF\0A"sv, kUtf16, kUtf8), "\uFEFFA");
  EXPECT_EQ(converted("\0A\xFE\xFF"sv, kUtf16, kUtf8), "A\uFEFF");
}

TEST(TextEncoding, FixedByteOrderKeepsTheMarkAsACharacter) {
  EXPECT_EQ(converted("\xFE\xFF\0A"sv, 0x10000100, kUtf8), "\uFEFFA");
}

TEST(TextEncoding, LeadingMarkCharacterSurvivesARoundTripThroughUtf16) {
  const std::string utf16 = converted("\uFEFFA", kUtf8, kUtf16);
  EXPECT_EQ(converted(utf16, kUtf16, kUtf8), "\uFEFFA");
}

TEST(TextEncoding, Utf16IsWrittenHighByteFirstWithoutAMark) {
  EXPECT_EQ(converted("A\u3042", kUtf8, kUtf16), "\0A\x30\x42"sv);
}

TEST(TextEncoding, OddLastByteOfUtf16IsOneReplacement) {
  const Conversion result = convertText("\0A\x30"sv, kUtf16, kUtf8);
  EXPECT_EQ(result.bytes, "A\uFFFD");
  EXPECT_EQ(result.replacements, 1U);
}

TEST(TextEncoding, LoneSurrogateIsOneReplacement) {
  const Conversion result = convertText("\xD8\x3D\0A\xDC\x00"sv, kUtf16, kUtf8);
  EXPECT_EQ(result.bytes, "\uFFFDA\uFFFD");
  EXPECT_EQ(result.replacements, 2U);
}

TEST(TextEncoding, HighBytesAreNotAscii) {
  const Conversion result = convertText("a\xE9z", kAscii, kUtf8);
  EXPECT_EQ(result.bytes, "a\uFFFDz");
  EXPECT_EQ(result.replacements, 1U);
}

TEST(TextEncoding, CharacterThatTheTargetLacksIsAQuestionMarkAndCounted) {
  const Conversion result = convertText("caf\u00E9 \u3042", kUtf8, kAscii);
  EXPECT_EQ(result.bytes, "caf? ?");
  EXPECT_EQ(result.replacements, 2U);
}

// Tests of encodings that the C library converts. Machines under emulation have a C library without its
// conversion modules; where one module is there all have to be.
class LibraryEncodings : public testing::Test {
 protected:
  void SetUp() override {
    if (!isKnownEncoding(kMacRoman)) GTEST_SKIP() << "the C library has no conversion modules here";
  }
};

TEST_F(LibraryEncodings, InvalidInputIsCountedOnceWhenTheTargetLacksTheReplacementToo) {
  const Conversion result = convertText("a\xFFz", kUtf8, kShiftJis);
  EXPECT_EQ(result.bytes, "a?z");
  EXPECT_EQ(result.replacements, 1U);
}

TEST_F(LibraryEncodings, MacRomanFollowsThePublishedTable) {
  const std::u32string upper =
      U"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ"
      U"‡·‚„‰"
      U"ÂÊÁËÈÍÎÏÌÓÔ\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
  ASSERT_EQ(upper.size(), 128U);
  for (size_t i = 0; i < 256; ++i) {
    const std::string byte(1, static_cast<char>(i));
    const std::u32string character(1, i < 128 ? static_cast<char32_t>(i) : upper[i - 128]);
    EXPECT_EQ(meaning(byte, kMacRoman), character) << i;
    EXPECT_EQ(converted(reference::utf8(character), kUtf8, kMacRoman), byte) << i;
  }
}

TEST_F(LibraryEncodings, Latin1IsTheFirst256CodePoints) {
  for (char32_t c = 0; c < 256; ++c)
    EXPECT_EQ(meaning(std::string(1, static_cast<char>(c)), kIsoLatin1), std::u32string(1, c));
}

TEST_F(LibraryEncodings, Windows1252DiffersFromLatin1From80To9F) {
  const std::u32string middle = U"€\0‚ƒ„…†‡ˆ‰Š‹Œ\0Ž\0\0‘’“”•–—˜™š›œ\0žŸ"s;
  ASSERT_EQ(middle.size(), 32U);
  for (char32_t c = 0; c < 256; ++c) {
    const std::string byte(1, static_cast<char>(c));
    const char32_t character = c < 0x80 || c > 0x9F ? c : middle[c - 0x80];
    if (character == 0 && c != 0) {
      EXPECT_EQ(convertText(byte, kWindowsLatin1, kUtf8).bytes, "\uFFFD");
    } else {
      EXPECT_EQ(meaning(byte, kWindowsLatin1), std::u32string(1, character));
    }
  }
}

// Row and cell of the character set that both encodings carry, by their published arithmetic.
std::string shiftJisOf(unsigned row, unsigned cell) {
  const unsigned lead = (row - 1) / 2 + (row < 63 ? 0x81 : 0xC1);
  const unsigned trail = row % 2 == 0 ? cell + 0x9E : cell + (cell < 64 ? 0x3F : 0x40);
  return {static_cast<char>(lead), static_cast<char>(trail)};
}

TEST_F(LibraryEncodings, ShiftJisAndEucJpAgreeOnEveryDoubleByteCharacter) {
  int defined = 0;
  for (unsigned row = 1; row <= 94; ++row) {
    for (unsigned cell = 1; cell <= 94; ++cell) {
      const std::string euc = {static_cast<char>(row + 0xA0), static_cast<char>(cell + 0xA0)};
      const Conversion one = convertText(shiftJisOf(row, cell), kShiftJis, kUtf8);
      const Conversion other = convertText(euc, kEucJp, kUtf8);
      EXPECT_EQ(one.replacements == 0, other.replacements == 0) << row << ' ' << cell;
      if (one.replacements != 0) continue;
      ++defined;
      if (row == 1 && cell == 32) {  // the backslash, which EUC-JP has among its single bytes
        EXPECT_EQ(one.bytes, "\\");
        EXPECT_EQ(other.bytes, "\uFF3C");
      } else {
        EXPECT_EQ(one.bytes, other.bytes) << row << ' ' << cell;
      }
    }
  }
  EXPECT_EQ(defined, 6879);
}

TEST_F(LibraryEncodings, ShiftJisFollowsThePublishedMapping) {
  std::ifstream mapping(support::SharedFolder() / "data/shift_jis_mapping.tsv");
  if (!mapping) GTEST_SKIP() << "the mapping is not there";
  int rows = 0;
  for (std::string line; std::getline(mapping, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::string code;
    std::string character;
    fields >> code >> character;
    const unsigned long value = std::stoul(code, nullptr, 16);
    std::string bytes;
    if (value > 0xFF) bytes += static_cast<char>(value >> 8);
    bytes += static_cast<char>(value & 0xFF);
    const std::u32string expected(1, static_cast<char32_t>(std::stoul(character.substr(2), nullptr, 16)));
    EXPECT_EQ(meaning(bytes, kShiftJis), expected) << line;
    EXPECT_EQ(converted(reference::utf8(expected), kUtf8, kShiftJis), bytes) << line;
    ++rows;
  }
  EXPECT_GT(rows, 7000);
}

// Each character of a text comes back from an encoding, or stands there as a counted question mark.
void expectKeptOrCounted(const EncodingRow &row, const std::u32string &text) {
  const Conversion there = convertText(reference::utf8(text), kUtf8, row.code);
  const Conversion back = convertText(there.bytes, row.code, kUtf8);
  EXPECT_EQ(back.replacements, 0U);
  const std::u32string seen = reference::charactersOfUtf8(back.bytes).characters;
  ASSERT_EQ(seen.size(), text.size());
  size_t lost = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (seen[i] == text[i]) continue;
    EXPECT_EQ(seen[i], U'?') << std::hex << static_cast<uint32_t>(text[i]);
    if (text[i] != U'\uFFFD') ++lost;
  }
  EXPECT_EQ(there.replacements, lost);
}

class EveryEncoding : public testing::TestWithParam<EncodingRow> {};

TEST_P(EveryEncoding, IsFoundByItsName) {
  EXPECT_EQ(encodingName(GetParam().code), GetParam().name);
  EXPECT_EQ(encodingFromName(GetParam().name), GetParam().code);
}

TEST_P(EveryEncoding, KeepsEachCharacterOrCountsIt) {
  std::u32string text;
  for (char32_t c = 0; c < 0x10000; ++c) {
    if (c < 0xD800 || c >= 0xE000) text += c;
    if (text.size() == 512) expectKeptOrCounted(GetParam(), std::exchange(text, {}));
    if (HasFatalFailure()) return;
  }
  for (char32_t c = 0xE0000; c < 0xE0080; ++c) text += c;
  expectKeptOrCounted(GetParam(), text + U"\U0001F3B5\U0010FFFD");
}

TEST_P(EveryEncoding, NoTextIsNoText) {
  EXPECT_EQ(converted("", GetParam().code, kUtf8), "");
  EXPECT_EQ(converted("", kUtf8, GetParam().code), "");
}

TEST_P(EveryEncoding, AnyBytesGiveValidTextInLinearRoom) {
  std::mt19937 random(GetParam().code);
  for (int i = 0; i < 200; ++i) {
    std::string bytes(random() % 200, '\0');
    for (char &b : bytes) b = static_cast<char>(random());
    const Conversion result = convertText(bytes, GetParam().code, kUtf8);
    EXPECT_FALSE(reference::charactersOfUtf8(result.bytes).invalid);
    EXPECT_LE(result.bytes.size(), 4 * bytes.size() + 4);
    EXPECT_LE(result.replacements, bytes.size());
  }
}

std::string testName(const testing::TestParamInfo<EncodingRow> &info) {
  std::string name = info.param.name;
  std::erase_if(name, [](char c) { return c == ' ' || c == '-' || c == '_'; });
  return name;
}

std::vector<EncodingRow> knownHere() {
  std::vector<EncodingRow> rows;
  std::copy_if(std::begin(kEncodings), std::end(kEncodings), std::back_inserter(rows),
               [](const EncodingRow &row) { return isKnownEncoding(row.code); });
  return rows;
}

INSTANTIATE_TEST_SUITE_P(TextEncoding, EveryEncoding, testing::ValuesIn(knownHere()), testName);

TEST_F(LibraryEncodings, AllOfTheTableAreKnown) { EXPECT_EQ(knownHere().size(), std::size(kEncodings)); }

TEST(TextEncoding, UnknownEncodingLeavesTheBytesAlone) {
  for (const uint32_t unknown : {1U, 3U, 16777216U, 0xFFFFFF9CU}) {
    EXPECT_FALSE(isKnownEncoding(unknown));
    for (const auto &[from, to] : {std::pair{unknown, kUtf8}, std::pair{kUtf8, unknown}}) {
      const Conversion result = convertText("\xFF\x00\xFE"sv, from, to);
      EXPECT_EQ(result.bytes, "\xFF\x00\xFE"sv);
      EXPECT_EQ(result.replacements, 0U);
      EXPECT_FALSE(result.known);
    }
  }
  EXPECT_EQ(encodingName(16777216), "encoding 16777216");
}

TEST(TextEncoding, NamesAreFoundWithoutRegardToCaseAndByIconvName) {
  EXPECT_EQ(encodingFromName("shift_jis"), kShiftJis);
  EXPECT_EQ(encodingFromName("macintosh"), kMacRoman);
  EXPECT_EQ(encodingFromName("utf-16"), kUtf16);
  EXPECT_EQ(encodingFromName("cp932"), 0x0420U);
  EXPECT_EQ(encodingFromName("Klingon"), std::nullopt);
}

TEST(TextEncoding, LongTextConvertsWhole) {
  std::u32string text;
  for (int i = 0; i < 300000; ++i) text += static_cast<char32_t>(0x3041 + i % 80);
  EXPECT_TRUE(converted(reference::utf16(text), kUtf16, kUtf8) == reference::utf8(text));
}

}  // namespace
}  // namespace zemhost
