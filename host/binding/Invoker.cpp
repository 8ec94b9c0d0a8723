#include "host/binding/Invoker.h"

#include <array>
#include <cassert>
#include <cstdint>
#include <ffi.h>
#include <new>
#include <utility>

#include "host/Error.h"
#include "host/runtime/MemoryFailures.h"

namespace zemhost {
namespace {

ffi_type *typeOf(Kind kind) {
  switch (kind) {
    case Kind::Integer:
    case Kind::Boolean:
      return &ffi_type_sint32;
    case Kind::String:
    case Kind::FolderItem:
      return &ffi_type_pointer;
    case Kind::None:
      break;
  }
  return &ffi_type_void;
}

ffi_type *wordType() { return sizeof(intptr_t) == 8 ? &ffi_type_sint64 : &ffi_type_sint32; }

// Room for one argument as C passes it.
union Passed {
  int32_t number;
  intptr_t word;
  void *pointer;
};

Passed pass(const Value &value) {
  Passed passed{};
  switch (value.kind()) {
    case Kind::Integer:
      passed.number = value.integer();
      break;
    case Kind::Boolean:
      passed.number = value.rawBoolean();
      break;
    case Kind::String:
      passed.pointer = value.string().handle();
      break;
    case Kind::FolderItem:
      passed.pointer = value.folderItem().handle();
      break;
    case Kind::None:
      break;
  }
  return passed;
}

// An integer result narrower than a register arrives widened to ffi_arg.
union Returned {
  ffi_arg widened;
  void *pointer;
};

Value take(Kind kind, const Returned &returned) {
  switch (kind) {
    case Kind::Integer:
      return static_cast<int32_t>(static_cast<uint32_t>(returned.widened));
    case Kind::Boolean:
      return Value::rawBoolean(static_cast<int32_t>(static_cast<uint32_t>(returned.widened)));
    case Kind::String:
      return HostString::adopt(static_cast<REALstring>(returned.pointer));
    case Kind::FolderItem:
      return FolderItem::adopt(static_cast<REALfolderItem>(returned.pointer));
    case Kind::None:
      break;
  }
  return {};
}

// What a method answers that found nothing, or no memory to answer with.
bool isNeutral(const Value &result) {
  switch (result.kind()) {
    case Kind::Integer:
      return result.integer() == 0;
    case Kind::Boolean:
      return !result.boolean();
    case Kind::String:
    case Kind::FolderItem:
      return result.isNil();
    case Kind::None:
      break;
  }
  return true;
}

constexpr size_t kMostPassed = kMaxArguments + 2;

}  // namespace

struct Invoker::Signature {
  Signature(REALproc f, Kind r, bool withObject, const intptr_t *propertyParameter,
            std::span<const Argument> args)
      : function(f), result(r), takesObject(withObject), takesParameter(propertyParameter != nullptr) {
    if (takesObject) types.push_back(&ffi_type_pointer);
    if (takesParameter) {
      types.push_back(wordType());
      parameter = *propertyParameter;
    }
    for (const Argument &argument : args) types.push_back(typeOf(argument.kind));
    const bool fits = types.size() <= kMostPassed;
    if (!fits || ffi_prep_cif(&interface, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()),
                              typeOf(result), types.data()) != FFI_OK)
      throw HostError("the call cannot be prepared on this machine");
  }

  REALproc function;
  Kind result;
  bool takesObject;
  bool takesParameter;
  intptr_t parameter = 0;
  std::vector<ffi_type *> types;  // the prepared interface points into it
  mutable ffi_cif interface;      // libffi asks for a writable one but does not write
};

Invoker::Invoker(std::unique_ptr<const Signature> signature) : signature_(std::move(signature)) {}
Invoker::Invoker(Invoker &&) noexcept = default;
Invoker &Invoker::operator=(Invoker &&) noexcept = default;
Invoker::~Invoker() = default;

Invoker Invoker::forMethod(const MethodInfo &method) {
  const Declaration &d = method.declaration;
  return Invoker(std::make_unique<Signature>(method.function, d.result, true, nullptr, d.arguments));
}

Invoker Invoker::forGlobalMethod(const MethodInfo &method) {
  const Declaration &d = method.declaration;
  return Invoker(std::make_unique<Signature>(method.function, d.result, false, nullptr, d.arguments));
}

Invoker Invoker::forGetter(const PropertyInfo &property) {
  return Invoker(std::make_unique<Signature>(property.getter, property.kind, true, &property.parameter,
                                             std::span<const Argument>()));
}

Invoker Invoker::forSetter(const PropertyInfo &property) {
  const Argument value{"value", property.kind};
  return Invoker(std::make_unique<Signature>(property.setter, Kind::None, true, &property.parameter,
                                             std::span(&value, 1)));
}

Value Invoker::call(REALobject object, std::span<const Value> arguments) const {
  const Signature &s = *signature_;
  std::array<Passed, kMostPassed> passed;
  std::array<void *, kMostPassed> pointers;
  size_t count = 0;
  if (s.takesObject) passed[count++].pointer = object;
  if (s.takesParameter) passed[count++].word = s.parameter;
  assert(count + arguments.size() == s.types.size());
  for (const Value &argument : arguments) passed[count++] = pass(argument);
  for (size_t i = 0; i < count; ++i) pointers[i] = &passed[i];
  Returned returned{};
  const uint64_t failures = memoryFailures();
  ffi_call(&s.interface, s.function, &returned, pointers.data());
  Value result = take(s.result, returned);
  if (memoryFailures() != failures && isNeutral(result)) throw std::bad_alloc();
  return result;
}

}  // namespace zemhost
