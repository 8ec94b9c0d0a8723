#include "host/binding/ClassReader.h"

#include <string>
#include <utility>

#include "host/Error.h"
#include "host/runtime/Names.h"

namespace zemhost {
namespace {

// More than any class has; a count beyond it is a wrong record, not a big class.
constexpr intptr_t kMostEntries = 4096;

std::string textOrEmpty(const char *text) { return text == nullptr ? std::string() : text; }

void checkList(const std::string &owner, const char *what, const void *list, intptr_t count) {
  if (count < 0 || count > kMostEntries)
    throw HostError(owner + ": " + std::to_string(count) + ' ' + what + " are registered");
  if (list == nullptr && count > 0) throw HostError(owner + ": the list of " + what + " is missing");
}

PropertyInfo readProperty(const REALproperty &record, const std::string &owner) {
  PropertyInfo property;
  property.group = textOrEmpty(record.group);
  property.name = textOrEmpty(record.name);
  property.kind = kindFromName(textOrEmpty(record.type));
  property.getter = record.getter;
  property.setter = record.setter;
  property.parameter = record.parameter;
  if (property.name.empty()) throw HostError(owner + " has no name");
  if (property.kind == Kind::None) {
    throw HostError(owner + ' ' + quoteText(property.name) + " is of the type " +
                    quoteText(textOrEmpty(record.type)) + ", which this host does not know");
  }
  if (property.getter == nullptr && property.setter == nullptr)
    throw HostError(owner + ' ' + quoteText(property.name) + " has neither a getter nor a setter");
  return property;
}

void readProperties(const REALclassDefinition &record, const std::string &owner, ClassInfo &info) {
  checkList(owner, "properties", record.properties, record.propertyCount);
  for (intptr_t i = 0; i < record.propertyCount; ++i) {
    PropertyInfo property = readProperty(record.properties[i], owner + ", property " + std::to_string(i));
    for (const PropertyInfo &before : info.properties) {
      if (sameName(before.name, property.name))
        throw HostError(owner + ": two properties named " + quoteText(property.name));
    }
    info.properties.push_back(std::move(property));
  }
}

void readMethods(const REALclassDefinition &record, bool threeWords, const std::string &owner,
                 ClassInfo &info) {
  checkList(owner, "methods", record.methods, record.methodCount);
  const auto *shortRows = reinterpret_cast<const REALmethodDefinitionV6 *>(record.methods);
  for (intptr_t i = 0; i < record.methodCount; ++i) {
    const REALmethodDefinition *row = threeWords ? nullptr : &record.methods[i];
    MethodInfo method = readMethod(row != nullptr ? row->function : shortRows[i].function,
                                   row != nullptr ? row->declaration : shortRows[i].declaration,
                                   owner + ", method " + std::to_string(i));
    for (const MethodInfo &before : info.methods) {
      if (!sameCall(before.declaration, method.declaration)) continue;
      throw HostError(owner + ": " + quoteText(before.text) + " and " + quoteText(method.text) +
                      " cannot be told apart");
    }
    info.methods.push_back(std::move(method));
  }
}

}  // namespace

MethodInfo readMethod(REALproc function, const char *declaration, const std::string &owner) {
  MethodInfo method;
  method.function = function;
  method.text = textOrEmpty(declaration);
  Parsed<Declaration> parsed = parseDeclaration(method.text);
  if (const auto *error = std::get_if<ParseError>(&parsed))
    throw HostError(owner + ": " + explain("declaration", method.text, *error));
  if (function == nullptr) throw HostError(owner + ": " + quoteText(method.text) + " has no function");
  method.declaration = std::get<Declaration>(std::move(parsed));
  return method;
}

ClassInfo readClass(const REALclassDefinition &record, bool threeWords) {
  ClassInfo info;
  info.name = textOrEmpty(record.name);
  if (info.name.empty()) throw HostError("a class is registered without a name");
  const std::string owner = "class " + quoteText(info.name);
  if (record.dataSize < 0) throw HostError(owner + ": a negative data size");
  info.superName = textOrEmpty(record.superName);
  info.version = record.version;
  info.dataSize = static_cast<size_t>(record.dataSize);
  info.constructor = record.constructor;
  info.destructor = record.destructor;
  readProperties(record, owner, info);
  readMethods(record, threeWords, owner, info);
  return info;
}

}  // namespace zemhost
