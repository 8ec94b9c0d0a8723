// The host's reader of call texts: what it takes is written anew and taken again with the same values; what
// it refuses, it explains on one line.

#include <string>
#include <string_view>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "host/basic/CallText.h"

namespace {

using fuzz::Require;
using namespace zemhost;

std::string Written(const Value &value) {
  switch (value.kind()) {
    case Kind::Integer:
      return std::to_string(value.integer());
    case Kind::Boolean:
      return value.boolean() ? "True" : "False";
    case Kind::FolderItem:
      return "nil";
    case Kind::String:
    case Kind::None:
      break;
  }
  std::string text = "\"";
  for (const char c : value.text()) text += c == '"' ? std::string("\"\"") : std::string(1, c);
  return text + '"';
}

std::string Written(const CallText &call) {
  std::string text = call.name;
  if (call.form == CallText::Form::Assign) return text + " = " + Written(call.arguments.at(0));
  if (call.form == CallText::Form::Name) return text;
  const char *before = "(";
  if (call.arguments.empty()) text += before;
  for (const Value &value : call.arguments) {
    text += before + Written(value);
    before = ", ";
  }
  return text + ')';
}

void IsReadAgain(const CallText &call) {
  const std::string text = Written(call);
  const Parsed<CallText> parsed = parseCallText(text);
  Require(std::holds_alternative<CallText>(parsed), "refused: " + text);
  const auto &again = std::get<CallText>(parsed);
  Require(again.form == call.form && again.name == call.name && Written(again) == text,
          "read otherwise: " + text);
  for (const Value &value : call.arguments) {
    Require(value.describe().find('\n') == std::string::npos, "no single line: " + value.describe());
  }
}

void IsWrongCallExplained(std::string_view text, const ParseError &error) {
  Require(error.position <= text.size(), "a fault behind the end");
  const std::string line = explain("call", text, error);
  Require(!error.message.empty() && line.find('\n') == std::string::npos, "no single line: " + line);
}

}  // namespace

FUZZ_TARGET(call_text) {
  const std::string_view text(reinterpret_cast<const char *>(data), size);
  const Parsed<CallText> parsed = parseCallText(text);
  if (const auto *error = std::get_if<ParseError>(&parsed)) {
    IsWrongCallExplained(text, *error);
  } else {
    IsReadAgain(std::get<CallText>(parsed));
  }
}
