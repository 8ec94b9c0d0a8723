#include "player/Utf16.h"

#include <cstddef>
#include <cstdint>

namespace player {

namespace {

void appendUtf8(std::string &text, uint32_t character) {
  const auto add = [&text](uint32_t byte) { text += static_cast<char>(byte); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | character >> 6);
    add(0x80 | (character & 0x3F));
  } else {
    if (character < 0x10000) {
      add(0xE0 | character >> 12);
    } else {
      add(0xF0 | character >> 18);
      add(0x80 | (character >> 12 & 0x3F));
    }
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  }
}

}  // namespace

std::string utf8OfUtf16(std::string_view bytes, bool bigEndian) {
  const auto unitAt = [&](size_t at) -> uint32_t {
    const uint32_t first = static_cast<unsigned char>(bytes[at]);
    const uint32_t second = static_cast<unsigned char>(bytes[at + 1]);
    return bigEndian ? first << 8 | second : second << 8 | first;
  };
  std::string text;
  for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
    uint32_t character = unitAt(at);
    if (character >= 0xD800 && character < 0xE000) {
      const uint32_t low = character < 0xDC00 && at + 3 < bytes.size() ? unitAt(at + 2) : 0;
      if (low >= 0xDC00 && low < 0xE000) {
        character = 0x10000 + ((character & 0x3FF) << 10 | (low & 0x3FF));
        at += 2;
      } else {
        character = 0xFFFD;
      }
    }
    appendUtf8(text, character);
  }
  return text;
}

}  // namespace player
