#pragma once

#include <string>
#include <string_view>

// The units of `text` as UTF-16 bytes, high byte first, without a mark.
inline std::string Utf16(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit >> 8));
    bytes.push_back(static_cast<char>(unit & 0xFF));
  }
  return bytes;
}
