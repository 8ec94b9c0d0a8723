#pragma once

// Reads and writes single characters of Unicode's forms as bytes, in either byte order.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zemhost::unicode {

// What the readers give for bytes that are no character.
constexpr char32_t kNoCharacter = 0xFFFFFFFF;
// What stands for such bytes in a text.
constexpr char32_t kReplacement = 0xFFFD;

// True for the bytes of UTF-8 that go on with a character.
constexpr bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

constexpr bool isSurrogate(char32_t c) { return c >= 0xD800 && c < 0xE000; }

// Each reader takes the character at `at`, which is before the end, and moves `at` behind it. Bytes that are
// none give kNoCharacter: in UTF-8 the longest run that could have begun a character, else one unit, or what
// is left of one at the end.
char32_t readUtf8(std::string_view bytes, size_t &at);

template <bool highFirst>
char32_t readUtf16(std::string_view bytes, size_t &at) {
  const auto unit = [bytes](size_t i) -> char32_t {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return highFirst ? char32_t{first} << 8 | second : char32_t{second} << 8 | first;
  };
  const size_t left = bytes.size() - at;
  if (left < 2) {
    at = bytes.size();
    return kNoCharacter;
  }
  const char32_t one = unit(at);
  at += 2;
  if (!isSurrogate(one)) return one;
  if (one >= 0xDC00 || left < 4) return kNoCharacter;
  const char32_t two = unit(at);
  if (two < 0xDC00 || two >= 0xE000) return kNoCharacter;
  at += 2;
  return 0x10000 + ((one - 0xD800) << 10) + (two - 0xDC00);
}

template <bool highFirst>
char32_t readUtf32(std::string_view bytes, size_t &at) {
  if (bytes.size() - at < 4) {
    at = bytes.size();
    return kNoCharacter;
  }
  char32_t c = 0;
  for (size_t i = 0; i < 4; ++i) c = c << 8 | static_cast<unsigned char>(bytes[at + (highFirst ? i : 3 - i)]);
  at += 4;
  return c > 0x10FFFF || isSurrogate(c) ? kNoCharacter : c;
}

// The size of the longest beginning of UTF-8 that takes at most `most` bytes and cuts no character.
size_t wholeCharacters(std::string_view utf8, size_t most);

// Each writer appends one character.
void appendUtf8(std::string &out, char32_t c);
void appendUtf16(std::string &out, char32_t c, bool highFirst);
void appendUtf32(std::string &out, char32_t c, bool highFirst);

}  // namespace zemhost::unicode
