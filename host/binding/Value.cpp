#include "host/binding/Value.h"

#include "host/Error.h"
#include "host/basic/ParseResult.h"

namespace zemhost {
namespace {

[[noreturn]] void throwWrongKind(const Value &value, Kind wanted) {
  throw HostError(std::string("the value is ") + kindName(value.kind()) + ", not " + kindName(wanted));
}

}  // namespace

const char *kindName(Kind kind) {
  switch (kind) {
    case Kind::Integer:
      return "Integer";
    case Kind::Boolean:
      return "Boolean";
    case Kind::String:
      return "String";
    case Kind::FolderItem:
      return "FolderItem";
    case Kind::None:
      break;
  }
  return "nothing";
}

Value Value::rawBoolean(int32_t raw) {
  Value value;
  value.value_ = Truth{raw};
  return value;
}

bool Value::isNil() const {
  if (const auto *text = std::get_if<HostString>(&value_)) return !*text;
  if (const auto *item = std::get_if<FolderItem>(&value_)) return !*item;
  return false;
}

int32_t Value::integer() const {
  if (const auto *number = std::get_if<int32_t>(&value_)) return *number;
  throwWrongKind(*this, Kind::Integer);
}

int32_t Value::rawBoolean() const {
  if (const auto *truth = std::get_if<Truth>(&value_)) return truth->raw;
  throwWrongKind(*this, Kind::Boolean);
}

const HostString &Value::string() const {
  if (const auto *text = std::get_if<HostString>(&value_)) return *text;
  throwWrongKind(*this, Kind::String);
}

const FolderItem &Value::folderItem() const {
  if (const auto *item = std::get_if<FolderItem>(&value_)) return *item;
  throwWrongKind(*this, Kind::FolderItem);
}

std::string Value::describe() const {
  switch (kind()) {
    case Kind::Integer:
      return std::to_string(integer());
    case Kind::Boolean:
      if (rawBoolean() == 0) return "False";
      return rawBoolean() == 1 ? "True" : "True (" + std::to_string(rawBoolean()) + ')';
    case Kind::String:
      return isNil() ? "nil" : quoteText(text()) + " (" + encodingName(encoding()) + ')';
    case Kind::FolderItem:
      if (isNil()) return "nil";
      return quoteText(folderItem().macPath()) + (folderItem().exists() ? "" : " (no such file)");
    case Kind::None:
      break;
  }
  return "(no result)";
}

}  // namespace zemhost
