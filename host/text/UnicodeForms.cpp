#include "host/text/UnicodeForms.h"

namespace zemhost::unicode {

char32_t readUtf8(std::string_view bytes, size_t &at) {
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

size_t wholeCharacters(std::string_view utf8, size_t most) {
  if (utf8.size() <= most) return utf8.size();
  while (most > 0 && isContinuation(utf8[most])) --most;
  return most;
}

void appendUtf8(std::string &out, char32_t c) {
  const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
    out += tail(0);
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | c >> 12);
    out += tail(6);
    out += tail(0);
  } else {
    out += static_cast<char>(0xF0 | c >> 18);
    out += tail(12);
    out += tail(6);
    out += tail(0);
  }
}

void appendUtf16(std::string &out, char32_t c, bool highFirst) {
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

void appendUtf32(std::string &out, char32_t c, bool highFirst) {
  for (unsigned i = 0; i < 4; ++i) out += static_cast<char>(c >> 8 * (highFirst ? 3 - i : i) & 0xFF);
}

}  // namespace zemhost::unicode
