#pragma once

// The reference host: loads a plug-in, and lets C++ code make objects of its classes and call them as host
// code would.
//
//   auto host = zemhost::Host::load();
//   auto library = host.make("ZemiTunesDB");
//   if (!library.call("Load", {zemhost::FolderItem::fromPath(path)}).boolean()) ...
//   auto title = library.method("GetTitle(index As Integer) As String");
//   for (int32_t i = 0; i < library.call("CountSongs").integer(); ++i) puts(title(i).text().c_str());
//
// Everything runs on one thread, as the host interface demands. Failures throw HostError.

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/Error.h"
#include "host/binding/ClassInfo.h"
#include "host/binding/Value.h"
#include "host/runtime/LiveHandles.h"

namespace zemhost {

class Method;

// An object of a registered class; copies name the same object. The class destructor runs with the last.
class Object {
 public:
  // Calls the method of this name (without regard to case) whose arguments fit in number and kind. A nil
  // item also fits a String and a String also fits a FolderItem, as a path of this machine, when no other
  // method of the name fits exactly. Throws HostError when none fits, listing those of the name.
  Value call(std::string_view name, std::initializer_list<Value> arguments = {}) const;
  Value call(std::string_view name, std::span<const Value> arguments) const;

  // Reads or writes a property. Throws HostError when there is none of the name, when it cannot be read or
  // written, or when the value is of another kind.
  Value get(std::string_view property) const;
  void set(std::string_view property, const Value &value) const;

  // Does what a line of host code says: `GetTitle(0)`, `SetTitle(0, "text")`, `CountSongs`,
  // `ResultEncode = &h0100`. Throws HostError, with the position, when the text cannot be read.
  Value evaluate(std::string_view line) const;

  // The method of this declaration, looked up and prepared once for many calls. Its name, kinds and result
  // count, the arguments' names do not. Throws HostError when the class has none.
  Method method(std::string_view declaration) const;

  const ClassInfo &classInfo() const;

 private:
  friend class Host;
  friend class Method;
  struct State;
  explicit Object(std::shared_ptr<const State> state) : state_(std::move(state)) {}

  std::shared_ptr<const State> state_;
};

// A method of one object, prepared. Keeps its object alive.
class Method {
 public:
  // Calls with arguments of exactly the declared number and kinds; throws HostError for others.
  Value call(std::span<const Value> arguments) const;

  template <typename... Arguments>
  Value operator()(Arguments &&...arguments) const {
    if constexpr (sizeof...(arguments) == 0) {
      return call({});
    } else {
      const Value values[] = {Value(std::forward<Arguments>(arguments))...};
      return call(values);
    }
  }

  const MethodInfo &info() const;

 private:
  friend class Object;
  Method(std::shared_ptr<const Object::State> object, size_t index)
      : object_(std::move(object)), index_(index) {}

  std::shared_ptr<const Object::State> object_;
  size_t index_;
};

// A loaded plug-in. One at a time in a process, since the services take no context; the plug-in stays loaded
// until the host and all its objects are gone.
class Host {
 public:
  struct Options {
    std::filesystem::path plugin;  // empty: the one of defaultPlugin()
    double version =
        kFirstVersionWithFourWords;    // what the host claims to be; below it reads three-word method entries
    std::vector<std::string> leftOut;  // services that this host does not offer, by look-up name
  };

  // Loads the plug-in, runs its entry point and reads the classes it registers. Throws HostError naming the
  // file when it cannot be loaded, has no entry point, or registers something that cannot be read.
  static Host load(const Options &options);
  static Host load() { return load(Options()); }

  // The plug-in that the variable ZEM_PLUGIN names, else the one of the running program.
  static std::filesystem::path defaultPlugin();

  // The plug-in that belongs to a program: `../plugin/ZemiTunesDB.so` from the program's folder (a build),
  // else `../lib/zemitunesdb/ZemiTunesDB.so` (an installation). Throws HostError, naming the places, when
  // neither is there.
  static std::filesystem::path pluginOf(const std::filesystem::path &program);

  // The registered class of this name, without regard to case. Throws HostError when there is none.
  const ClassInfo &classInfo(std::string_view name) const;
  // All registered classes in registration order.
  std::vector<const ClassInfo *> classes() const;

  // Methods that belong to no class, in registration order, and a call to one of them, chosen as for objects.
  const std::vector<MethodInfo> &methods() const;
  Value call(std::string_view name, std::initializer_list<Value> arguments = {}) const;

  // A new object; its "Constructor" has run with these arguments.
  Object make(std::string_view className, std::initializer_list<Value> arguments = {}) const;

  // The interface version that the plug-in announced; 0 when it announced none.
  int32_t announcedVersion() const;
  // The file that was loaded.
  const std::filesystem::path &plugin() const;

 private:
  struct State;
  friend struct Object::State;
  explicit Host(std::shared_ptr<State> state) : state_(std::move(state)) {}

  std::shared_ptr<State> state_;
};

}  // namespace zemhost
