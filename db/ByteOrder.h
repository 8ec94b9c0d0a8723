#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "db/ByteString.h"

// Words of a file are read from its bytes by value, so the same source gives the same answers on machines of
// either byte order; the four swaps below reverse unconditionally and are called where the variant asks for
// it.

// The word at `bytes`, most significant byte first.
constexpr uint32_t BigEndianWord(const uint8_t *bytes) {
  return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
         static_cast<uint32_t>(bytes[2]) << 8 | static_cast<uint32_t>(bytes[3]);
}

// Reverses the four bytes of the word in place.
inline void Swap4Byte(uint32_t *sb) {
  *sb = *sb >> 24 | (*sb >> 8 & 0xff00) | (*sb << 8 & 0xff0000) | *sb << 24;
}

// Exchanges the two bytes of the word in place.
inline void Swap2ByteMW(uint16_t *sb) { *sb = static_cast<uint16_t>(*sb >> 8 | *sb << 8); }

// Exchanges the bytes of each pair of the n bytes at obj, in place. For an odd n the last byte is exchanged
// with the one just past the n bytes, which must exist. Null or 0 bytes: nothing.
void Swap2ByteString(uint8_t *obj, size_t n);

// One byte for each UTF-16 unit (high byte first) of *a whose high byte is 0 and low byte is not; every other
// unit is dropped, and so is an odd last byte. Null gives an empty text.
ByteString RemoveZeroFromAsciiUTF16(const ByteString *a);

// The same into `out`, which has room for text.size() / 2 bytes. Returns the number of bytes written.
size_t RemoveZeroFromAsciiUTF16(std::string_view text, char *out);
