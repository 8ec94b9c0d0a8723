#include "db/TextArena.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

// Blocks double up to the size that big pages serve, so that a small library stays small.
constexpr size_t kFirstBlock = size_t{4} << 10;
constexpr size_t kLargestBlock = size_t{8} << 20;

}  // namespace

BlockText TextArena::Keep(std::string_view bytes) {
  if (blocks_.empty() || bytes.size() > blockRoom_ - used_) {
    const size_t block = std::clamp(2 * (blockRoom_ + sizeof(TextBlock)), kFirstBlock, kLargestBlock);
    const size_t room = std::max(block - sizeof(TextBlock), bytes.size());
    BlockUse made(TextBlock::Make(room));
    blocks_.push_back(std::move(made));
    blockRoom_ = room;
    used_ = 0;
  }
  TextBlock *block = blocks_.back().get();
  char *at = block->Bytes() + used_;
  std::memcpy(at, bytes.data(), bytes.size());
  used_ += bytes.size();
  return {{at, bytes.size()}, block};
}
