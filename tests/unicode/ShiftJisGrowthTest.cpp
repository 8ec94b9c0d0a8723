#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

#include "tests/unicode/Utf16Bytes.h"
#include "unicode/ZemUnicode.h"

// The output buffer starts at 10,240 bytes and grows by 1,024 before a unit that finds 10 bytes or fewer
// free.

namespace {

constexpr std::size_t kFirstThreshold = 10230;
constexpr std::size_t kStep = 1024;

std::string Converted(const std::u16string &units) {
  const std::string bytes = Utf16(units);
  return std::string(lUnicode2SJIS(bytes.data(), static_cast<std::int32_t>(bytes.size())).View());
}

// How many bytes an unmapped unit adds after `before`.
std::size_t BytesRepeatedAfter(const std::u16string &before) {
  return Converted(before + u'~').size() - Converted(before).size();
}

TEST(ShiftJISGrowth, UnmappedUnitRepeatsUntilTheBufferGrows) {
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold - 1, u'A')), 1U);
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold, u'A')), 0U);
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold + 1, u'A')), 1U);
}

TEST(ShiftJISGrowth, EachGrowthForgets) {
  for (std::size_t growth = 0; growth < 20; ++growth) {
    const std::size_t threshold = kFirstThreshold + growth * kStep;
    EXPECT_EQ(BytesRepeatedAfter(std::u16string(threshold - 1, u'A')), 1U) << growth;
    EXPECT_EQ(BytesRepeatedAfter(std::u16string(threshold, u'A')), 0U) << growth;
    EXPECT_EQ(BytesRepeatedAfter(std::u16string(threshold + 1, u'A')), 1U) << growth;
  }
}

TEST(ShiftJISGrowth, DoubleBytesCountTwice) {
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold / 2 - 1, u'\u3042')), 2U);
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold / 2, u'\u3042')), 0U);
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold / 2 + 1, u'\u3042')), 2U);
}

TEST(ShiftJISGrowth, ThresholdPassedInsideADoubleByteGrowsAtTheNextUnit) {
  const std::u16string before = u'A' + std::u16string(kFirstThreshold / 2, u'\u3042');
  EXPECT_EQ(Converted(before).size(), kFirstThreshold + 1);
  EXPECT_EQ(BytesRepeatedAfter(before), 0U);
  EXPECT_EQ(BytesRepeatedAfter(before.substr(0, before.size() - 1)), 2U);
}

TEST(ShiftJISGrowth, MarkGrowsTheBufferLikeAnyUnit) {
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold - 1, u'A') + u'\uFFFE'), 1U);
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold, u'A') + u'\uFFFE'), 0U);
  EXPECT_EQ(BytesRepeatedAfter(std::u16string(kFirstThreshold, u'A') + u"\uFFFEA"), 1U);
}

TEST(ShiftJISGrowth, UnitsThatWriteNothingDoNotFillTheBuffer) {
  const std::u16string silent(4 * kFirstThreshold, u'\0');
  EXPECT_EQ(BytesRepeatedAfter(silent + u'A'), 1U);
  EXPECT_EQ(BytesRepeatedAfter(silent + std::u16string(kFirstThreshold, u'A')), 0U);
}

TEST(ShiftJISGrowth, BytesRepeatedFillTheBufferToo) {
  const std::u16string before = u'A' + std::u16string(kFirstThreshold - 1, u'~');
  EXPECT_EQ(Converted(before).size(), kFirstThreshold);
  EXPECT_EQ(Converted(before + std::u16string(5000, u'~')).size(), kFirstThreshold);
}

TEST(ShiftJISGrowth, NothingButTheRepeatedResultChanges) {
  const std::u16string units(100'000, u'\u3042');
  const std::string converted = Converted(units);
  ASSERT_EQ(converted.size(), 2 * units.size());
  for (std::size_t at = 0; at < converted.size(); at += 2)
    ASSERT_EQ(converted.substr(at, 2), "\x82\xA0") << at;
}

TEST(ShiftJISGrowth, ByteOrderHoldsAcrossGrowths) {
  std::string bytes = "\xFE\xFF";
  for (std::size_t i = 0; i < 30'000; ++i) bytes += {'A', '\0'};
  EXPECT_EQ(lUnicode2SJIS(bytes.data(), static_cast<std::int32_t>(bytes.size())).View(),
            std::string(30'000, 'A'));
}

}  // namespace
