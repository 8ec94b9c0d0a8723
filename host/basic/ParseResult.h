#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

namespace zemhost {

struct ParseError {
  size_t position;      // byte offset in the text
  std::string message;  // what was expected, or what is wrong there
};

// Either what was read or why it could not be.
template <typename T>
using Parsed = std::variant<T, ParseError>;

// One line for a person: what the text is ("call", "declaration"), the text in quotes, the message and the
// column, counted in characters from 1.
std::string explain(std::string_view what, std::string_view text, const ParseError &error);

// The text in double quotes as BASIC writes it: quotes doubled, control characters as Chr(9). Bytes that are
// not UTF-8 show as U+FFFD.
std::string quoteText(std::string_view text);

}  // namespace zemhost
