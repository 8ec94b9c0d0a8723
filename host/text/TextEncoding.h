#pragma once

// Text encodings by their Mac OS codes, and conversion between them: Unicode's forms here, all others through
// the C library's iconv.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zemhost {

constexpr uint32_t kMacRoman = 0;
constexpr uint32_t kUtf16 = 0x0100;
constexpr uint32_t kAscii = 0x0600;
constexpr uint32_t kShiftJis = 0x0A01;
constexpr uint32_t kUtf8 = 0x08000100;

struct Conversion {
  std::string bytes;
  size_t replacements = 0;  // characters or invalid units of the input that a replacement stands for
  bool known = true;        // false: one of the two encodings is unknown and the bytes are unchanged
};

// Converts bytes of one encoding into another. Every invalid or incomplete unit of the input and every
// character that the target lacks becomes one replacement character (U+FFFD, or '?' where the target has
// none) and is counted; nothing is dropped. UTF-16 (0x0100) is read with the high byte first unless a
// byte-order mark says otherwise, the mark is not kept, and it is written with the high byte first and no
// mark. Converting to the same encoding repairs invalid text. An unknown encoding leaves the bytes unchanged.
Conversion convertText(std::string_view bytes, uint32_t from, uint32_t to);

// True when the bytes are UTF-8 throughout: no long forms, no surrogates, nothing past U+10FFFF.
bool isValidUtf8(std::string_view bytes);

// True when the code is one that convertText can read and write. A C library without its conversion modules
// leaves only ASCII and Unicode's forms.
bool isKnownEncoding(uint32_t code);

// The usual name ("UTF-8", "Shift_JIS"); for an unknown code "encoding 16777216".
std::string encodingName(uint32_t code);

// The code of a usual name or an iconv name, without regard to case; nothing when the name is unknown.
std::optional<uint32_t> encodingFromName(std::string_view name);

}  // namespace zemhost
