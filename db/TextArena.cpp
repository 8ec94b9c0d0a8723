#include "db/TextArena.h"

#include <algorithm>
#include <cstring>

namespace {

// Blocks double up to the size that big pages serve, so that a small library stays small.
constexpr size_t kFirstBlock = size_t{4} << 10;
constexpr size_t kLargestBlock = size_t{8} << 20;

}  // namespace

std::string_view TextArena::Keep(std::string_view bytes) {
  if (bytes.size() > blockSize_ - used_) {
    const size_t doubled = std::clamp(2 * blockSize_, kFirstBlock, kLargestBlock);
    const size_t size = std::max(doubled, bytes.size());
    blocks_.push_back(MakeLargeBuffer(size));
    blockSize_ = size;
    used_ = 0;
  }
  auto *at = reinterpret_cast<char *>(blocks_.back().get()) + used_;
  std::memcpy(at, bytes.data(), bytes.size());
  used_ += bytes.size();
  return {at, bytes.size()};
}
