#include "host/basic/Declaration.h"

#include <algorithm>
#include <utility>

#include "host/basic/Scanner.h"
#include "host/runtime/Names.h"

namespace zemhost {
namespace {

constexpr Kind kTypes[] = {Kind::Integer, Kind::Boolean, Kind::String, Kind::FolderItem};

class DeclarationReader {
 public:
  explicit DeclarationReader(std::string_view text) : in_(text) {}

  Parsed<Declaration> read() {
    if (!readName(declaration_.name, "a method's name")) return error_;
    if (in_.take('(') && !in_.take(')') && !readArguments()) return error_;
    if (in_.takeWord("As") && !readKind(declaration_.result)) return error_;
    if (!in_.atEnd()) return in_.expected("the end");
    return std::move(declaration_);
  }

 private:
  bool fail(ParseError error) {
    error_ = std::move(error);
    return false;
  }

  bool readName(std::string &name, std::string_view what) {
    if (in_.takeWord("As")) return fail({in_.position(), "expected " + std::string(what) + " before As"});
    name = in_.takeName();
    return !name.empty() || fail(in_.expected(what));
  }

  bool readKind(Kind &kind) {
    const ParseError missing = in_.expected("a type (Integer, Boolean, String or FolderItem)");
    kind = kindFromName(in_.takeName());
    return kind != Kind::None || fail(missing);
  }

  bool readArguments() {
    do {
      const size_t start = in_.position();
      Argument argument{};
      if (!readName(argument.name, "an argument's name")) return false;
      if (!in_.takeWord("As")) return fail(in_.expected("As"));
      if (!readKind(argument.kind)) return false;
      auto &arguments = declaration_.arguments;
      if (arguments.size() == kMaxArguments)
        return fail({start, "more than " + std::to_string(kMaxArguments) + " arguments"});
      if (std::any_of(arguments.begin(), arguments.end(),
                      [&](const Argument &a) { return sameName(a.name, argument.name); }))
        return fail({start, "a second argument named " + argument.name});
      arguments.push_back(std::move(argument));
    } while (in_.take(','));
    return in_.take(')') || fail(in_.expected("\",\" or \")\""));
  }

  Scanner in_;
  Declaration declaration_;
  ParseError error_{};
};

}  // namespace

Parsed<Declaration> parseDeclaration(std::string_view text) { return DeclarationReader(text).read(); }

std::string toText(const Declaration &declaration) {
  std::string text = declaration.name;
  if (!declaration.arguments.empty()) {
    const char *before = "(";
    for (const Argument &argument : declaration.arguments) {
      text += before + argument.name + " As " + kindName(argument.kind);
      before = ", ";
    }
    text += ')';
  }
  if (declaration.result != Kind::None) text += std::string(" As ") + kindName(declaration.result);
  return text;
}

bool sameCall(const Declaration &a, const Declaration &b) {
  return sameName(a.name, b.name) &&
         std::equal(a.arguments.begin(), a.arguments.end(), b.arguments.begin(), b.arguments.end(),
                    [](const Argument &x, const Argument &y) { return x.kind == y.kind; });
}

Kind kindFromName(std::string_view name) {
  for (const Kind kind : kTypes)
    if (sameName(kindName(kind), name)) return kind;
  return Kind::None;
}

}  // namespace zemhost
