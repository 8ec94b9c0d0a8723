#include <gtest/gtest.h>

#include "zemhost/library/ClassWords.h"

namespace zemhost {
namespace {

constexpr int32_t kPlayerVariant = 1;
constexpr int32_t kDesktopVariant = 0;

TEST(Rates, LittleEndianFileGivesThemReversed) {
  EXPECT_EQ(rateWord(static_cast<int32_t>(0x80000000U), kPlayerVariant), 128U);
  EXPECT_EQ(rateWord(0x000044AC, kPlayerVariant), 44100U << 16);
  EXPECT_EQ(rateWord(0x40010000, kPlayerVariant), 320U);
}

TEST(Rates, BigEndianFileGivesThemStraight) {
  EXPECT_EQ(rateWord(128, kDesktopVariant), 128U);
  EXPECT_EQ(rateWord(static_cast<int32_t>(44100U << 16), kDesktopVariant), 44100U << 16);
}

TEST(Rates, SampleRateIsFixedPointAndRounded) {
  EXPECT_EQ(sampleRateHertz(44100U << 16), 44100U);
  EXPECT_EQ(sampleRateHertz((22254U << 16) + 0x8BA2), 22255U);
  EXPECT_EQ(sampleRateHertz((22254U << 16) + 0x7FFF), 22254U);
  EXPECT_EQ(sampleRateHertz(0xFFFFFFFF), 65536U);
  EXPECT_EQ(sampleRateHertz(0), 0U);
}

}  // namespace
}  // namespace zemhost
