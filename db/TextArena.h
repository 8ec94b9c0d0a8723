#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "db/ByteString.h"

// The bytes of a library's texts, packed into a few blocks: a load then allocates nothing per text. A block
// stays as long as the arena or any text that shares it.
class TextArena {
 public:
  // A copy of the bytes, which stays where it is as long as the arena lives. Throws std::bad_alloc.
  BlockText Keep(std::string_view bytes) {
    if (blocks_.empty() || bytes.size() > room_ - used_) AddBlock(bytes.size());
    TextBlock *block = blocks_.back().get();
    char *at = block->Bytes() + used_;
    std::memcpy(at, bytes.data(), bytes.size());
    used_ += bytes.size();
    return {{at, bytes.size()}, block};
  }

  // The same for one of many texts of a kind. Songs of one album follow each other, so the text kept last for
  // the kind is handed out again when it is the same: that costs a comparison instead of memory.
  BlockText Keep(std::string_view bytes, uint32_t kind) {
    BlockText &last = last_[kind % last_.size()];
    if (last.bytes != bytes) last = Keep(bytes);
    return last;
  }

 private:
  struct Drop {
    void operator()(TextBlock *block) const noexcept { block->Drop(); }
  };

  using BlockUse = std::unique_ptr<TextBlock, Drop>;

  // Begins a block with room for that many bytes at least.
  void AddBlock(size_t bytes);

  std::vector<BlockUse> blocks_;
  size_t room_ = 0;  // of the last block
  size_t used_ = 0;
  std::array<BlockText, 32> last_;
};
