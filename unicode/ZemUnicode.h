#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// UTF-16 to Shift_JIS by this library's own tables: the Unicode Consortium's SHIFTJIS.TXT, not code page 932.
//
// A code unit without a mapping repeats the result of the unit before it in the same conversion (nothing at
// the start of a conversion). One byte-order mark reads the other way round than usual: after FE FF the units
// are taken low byte first, after FF FE (and without a mark) high byte first. Both are the contract, not
// accidents.
//
// Nothing here throws. When memory runs out the text converted so far is the answer.

// Returns the Shift_JIS code of the UTF-16 code unit with high byte c1 and low byte c2: a double-byte code
// with its lead byte high, a single-byte code below 0x100, or 0 for nothing to write. The calls made one
// after another count as one conversion, whatever the functions below do in between: an unmapped unit gives
// the result of the call before it, and UTSchangeOneChar(0, 0) starts anew. For one thread at a time.
std::uint16_t UTSchangeOneChar(std::uint8_t c1, std::uint8_t c2);

// Returns the Shift_JIS text of the strSize bytes of UTF-16 at in_con; empty when strSize is 0 or less.
// An odd last byte is paired with the byte after it, which must then be readable.
std::string lUnicode2SJIS(const char *in_con, std::int32_t strSize);

// Returns the Shift_JIS text of a stored string `a` whose encoding code is `encode`. 3: the bytes as they
// are. 1: UTF-16. Any other: text made only of units 00 01 to 00 FF gives their second bytes as they stand,
// all other text is converted as UTF-16. An odd last byte is paired with a zero.
std::string ConvSJIS(std::string_view a, std::int32_t encode);

// Writes what ConvSJIS(a, encode) returns to `out` and returns its length in bytes. `out` must have room for
// a.size() + 1 bytes, all of which may be written to. Allocates nothing.
std::size_t ConvSJISInto(std::string_view a, std::int32_t encode, char *out);
