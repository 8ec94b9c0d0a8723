#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "tests/model/ShiftJis.h"
#include "unicode/ZemUnicode.h"

namespace {

constexpr std::int32_t kEncodings[] = {1, 3, 2, 0, -100, 0x0100, 0x0A01, 16777216, 0x08000100};

// Texts from units of every kind, each text with a mixture of its own.
class RandomTexts {
 public:
  explicit RandomTexts(std::uint32_t seed) : random_(seed) {}

  std::string Next(std::size_t maxUnits) {
    std::array<unsigned, 8> weights{};
    for (unsigned &weight : weights) weight = Below(3) == 0 ? Below(100) : 0;
    weights[Below(weights.size())] += 1;
    std::discrete_distribution<int> kind(weights.begin(), weights.end());
    bool swapped = false;
    std::string text;
    const std::size_t units = Below(static_cast<unsigned>(maxUnits) + 1);
    for (std::size_t i = 0; i < units; ++i) {
      const unsigned unit = Unit(kind(random_));
      const bool mark = unit == 0xFEFF || unit == 0xFFFE;
      if (mark) swapped = unit == 0xFEFF;
      const auto high = static_cast<char>(unit >> 8);
      const auto low = static_cast<char>(unit & 0xFF);
      text += swapped && !mark ? std::string{low, high} : std::string{high, low};
    }
    if (Below(8) == 0) text += static_cast<char>(Below(256));
    return text;
  }

  unsigned Below(std::size_t limit) {
    return std::uniform_int_distribution<unsigned>(0, static_cast<unsigned>(limit) - 1)(random_);
  }

 private:
  unsigned Unit(int kind) {
    switch (kind) {
      case 0:
        return 0x20 + Below(0x5D);  // plain characters
      case 1:
        return 0x3041 + Below(0xB6);  // kana
      case 2:
        return 0x4E00 + Below(0x5200);  // kanji, holes in the tables among them
      case 3:
        return 0x7D + Below(0x83);  // page 00 without a mapping
      case 4:
        return 0xFF00 + Below(0x100);  // both ends of page FF
      case 5:
        return Below(2) == 0 ? 0xFEFF : 0xFFFE;  // marks
      case 6:
        return Below(4) == 0 ? 0 : 0x1E00 + Below(0x200);  // NUL, and pages without a table
      default:
        return Below(0x10000);
    }
  }

  std::mt19937 random_;
};

void ExpectSameAsModel(const std::string &text, std::int32_t encode) {
  const std::string expected = model::ConvertToShiftJis(text, static_cast<std::uint32_t>(encode));
  // A text of exactly its size, for an address sanitizer to guard its end.
  const std::vector<char> exact(text.begin(), text.end());
  ASSERT_EQ(ConvSJIS({exact.data(), exact.size()}, encode).View(), expected);
  if (encode == 1) {
    ASSERT_EQ(lUnicode2SJIS(text.c_str(), static_cast<std::int32_t>(text.size())).View(), expected);
  }
}

void ExpectSameAsModel(std::uint32_t seed, int texts, std::size_t maxUnits) {
  RandomTexts random(seed);
  for (int i = 0; i < texts; ++i) {
    const std::string text = random.Next(maxUnits);
    const std::int32_t encode = kEncodings[random.Below(std::size(kEncodings))];
    ASSERT_NO_FATAL_FAILURE(ExpectSameAsModel(text, encode))
        << "seed " << seed << ", text " << i << ", " << encode;
  }
}

TEST(ShiftJISModel, RandomTitlesConvertAlike) { ExpectSameAsModel(20240501, 200'000, 24); }

TEST(ShiftJISModel, RandomTextsOfManyGrowthsConvertAlike) { ExpectSameAsModel(20240502, 600, 24'000); }

TEST(ShiftJISModel, EveryUnitConvertsAlikeAmongOthersAndInBothOrders) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const auto high = static_cast<char>(unit >> 8);
    const auto low = static_cast<char>(unit & 0xFF);
    const std::string highFirst = {0x30, 0x42, high, low, 0x30, 0x44, 0x30, 0x46, 0x00, 0x7E};
    const std::string lowFirst = {'\xFE', '\xFF', 0x42, 0x30, low, high, 0x44, 0x30, 0x46, 0x30, 0x7E, 0x00};
    for (const std::int32_t encode : {1, 2}) {
      for (std::size_t units = 2; units <= 5; ++units) {
        ASSERT_NO_FATAL_FAILURE(ExpectSameAsModel(highFirst.substr(0, 2 * units), encode))
            << std::hex << unit;
        ASSERT_NO_FATAL_FAILURE(ExpectSameAsModel(lowFirst.substr(0, 2 * units + 2), encode))
            << std::hex << unit;
      }
    }
  }
}

// Around a growth nearly every unit repeats, so that one taken a byte early or late shows.
TEST(ShiftJISModel, EveryLengthAroundTheGrowthsConvertsAlike) {
  for (std::size_t units = 5'100; units < 5'130; ++units) {
    for (const std::u16string &pattern : {std::u16string(u"\u3042~"), std::u16string(u"A\u3042~\uFF76")}) {
      for (std::size_t shift = 0; shift < 3; ++shift) {
        std::string text;
        for (std::size_t i = 0; i < shift; ++i) text += {'\0', 'S'};
        for (std::size_t i = 0; i < 3 * units; ++i) {
          const char16_t unit = pattern[i % pattern.size()];
          text += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSameAsModel(text, 1)) << units << ' ' << shift;
      }
    }
  }
}

}  // namespace
