#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>

#include "host/runtime/HostObject.h"
#include "host/runtime/LiveHandles.h"

namespace zemhost {
namespace {

uint8_t *dataOf(REALobject object) { return reinterpret_cast<uint8_t *>(object) + kObjectDataOffset; }

TEST(HostObject, DataBlockIsZeroFilledAndAlignedForAnyType) {
  for (const size_t size : {size_t{0}, size_t{1}, size_t{16}, size_t{1000}}) {
    REALobject object = newObject(size, nullptr, nullptr);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(dataOf(object)) % alignof(std::max_align_t), 0U);
    EXPECT_TRUE(std::all_of(dataOf(object), dataOf(object) + size, [](uint8_t b) { return b == 0; }));
    std::fill_n(dataOf(object), size, uint8_t{0xFF});
    releaseObject(object);
  }
}

TEST(HostObject, LastReferenceTellsTheOwnerWhileTheDataIsStillThere) {
  struct Seen {
    int calls = 0;
    int data = 0;
  } seen;
  const auto end = [](REALobject object, void *context) {
    auto *told = static_cast<Seen *>(context);
    ++told->calls;
    told->data = *dataOf(object);
  };
  const int64_t before = liveHandles().objects;
  REALobject object = newObject(4, end, &seen);
  *dataOf(object) = 7;
  EXPECT_EQ(liveHandles().objects, before + 1);
  retainObject(object);
  releaseObject(object);
  EXPECT_EQ(seen.calls, 0);
  releaseObject(object);
  EXPECT_EQ(seen.calls, 1);
  EXPECT_EQ(seen.data, 7);
  EXPECT_EQ(liveHandles().objects, before);
}

TEST(HostObject, MayBePassedAroundWhileItEnds) {
  int calls = 0;
  const auto end = [](REALobject object, void *context) {
    ++*static_cast<int *>(context);
    retainObject(object);
    releaseObject(object);
  };
  releaseObject(newObject(4, end, &calls));
  EXPECT_EQ(calls, 1);
}

TEST(HostObject, SizeThatNoMachineHasGivesNull) { EXPECT_EQ(newObject(SIZE_MAX, nullptr, nullptr), nullptr); }

TEST(HostObject, NullIsLeftAlone) {
  const int64_t before = liveHandles().objects;
  retainObject(nullptr);
  releaseObject(nullptr);
  EXPECT_EQ(liveHandles().objects, before);
}

TEST(HostObject, ReleasedTooOftenIsAMisuseWithChecksOn) {
  checkHandles(true);
  const int64_t misuses = liveHandles().misuses;
  REALobject object = newObject(4, nullptr, nullptr);
  releaseObject(object);
  releaseObject(object);
  EXPECT_EQ(liveHandles().misuses, misuses + 1);
  checkHandles(false);
}

}  // namespace
}  // namespace zemhost
