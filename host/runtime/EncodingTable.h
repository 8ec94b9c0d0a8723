#pragma once

// The encodings that the host knows, one row each: Mac OS code, usual name, name in the C library's iconv.

#include <cstdint>
#include <string_view>

namespace zemhost {

// What converts between an encoding and code points, and how far to skip past a unit that is no text.
enum class Form : uint8_t {
  Bytes,     // a set of its own
  Utf8,      // this and the forms below hold every character
  Wide16,    // 16-bit units of fixed byte order
  Wide32,    // 32-bit units of fixed byte order
  Marked16,  // 16-bit units, high byte first unless a byte-order mark stands at the start
  Marked32,  // 32-bit units likewise
};

struct EncodingRow {
  uint32_t code;
  const char *name;
  const char *iconvName;
  Form form = Form::Bytes;
};

constexpr EncodingRow kEncodings[] = {
    {0x0000, "Mac Roman", "MACINTOSH"},
    {0x0007, "Mac Cyrillic", "MAC-CYRILLIC"},
    {0x001D, "Mac Central European", "MAC-CENTRALEUROPE"},
    {0x0100, "UTF-16", "UTF-16BE", Form::Marked16},
    {0x0201, "ISO-8859-1", "ISO-8859-1"},
    {0x0202, "ISO-8859-2", "ISO-8859-2"},
    {0x0203, "ISO-8859-3", "ISO-8859-3"},
    {0x0204, "ISO-8859-4", "ISO-8859-4"},
    {0x0205, "ISO-8859-5", "ISO-8859-5"},
    {0x0206, "ISO-8859-6", "ISO-8859-6"},
    {0x0207, "ISO-8859-7", "ISO-8859-7"},
    {0x0208, "ISO-8859-8", "ISO-8859-8"},
    {0x0209, "ISO-8859-9", "ISO-8859-9"},
    {0x020A, "ISO-8859-10", "ISO-8859-10"},
    {0x020D, "ISO-8859-13", "ISO-8859-13"},
    {0x020E, "ISO-8859-14", "ISO-8859-14"},
    {0x020F, "ISO-8859-15", "ISO-8859-15"},
    {0x0400, "DOS Latin US", "CP437"},
    {0x0410, "DOS Latin 1", "CP850"},
    {0x0420, "DOS Japanese", "CP932"},
    {0x0421, "DOS Simplified Chinese", "CP936"},
    {0x0422, "DOS Korean", "CP949"},
    {0x0423, "DOS Traditional Chinese", "CP950"},
    {0x0500, "Windows-1252", "CP1252"},
    {0x0501, "Windows-1250", "CP1250"},
    {0x0502, "Windows-1251", "CP1251"},
    {0x0503, "Windows-1253", "CP1253"},
    {0x0504, "Windows-1254", "CP1254"},
    {0x0505, "Windows-1255", "CP1255"},
    {0x0506, "Windows-1256", "CP1256"},
    {0x0507, "Windows-1257", "CP1257"},
    {0x0600, "ASCII", "ASCII"},
    {0x0631, "GBK", "GBK"},
    {0x0632, "GB18030", "GB18030"},
    {0x0820, "ISO-2022-JP", "ISO-2022-JP"},
    {0x0920, "EUC-JP", "EUC-JP"},
    {0x0930, "EUC-CN", "EUC-CN"},
    {0x0931, "EUC-TW", "EUC-TW"},
    {0x0940, "EUC-KR", "EUC-KR"},
    {0x0A01, "Shift_JIS", "SHIFT_JIS"},
    {0x0A02, "KOI8-R", "KOI8-R"},
    {0x0A03, "Big5", "BIG5"},
    {0x0A08, "KOI8-U", "KOI8-U"},
    {0x08000100, "UTF-8", "UTF-8", Form::Utf8},
    {0x0C000100, "UTF-32", "UTF-32BE", Form::Marked32},
    {0x10000100, "UTF-16BE", "UTF-16BE", Form::Wide16},
    {0x14000100, "UTF-16LE", "UTF-16LE", Form::Wide16},
    {0x18000100, "UTF-32BE", "UTF-32BE", Form::Wide32},
    {0x1C000100, "UTF-32LE", "UTF-32LE", Form::Wide32},
};

// Where the published mapping of an encoding and the C library's differ: the character that the mapping
// gives, and the one that the C library puts in its place.
struct MappingDifference {
  uint32_t code;
  char32_t published;
  char32_t libraryHas;
};

constexpr MappingDifference kMappingDifferences[] = {
    {0x0000, 0x2206, 0x0394},  // 0xC6 INCREMENT
    {0x0000, 0xF8FF, 0xE01E},  // 0xF0 the maker's logo
    {0x0A01, 0x005C, 0xFF3C},  // 0x815F REVERSE SOLIDUS; 0x5C is the yen sign
};

}  // namespace zemhost
