#include "tests/platform/CountingAllocator.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

namespace {

long remaining = -1;  // below 0: no failures
bool failed = false;

std::array<void *, 1U << 16U> blocks;
size_t used = 0;

void *allocate(std::size_t size) noexcept {
  if (remaining == 0) {
    failed = true;
    return nullptr;
  }
  if (remaining > 0) --remaining;
  void *block = std::malloc(std::max<std::size_t>(size, 1));
  if (block == nullptr || used == blocks.size()) std::abort();
  blocks[used++] = block;
  return block;
}

void *allocateOrThrow(std::size_t size) {
  void *block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void **findBlock(const void *block) { return std::find(blocks.data(), blocks.data() + used, block); }

void release(void *block) noexcept {
  if (block == nullptr) return;
  void **const found = findBlock(block);
  if (found == blocks.data() + used) std::abort();  // not ours, or released before
  *found = blocks[--used];
  std::free(block);
}

}  // namespace

namespace allocator {

void failAfter(long count) {
  remaining = count;
  failed = false;
}
void endFailures() { remaining = -1; }
bool hasFailed() { return failed; }
long blocksInUse() { return static_cast<long>(used); }
bool isInUse(const void *block) { return findBlock(block) != blocks.data() + used; }

}  // namespace allocator

void *operator new(std::size_t size) { return allocateOrThrow(size); }
void *operator new[](std::size_t size) { return allocateOrThrow(size); }
void *operator new(std::size_t size, const std::nothrow_t &) noexcept { return allocate(size); }
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept { return allocate(size); }
void operator delete(void *block) noexcept { release(block); }
void operator delete[](void *block) noexcept { release(block); }
void operator delete(void *block, std::size_t) noexcept { release(block); }
void operator delete[](void *block, std::size_t) noexcept { release(block); }
void operator delete(void *block, const std::nothrow_t &) noexcept { release(block); }
void operator delete[](void *block, const std::nothrow_t &) noexcept { release(block); }
