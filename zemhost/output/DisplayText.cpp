#include "zemhost/output/DisplayText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <utf8proc.h>

#include "platform/carbon/UnicodeForms.h"

namespace zemhost {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

bool isPlainAscii(std::string_view text) {
  for (const char c : text) {
    if (c < ' ' || c > '~') return false;
  }
  return true;
}

const utf8proc_uint8_t *asUtf8(const char *bytes) {
  return reinterpret_cast<const utf8proc_uint8_t *>(bytes);
}

struct CodePoint {
  utf8proc_int32_t value;  // negative for bytes that are not UTF-8
  size_t bytes;
};

// The code point at the start of a text that is not empty.
CodePoint firstCodePoint(std::string_view text) {
  size_t used = 0;
  const char32_t c = unicode::readUtf8(text, used);
  return {c == unicode::kNoCharacter ? -1 : static_cast<utf8proc_int32_t>(c), used};
}

bool isHarmful(utf8proc_int32_t c) {
  const bool control = c >= 0x7F && c < 0xA0;
  const bool separator = c == 0x2028 || c == 0x2029;
  const bool bidirectional = c == 0x61C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) ||
                             (c >= 0x2066 && c <= 0x2069);
  return c < 0 || control || separator || bidirectional;
}

size_t widthOf(utf8proc_int32_t c) {
  // The vowels and final consonants of decomposed Hangul join the syllable before them.
  if ((c >= 0x1160 && c <= 0x11FF) || (c >= 0xD7B0 && c <= 0xD7FF)) return 0;
  // utf8proc gives spacing marks no width of their own; terminals do.
  if (utf8proc_category(c) == UTF8PROC_CATEGORY_MC) return 1;
  return static_cast<size_t>(utf8proc_charwidth(c));
}

}  // namespace

std::string safeText(std::string_view bytes) {
  if (isPlainAscii(bytes)) return std::string(bytes);
  std::string safe;
  safe.reserve(bytes.size());
  while (!bytes.empty()) {
    const CodePoint c = firstCodePoint(bytes);
    if (c.value >= 0 && c.value < ' ') {
      safe += "\xE2\x90";
      safe += static_cast<char>(0x80 + c.value);
    } else if (c.value == 0x7F) {
      safe += "\xE2\x90\xA1";
    } else if (isHarmful(c.value)) {
      safe += kReplacement;
    } else {
      safe += bytes.substr(0, c.bytes);
    }
    bytes.remove_prefix(c.bytes);
  }
  return safe;
}

std::string escapedJson(std::string_view json) {
  if (isPlainAscii(json)) return std::string(json);
  std::string safe;
  safe.reserve(json.size());
  while (!json.empty()) {
    const CodePoint c = firstCodePoint(json);
    if (isHarmful(c.value)) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c.value));
      safe += escape.data();
    } else {
      safe += json.substr(0, c.bytes);
    }
    json.remove_prefix(c.bytes);
  }
  return safe;
}

std::string oneLine(std::string_view text) {
  std::string line(text);
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
  std::replace_if(line.begin(), line.end(), isControl, ' ');
  // Unicode's own line ends, which some readers of lists honour: U+0085, U+2028, U+2029.
  for (const std::string_view end : {"\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
    for (size_t at = 0; (at = line.find(end, at)) != std::string::npos;) line.replace(at, end.size(), 1, ' ');
  }
  return line;
}

size_t displayWidth(std::string_view text) {
  if (isPlainAscii(text)) return text.size();
  size_t width = 0;
  while (!text.empty()) {
    const CodePoint c = firstCodePoint(text);
    width += widthOf(c.value);
    text.remove_prefix(c.bytes);
  }
  return width;
}

std::string cutToWidth(std::string_view text, size_t width) {
  if (width == 0) return {};
  if (text.size() <= width) return std::string(text);  // no character takes more cells than bytes
  size_t used = 0;                                     // cells up to `at`
  size_t kept = 0;  // bytes of the longest beginning that leaves room for the ellipsis
  utf8proc_int32_t state = 0;
  utf8proc_int32_t previous = 0;
  for (size_t at = 0; at < text.size();) {
    const CodePoint c = firstCodePoint(text.substr(at));
    const bool boundary = at == 0 || utf8proc_grapheme_break_stateful(previous, c.value, &state);
    if (boundary && used < width) kept = at;
    used += widthOf(c.value);
    if (used > width) return std::string(text.substr(0, kept)).append(kEllipsis);
    previous = c.value;
    at += c.bytes;
  }
  return std::string(text);
}

namespace {

// Takes valid UTF-8.
std::string mappedText(const std::string &text, int options) {
  utf8proc_uint8_t *mapped = nullptr;
  const utf8proc_ssize_t length =
      utf8proc_map(asUtf8(text.data()), static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                   static_cast<utf8proc_option_t>(options));
  if (length < 0) throw std::bad_alloc();  // valid UTF-8 fails for no other reason
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
  return {reinterpret_cast<const char *>(mapped), static_cast<size_t>(length)};
}

std::string validText(std::string_view bytes) {
  std::string valid;
  while (!bytes.empty()) {
    const CodePoint c = firstCodePoint(bytes);
    valid += c.value < 0 ? kReplacement : bytes.substr(0, c.bytes);
    bytes.remove_prefix(c.bytes);
  }
  return valid;
}

}  // namespace

std::string composedText(std::string_view bytes) {
  if (isPlainAscii(bytes)) return std::string(bytes);
  return mappedText(validText(bytes), UTF8PROC_STABLE | UTF8PROC_COMPOSE);
}

std::string foldedText(std::string_view bytes) {
  if (isPlainAscii(bytes)) {
    std::string folded(bytes);
    for (char &c : folded) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return folded;
  }
  return mappedText(safeText(bytes), UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD);
}

}  // namespace zemhost
