// Names, and the comparison of names without regard to case.

#include <clocale>
#include <cstdint>
#include <cwctype>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "platform/carbon/MacNames.h"
#include "platform/carbon/Names.h"

namespace {

using carbon::exchanged;
using carbon::folded;
using carbon::isValidName;

std::string utf8(char32_t point) {
  const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
  const auto tail = [&](char32_t bits) { return byte(0x80U | (bits & 0x3FU)); };
  if (point < 0x80) return {byte(point)};
  if (point < 0x800) return {byte(0xC0U | point >> 6U), tail(point)};
  if (point < 0x10000) return {byte(0xE0U | point >> 12U), tail(point >> 6U), tail(point)};
  return {byte(0xF0U | point >> 18U), tail(point >> 12U), tail(point >> 6U), tail(point)};
}

std::string hex(char32_t point) { return testing::PrintToString(static_cast<uint32_t>(point)); }

bool isSurrogate(char32_t point) { return point >= 0xD800 && point < 0xE000; }

TEST(NameFolding, AgreesWithTheCLibraryOnEveryCapitalItMakesSmall) {
  const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (unicode == nullptr) GTEST_SKIP() << "no Unicode locale here";
  int made = 0;
  for (char32_t point = 1; point < 0x110000; ++point) {
    if (isSurrogate(point)) continue;
    const std::u32string result = folded(utf8(point));
    ASSERT_EQ(result.size(), 1U) << hex(point);
    if (result[0] == point) continue;
    ++made;
    EXPECT_EQ(result[0], static_cast<char32_t>(towlower_l(static_cast<wint_t>(point), unicode)))
        << hex(point);
  }
  EXPECT_GT(made, 500);
  freelocale(unicode);
}

TEST(NameFolding, CoversTheScriptsItPromises) {
  const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (unicode == nullptr) GTEST_SKIP() << "no Unicode locale here";
  const struct {
    char32_t first, last;
  } scripts[] = {{0x0020, 0x017F}, {0x0388, 0x03AB}, {0x0400, 0x052F}, {0x0531, 0x0556},
                 {0x1E00, 0x1E95}, {0x1EA0, 0x1EFF}, {0x2160, 0x217F}, {0xFF21, 0xFF5A}};
  for (const auto &script : scripts) {
    for (char32_t point = script.first; point <= script.last; ++point) {
      if (point != 0x0130) {  // dotted I, whose small form is language-dependent
        EXPECT_EQ(folded(utf8(point))[0],
                  static_cast<char32_t>(towlower_l(static_cast<wint_t>(point), unicode)))
            << hex(point);
      }
    }
  }
  freelocale(unicode);
}

TEST(NameFolding, IsStableWhenRepeated) {
  for (char32_t point = 1; point < 0x110000; ++point) {
    if (isSurrogate(point)) continue;
    const std::u32string once = folded(utf8(point));
    ASSERT_EQ(folded(utf8(once[0])), once) << hex(point);
  }
}

TEST(NameFolding, KeepsTheNumberOfBytes) {
  for (char32_t point = 1; point < 0x110000; ++point) {
    if (isSurrogate(point)) continue;
    ASSERT_EQ(utf8(folded(utf8(point))[0]).size(), utf8(point).size()) << hex(point);
  }
}

TEST(NameFolding, KeepsBytesThatAreNotUtf8Apart) {
  EXPECT_NE(folded("caf\xE9"), folded("caf\xC9"));
  EXPECT_NE(folded("caf\xE9"), folded("café"));
  EXPECT_EQ(folded("CAF\xE9"), folded("caf\xE9"));
  EXPECT_EQ(folded("\xC3").size(), 1U);
  EXPECT_EQ(folded("\xE6\x97").size(), 2U);
  EXPECT_EQ(folded("\xE6\x97Z"), folded("\xE6\x97z"));
  for (int byte = 0x80; byte < 0x100; ++byte)
    EXPECT_GT(folded(std::string(1, static_cast<char>(byte)))[0], char32_t{0x10FFFF}) << byte;
}

TEST(NameFolding, KeepsComposedAndDecomposedAccentsApart) { EXPECT_NE(folded("é"), folded("e\u0301")); }

TEST(MacName, IsValidFrom1To63BytesThatCanStandOnDisk) {
  EXPECT_TRUE(isValidName("a"));
  EXPECT_TRUE(isValidName("..."));
  EXPECT_TRUE(isValidName("a/b"));
  EXPECT_TRUE(isValidName(std::string(63, 'n')));
  EXPECT_FALSE(isValidName(std::string(64, 'n')));
  for (const std::string_view name : {std::string_view(), std::string_view("."), std::string_view(".."),
                                      std::string_view("a:b"), std::string_view("a\0", 2)})
    EXPECT_FALSE(isValidName(name)) << name;
}

TEST(MacName, ExchangesSlashAndColonBothWays) {
  EXPECT_EQ(exchanged("a/b:c"), "a:b/c");
  EXPECT_EQ(exchanged(exchanged("a/b:c")), "a/b:c");
}

}  // namespace
