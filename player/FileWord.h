#pragma once

// 32-bit words of a database file, by value, so that every machine reads the same.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace player {

// The word at an offset, four bytes of which must be there.
inline uint32_t wordAt(std::string_view bytes, size_t offset, bool bigEndian) {
  const auto byte = [&](size_t i) { return uint32_t{static_cast<unsigned char>(bytes[offset + i])}; };
  return bigEndian ? byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3)
                   : byte(3) << 24 | byte(2) << 16 | byte(1) << 8 | byte(0);
}

}  // namespace player
