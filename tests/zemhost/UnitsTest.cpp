#include <ctime>
#include <gtest/gtest.h>
#include <limits>

#include "zemhost/output/Units.h"

namespace zemhost {
namespace {

TEST(Durations, AreMinutesAndSeconds) {
  EXPECT_EQ(durationText(1), "0:00");
  EXPECT_EQ(durationText(59'999), "0:59");
  EXPECT_EQ(durationText(60'000), "1:00");
  EXPECT_EQ(durationText(3'599'999), "59:59");
  EXPECT_EQ(durationText(3'723'000), "1:02:03");
  EXPECT_EQ(durationText(std::numeric_limits<uint32_t>::max()), "1193:02:47");
}

TEST(Durations, UnknownIsNoText) { EXPECT_EQ(durationText(0), ""); }

TEST(Durations, TotalsCountDays) {
  EXPECT_EQ(totalTimeText(0), "0:00");
  EXPECT_EQ(totalTimeText(86'399'999), "23:59:59");
  EXPECT_EQ(totalTimeText(86'400'000), "1 day 0:00:00");
  EXPECT_EQ(totalTimeText(2 * 86'400'000ULL + 3'723'000), "2 days 1:02:03");
  EXPECT_EQ(totalTimeText(100'000ULL * std::numeric_limits<uint32_t>::max()), "4971026 days 23:05:00");
}

TEST(Sizes, AreInPowersOfAThousand) {
  EXPECT_EQ(sizeText(1), "1 B");
  EXPECT_EQ(sizeText(999), "999 B");
  EXPECT_EQ(sizeText(1000), "1.0 kB");
  EXPECT_EQ(sizeText(999'949), "999.9 kB");
  EXPECT_EQ(sizeText(999'950), "1.0 MB");
  EXPECT_EQ(sizeText(8'686'844), "8.7 MB");
  EXPECT_EQ(sizeText(999'950'000), "1.00 GB");
  EXPECT_EQ(sizeText(5'210'000'000), "5.21 GB");
}

TEST(Sizes, NothingIsNoTextForOneSongAndZeroInATotal) {
  EXPECT_EQ(sizeText(0), "");
  EXPECT_EQ(totalSizeText(0), "0 B");
}

TEST(Rates, TextsCarryTheirUnits) {
  EXPECT_EQ(bitRateText(128), "128 kbit/s");
  EXPECT_EQ(bitRateText(0), "");
  EXPECT_EQ(sampleRateText(44100), "44.1 kHz");
  EXPECT_EQ(sampleRateText(48000), "48 kHz");
  EXPECT_EQ(sampleRateText(11025), "11.025 kHz");
  EXPECT_EQ(sampleRateText(8000), "8 kHz");
  EXPECT_EQ(sampleRateText(0), "");
}

TEST(Counts, OnlyOneIsSingular) {
  EXPECT_EQ(countText(0, "copy", "copies"), "0 copies");
  EXPECT_EQ(countText(1, "copy", "copies"), "1 copy");
  EXPECT_EQ(countText(2, "copy", "copies"), "2 copies");
}

TEST(Dates, CountFromTheStartOf1904) {
  EXPECT_EQ(dateText(0), "");
  EXPECT_EQ(dateText(1), "1904-01-01 00:00:01");
  EXPECT_EQ(dateText(2'082'844'800), "1970-01-01 00:00:00");
  EXPECT_EQ(dateText(0xB69A7E0F), "2001-01-29 01:55:27");
  EXPECT_EQ(dateText(std::numeric_limits<uint32_t>::max()), "2040-02-06 06:28:15");
}

TEST(Dates, AgreeWithTheCLibrary) {
  for (uint32_t seconds = 2'082'844'800; seconds < 4'200'000'000; seconds += 12'345'678) {
    const auto unixTime = static_cast<std::time_t>(seconds - 2'082'844'800);
    std::tm parts{};
    gmtime_r(&unixTime, &parts);
    char expected[32];
    std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", &parts);
    EXPECT_EQ(dateText(seconds), expected);
  }
}

}  // namespace
}  // namespace zemhost
