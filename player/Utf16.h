#pragma once

#include <string>
#include <string_view>

namespace player {

// UTF-8 of UTF-16, with U+FFFD for what is no character; a last odd byte is left out.
std::string utf8OfUtf16(std::string_view bytes, bool bigEndian);

}  // namespace player
