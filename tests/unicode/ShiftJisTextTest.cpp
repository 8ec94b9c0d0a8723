#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>

#include "tests/unicode/Utf16Bytes.h"
#include "unicode/ZemUnicode.h"

namespace {

using namespace std::string_literals;

constexpr std::int32_t kUtf16Code = 1;
constexpr std::int32_t kAsItIsCode = 3;
constexpr std::int32_t kOtherCode = 2;

std::string Converted(const std::string &bytes) {
  return std::string(lUnicode2SJIS(bytes.data(), static_cast<std::int32_t>(bytes.size())).View());
}

// A single unit's code, with nothing before it to repeat.
std::uint16_t FreshCode(std::uint8_t high, std::uint8_t low) {
  UTSchangeOneChar(0, 0);
  return UTSchangeOneChar(high, low);
}

TEST(ShiftJISUnit, PlainCharactersPassThroughUpTo7C) {
  for (int low = 0; low <= 0x7C; ++low) EXPECT_EQ(FreshCode(0, static_cast<std::uint8_t>(low)), low);
}

TEST(ShiftJISUnit, BackslashStaysSingleByte) { EXPECT_EQ(FreshCode(0x00, 0x5C), 0x5C); }

TEST(ShiftJISUnit, PageZeroAbove7CRepeatsTheLastResult) {
  for (int low = 0x7D; low <= 0xFF; ++low) {
    EXPECT_EQ(FreshCode(0, static_cast<std::uint8_t>(low)), 0) << low;
    UTSchangeOneChar(0x30, 0x42);
    EXPECT_EQ(UTSchangeOneChar(0, static_cast<std::uint8_t>(low)), 0x82A0) << low;
  }
}

TEST(ShiftJISUnit, PageWithoutTableRepeatsTheLastResultAgainAndAgain) {
  UTSchangeOneChar(0x4E, 0x00);
  for (const int high : {0x01, 0x02, 0x05, 0x1F, 0x24, 0x27, 0x2F, 0x31, 0x4D, 0xA0, 0xD8, 0xFE}) {
    EXPECT_EQ(UTSchangeOneChar(static_cast<std::uint8_t>(high), 0x42), 0x88EA) << high;
  }
}

TEST(ShiftJISUnit, PublishedCodes) {
  EXPECT_EQ(FreshCode(0x30, 0x42), 0x82A0);
  EXPECT_EQ(FreshCode(0x4E, 0x00), 0x88EA);
  EXPECT_EQ(FreshCode(0xFF, 0x01), 0x8149);
  EXPECT_EQ(FreshCode(0x03, 0x91), 0x839F);
  EXPECT_EQ(FreshCode(0x30, 0x00), 0x8140);
  EXPECT_EQ(FreshCode(0xFF, 0x61), 0xA1);
  EXPECT_EQ(FreshCode(0xFF, 0x9F), 0xDF);
  EXPECT_EQ(FreshCode(0x20, 0x3E), 0x7E);
}

TEST(ShiftJISUnit, FollowsThePublishedMappingAndNotCodePage932) {
  EXPECT_EQ(FreshCode(0x30, 0x1C), 0x8160);
  EXPECT_EQ(FreshCode(0x20, 0x16), 0x8161);
  EXPECT_EQ(FreshCode(0x22, 0x12), 0x817C);
  EXPECT_EQ(FreshCode(0x20, 0x15), 0x815C);
  for (const int unit : {0xFF5E, 0xFF0D, 0xFFE2, 0x2225, 0x2014, 0x2460, 0x2160}) {
    EXPECT_EQ(FreshCode(static_cast<std::uint8_t>(unit >> 8), static_cast<std::uint8_t>(unit & 0xFF)), 0)
        << unit;
  }
}

TEST(ShiftJISUnit, EmptyEntryReplacesTheResultToRepeat) {
  UTSchangeOneChar(0x30, 0x42);
  EXPECT_EQ(UTSchangeOneChar(0xFF, 0x5E), 0);
  EXPECT_EQ(UTSchangeOneChar(0x01, 0x00), 0);
}

TEST(ShiftJISUnit, LowByteOutsideItsPageIsAnEmptyEntry) {
  for (const int unit :
       {0x0390, 0x03CA, 0x0400, 0x2311, 0x2313, 0x30FF, 0x9FA1, 0xFF00, 0xFFE4, 0xFFE5, 0xFFFF}) {
    UTSchangeOneChar(0x30, 0x42);
    EXPECT_EQ(UTSchangeOneChar(static_cast<std::uint8_t>(unit >> 8), static_cast<std::uint8_t>(unit & 0xFF)),
              0)
        << unit;
  }
}

TEST(ShiftJISUnit, IsWhatWholeTextsAreConvertedBy) {
  for (const char16_t *text : {u"B", u"ABCB", u"ABCDB", u"\u3042\u3042\u3042B", u"~\u3042B~"}) {
    UTSchangeOneChar(0x30, 0x42);
    (void)Converted(Utf16(text));
    EXPECT_EQ(UTSchangeOneChar(0x01, 0x00), 'B');
  }
}

TEST(ShiftJISText, HighByteFirstWithoutAMark) { EXPECT_EQ(Converted("\x00\x41"s), "A"); }

TEST(ShiftJISText, MarkFEFFMeansLowByteFirst) {
  EXPECT_EQ(Converted("\xFE\xFF\x41\x00\x42\x30"s), "A\x82\xA0");
}

TEST(ShiftJISText, MarkFFFEMeansHighByteFirst) {
  EXPECT_EQ(Converted("\xFF\xFE\x00\x41\x30\x42"s), "A\x82\xA0");
}

TEST(ShiftJISText, MarksCountAnywhereAndAsTheyStandInTheBytes) {
  EXPECT_EQ(Converted("\x00\x41\xFE\xFF\x42\x00\xFE\xFF\x43\x00\xFF\xFE\x00\x44\xFF\xFE\x00\x45"s), "ABCDE");
}

TEST(ShiftJISText, EachConversionStartsHighByteFirst) {
  EXPECT_EQ(Converted("\xFE\xFF\x41\x00"s), "A");
  EXPECT_EQ(Converted("\x00\x41"s), "A");
}

TEST(ShiftJISText, HiraganaIsTwoBytesAndHalfWidthKatakanaOne) {
  EXPECT_EQ(Converted(Utf16(u"\u3042")), "\x82\xA0");
  EXPECT_EQ(Converted(Utf16(u"\uFF76")), "\xB6");
}

TEST(ShiftJISText, UnmappedUnitsRepeatTheUnitBefore) {
  EXPECT_EQ(Converted(Utf16(u"A~")), "AA");
  EXPECT_EQ(Converted(Utf16(u"A}\u00E9\u0100")), "AAAA");
  EXPECT_EQ(Converted(Utf16(u"\u3042~\u00FC")), "\x82\xA0\x82\xA0\x82\xA0");
  EXPECT_EQ(Converted(Utf16(u"\uFF76\u2764")), "\xB6\xB6");
}

TEST(ShiftJISText, UnmappedUnitAtTheStartGivesNothing) {
  EXPECT_EQ(Converted(Utf16(u"~")), "");
  EXPECT_EQ(Converted(Utf16(u"\u00E9~A")), "A");
}

TEST(ShiftJISText, NothingIsRepeatedFromTheConversionBefore) {
  EXPECT_EQ(Converted(Utf16(u"A")), "A");
  EXPECT_EQ(Converted(Utf16(u"~B")), "B");
}

TEST(ShiftJISText, MarkBetweenDoesNotChangeWhatIsRepeated) {
  EXPECT_EQ(Converted("\x00\x41\xFF\xFE\x00\x7E"s), "AA");
  EXPECT_EQ(Converted("\x00\x41\xFE\xFF\x7E\x00"s), "AA");
}

TEST(ShiftJISText, EmptyEntryProducesNoByteAndIsWhatIsRepeated) {
  EXPECT_EQ(Converted(Utf16(u"A\uFF5EB")), "AB");
  EXPECT_EQ(Converted(Utf16(u"A\uFF5E~B")), "AB");
  EXPECT_EQ(Converted(Utf16(u"A\u0390~B")), "AB");
}

TEST(ShiftJISText, NulProducesNoByteAndIsWhatIsRepeated) {
  EXPECT_EQ(Converted(Utf16(u"A\0B"s)), "AB");
  EXPECT_EQ(Converted(Utf16(u"A\0~B"s)), "AB");
}

TEST(ShiftJISText, OddLastByteIsPairedWithTheByteAfterIt) {
  const std::string bytes = "\x00\x41\x30\x42"s;
  EXPECT_EQ(lUnicode2SJIS(bytes.data(), 3).View(), "A\x82\xA0");
  EXPECT_EQ(lUnicode2SJIS(bytes.data(), 1).View(), "A");
  const std::string marked = "\xFE\xFF\x41\x00\xFE\xFF"s;
  EXPECT_EQ(lUnicode2SJIS(marked.data(), 5).View(), "A");
}

TEST(ShiftJISText, NoLengthGivesNoText) {
  const std::string bytes = "\x00\x41"s;
  EXPECT_EQ(lUnicode2SJIS(bytes.data(), 0).View(), "");
  EXPECT_EQ(lUnicode2SJIS(bytes.data(), -1).View(), "");
  EXPECT_EQ(lUnicode2SJIS(bytes.data(), std::numeric_limits<std::int32_t>::min()).View(), "");
  EXPECT_EQ(lUnicode2SJIS(nullptr, 0).View(), "");
}

std::string Stored(std::string_view a, std::int32_t encode) {
  return std::string(ConvSJIS(a, encode).View());
}

constexpr std::int32_t kStoredEncodings[] = {
    kUtf16Code, kAsItIsCode, kOtherCode, 0,          -100,
    0x0100,     0x0A01,      16777216,   0x08000100, std::numeric_limits<std::int32_t>::min()};

TEST(ShiftJISStored, EmptyInputGivesEmptyOutputForEveryCode) {
  for (const std::int32_t encode : kStoredEncodings) EXPECT_EQ(Stored("", encode), "") << encode;
  for (const std::int32_t encode : kStoredEncodings) EXPECT_EQ(Stored({}, encode), "") << encode;
}

TEST(ShiftJISStored, Code3GivesTheBytesAsTheyAre) {
  const std::string bytes = "\xFE\xFF\x41\x00\x00\x7E\x30"s;
  EXPECT_EQ(Stored(bytes, kAsItIsCode), bytes);
  EXPECT_EQ(Stored("\x00\x41"s, kAsItIsCode), "\x00\x41"s);
}

TEST(ShiftJISStored, Code1ConvertsPlainTextToo) {
  EXPECT_EQ(Stored("\x00\x48\x00\xE9"s, kUtf16Code), "HH");
  EXPECT_EQ(Stored("\x00\x48\x30\x42"s, kUtf16Code), "H\x82\xA0");
}

TEST(ShiftJISStored, EveryOtherCodeHandsOutPlainSingleBytesUnconverted) {
  for (const std::int32_t encode : kStoredEncodings) {
    if (encode == kUtf16Code || encode == kAsItIsCode) continue;
    EXPECT_EQ(Stored("\x00\x48\x00\xE9"s, encode), "H\xE9") << encode;
  }
}

TEST(ShiftJISStored, PlainSingleBytesAreAllBytesButZero) {
  std::u16string units;
  std::string bytes;
  for (int value = 1; value <= 0xFF; ++value) {
    units.push_back(static_cast<char16_t>(value));
    bytes.push_back(static_cast<char>(value));
  }
  EXPECT_EQ(Stored(Utf16(units), kOtherCode), bytes);
}

TEST(ShiftJISStored, OneOtherUnitAnywhereConvertsTheWholeText) {
  EXPECT_EQ(Stored("\x00\x48\x30\x42"s, kOtherCode), "H\x82\xA0");
  for (std::size_t at = 0; at < 40; ++at) {
    std::u16string units(40, u'\u00E9');
    units[at] = u'\u3042';
    std::string expected;
    for (std::size_t i = at; i < 40; ++i) expected += "\x82\xA0";
    EXPECT_EQ(Stored(Utf16(units), kOtherCode), expected) << at;
  }
}

TEST(ShiftJISStored, NulUnitAnywhereEndsPlainText) {
  for (std::size_t at = 0; at < 40; ++at) {
    std::u16string units(40, u'~');
    units[at] = u'\0';
    EXPECT_EQ(Stored(Utf16(units), kOtherCode), "") << at;
  }
}

TEST(ShiftJISStored, OddLengthReadsAZeroAfterTheText) {
  const std::string bytes = "\x00\x41\x30\x42"s;
  const std::string_view odd = std::string_view(bytes).substr(0, 3);
  EXPECT_EQ(Stored(odd, kUtf16Code), "A\x81\x40");
  EXPECT_EQ(Stored(odd, kOtherCode), "A\x81\x40");
  EXPECT_EQ(Stored(std::string_view("\x00\x41\x00\x42", 3), kOtherCode), "A");
  EXPECT_EQ(Stored("\x00\xE9\x00"s, kOtherCode), "");
  EXPECT_EQ(Stored("\x00\x41\x00"s, kOtherCode), "A");
  EXPECT_EQ(Stored("\xFE\xFF\x41"s, kOtherCode), "A");
  EXPECT_EQ(Stored("A", kOtherCode), "");
}

TEST(ShiftJISStored, MarksAreReadTheOtherWayRound) {
  for (const std::int32_t encode : {kUtf16Code, kOtherCode}) {
    EXPECT_EQ(Stored("\xFE\xFF\x41\x00"s, encode), "A");
    EXPECT_EQ(Stored("\xFF\xFE\x00\x41"s, encode), "A");
  }
}

}  // namespace
