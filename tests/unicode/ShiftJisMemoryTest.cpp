#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <string>
#include <string_view>

#include "tests/unicode/Utf16Bytes.h"
#include "unicode/ZemUnicode.h"

namespace {

constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

// Requests that are still answered, in this program's one thread.
std::size_t requestsLeft = kUnlimited;
std::size_t requestsMade = 0;

void *Allocate(std::size_t size) {
  ++requestsMade;
  if (requestsLeft == 0) throw std::bad_alloc();
  if (requestsLeft != kUnlimited) --requestsLeft;
  if (void *memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}

// Converts with only `requests` requests for memory answered.
template <typename Convert>
void WithRequests(std::size_t requests, Convert convert) {
  requestsMade = 0;
  requestsLeft = requests;
  const SJISText text = convert();
  requestsLeft = kUnlimited;
  EXPECT_TRUE(text.View().empty());
  EXPECT_TRUE(text.OutOfMemory());
}

}  // namespace

void *operator new(std::size_t size) { return Allocate(size); }
void *operator new[](std::size_t size, const std::nothrow_t & /*unused*/) noexcept {
  try {
    return Allocate(size);
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
}
void *operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete[](void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void *memory, std::size_t) noexcept { std::free(memory); }

namespace {

TEST(ShiftJISMemory, NoMemoryForALongTextGivesAnEmptyTextThatSaysSo) {
  const std::string kana = Utf16(std::u16string(1000, u'\u3042'));
  const std::string plain = Utf16(std::u16string(1000, u'A'));
  WithRequests(0, [&] { return lUnicode2SJIS(kana.data(), 2000); });
  WithRequests(0, [&] { return ConvSJIS(kana, 1); });
  WithRequests(0, [&] { return ConvSJIS(kana, 2); });
  WithRequests(0, [&] { return ConvSJIS(std::string_view(kana).substr(1), 2); });
  WithRequests(0, [&] { return ConvSJIS(plain, 2); });
  WithRequests(0, [&] { return ConvSJIS(plain, 3); });
}

TEST(ShiftJISMemory, TextThatGivesNothingIsNotTakenForMissingMemory) {
  const std::string nul(2000, '\0');
  const SJISText text = ConvSJIS(nul, 2);
  EXPECT_TRUE(text.View().empty());
  EXPECT_FALSE(text.OutOfMemory());
}

TEST(ShiftJISMemory, TitleAsksForNone) {
  const std::string kana = Utf16(std::u16string(240, u'\u3042'));
  for (const std::int32_t encode : {1, 2, 3}) {
    requestsMade = 0;
    const SJISText text = ConvSJIS(kana, encode);
    EXPECT_EQ(requestsMade, 0U);
    EXPECT_EQ(text.View().size(), kana.size());
  }
}

TEST(ShiftJISMemory, LongTextAsksOnce) {
  const std::string kana = Utf16(std::u16string(40'000, u'\u3042'));
  requestsMade = 0;
  EXPECT_EQ(ConvSJIS(kana, 1).View().size(), kana.size());
  EXPECT_EQ(requestsMade, 1U);
}

}  // namespace
