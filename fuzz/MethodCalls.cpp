#include "fuzz/MethodCalls.h"

#include <string_view>
#include <type_traits>

#include "fuzz/Require.h"

namespace fuzz {
namespace {

using support::Arguments;
using support::TestHost;

void Take(TestHost &host, REALstring string) { (void)host.Take(string); }
void Take(TestHost &host, REALfolderItem item) {
  if (item != nullptr) host.Release(item);
}
void Take(TestHost & /*host*/, int32_t /*number*/) {}

template <typename Result, typename... Values>
SUPPORT_CALLS_SLOTS void CallSlot(TestHost &host, REALproc function, REALobject object, Values... values) {
  const auto slot = reinterpret_cast<Result (*)(REALobject, Values...)>(function);
  if constexpr (std::is_void_v<Result>) {
    slot(object, values...);
  } else {
    Take(host, slot(object, values...));
  }
}

// With the arguments that a shape such as "ii>s" asks for; false when no method has that shape.
template <typename Result>
bool CallWith(TestHost &host, std::string_view kinds, REALproc function, REALobject object,
              const Arguments &all) {
  const auto [a, b, c] = all.numbers;
  if (kinds.empty()) {
    CallSlot<Result>(host, function, object);
  } else if (kinds == "i") {
    CallSlot<Result>(host, function, object, a);
  } else if (kinds == "ii") {
    CallSlot<Result>(host, function, object, a, b);
  } else if (kinds == "iii") {
    CallSlot<Result>(host, function, object, a, b, c);
  } else if (kinds == "is") {
    CallSlot<Result>(host, function, object, a, all.text);
  } else if (kinds == "s") {
    CallSlot<Result>(host, function, object, all.text);
  } else {
    return false;
  }
  return true;
}

bool CallShape(TestHost &host, std::string_view shape, REALproc function, REALobject object,
               const Arguments &all) {
  const std::string_view kinds = shape.substr(0, shape.size() - 2);
  switch (shape.back()) {
    case 'v':
      return CallWith<void>(host, kinds, function, object, all);
    case 'i':
      return CallWith<int32_t>(host, kinds, function, object, all);
    case 's':
      return CallWith<REALstring>(host, kinds, function, object, all);
    default:
      return CallWith<REALfolderItem>(host, kinds, function, object, all);
  }
}

}  // namespace

MethodCalls::MethodCalls(const TestHost &host) {
  for (size_t i = 0; i < host.Declarations().size(); ++i) {
    const REALmethodDefinition method = host.MethodAt(i);
    const std::string_view declaration = method.declaration;
    if (declaration == "Constructor") continue;
    if (declaration == "Load(f As FolderItem) As Boolean") {
      load_ = method.function;
    } else {
      methods_.push_back({support::ShapeOf(declaration), method.function});
    }
  }
  Require(load_ != nullptr && methods_.size() == 128, "the class has other methods than it should");
}

void MethodCalls::Call(TestHost &host, size_t i, REALobject object, const Arguments &arguments) const {
  const Method &method = methods_[i];
  Require(CallShape(host, method.shape, method.function, object, arguments), "a method of an unknown shape");
}

SUPPORT_CALLS_SLOTS bool MethodCalls::Load(REALobject object, REALfolderItem item) const {
  return reinterpret_cast<int32_t (*)(REALobject, REALfolderItem)>(load_)(object, item) != 0;
}

}  // namespace fuzz
