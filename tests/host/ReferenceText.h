#pragma once

// Plain and slow encoders and decoders of Unicode's forms, written from their definitions, to compare with.

#include <cstddef>
#include <string>
#include <string_view>

namespace reference {

inline std::string utf8(std::u32string_view text) {
  std::string out;
  const auto put = [&out](char32_t byte) { out += static_cast<char>(byte); };
  for (const char32_t c : text) {
    if (c < 0x80) {
      put(c);
    } else if (c < 0x800) {
      put(0xC0 | c >> 6);
      put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      put(0xE0 | c >> 12);
      put(0x80 | (c >> 6 & 0x3F));
      put(0x80 | (c & 0x3F));
    } else {
      put(0xF0 | c >> 18);
      put(0x80 | (c >> 12 & 0x3F));
      put(0x80 | (c >> 6 & 0x3F));
      put(0x80 | (c & 0x3F));
    }
  }
  return out;
}

// High byte first, no mark.
inline std::string utf16(std::u32string_view text) {
  std::string out;
  const auto put = [&out](char32_t unit) {
    out += static_cast<char>(unit >> 8 & 0xFF);
    out += static_cast<char>(unit & 0xFF);
  };
  for (const char32_t c : text) {
    if (c < 0x10000) {
      put(c);
    } else {
      put(0xD800 + ((c - 0x10000) >> 10));
      put(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
  }
  return out;
}

inline std::string swappedPairs(std::string bytes) {
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  return bytes;
}

// The characters of valid UTF-8 in the bytes, in order; bytes that belong to none are passed over and noted.
struct Found {
  std::u32string characters;
  bool invalid = false;
};

inline Found charactersOfUtf8(std::string_view bytes) {
  Found found;
  for (size_t i = 0; i < bytes.size();) {
    size_t length = 0;
    char32_t character = 0;
    // The shortest prefix here that is some character's encoding.
    const auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead < 0x80) {
      length = 1;
      character = lead;
    } else if (lead >= 0xC0 && lead < 0xF8) {
      length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
      character = lead & (0x7FU >> length);
      for (size_t k = 1; k < length; ++k) {
        const unsigned next = i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0;
        if ((next & 0xC0) != 0x80) {
          length = 0;
          break;
        }
        character = character << 6 | (next & 0x3F);
      }
      const bool surrogate = character >= 0xD800 && character < 0xE000;
      if (length != 0 && (surrogate || character > 0x10FFFF || utf8({&character, 1}).size() != length))
        length = 0;
    }
    if (length == 0) {
      found.invalid = true;
      ++i;
    } else {
      found.characters += character;
      i += length;
    }
  }
  return found;
}

// The same of UTF-16 with the high byte first, no mark followed.
inline Found charactersOfUtf16(std::string_view bytes) {
  Found found;
  const auto unitAt = [bytes](size_t i) -> char32_t {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[i]) << 8 |
                                 static_cast<unsigned char>(bytes[i + 1]));
  };
  for (size_t i = 0; i < bytes.size(); i += 2) {
    if (i + 1 == bytes.size()) {
      found.invalid = true;
      break;
    }
    const char32_t unit = unitAt(i);
    const char32_t next = i + 3 < bytes.size() ? unitAt(i + 2) : 0;
    if (unit < 0xD800 || unit >= 0xE000) {
      found.characters += unit;
    } else if (unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      const char32_t whole = 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
      found.characters += whole;
      i += 2;
    } else {
      found.invalid = true;
    }
  }
  return found;
}

}  // namespace reference
