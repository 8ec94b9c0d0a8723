#pragma once

// Method declarations as plug-ins register them: "GetTitle(index As Integer) As String".

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/plugin/Value.h"

namespace zemhost {

struct ParseError {
  size_t position;      // byte offset in the text
  std::string message;  // what was expected and what stands there
};

// Either what was read or why it could not be.
template <typename T>
using Parsed = std::variant<T, ParseError>;

struct Argument {
  std::string name;
  Kind kind;
};

struct Declaration {
  std::string name;
  std::vector<Argument> arguments;
  Kind result = Kind::None;
};

// Reads one declaration: a name, arguments in parentheses where there are any, and a result where there is
// one. Words are matched without regard to case. Takes any bytes; the work is linear in their number.
Parsed<Declaration> parseDeclaration(std::string_view text);

// Reads a type's name; Kind::None when it is not one of Integer, Boolean, String and FolderItem.
Kind kindFromName(std::string_view name);

}  // namespace zemhost
