#pragma once

// Reads and writes single characters of Unicode's forms as bytes, in either byte order. For all rooms alike:
// a header alone, that knows nothing of files.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace unicode {

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
inline char32_t readUtf8(std::string_view bytes, size_t &at) {
  const auto lead = static_cast<unsigned char>(bytes[at++]);
  if (lead < 0x80) return lead;
  if (lead < 0xC2 || lead > 0xF4) return kNoCharacter;
  const int more = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
  char32_t c = lead & (0x3FU >> more);
  // The second byte has a shorter range after four leads: no long forms, no surrogates, nothing past 10FFFF.
  unsigned least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  for (int i = 0; i < more; ++i) {
    const unsigned next = at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
    if (next < least || next > most) return kNoCharacter;
    c = c << 6 | (next & 0x3F);
    ++at;
    least = 0x80;
    most = 0xBF;
  }
  return c;
}

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
inline size_t wholeCharacters(std::string_view utf8, size_t most) {
  if (utf8.size() <= most) return utf8.size();
  while (most > 0 && isContinuation(utf8[most])) --most;
  return most;
}

// Each writer appends one character.
inline void appendBeyondAscii(std::string &out, char32_t c) {
  const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x800) {
    out.append({static_cast<char>(0xC0 | c >> 6), tail(0)});
  } else if (c < 0x10000) {
    out.append({static_cast<char>(0xE0 | c >> 12), tail(6), tail(0)});
  } else {
    out.append({static_cast<char>(0xF0 | c >> 18), tail(12), tail(6), tail(0)});
  }
}

// In two parts, of which the compilers put the one that most characters take into the loops over a text.
inline void appendUtf8(std::string &out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else {
    appendBeyondAscii(out, c);
  }
}

inline void appendUtf16(std::string &out, char32_t c, bool highFirst) {
  const auto append = [&](char32_t unit) {
    const auto high = static_cast<char>(unit >> 8);
    const auto low = static_cast<char>(unit & 0xFF);
    out += highFirst ? high : low;
    out += highFirst ? low : high;
  };
  if (c >= 0x10000) {
    append(0xD800 + ((c - 0x10000) >> 10));
    append(0xDC00 + ((c - 0x10000) & 0x3FF));
  } else {
    append(c);
  }
}

inline void appendUtf32(std::string &out, char32_t c, bool highFirst) {
  for (unsigned i = 0; i < 4; ++i) out += static_cast<char>(c >> 8 * (highFirst ? 3 - i : i) & 0xFF);
}

}  // namespace unicode
