#pragma once

// The encodings that the host knows, one row each.

#include <cstdint>
#include <string_view>

namespace zemhost {

enum class Form : uint8_t {
  Iconv,  // left to the C library
  Utf8,
  Utf16,
  Utf32,
};

enum class ByteOrder : uint8_t {
  Marked,  // high byte first unless a byte-order mark says otherwise
  HighFirst,
  LowFirst,
};

struct EncodingRow {
  uint32_t code;
  Form form = Form::Iconv;
  ByteOrder order = ByteOrder::HighFirst;
  const char *name;
  const char *iconvName = nullptr;  // of those left to the C library
};

constexpr EncodingRow kEncodings[] = {
    {.code = 0x0000, .name = "Mac Roman", .iconvName = "MACINTOSH"},
    {.code = 0x0007, .name = "Mac Cyrillic", .iconvName = "MAC-CYRILLIC"},
    {.code = 0x001D, .name = "Mac Central European", .iconvName = "MAC-CENTRALEUROPE"},
    {.code = 0x0100, .form = Form::Utf16, .order = ByteOrder::Marked, .name = "UTF-16"},
    {.code = 0x0201, .name = "ISO-8859-1", .iconvName = "ISO-8859-1"},
    {.code = 0x0202, .name = "ISO-8859-2", .iconvName = "ISO-8859-2"},
    {.code = 0x0203, .name = "ISO-8859-3", .iconvName = "ISO-8859-3"},
    {.code = 0x0204, .name = "ISO-8859-4", .iconvName = "ISO-8859-4"},
    {.code = 0x0205, .name = "ISO-8859-5", .iconvName = "ISO-8859-5"},
    {.code = 0x0206, .name = "ISO-8859-6", .iconvName = "ISO-8859-6"},
    {.code = 0x0207, .name = "ISO-8859-7", .iconvName = "ISO-8859-7"},
    {.code = 0x0208, .name = "ISO-8859-8", .iconvName = "ISO-8859-8"},
    {.code = 0x0209, .name = "ISO-8859-9", .iconvName = "ISO-8859-9"},
    {.code = 0x020A, .name = "ISO-8859-10", .iconvName = "ISO-8859-10"},
    {.code = 0x020D, .name = "ISO-8859-13", .iconvName = "ISO-8859-13"},
    {.code = 0x020E, .name = "ISO-8859-14", .iconvName = "ISO-8859-14"},
    {.code = 0x020F, .name = "ISO-8859-15", .iconvName = "ISO-8859-15"},
    {.code = 0x0400, .name = "DOS Latin US", .iconvName = "CP437"},
    {.code = 0x0410, .name = "DOS Latin 1", .iconvName = "CP850"},
    {.code = 0x0420, .name = "DOS Japanese", .iconvName = "CP932"},
    {.code = 0x0421, .name = "DOS Simplified Chinese", .iconvName = "CP936"},
    {.code = 0x0422, .name = "DOS Korean", .iconvName = "CP949"},
    {.code = 0x0423, .name = "DOS Traditional Chinese", .iconvName = "CP950"},
    {.code = 0x0500, .name = "Windows-1252", .iconvName = "CP1252"},
    {.code = 0x0501, .name = "Windows-1250", .iconvName = "CP1250"},
    {.code = 0x0502, .name = "Windows-1251", .iconvName = "CP1251"},
    {.code = 0x0503, .name = "Windows-1253", .iconvName = "CP1253"},
    {.code = 0x0504, .name = "Windows-1254", .iconvName = "CP1254"},
    {.code = 0x0505, .name = "Windows-1255", .iconvName = "CP1255"},
    {.code = 0x0506, .name = "Windows-1256", .iconvName = "CP1256"},
    {.code = 0x0507, .name = "Windows-1257", .iconvName = "CP1257"},
    {.code = 0x0600, .name = "ASCII", .iconvName = "ASCII"},
    {.code = 0x0631, .name = "GBK", .iconvName = "GBK"},
    {.code = 0x0632, .name = "GB18030", .iconvName = "GB18030"},
    {.code = 0x0820, .name = "ISO-2022-JP", .iconvName = "ISO-2022-JP"},
    {.code = 0x0920, .name = "EUC-JP", .iconvName = "EUC-JP"},
    {.code = 0x0930, .name = "EUC-CN", .iconvName = "EUC-CN"},
    {.code = 0x0931, .name = "EUC-TW", .iconvName = "EUC-TW"},
    {.code = 0x0940, .name = "EUC-KR", .iconvName = "EUC-KR"},
    {.code = 0x0A01, .name = "Shift_JIS", .iconvName = "SHIFT_JIS"},
    {.code = 0x0A02, .name = "KOI8-R", .iconvName = "KOI8-R"},
    {.code = 0x0A03, .name = "Big5", .iconvName = "BIG5"},
    {.code = 0x0A08, .name = "KOI8-U", .iconvName = "KOI8-U"},
    {.code = 0x08000100, .form = Form::Utf8, .name = "UTF-8"},
    {.code = 0x0C000100, .form = Form::Utf32, .order = ByteOrder::Marked, .name = "UTF-32"},
    {.code = 0x10000100, .form = Form::Utf16, .order = ByteOrder::HighFirst, .name = "UTF-16BE"},
    {.code = 0x14000100, .form = Form::Utf16, .order = ByteOrder::LowFirst, .name = "UTF-16LE"},
    {.code = 0x18000100, .form = Form::Utf32, .order = ByteOrder::HighFirst, .name = "UTF-32BE"},
    {.code = 0x1C000100, .form = Form::Utf32, .order = ByteOrder::LowFirst, .name = "UTF-32LE"},
};

// Where the published mapping of an encoding and the C library's differ: the character that the mapping
// gives, and the one that the C library puts in its place.
struct MappingDifference {
  uint32_t code;
  char32_t published;
  char32_t iconvHas;
};

constexpr MappingDifference kMappingDifferences[] = {
    {0x0000, 0x2206, 0x0394},  // 0xC6 INCREMENT
    {0x0000, 0xF8FF, 0xE01E},  // 0xF0 the maker's logo
    {0x0A01, 0x005C, 0xFF3C},  // 0x815F REVERSE SOLIDUS; 0x5C is the yen sign
};

}  // namespace zemhost
