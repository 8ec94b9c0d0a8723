#include <cstdint>
#include <gtest/gtest.h>
#include <new>

#include "db/LargePages.h"

namespace db_test {
namespace {

TEST(LargePages, MoreElementsThanCanBeAddressedAreRefused) {
  LargeAllocator<uint64_t> allocator;
  for (const size_t count : {PTRDIFF_MAX / sizeof(uint64_t) + 1, SIZE_MAX / sizeof(uint64_t) + 2, SIZE_MAX})
    EXPECT_THROW(allocator.allocate(count), std::bad_array_new_length) << count;
}

}  // namespace
}  // namespace db_test
