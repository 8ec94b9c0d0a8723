#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string_view>

#include "plugin/RbiTunesDB.h"

// Table rows that are checked while compiling: a row whose function does not take and return what its
// declaration says does not compile. What a row registers is the function with a guard around it, so that no
// exception reaches the host.

// A declaration as a template argument.
template <size_t N>
struct DeclarationText {
  char chars[N];
  consteval DeclarationText(const char (&text)[N]) { std::copy_n(text, N, chars); }
  constexpr std::string_view View() const { return {chars, N - 1}; }
};

enum class HostKind { None, Integer, Boolean, String, FolderItem, Invalid };

constexpr HostKind KindNamed(std::string_view name) {
  if (name == "Integer") return HostKind::Integer;
  if (name == "Boolean") return HostKind::Boolean;
  if (name == "String") return HostKind::String;
  return name == "FolderItem" ? HostKind::FolderItem : HostKind::Invalid;
}

template <typename T>
constexpr HostKind kKindOf = HostKind::Invalid;
template <>
inline constexpr HostKind kKindOf<void> = HostKind::None;
template <>
inline constexpr HostKind kKindOf<int32_t> = HostKind::Integer;
template <>
inline constexpr HostKind kKindOf<REALboolean> = HostKind::Boolean;
template <>
inline constexpr HostKind kKindOf<REALstring> = HostKind::String;
template <>
inline constexpr HostKind kKindOf<REALfolderItem> = HostKind::FolderItem;

// What a declaration promises, or a function takes: its arguments in order, and its result.
struct MethodShape {
  static constexpr size_t kMaxArguments = 4;
  std::array<HostKind, kMaxArguments> arguments = {};
  size_t argumentCount = 0;
  HostKind result = HostKind::None;

  constexpr void Add(HostKind kind) {
    // Too many arguments write past the array, which stops the compiler.
    arguments.at(argumentCount++) = kind;
  }
  friend bool operator==(const MethodShape &, const MethodShape &) = default;
};

// The shape of a text such as "GetProp(index As Integer, num As Integer) As Integer".
consteval MethodShape ShapeOf(std::string_view declaration) {
  constexpr std::string_view kAs = " As ";
  MethodShape shape;
  const size_t close = declaration.find(')');
  std::string_view tail = declaration;
  if (close != std::string_view::npos) {
    const size_t open = declaration.find('(');
    std::string_view rest = declaration.substr(open + 1, close - open - 1);
    while (!rest.empty()) {
      const std::string_view argument = rest.substr(0, rest.find(", "));
      rest = argument.size() == rest.size() ? std::string_view() : rest.substr(argument.size() + 2);
      const size_t as = argument.find(kAs);
      shape.Add(as == std::string_view::npos ? HostKind::Invalid
                                             : KindNamed(argument.substr(as + kAs.size())));
    }
    tail = declaration.substr(close + 1);
  }
  const size_t as = tail.find(kAs);
  if (as != std::string_view::npos) shape.result = KindNamed(tail.substr(as + kAs.size()));
  return shape;
}

// A function as the host calls it: running out of memory gives the neutral result.
template <auto Function>
struct Guarded;

template <typename Result, typename... Arguments, Result (*Function)(REALobject, Arguments...)>
struct Guarded<Function> {
  static consteval MethodShape Shape() {
    MethodShape shape;
    (shape.Add(kKindOf<Arguments>), ...);
    shape.result = kKindOf<Result>;
    return shape;
  }

  static Result Call(REALobject instance, Arguments... arguments) {
    try {
      return Function(instance, arguments...);
    } catch (const std::exception &) {
      return Result();
    }
  }

  static REALproc Slot() { return reinterpret_cast<REALproc>(&Call); }
};

// A row of the method table.
template <DeclarationText Declaration, auto Function>
REALmethodDefinition Method() {
  static_assert(ShapeOf(Declaration.View()) == Guarded<Function>::Shape(),
                "the function does not fit its declaration");
  static constexpr auto kText = Declaration;
  return {Guarded<Function>::Slot(), nullptr, kText.chars, 0};
}

// Rows of the property table: the accessors take the property's parameter, and its value, after the object.
template <DeclarationText Type, auto Getter>
REALproperty Property(const char *name) {
  static_assert(Guarded<Getter>::Shape().result == KindNamed(Type.View()),
                "the getter does not fit the type");
  static constexpr auto kType = Type;
  return {nullptr, name, kType.chars, 1, Guarded<Getter>::Slot(), nullptr, 0, nullptr};
}

template <DeclarationText Type, auto Getter, auto Setter>
REALproperty Property(const char *name) {
  static_assert(Guarded<Setter>::Shape().arguments[1] == KindNamed(Type.View()),
                "the setter does not fit the type");
  REALproperty property = Property<Type, Getter>(name);
  property.setter = Guarded<Setter>::Slot();
  return property;
}
