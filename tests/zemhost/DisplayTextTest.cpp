#include <gtest/gtest.h>
#include <string>

#include "zemhost/output/DisplayText.h"

namespace zemhost {
namespace {

TEST(SafeText, PlainAndAccentedTextIsUnchanged) {
  EXPECT_EQ(safeText("Blue Train"), "Blue Train");
  EXPECT_EQ(safeText("Bart\u00F3k \u97F3\u6A02 \U0001F3B5"), "Bart\u00F3k \u97F3\u6A02 \U0001F3B5");
  EXPECT_EQ(safeText(""), "");
}

TEST(SafeText, EveryControlCharacterBecomesItsPicture) {
  for (char c = 0; c < ' '; ++c) {
    const std::string picture = {'\xE2', '\x90', static_cast<char>(0x80 + c)};
    EXPECT_EQ(safeText(std::string("a") + c + "b"), "a" + picture + "b") << int{c};
  }
  EXPECT_EQ(safeText("\x7F"), "\u2421");
}

TEST(SafeText, EscapeSequenceCannotReachTheTerminal) {
  EXPECT_EQ(safeText("\x1B]0;owned\x07\x1B[2J"), "\u241B]0;owned\u2407\u241B[2J");
}

TEST(SafeText, SecondSetOfControlsAndLineSeparatorsAreReplaced) {
  for (unsigned c = 0x80; c < 0xA0; ++c) {
    const std::string control = {'\xC2', static_cast<char>(c)};
    EXPECT_EQ(safeText(control), "\uFFFD") << c;
  }
  EXPECT_EQ(safeText("\u2028\u2029"), "\uFFFD\uFFFD");
  EXPECT_EQ(safeText("\u00A0"), "\u00A0");
}

TEST(SafeText, WhateverChangesTheDirectionOfALineIsReplaced) {
  EXPECT_EQ(safeText("a\u202Eb\u202Cc\u2066d\u2069"), "a\uFFFDb\uFFFDc\uFFFDd\uFFFD");
  EXPECT_EQ(safeText("\u200E1\u200F2\u061C"), "\uFFFD1\uFFFD2\uFFFD");
  EXPECT_EQ(safeText("\u05E9\u05DC\u05D5\u05DD"), "\u05E9\u05DC\u05D5\u05DD");
}

TEST(SafeText, BytesThatAreNotUtf8AreReplacedOneByOne) {
  EXPECT_EQ(safeText("Bart\x97k"), "Bart\uFFFDk");
  EXPECT_EQ(safeText("\xC3"), "\uFFFD");
  EXPECT_EQ(safeText("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");  // a surrogate
  EXPECT_EQ(safeText("\xC0\xAF"), "\uFFFD\uFFFD");            // a slash in too many bytes
  EXPECT_EQ(safeText("\xF4\x90\x80\x80").size(), 4 * 3U);     // past U+10FFFF
}

TEST(SafeText, CutCharacterIsOneReplacementAsInConversions) {
  EXPECT_EQ(safeText("\xE2\x82"), "\uFFFD");
  EXPECT_EQ(safeText("\xF0\x9F\x8E"
                     "a"),
            "\uFFFDa");
}

TEST(EscapedJson, CharactersThatCouldSteerATerminalStandAsTheirEscapes) {
  EXPECT_EQ(escapedJson("[\"a\x7F\u009B2J\u202Eb\u200F\u2028\u97F3\"]\n"),
            "[\"a\\u007f\\u009b2J\\u202eb\\u200f\\u2028\u97F3\"]\n");
  EXPECT_EQ(escapedJson("[\"\\u001b\"]"), "[\"\\u001b\"]");
}

TEST(DisplayWidth, CountsWideCharactersTwice) {
  EXPECT_EQ(displayWidth("abc"), 3U);
  EXPECT_EQ(displayWidth("\u97F3\u6A02"), 4U);
  EXPECT_EQ(displayWidth("\uFF71"), 1U);  // half-width katakana
  EXPECT_EQ(displayWidth("\uFF21"), 2U);  // full-width A
  EXPECT_EQ(displayWidth("\uD55C"), 2U);
  EXPECT_EQ(displayWidth("\U0001F3B5"), 2U);
  EXPECT_EQ(displayWidth(""), 0U);
}

TEST(DisplayWidth, CombiningCharactersTakeNoCell) {
  EXPECT_EQ(displayWidth("e\u0301"), 1U);
  EXPECT_EQ(displayWidth("\u304B\u3099"), 2U);
  EXPECT_EQ(displayWidth("a\u200Db\uFE0F"), 2U);
}

TEST(DisplayWidth, DecomposedHangulTakesTheCellsOfTheSyllable) {
  EXPECT_EQ(displayWidth("\u1112\u1161\u11AB"), displayWidth("\uD55C"));
}

TEST(DisplayWidth, SpacingMarksTakeACell) { EXPECT_EQ(displayWidth("\u0915\u093F"), 2U); }

TEST(CutToWidth, TextThatFitsIsUnchanged) {
  EXPECT_EQ(cutToWidth("abc", 3), "abc");
  EXPECT_EQ(cutToWidth("", 3), "");
  EXPECT_EQ(cutToWidth("\u97F3\u6A02", 4), "\u97F3\u6A02");
}

TEST(CutToWidth, LongTextEndsInAnEllipsisWithinTheWidth) {
  EXPECT_EQ(cutToWidth("abcdef", 4), "abc\u2026");
  EXPECT_EQ(cutToWidth("abcdef", 1), "\u2026");
  EXPECT_EQ(cutToWidth("abcdef", 0), "");
  EXPECT_EQ(cutToWidth("\u0301", 0), "");
}

TEST(CutToWidth, WideCharacterIsNeverHalved) {
  EXPECT_EQ(cutToWidth("\u97F3\u6A02\u66F8", 5), "\u97F3\u6A02\u2026");
  EXPECT_EQ(cutToWidth("\u97F3\u6A02\u66F8", 4), "\u97F3\u2026");
  EXPECT_EQ(cutToWidth("\u97F3\u6A02", 2), "\u2026");
}

TEST(CutToWidth, CombiningCharactersStayWithTheirBase) {
  EXPECT_EQ(cutToWidth("ae\u0301\u0302xyz", 3), "ae\u0301\u0302\u2026");
  EXPECT_EQ(cutToWidth("ae\u0301\u0302xyz", 2), "a\u2026");
  EXPECT_EQ(cutToWidth("xe\u0301", 2), "xe\u0301");
  // A joined emoji is cut before it, not inside.
  EXPECT_EQ(cutToWidth("ab\U0001F468\u200D\U0001F469cd", 6), "ab\u2026");
}

TEST(CutToWidth, ResultNeverTakesMoreThanTheWidth) {
  const std::string text =
      "Bart\u00F3k e\u0301 \u97F3\u6A02 \u304B\u3099\U0001F468\u200D\U0001F469 \u1112\u1161\u11AB end";
  for (size_t width = 0; width < displayWidth(text) + 3; ++width) {
    const std::string cut = cutToWidth(text, width);
    EXPECT_LE(displayWidth(cut), width);
    EXPECT_EQ(cut == text, displayWidth(text) <= width) << width;
  }
}

TEST(FoldedText, DifferencesOfCaseAndCompositionGo) {
  EXPECT_EQ(foldedText("Caf\u00C9"), foldedText("cafe\u0301"));
  EXPECT_EQ(foldedText("STRASSE"), foldedText("Stra\u00DFe"));
  EXPECT_EQ(foldedText("\u304C"), foldedText("\u304B\u3099"));
  EXPECT_NE(foldedText("cafe"), foldedText("caf\u00E9"));
}

}  // namespace
}  // namespace zemhost
