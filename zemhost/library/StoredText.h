#pragma once

// Texts as the class hands them out unconverted, made into UTF-8.
//
// The class converts UTF-16 texts by itself. Texts of 8 bits, which older big-endian libraries hold, it gives
// as they stand in the file: for a song's text, a record of the encoding word, the length, two zero words
// and the bytes; for a playlist's name, the bytes alone.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zemhost {

// A song's text from the bytes that the class gives with ResultEncode 0x0100 and the code of its Encode
// method, both of a library of this LibType. Valid UTF-8; invalid input shows as U+FFFD, and each such place
// adds 1 to `lost` when that is given.
std::string songText(std::string_view bytes, uint32_t code, int32_t libType, size_t *lost = nullptr);

// A playlist's name, likewise, with the code of GetPlayListEncode.
std::string playlistNameText(std::string_view bytes, uint32_t code, int32_t libType, size_t *lost = nullptr);

// A song's path on the device from the bytes that the class gives with ResultEncode 0x0600.
std::string pathText(std::string_view bytes, int32_t libType);

// A text that the class has by number (GetUnknown), from the bytes it gives with ResultEncode 0x0100; there
// is no code for it. UTF-16 or an 8-bit record as above; bytes that are neither come as "0x" and their
// hexadecimal digits.
std::string otherText(std::string_view bytes);

// The same of a number that holds an Internet address, which players store as plain bytes.
std::string addressText(std::string_view bytes);

}  // namespace zemhost
