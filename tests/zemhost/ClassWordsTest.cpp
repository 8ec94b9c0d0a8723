#include <gtest/gtest.h>

#include "zemhost/library/ClassWords.h"

namespace zemhost {
namespace {

constexpr int32_t kPlayer = 1;
constexpr int32_t kDesktop = 0;

TEST(Rates, LittleEndianFileGivesThemReversed) {
  EXPECT_EQ(rateWord(static_cast<int32_t>(0x80000000U), kPlayer), 128U);
  EXPECT_EQ(rateWord(0x000044AC, kPlayer), 44100U << 16);
  EXPECT_EQ(rateWord(0x40010000, kPlayer), 320U);
}

TEST(Rates, BigEndianFileGivesThemStraight) {
  EXPECT_EQ(rateWord(128, kDesktop), 128U);
  EXPECT_EQ(rateWord(static_cast<int32_t>(44100U << 16), kDesktop), 44100U << 16);
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
