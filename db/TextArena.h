#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "db/ByteString.h"

// The bytes of a library's texts, packed into a few blocks: a load then allocates nothing per text. A block
// stays as long as the arena or any text that shares it.
class TextArena {
 public:
  // A copy of the bytes, which stays where it is as long as the arena lives. Throws std::bad_alloc.
  BlockText Keep(std::string_view bytes);

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

  std::vector<BlockUse> blocks_;
  size_t blockRoom_ = 0;
  size_t used_ = 0;  // of the last block
  std::array<BlockText, 32> last_;
};
