#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "db/LargePages.h"

// The bytes of a library's texts, packed into a few blocks that go all at once: a load then allocates nothing
// per text.
class TextArena {
 public:
  // A copy of the bytes that stays where it is as long as the arena lives. Throws std::bad_alloc.
  std::string_view Keep(std::string_view bytes);

 private:
  std::vector<LargeBuffer> blocks_;
  size_t blockSize_ = 0;
  size_t used_ = 0;  // of the last block
};
