#include <cstddef>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <iconv.h>
#include <map>
#include <sstream>
#include <string>

#include "tests/support/Folders.h"
#include "unicode/ShiftJISTables.h"
#include "unicode/ZemUnicode.h"

namespace {

struct PageRange {
  int page, first, last;
};

// Every page with a table, with the first and the last low byte of its table.
constexpr PageRange kRanges[] = {
    {0x03, 0x91, 0xC9}, {0x04, 0x01, 0x51}, {0x20, 0x10, 0x3E}, {0x21, 0x03, 0xD4}, {0x22, 0x00, 0xA5},
    {0x23, 0x12, 0x12}, {0x25, 0x00, 0xEF}, {0x26, 0x05, 0x6F}, {0x30, 0x00, 0xFE}, {0x4E, 0x00, 0xFB},
    {0x4F, 0x01, 0xFE}, {0x50, 0x05, 0xFB}, {0x51, 0x00, 0xFE}, {0x52, 0x00, 0xFF}, {0x53, 0x01, 0xFA},
    {0x54, 0x01, 0xFD}, {0x55, 0x04, 0xFE}, {0x56, 0x06, 0xFF}, {0x57, 0x00, 0xFC}, {0x58, 0x00, 0xFD},
    {0x59, 0x02, 0xFF}, {0x5A, 0x01, 0xFB}, {0x5B, 0x09, 0xFF}, {0x5C, 0x01, 0xFD}, {0x5D, 0x07, 0xFE},
    {0x5E, 0x02, 0xFF}, {0x5F, 0x01, 0xFF}, {0x60, 0x0E, 0xFB}, {0x61, 0x00, 0xFF}, {0x62, 0x00, 0xFF},
    {0x63, 0x01, 0xFA}, {0x64, 0x06, 0xFE}, {0x65, 0x00, 0xFB}, {0x66, 0x02, 0xFF}, {0x67, 0x00, 0xFF},
    {0x68, 0x02, 0xFA}, {0x69, 0x00, 0xFF}, {0x6A, 0x02, 0xFB}, {0x6B, 0x04, 0xF3}, {0x6C, 0x08, 0xF3},
    {0x6D, 0x0B, 0xFB}, {0x6E, 0x05, 0xFF}, {0x6F, 0x01, 0xFE}, {0x70, 0x01, 0xFD}, {0x71, 0x09, 0xFF},
    {0x72, 0x06, 0xFD}, {0x73, 0x0A, 0xFE}, {0x74, 0x03, 0xF8}, {0x75, 0x03, 0xFF}, {0x76, 0x01, 0xFE},
    {0x77, 0x01, 0xFC}, {0x78, 0x02, 0xFD}, {0x79, 0x01, 0xFB}, {0x7A, 0x00, 0xFF}, {0x7B, 0x02, 0xF7},
    {0x7C, 0x00, 0xFE}, {0x7D, 0x00, 0xFB}, {0x7E, 0x01, 0x9C}, {0x7F, 0x36, 0xFC}, {0x80, 0x00, 0xFD},
    {0x81, 0x02, 0xFE}, {0x82, 0x01, 0xFB}, {0x83, 0x02, 0xFD}, {0x84, 0x03, 0xFF}, {0x85, 0x00, 0xFE},
    {0x86, 0x02, 0xFE}, {0x87, 0x00, 0xFE}, {0x88, 0x05, 0xFE}, {0x89, 0x02, 0xF8}, {0x8A, 0x00, 0xFE},
    {0x8B, 0x00, 0x9A}, {0x8C, 0x37, 0xFD}, {0x8D, 0x04, 0xFF}, {0x8E, 0x08, 0xFE}, {0x8F, 0x03, 0xFD},
    {0x90, 0x00, 0xFD}, {0x91, 0x02, 0xFF}, {0x92, 0x0D, 0xFC}, {0x93, 0x06, 0xE8}, {0x94, 0x03, 0x81},
    {0x95, 0x77, 0xE5}, {0x96, 0x1C, 0xFB}, {0x97, 0x00, 0xFF}, {0x98, 0x01, 0xFE}, {0x99, 0x03, 0xFF},
    {0x9A, 0x01, 0xFB}, {0x9B, 0x06, 0xF5}, {0x9C, 0x04, 0xF6}, {0x9D, 0x03, 0xFD}, {0x9E, 0x1A, 0xFD},
    {0x9F, 0x07, 0xA0}, {0xFF, 0x01, 0xE3},
};

constexpr int kTwelveOfPageZero[][2] = {
    {0x5C, 0x815F}, {0xA2, 0x8191}, {0xA3, 0x8192}, {0xA7, 0x8198}, {0xA8, 0x814E}, {0xAC, 0x81CA},
    {0xB0, 0x818B}, {0xB1, 0x817D}, {0xB4, 0x814C}, {0xB6, 0x81F7}, {0xD7, 0x817E}, {0xF7, 0x8180},
};

std::uint16_t FreshCode(unsigned unit) {
  UTSchangeOneChar(0, 0);
  return UTSchangeOneChar(static_cast<std::uint8_t>(unit >> 8), static_cast<std::uint8_t>(unit & 0xFF));
}

TEST(ShiftJISTables, EveryPageHasItsFirstAndLastLowByte) {
  EXPECT_EQ(std::size(kRanges), 92U);
  for (const PageRange &range : kRanges) {
    const ShiftJISPage &page = shiftJISPages[range.page];
    ASSERT_NE(page.codes, nullptr) << std::hex << range.page;
    EXPECT_EQ(page.first, range.first) << std::hex << range.page;
    EXPECT_EQ(page.count, range.last - range.first + 1) << std::hex << range.page;
  }
}

TEST(ShiftJISTables, NoOtherPageHasATable) {
  std::map<int, bool> listed;
  for (const PageRange &range : kRanges) listed[range.page] = true;
  for (int page = 0; page < 0x100; ++page) {
    if (listed[page]) continue;
    EXPECT_EQ(shiftJISPages[page].codes, nullptr) << std::hex << page;
    EXPECT_EQ(shiftJISPages[page].count, 0) << std::hex << page;
  }
}

TEST(ShiftJISTables, Hold6866DoubleByteAnd64SingleByteCodesEachOnce) {
  std::map<int, int> uses;
  for (const ShiftJISPage &page : shiftJISPages) {
    for (std::size_t entry = 0; entry < page.count; ++entry) ++uses[page.codes[entry]];
  }
  uses.erase(0);
  int doubleBytes = 0;
  int singleBytes = 0;
  for (const auto &[code, count] : uses) {
    EXPECT_EQ(count, 1) << std::hex << code;
    ++(code > 0xFF ? doubleBytes : singleBytes);
  }
  EXPECT_EQ(doubleBytes, 6866);
  EXPECT_EQ(singleBytes, 64);
}

TEST(ShiftJISTables, PageZeroIsKeptButNeverConsulted) {
  EXPECT_EQ(std::size(changetoShiftJIS00), 156U);
  std::map<int, int> expected;
  for (const auto &[low, code] : kTwelveOfPageZero) expected[low] = code;
  for (int low = 0x5C; low <= 0xF7; ++low) {
    EXPECT_EQ(changetoShiftJIS00[low - 0x5C], expected[low]) << std::hex << low;
    EXPECT_EQ(FreshCode(static_cast<unsigned>(low)), low <= 0x7C ? low : 0) << std::hex << low;
  }
}

// The published mapping as {code point: code}, empty when it is not there.
std::map<unsigned, unsigned> PublishedMapping() {
  std::map<unsigned, unsigned> mapping;
  std::ifstream file(support::SharedFolder() / "data/shift_jis_mapping.tsv");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) continue;
    std::istringstream fields(line);
    std::string code;
    std::string point;
    fields >> code >> point;
    mapping[static_cast<unsigned>(std::stoul(point.substr(2), nullptr, 16))] =
        static_cast<unsigned>(std::stoul(code, nullptr, 16));
  }
  return mapping;
}

TEST(ShiftJISTables, EveryCodePointFollowsThePublishedMapping) {
  std::map<unsigned, unsigned> mapping = PublishedMapping();
  if (mapping.empty()) GTEST_SKIP() << "the published mapping is not there";
  ASSERT_EQ(mapping.size(), 7037U);
  for (unsigned unit = 0; unit < 0x100; ++unit) mapping.erase(unit);
  for (unsigned unit = 0; unit <= 0x7C; ++unit) mapping[unit] = unit;
  mapping.erase(0xFFE5);
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const auto found = mapping.find(unit);
    ASSERT_EQ(FreshCode(unit), found != mapping.end() ? found->second : 0) << std::hex << unit;
  }
}

// The system's converter of UTF-16BE units, one at a time.
class SystemConverter {
 public:
  SystemConverter() : handle_(iconv_open("SJIS", "UTF-16BE")) {}
  ~SystemConverter() {
    if (Usable()) iconv_close(handle_);
  }
  SystemConverter(const SystemConverter &) = delete;
  SystemConverter &operator=(const SystemConverter &) = delete;

  // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv_open reports failure by this value.
  bool Usable() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // The code of a unit, or 0 when it has none.
  unsigned CodeOf(unsigned unit) {
    char in[] = {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
    unsigned char out[4] = {};
    char *inAt = in;
    char *outAt = reinterpret_cast<char *>(out);
    std::size_t inLeft = sizeof in;
    std::size_t outLeft = sizeof out;
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(handle_, &inAt, &inLeft, &outAt, &outLeft) != 0) return 0;
    return outLeft == sizeof out - 2 ? out[0] * 256U + out[1] : out[0];
  }

 private:
  iconv_t handle_;
};

TEST(ShiftJISTables, EveryCodePointIsTheSystemsButForTheKnownDifferences) {
  SystemConverter system;
  if (!system.Usable()) GTEST_SKIP() << "the system has no Shift_JIS converter";
  // What the system converts and these tables do not: page 00 above 7C, the full-width forms of four
  // characters of page 00, and the one past the end of page FF.
  const std::map<unsigned, unsigned> systemOnly = {
      {0x7D, 0x7D},     {0x7E, 0x7E},     {0x7F, 0x7F},     {0xA2, 0x8191},   {0xA3, 0x8192},
      {0xA5, 0x5C},     {0xA7, 0x8198},   {0xA8, 0x814E},   {0xAC, 0x81CA},   {0xB0, 0x818B},
      {0xB1, 0x817D},   {0xB4, 0x814C},   {0xB6, 0x81F7},   {0xD7, 0x817E},   {0xF7, 0x8180},
      {0xFF3C, 0x815F}, {0xFFE0, 0x8191}, {0xFFE1, 0x8192}, {0xFFE2, 0x81CA}, {0xFFE5, 0x818F},
  };
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const unsigned theirs = system.CodeOf(unit);
    const auto known = systemOnly.find(unit);
    if (known == systemOnly.end()) {
      ASSERT_EQ(FreshCode(unit), theirs) << std::hex << unit;
    } else {
      EXPECT_EQ(theirs, known->second) << std::hex << unit;
      EXPECT_EQ(FreshCode(unit), 0U) << std::hex << unit;
    }
  }
}

}  // namespace
