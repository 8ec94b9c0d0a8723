#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <string>

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

// Runs `convert` with only `requests` requests for memory answered.
template <typename Convert>
auto WithRequests(std::size_t requests, Convert convert) {
  requestsMade = 0;
  requestsLeft = requests;
  auto result = convert();
  requestsLeft = kUnlimited;
  return result;
}

}  // namespace

void *operator new(std::size_t size) { return Allocate(size); }
void *operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete[](void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void *memory, std::size_t) noexcept { std::free(memory); }

namespace {

TEST(ShiftJISMemory, NoMemoryAtAllGivesAnEmptyText) {
  const std::string kana = Utf16(std::u16string(100, u'\u3042'));
  const std::string plain = Utf16(std::u16string(100, u'A'));
  EXPECT_EQ(WithRequests(0, [&] { return lUnicode2SJIS(kana.data(), 200); }), "");
  EXPECT_EQ(WithRequests(0, [&] { return ConvSJIS(kana, 1); }), "");
  EXPECT_EQ(WithRequests(0, [&] { return ConvSJIS(kana, 2); }), "");
  EXPECT_EQ(WithRequests(0, [&] { return ConvSJIS(plain, 2); }), "");
  EXPECT_EQ(WithRequests(0, [&] { return ConvSJIS(plain, 3); }), "");
}

TEST(ShiftJISMemory, MemoryThatRunsOutLaterGivesWhatWasConvertedSoFar) {
  const std::string kana = Utf16(std::u16string(40'000, u'\u3042'));
  const std::string whole = lUnicode2SJIS(kana.data(), static_cast<std::int32_t>(kana.size()));
  ASSERT_EQ(whole.size(), 80'000U);
  std::size_t lastLength = 0;
  for (std::size_t requests = 1; lastLength < whole.size(); ++requests) {
    const std::string part = WithRequests(
        requests, [&] { return lUnicode2SJIS(kana.data(), static_cast<std::int32_t>(kana.size())); });
    EXPECT_EQ(part, whole.substr(0, part.size())) << requests;
    ASSERT_GT(part.size(), lastLength) << requests;
    lastLength = part.size();
  }
}

TEST(ShiftJISMemory, ConversionIntoACallersBufferAsksForNone) {
  const std::string kana = Utf16(std::u16string(20'000, u'\u3042'));
  std::string out(kana.size() + 1, '\0');
  for (const std::int32_t encode : {1, 2, 3}) {
    EXPECT_EQ(WithRequests(0, [&] { return ConvSJISInto(kana, encode, out.data()); }), kana.size());
    EXPECT_EQ(requestsMade, 0U);
  }
}

}  // namespace
