// What targets of texts share: an input in parts, and a plain reader of UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

// The parts of an input between its NUL bytes, at least one.
std::vector<std::string> PartsOf(std::string_view input);

// The code points of a text. Ends the program as a fault when it is not UTF-8 as Unicode defines it.
std::u32string CodePoints(std::string_view text);

// Whether a terminal or the reader of a list could take the character for more than a character: controls of
// both sets, Unicode's own line ends, marks that change the direction of a line.
bool Steers(char32_t c);

}  // namespace fuzz
