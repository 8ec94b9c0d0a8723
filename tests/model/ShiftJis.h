// Shift_JIS, worked out from the rows and cells of JIS X 0208 (jisx0208.txt) and the katakana of JIS X 0201.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace model {

// Code unit to Shift_JIS code, for the code points above U+00FF that have one.
const std::map<uint32_t, uint32_t> &ShiftJisCodes();

// UTF-16 to Shift_JIS, one unit at a time into a buffer that grows.
std::string UnicodeToShiftJis(const std::string &text);

// A stored text as Shift_JIS, by its encoding code.
std::string ConvertToShiftJis(const std::string &text, uint32_t encoding);

}  // namespace model
