#include "host/binding/LoadedClass.h"

#include <algorithm>
#include <new>
#include <string>

#include "host/Error.h"
#include "host/basic/CallText.h"
#include "host/runtime/HostObject.h"
#include "host/runtime/Names.h"

namespace zemhost {
namespace {

constexpr std::string_view kConstructor = "Constructor";

enum class Fit { No, Converted, Exact };

Fit fitOf(const Value &value, Kind wanted) {
  if (value.kind() == wanted) return Fit::Exact;
  const bool nilAsText = wanted == Kind::String && value.kind() == Kind::FolderItem && value.isNil();
  const bool textAsPath = wanted == Kind::FolderItem && value.kind() == Kind::String;
  return nilAsText || textAsPath ? Fit::Converted : Fit::No;
}

Fit fitOf(std::span<const Value> values, const Declaration &declaration) {
  if (values.size() != declaration.arguments.size()) return Fit::No;
  Fit fit = Fit::Exact;
  for (size_t i = 0; i < values.size(); ++i)
    fit = std::min(fit, fitOf(values[i], declaration.arguments[i].kind));
  return fit;
}

Value converted(const Value &value, Kind wanted) {
  if (value.kind() == wanted) return value;
  if (wanted == Kind::String || value.isNil())
    return wanted == Kind::String ? Value(HostString()) : FolderItem();
  FolderItem item = FolderItem::fromPath(value.text());
  if (!item) throw HostError("there is no folder for the path " + quoteText(value.text()));
  return item;
}

std::string kindsOf(std::span<const Value> values) {
  std::string text = "(";
  for (const Value &value : values)
    text += (text.size() > 1 ? ", " : "") + std::string(kindName(value.kind()));
  return text + ')';
}

[[noreturn]] void throwNoFit(const std::vector<MethodInfo> &methods, std::string_view owner,
                             std::string_view name, std::span<const Value> arguments) {
  std::string found;
  for (const MethodInfo &method : methods)
    if (sameName(method.declaration.name, name)) found += (found.empty() ? "" : "; ") + method.text;
  if (found.empty()) throw HostError(std::string(owner) + " has no method " + quoteText(name));
  throw HostError("no method of " + std::string(owner) + " takes " + std::string(name) + kindsOf(arguments) +
                  "; there is: " + found);
}

// Runs with the last reference to an object.
void runDestructor(REALobject object, void *context) {
  const auto *info = static_cast<const ClassInfo *>(context);
  if (info->destructor != nullptr) reinterpret_cast<void (*)(REALobject)>(info->destructor)(object);
}

}  // namespace

Choice chooseMethod(const std::vector<MethodInfo> &methods, std::string_view owner, std::string_view name,
                    std::span<const Value> arguments) {
  const MethodInfo *best = nullptr;
  bool several = false;
  for (const MethodInfo &method : methods) {
    if (!sameName(method.declaration.name, name)) continue;
    const Fit fit = fitOf(arguments, method.declaration);
    if (fit == Fit::No) continue;
    several = best != nullptr;
    best = &method;
    if (fit == Fit::Exact) {
      several = false;
      break;
    }
  }
  if (best == nullptr || several) throwNoFit(methods, owner, name, arguments);
  Choice choice{static_cast<size_t>(best - methods.data()), {}};
  for (size_t i = 0; i < arguments.size(); ++i)
    choice.arguments.push_back(converted(arguments[i], best->declaration.arguments[i].kind));
  return choice;
}

void checkArguments(const MethodInfo &method, std::span<const Value> arguments) {
  if (fitOf(arguments, method.declaration) != Fit::Exact)
    throw HostError(quoteText(method.text) + " does not take " + kindsOf(arguments));
}

LoadedClass::LoadedClass(ClassInfo info) : info_(std::move(info)) {
  for (const MethodInfo &method : info_.methods) methods_.push_back(Invoker::forMethod(method));
  for (const PropertyInfo &property : info_.properties) {
    Accessors accessors;
    if (property.getter != nullptr) accessors.get = Invoker::forGetter(property);
    if (property.setter != nullptr) accessors.set = Invoker::forSetter(property);
    accessors_.push_back(std::move(accessors));
  }
}

REALobject LoadedClass::make(std::span<const Value> arguments) const {
  std::optional<Choice> constructor;
  if (hasMethod(kConstructor) || !arguments.empty())
    constructor = chooseMethod(info_.methods, info_.name, kConstructor, arguments);
  REALobject object = newObject(info_.dataSize, runDestructor, const_cast<ClassInfo *>(&info_));
  if (object == nullptr) throw std::bad_alloc();
  if (info_.constructor != nullptr) reinterpret_cast<void (*)(REALobject)>(info_.constructor)(object);
  if (constructor) methods_[constructor->index].call(object, constructor->arguments);
  return object;
}

Value LoadedClass::call(REALobject object, std::string_view name, std::span<const Value> arguments) const {
  const Choice choice = chooseMethod(info_.methods, info_.name, name, arguments);
  return methods_[choice.index].call(object, choice.arguments);
}

Value LoadedClass::callAt(REALobject object, size_t method, std::span<const Value> arguments) const {
  checkArguments(info_.methods[method], arguments);
  return methods_[method].call(object, arguments);
}

Value LoadedClass::get(REALobject object, std::string_view property) const {
  const size_t at = requireProperty(property);
  if (!accessors_[at].get) throw HostError("the property " + info_.properties[at].name + " cannot be read");
  return accessors_[at].get->call(object, {});
}

void LoadedClass::set(REALobject object, std::string_view property, const Value &value) const {
  const size_t at = requireProperty(property);
  const PropertyInfo &info = info_.properties[at];
  if (!accessors_[at].set) throw HostError("the property " + info.name + " is read only");
  if (fitOf(value, info.kind) == Fit::No) {
    throw HostError("the property " + info.name + " is " + kindName(info.kind) + ", not " +
                    kindName(value.kind()));
  }
  const Value fitting = converted(value, info.kind);
  accessors_[at].set->call(object, {&fitting, 1});
}

Value LoadedClass::evaluate(REALobject object, std::string_view line) const {
  const Parsed<CallText> parsed = parseCallText(line);
  if (const auto *error = std::get_if<ParseError>(&parsed)) throw HostError(explain("call", line, *error));
  const auto &text = std::get<CallText>(parsed);
  if (text.form == CallText::Form::Assign) {
    set(object, text.name, text.arguments.front());
    return {};
  }
  if (text.form == CallText::Form::Name && findProperty(text.name)) return get(object, text.name);
  if (!hasMethod(text.name)) {
    throw HostError(info_.name + " has no " + (text.form == CallText::Form::Name ? "property or " : "") +
                    "method " + quoteText(text.name));
  }
  return call(object, text.name, text.arguments);
}

size_t LoadedClass::find(std::string_view declaration) const {
  const Parsed<Declaration> parsed = parseDeclaration(declaration);
  if (const auto *error = std::get_if<ParseError>(&parsed))
    throw HostError(explain("declaration", declaration, *error));
  const auto &wanted = std::get<Declaration>(parsed);
  const auto found = std::find_if(info_.methods.begin(), info_.methods.end(), [&](const MethodInfo &method) {
    return sameCall(method.declaration, wanted) && method.declaration.result == wanted.result;
  });
  if (found == info_.methods.end()) throw HostError(info_.name + " has no method " + quoteText(declaration));
  return static_cast<size_t>(found - info_.methods.begin());
}

std::optional<size_t> LoadedClass::findProperty(std::string_view name) const {
  const auto found = std::find_if(info_.properties.begin(), info_.properties.end(),
                                  [&](const PropertyInfo &p) { return sameName(p.name, name); });
  if (found == info_.properties.end()) return std::nullopt;
  return static_cast<size_t>(found - info_.properties.begin());
}

size_t LoadedClass::requireProperty(std::string_view name) const {
  const std::optional<size_t> found = findProperty(name);
  if (!found) throw HostError(info_.name + " has no property " + quoteText(name));
  return *found;
}

bool LoadedClass::hasMethod(std::string_view name) const {
  return std::any_of(info_.methods.begin(), info_.methods.end(),
                     [&](const MethodInfo &m) { return sameName(m.declaration.name, name); });
}

}  // namespace zemhost
