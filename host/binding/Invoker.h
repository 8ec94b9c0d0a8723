#pragma once

// Calls a plug-in's function with the signature that its declaration gives it.

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "host/binding/ClassInfo.h"
#include "host/binding/Value.h"
#include "sdk/HostTypes.h"

namespace zemhost {

// One function with its signature prepared; cheap to call many times. Throws HostError from the makers when
// the signature cannot be prepared.
class Invoker {
 public:
  // `result function(object, arguments...)`.
  static Invoker forMethod(const MethodInfo &method);
  // `result function(arguments...)`: a method of no class.
  static Invoker forGlobalMethod(const MethodInfo &method);
  // `kind getter(object, parameter)` and `void setter(object, parameter, kind)`.
  static Invoker forGetter(const PropertyInfo &property);
  static Invoker forSetter(const PropertyInfo &property);

  Invoker(Invoker &&) noexcept;
  Invoker &operator=(Invoker &&) noexcept;
  ~Invoker();

  // Calls the function; `object` is not used for a method of no class. The arguments must be of the declared
  // number and kinds, and are lent. The result holds the reference that the plug-in gave away. Throws
  // std::bad_alloc when the function found no memory and answers 0, False, nil or nothing for that reason.
  Value call(REALobject object, std::span<const Value> arguments) const;

 private:
  struct Signature;
  explicit Invoker(std::unique_ptr<const Signature> signature);

  std::unique_ptr<const Signature> signature_;
};

}  // namespace zemhost
