#include "fuzz/Texts.h"

#include <algorithm>

#include "fuzz/Require.h"

namespace fuzz {

std::vector<std::string> PartsOf(std::string_view input) {
  std::vector<std::string> parts;
  for (size_t at = 0; at <= input.size();) {
    const size_t end = std::min(input.find('\0', at), input.size());
    parts.emplace_back(input.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

std::u32string CodePoints(std::string_view text) {
  std::u32string points;
  for (size_t at = 0; at < text.size();) {
    const auto first = static_cast<uint8_t>(text[at]);
    const size_t length = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    Require(first < 0x80 || (first >= 0xC2 && first <= 0xF4), "not UTF-8: a wrong first byte");
    Require(length <= text.size() - at, "not UTF-8: cut short");
    char32_t point = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (size_t i = 1; i < length; ++i) {
      const auto next = static_cast<uint8_t>(text[at + i]);
      Require((next & 0xC0) == 0x80, "not UTF-8: a wrong further byte");
      point = point << 6 | (next & 0x3FU);
    }
    Require(point >= kLeast[length] && point <= 0x10FFFF && (point < 0xD800 || point > 0xDFFF),
            "not UTF-8: a wrong code point");
    points += point;
    at += length;
  }
  return points;
}

bool Steers(char32_t c) {
  return c < ' ' || (c >= 0x7F && c < 0xA0) || c == 0x61C || c == 0x200E || c == 0x200F ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

}  // namespace fuzz
