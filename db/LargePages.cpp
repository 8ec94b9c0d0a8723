#include "db/LargePages.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace {

constexpr size_t kBigPage = size_t{2} << 20;

}  // namespace

void *AllocateLarge(size_t bytes) {
  if (bytes < kBigPage) return ::operator new(bytes);
  bytes += (kBigPage - bytes % kBigPage) % kBigPage;  // a last page that is not whole would not be a big one
  void *block = ::operator new (bytes, std::align_val_t{kBigPage});
#ifdef MADV_HUGEPAGE
  // Advice only: where it is refused the block works all the same.
  static_cast<void>(madvise(block, bytes, MADV_HUGEPAGE));
#endif
  return block;
}

void FreeLarge(void *block, size_t bytes) noexcept {
  if (block == nullptr) return;
  if (bytes < kBigPage) {
    ::operator delete(block);
  } else {
    ::operator delete (block, std::align_val_t{kBigPage});
  }
}
