#pragma once

// Method declarations as plug-ins register them: "GetTitle(index As Integer) As String".

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/basic/ParseResult.h"
#include "host/binding/Value.h"

namespace zemhost {

constexpr size_t kMaxArguments = 32;

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
// one. Words are matched without regard to case. Takes any bytes; the work is linear in their number. At most
// kMaxArguments arguments, each of another name.
Parsed<Declaration> parseDeclaration(std::string_view text);

// The declaration as this host writes it, with single blanks: "GetTitle(index As Integer) As String".
std::string toText(const Declaration &declaration);

// True when the two names are equal without regard to case and the arguments have the same kinds: host code
// could not tell them apart.
bool sameCall(const Declaration &a, const Declaration &b);

// Reads a type's name; Kind::None when it is not one of Integer, Boolean, String and FolderItem.
Kind kindFromName(std::string_view name);

}  // namespace zemhost
