#pragma once

// 32-bit words of a database file, by value, so that every machine reads the same.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace player {

// The word at an offset, four bytes of which must be there.
inline uint32_t wordAt(std::string_view bytes, size_t offset, bool bigEndian) {
  uint32_t word = 0;
  for (size_t i = 0; i < 4; ++i) {
    const size_t at = offset + (bigEndian ? i : 3 - i);
    word = word << 8 | static_cast<unsigned char>(bytes[at]);
  }
  return word;
}

}  // namespace player
