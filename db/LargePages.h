#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

// Memory for what grows with a library, its song table and its texts. Faulting it in page by page costs more
// than reading the file does, so a large block is aligned for, and advised to use, the machine's big pages.

// A new block; throws std::bad_alloc. It is freed with the size it was asked for.
void *AllocateLarge(size_t bytes);
void FreeLarge(void *block, size_t bytes) noexcept;

// The standard allocator over such blocks.
template <typename T>
struct LargeAllocator {
  using value_type = T;

  LargeAllocator() = default;
  template <typename Other>
  LargeAllocator(const LargeAllocator<Other> & /*other*/) {}

  T *allocate(size_t n) {
    if (n > PTRDIFF_MAX / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T *>(AllocateLarge(n * sizeof(T)));
  }
  void deallocate(T *block, size_t n) noexcept { FreeLarge(block, n * sizeof(T)); }

  friend bool operator==(const LargeAllocator & /*a*/, const LargeAllocator & /*b*/) { return true; }
};

struct LargeDeleter {
  size_t bytes = 0;
  void operator()(uint8_t *block) const noexcept { FreeLarge(block, bytes); }
};

// A block of bytes, not initialised.
using LargeBuffer = std::unique_ptr<uint8_t[], LargeDeleter>;

inline LargeBuffer MakeLargeBuffer(size_t bytes) {
  return LargeBuffer(static_cast<uint8_t *>(AllocateLarge(bytes)), LargeDeleter{bytes});
}
