// The five CoreFoundation string calls, with iconv as the second opinion.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iconv.h>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "platform/carbon/CarbonFiles.h"

namespace {

struct Release {
  void operator()(CFStringRef string) const { CFRelease(string); }
};
using String = std::unique_ptr<const CarbonString, Release>;

String make(std::string_view bytes, CFStringEncoding encoding, bool external = false) {
  return String(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const uint8_t *>(bytes.data()),
                                        static_cast<CFIndex>(bytes.size()), encoding, external ? 1 : 0));
}

// The text in an 8-bit encoding; nothing when it cannot be read.
std::optional<std::string> read(const String &string, CFStringEncoding encoding) {
  std::string buffer(4 * static_cast<size_t>(CFStringGetLength(string.get())) + 1, '#');
  if (CFStringGetCString(string.get(), buffer.data(), static_cast<CFIndex>(buffer.size()), encoding) == 0)
    return std::nullopt;
  return buffer.substr(0, buffer.find('\0'));
}

constexpr const char *kNativeUtf16 = std::endian::native == std::endian::big ? "UTF-16BE" : "UTF-16LE";

std::optional<std::string> convert(std::string text, const char *to, const char *from) {
  iconv_t converter = iconv_open(to, from);
  std::string result(4 * text.size() + 4, '\0');
  char *in = text.data();
  char *out = result.data();
  size_t inLeft = text.size();
  size_t outLeft = result.size();
  const bool good = iconv(converter, &in, &inLeft, &out, &outLeft) != static_cast<size_t>(-1);
  iconv_close(converter);
  result.resize(result.size() - outLeft);
  return good ? std::optional(result) : std::nullopt;
}

bool hasConverters() {
  iconv_t converter = iconv_open("UTF-16BE", "UTF-8");
  if (reinterpret_cast<intptr_t>(converter) == -1) return false;
  iconv_close(converter);
  return true;
}

TEST(CoreFoundationString, Utf8ReadsBackAndCountsUtf16Units) {
  const String string = make("a é 日 𝄞", kCFStringEncodingUTF8);
  ASSERT_NE(string, nullptr);
  EXPECT_EQ(CFStringGetLength(string.get()), 8);
  EXPECT_EQ(read(string, kCFStringEncodingUTF8), "a é 日 𝄞");
}

TEST(CoreFoundationString, EveryCodePointReadsBack) {
  for (uint32_t point = 1; point < 0x110000; ++point) {
    if (point >= 0xD800 && point < 0xE000) continue;
    // UTF-8 by its definition: a lead byte that states the number of tails, then six bits in each tail.
    const uint32_t tails = point < 0x80 ? 0 : point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    const uint32_t leads[] = {0x00, 0xC0, 0xE0, 0xF0};
    std::string utf8(1, static_cast<char>(leads[tails] | point >> 6 * tails));
    for (uint32_t tail = tails; tail-- > 0;)
      utf8.push_back(static_cast<char>(0x80U | (point >> 6 * tail & 0x3FU)));
    const String string = make(utf8, kCFStringEncodingUTF8);
    ASSERT_NE(string, nullptr) << point;
    ASSERT_EQ(CFStringGetLength(string.get()), point < 0x10000 ? 1 : 2) << point;
    ASSERT_EQ(read(string, kCFStringEncodingUTF8), utf8) << point;
  }
}

TEST(CoreFoundationString, TakesAndRefusesUtf8AsIconvDoes) {
  if (!hasConverters()) GTEST_SKIP() << "iconv has no converters here";
  std::mt19937 random(20240501);
  const std::string_view pieces[] = {"a",        "é",        "日",       "𝄞",        "\x80",
                                     "\xC0\x80", "\xC3",     "\xE0\x80", "\xE0\x9F", "\xED\xA0",
                                     "\xF0\x8F", "\xF4\x90", "\xF5",     "\xBF"};
  int taken = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string bytes;
    for (auto n = random() % 4; n > 0; --n) bytes += pieces[random() % std::size(pieces)];
    for (auto n = random() % 3; n > 0; --n) bytes.push_back(static_cast<char>(random() % 256));
    const String string = make(bytes, kCFStringEncodingUTF8);
    const std::optional<std::string> expected = convert(bytes, kNativeUtf16, "UTF-8");
    ASSERT_EQ(string != nullptr, expected.has_value()) << testing::PrintToString(bytes);
    if (!expected) continue;
    ++taken;
    ASSERT_EQ(static_cast<size_t>(CFStringGetLength(string.get())), expected->size() / 2);
    const String same = make(*expected, kCFStringEncodingUnicode);
    ASSERT_EQ(read(same, kCFStringEncodingUTF8), read(string, kCFStringEncodingUTF8));
  }
  EXPECT_GT(taken, 2000);
}

TEST(CoreFoundationString, InvalidUtf8MakesNoString) {
  for (const char *bytes : {"\x80", "\xC3", "\xC0\xAF", "\xE2\x82", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                            "\xF8\x88\x80\x80\x80", "a\xFFz", "\xE9t\xE9"})
    EXPECT_EQ(make(bytes, kCFStringEncodingUTF8), nullptr) << testing::PrintToString(bytes);
}

TEST(CoreFoundationString, AsciiIsSevenBits) {
  const String string = make("plain\x7F", kCFStringEncodingASCII);
  ASSERT_NE(string, nullptr);
  EXPECT_EQ(read(string, kCFStringEncodingASCII), "plain\x7F");
  EXPECT_EQ(make("caf\x80", kCFStringEncodingASCII), nullptr);
  EXPECT_EQ(read(make("é", kCFStringEncodingUTF8), kCFStringEncodingASCII), std::nullopt);
}

TEST(CoreFoundationString, Utf16IsInTheMachinesOrderInside) {
  std::string bytes(2, '\0');
  bytes[std::endian::native == std::endian::big ? 1 : 0] = 'A';
  EXPECT_EQ(read(make(bytes, kCFStringEncodingUnicode), kCFStringEncodingUTF8), "A");
  EXPECT_EQ(make("odd", kCFStringEncodingUnicode), nullptr);
}

TEST(CoreFoundationString, ExternalUtf16FollowsItsMark) {
  using namespace std::string_view_literals;
  EXPECT_EQ(read(make("\xFE\xFF\x00"
                      "A"sv,
                      kCFStringEncodingUnicode, true),
                 kCFStringEncodingUTF8),
            "A");
  EXPECT_EQ(read(make("\xFF\xFE"
                      "A\x00"sv,
                      kCFStringEncodingUnicode, true),
                 kCFStringEncodingUTF8),
            "A");
  EXPECT_EQ(read(make("\x00"
                      "A"sv,
                      kCFStringEncodingUnicode, true),
                 kCFStringEncodingUTF8),
            "A")
      << "high byte first without a mark";
}

TEST(CoreFoundationString, Utf8MarkIsTextUnlessExternal) {
  EXPECT_EQ(read(make("\xEF\xBB\xBFtext", kCFStringEncodingUTF8, true), kCFStringEncodingUTF8), "text");
  EXPECT_EQ(read(make("\xEF\xBB\xBFtext", kCFStringEncodingUTF8), kCFStringEncodingUTF8), "\xEF\xBB\xBFtext");
}

TEST(CoreFoundationString, LoneSurrogatesHaveNoUtf8Form) {
  using namespace std::string_view_literals;
  for (const std::string_view bytes : {"\xD8\x34"sv, "\xDD\x1E"sv,
                                       "\xD8\x34\x00"
                                       "A"sv,
                                       "\xDD\x1E\xD8\x34"sv}) {
    const String string = make(bytes, kCFStringEncodingUnicode, true);
    ASSERT_NE(string, nullptr);
    EXPECT_EQ(read(string, kCFStringEncodingUTF8), std::nullopt);
  }
  EXPECT_EQ(read(make("\xD8\x34\xDD\x1E"sv, kCFStringEncodingUnicode, true), kCFStringEncodingUTF8), "𝄞");
}

TEST(CoreFoundationString, OtherEncodingsMakeAndReadNothing) {
  for (const CFStringEncoding encoding : {0U, kCFStringEncodingShiftJIS, 0xFFFFFFFFU}) {
    EXPECT_EQ(make("text", encoding), nullptr);
    EXPECT_EQ(read(make("text", kCFStringEncodingUTF8), encoding), std::nullopt);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(4, encoding), kCFNotFound);
  }
  EXPECT_EQ(read(make("text", kCFStringEncodingUTF8), kCFStringEncodingUnicode), std::nullopt)
      << "a C string is 8-bit";
}

TEST(CoreFoundationString, TextAndTerminatorFitTheBufferToTheByte) {
  const String string = make("four", kCFStringEncodingUTF8);
  std::array<char, 5> buffer = {'#', '#', '#', '#', '#'};
  for (const CFIndex size : {-1, 0, 1, 4}) {
    EXPECT_EQ(CFStringGetCString(string.get(), buffer.data(), size, kCFStringEncodingUTF8), 0);
    EXPECT_EQ(std::string_view(buffer.data(), 5), "#####") << "left alone";
  }
  EXPECT_EQ(CFStringGetCString(string.get(), buffer.data(), 5, kCFStringEncodingUTF8), 1);
  EXPECT_STREQ(buffer.data(), "four");
}

TEST(CoreFoundationString, EmptyTextIsAString) {
  const String string(CFStringCreateWithBytes(kCFAllocatorDefault, nullptr, 0, kCFStringEncodingUTF8, 0));
  ASSERT_NE(string, nullptr);
  EXPECT_EQ(CFStringGetLength(string.get()), 0);
  EXPECT_EQ(read(string, kCFStringEncodingUTF8), "");
}

TEST(CoreFoundationString, NullAndNegativeArgumentsAreHarmless) {
  char buffer = '#';
  const uint8_t byte = 'a';
  EXPECT_EQ(CFStringCreateWithBytes(kCFAllocatorDefault, nullptr, 1, kCFStringEncodingUTF8, 0), nullptr);
  EXPECT_EQ(CFStringCreateWithBytes(kCFAllocatorDefault, &byte, -1, kCFStringEncodingUTF8, 0), nullptr);
  EXPECT_EQ(CFStringGetLength(nullptr), 0);
  EXPECT_EQ(CFStringGetCString(nullptr, &buffer, 1, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(CFStringGetCString(make("", kCFStringEncodingUTF8).get(), nullptr, 1, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(buffer, '#');
  CFRelease(make("\x80", kCFStringEncodingUTF8).release());
}

TEST(CoreFoundationString, MaximumSizeHoldsEveryTextOfTheLength) {
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(5, kCFStringEncodingASCII), 5);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(5, kCFStringEncodingUnicode), 10);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(5, kCFStringEncodingUTF8), 15);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(0, kCFStringEncodingUTF8), 0);
}

TEST(CoreFoundationString, MaximumSizePastTheNumberRangeIsNotFound) {
  constexpr CFIndex kMost = std::numeric_limits<CFIndex>::max();
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(kMost, kCFStringEncodingASCII), kMost);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(kMost / 3, kCFStringEncodingUTF8), kMost / 3 * 3);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(kMost / 3 + 1, kCFStringEncodingUTF8), kCFNotFound);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(-1, kCFStringEncodingUTF8), kCFNotFound);
}

TEST(MemoryManager, NewPointerIsAWritableBlock) {
  Ptr block = NewPtr(1000);
  ASSERT_NE(block, nullptr);
  for (int i = 0; i < 1000; ++i) block[i] = 'x';
  std::free(block);
  Ptr empty = NewPtr(0);
  EXPECT_NE(empty, nullptr);
  std::free(empty);
}

TEST(MemoryManager, NegativeSizeGivesNoBlock) {
  EXPECT_EQ(NewPtr(-1), nullptr);
  EXPECT_EQ(NewPtr(std::numeric_limits<Size>::min()), nullptr);
}

}  // namespace
