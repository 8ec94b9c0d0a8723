#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "db/LargePages.h"

// The bytes of a library's texts, packed into a few blocks that go all at once: a load then allocates nothing
// per text.
class TextArena {
 public:
  // A copy of the bytes that stays where it is as long as the arena lives. Throws std::bad_alloc.
  std::string_view Keep(std::string_view bytes);

  // The same for one of many texts of a kind. Songs of one album follow each other, so the text kept last for
  // the kind is handed out again when it is the same: that costs a comparison instead of memory.
  std::string_view Keep(std::string_view bytes, uint32_t kind) {
    std::string_view &last = last_[kind % last_.size()];
    if (last != bytes) last = Keep(bytes);
    return last;
  }

 private:
  std::vector<LargeBuffer> blocks_;
  size_t blockSize_ = 0;
  size_t used_ = 0;  // of the last block
  std::array<std::string_view, 32> last_;
};
