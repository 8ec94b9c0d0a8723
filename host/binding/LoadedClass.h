#pragma once

// A registered class ready to be called: its record as read, a prepared call for each function, and the
// choice among methods that share a name.

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "host/binding/ClassInfo.h"
#include "host/binding/Invoker.h"
#include "host/binding/Value.h"

namespace zemhost {

// The method that fits a name and arguments best, and the arguments as it takes them.
struct Choice {
  size_t index;
  std::vector<Value> arguments;
};

// Chooses among methods by name without regard to case, then by number and kinds of the arguments: one that
// fits exactly, else the only one that fits when nil may stand for a String and a String for a FolderItem (a
// path of this machine). Throws HostError when there is no such choice; `owner` names whose methods they are.
Choice chooseMethod(const std::vector<MethodInfo> &methods, std::string_view owner, std::string_view name,
                    std::span<const Value> arguments);

// Throws HostError unless the arguments have exactly the declared number and kinds.
void checkArguments(const MethodInfo &method, std::span<const Value> arguments);

class LoadedClass {
 public:
  explicit LoadedClass(ClassInfo info);

  const ClassInfo &info() const { return info_; }

  // A new object with one reference, owned by the caller, its constructors run. Throws HostError when no
  // "Constructor" takes the arguments, std::bad_alloc without memory. The class has to outlive the object.
  REALobject make(std::span<const Value> arguments) const;

  Value call(REALobject object, std::string_view name, std::span<const Value> arguments) const;
  Value callAt(REALobject object, size_t method, std::span<const Value> arguments) const;
  Value get(REALobject object, std::string_view property) const;
  void set(REALobject object, std::string_view property, const Value &value) const;

  // What a line of host code says, done to this object.
  Value evaluate(REALobject object, std::string_view line) const;

  // The position of the method with this declaration; throws HostError when there is none.
  size_t find(std::string_view declaration) const;

 private:
  struct Accessors {
    std::optional<Invoker> get;
    std::optional<Invoker> set;
  };

  std::optional<size_t> findProperty(std::string_view name) const;
  size_t requireProperty(std::string_view name) const;
  bool hasMethod(std::string_view name) const;

  ClassInfo info_;
  std::vector<Invoker> methods_;      // beside info_.methods
  std::vector<Accessors> accessors_;  // beside info_.properties
};

}  // namespace zemhost
