// The host's reader of method declarations: what it takes, it writes and takes again; what it refuses, it
// explains on one line.

#include <cctype>
#include <string>
#include <string_view>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "host/basic/Declaration.h"

namespace {

using fuzz::Require;
using namespace zemhost;

void IsWrittenAndReadAgain(const Declaration &declaration) {
  const std::string text = toText(declaration);
  const Parsed<Declaration> again = parseDeclaration(text);
  Require(std::holds_alternative<Declaration>(again), "refused: " + text);
  const auto &same = std::get<Declaration>(again);
  Require(toText(same) == text && sameCall(same, declaration) && same.result == declaration.result,
          "read otherwise: " + text);
  Require(declaration.arguments.size() <= kMaxArguments, "more arguments than there may be");
  for (const Argument &argument : declaration.arguments) {
    Require(!argument.name.empty() && argument.kind != Kind::None, "an argument without name or type");
  }
}

void IsExplained(std::string_view text, const ParseError &error) {
  Require(error.position <= text.size(), "a fault behind the end");
  const std::string line = explain("declaration", text, error);
  Require(!error.message.empty() && line.find('\n') == std::string::npos, "no single line: " + line);
  Require(line.find('\0') == std::string::npos, "a NUL in: " + line);
}

}  // namespace

FUZZ_TARGET(declaration) {
  const std::string_view text(reinterpret_cast<const char *>(data), size);
  const Parsed<Declaration> parsed = parseDeclaration(text);
  if (const auto *error = std::get_if<ParseError>(&parsed)) {
    IsExplained(text, *error);
  } else {
    IsWrittenAndReadAgain(std::get<Declaration>(parsed));
  }
}
