#pragma once

// Names as BASIC compares them, without regard to the case of ASCII letters, and as messages show them.

#include <algorithm>
#include <string>
#include <string_view>

namespace zemhost {

constexpr char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

// A name or text in double quotes, as messages show it.
inline std::string inQuotes(std::string_view text) { return std::string("\"").append(text).append("\""); }

}  // namespace zemhost
