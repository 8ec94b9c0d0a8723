#include "db/TextArena.h"

#include <algorithm>
#include <utility>

namespace {

// Blocks double up to the size that big pages serve, so that a small library stays small.
constexpr size_t kFirstBlock = size_t{4} << 10;
constexpr size_t kLargestBlock = size_t{8} << 20;

}  // namespace

void TextArena::AddBlock(size_t bytes) {
  const size_t block = std::clamp(2 * (room_ + sizeof(TextBlock)), kFirstBlock, kLargestBlock);
  const size_t room = std::max(block - sizeof(TextBlock), bytes);
  BlockUse made(TextBlock::Make(room));
  blocks_.push_back(std::move(made));
  room_ = room;
  used_ = 0;
}
