#include "tests/support/Allocations.h"

#include <cstdlib>
#include <memory>
#include <new>

namespace {

long allocationsLeft = -1;  // negative: all are granted
bool isPaused = false;
bool hasFailed = false;
size_t bytesInUse = 0;
size_t mostBytesInUse = 0;
size_t allocationsMade = 0;
size_t bytesGranted = 0;

// What stands before each block: its address from malloc and its size.
struct Prefix {
  void *start;
  size_t size;
};

void *Allocate(size_t size, size_t alignment = alignof(std::max_align_t)) noexcept {
  if (allocationsLeft == 0 && !isPaused) {
    hasFailed = true;
    return nullptr;
  }
  size_t room = size + alignment;
  void *start = std::malloc(sizeof(Prefix) + room);
  if (start == nullptr) return nullptr;
  if (allocationsLeft > 0 && !isPaused) --allocationsLeft;
  void *block = static_cast<Prefix *>(start) + 1;
  std::align(alignment, size, block, room);
  static_cast<Prefix *>(block)[-1] = {start, size};
  ++allocationsMade;
  bytesGranted += size;
  bytesInUse += size;
  if (bytesInUse > mostBytesInUse) mostBytesInUse = bytesInUse;
  return block;
}

void *OrThrow(void *block) {
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void Release(void *block) noexcept {
  if (block == nullptr) return;
  const Prefix prefix = static_cast<Prefix *>(block)[-1];
  bytesInUse -= prefix.size;
  std::free(prefix.start);
}

size_t Of(std::align_val_t alignment) { return static_cast<size_t>(alignment); }

}  // namespace

void *operator new(size_t size) { return OrThrow(Allocate(size)); }
void *operator new[](size_t size) { return OrThrow(Allocate(size)); }
void *operator new(size_t size, std::align_val_t alignment) { return OrThrow(Allocate(size, Of(alignment))); }
void *operator new[](size_t size, std::align_val_t alignment) {
  return OrThrow(Allocate(size, Of(alignment)));
}
void *operator new(size_t size, const std::nothrow_t & /*tag*/) noexcept { return Allocate(size); }
void *operator new[](size_t size, const std::nothrow_t & /*tag*/) noexcept { return Allocate(size); }
void *operator new(size_t size, std::align_val_t alignment, const std::nothrow_t & /*tag*/) noexcept {
  return Allocate(size, Of(alignment));
}
void *operator new[](size_t size, std::align_val_t alignment, const std::nothrow_t & /*tag*/) noexcept {
  return Allocate(size, Of(alignment));
}
void operator delete(void *block) noexcept { Release(block); }
void operator delete[](void *block) noexcept { Release(block); }
void operator delete(void *block, size_t /*size*/) noexcept { Release(block); }
void operator delete[](void *block, size_t /*size*/) noexcept { Release(block); }
void operator delete(void *block, std::align_val_t /*alignment*/) noexcept { Release(block); }
void operator delete[](void *block, std::align_val_t /*alignment*/) noexcept { Release(block); }
void operator delete(void *block, size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  Release(block);
}
void operator delete[](void *block, size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  Release(block);
}
void operator delete(void *block, const std::nothrow_t & /*tag*/) noexcept { Release(block); }
void operator delete[](void *block, const std::nothrow_t & /*tag*/) noexcept { Release(block); }
void operator delete(void *block, std::align_val_t /*alignment*/, const std::nothrow_t & /*tag*/) noexcept {
  Release(block);
}
void operator delete[](void *block, std::align_val_t /*alignment*/, const std::nothrow_t & /*tag*/) noexcept {
  Release(block);
}

namespace support {

void GrantAllocations(long count) {
  allocationsLeft = count;
  hasFailed = false;
}

void GrantAllAllocations() { allocationsLeft = -1; }

void PauseGranting(bool paused) { isPaused = paused; }

bool AllocationFailed() { return hasFailed; }

size_t BytesInUse() { return bytesInUse; }

size_t MostBytesInUse() { return mostBytesInUse; }

size_t AllocationsMade() { return allocationsMade; }

size_t BytesGranted() { return bytesGranted; }

void ForgetMostBytes() { mostBytesInUse = bytesInUse; }

}  // namespace support
