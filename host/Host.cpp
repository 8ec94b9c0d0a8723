#include "host/Host.h"

#include <cstdlib>
#include <optional>
#include <system_error>
#include <utility>

#include "host/binding/ClassReader.h"
#include "host/binding/LoadedClass.h"
#include "host/binding/PluginFile.h"
#include "host/runtime/HostObject.h"
#include "host/runtime/Names.h"
#include "host/runtime/Services.h"

namespace zemhost {

// Kept by the host and by every object. The session goes last, since a plug-in's own clean-up at closing may
// still call services.
struct Host::State {
  explicit State(const Options &options) : plugin(options.plugin), session(settings(options)), file(plugin) {
    file.entryPoint()(ServiceSession::resolver());
    session.rethrowFailure();
  }

  const LoadedClass &find(std::string_view name) const {
    for (const auto &loaded : classes)
      if (sameName(loaded->info().name, name)) return *loaded;
    throw HostError("the plug-in " + plugin.string() + " registers no class " + quoteText(name));
  }

  std::filesystem::path plugin;
  std::vector<std::unique_ptr<const LoadedClass>> classes;
  std::vector<MethodInfo> methods;
  std::vector<Invoker> invokers;  // beside methods
  ServiceSession session;
  PluginFile file;

 private:
  ServiceSession::Settings settings(const Options &options) {
    return {options.version, options.leftOut, [this](const REALclassDefinition &record) { addClass(record); },
            [this](const REALmethodDefinition &record) { addMethod(record); }};
  }

  void addClass(const REALclassDefinition &record) {
    auto loaded = std::make_unique<const LoadedClass>(readClass(record, session.wantsThreeWordMethods()));
    for (const auto &before : classes) {
      if (sameName(before->info().name, loaded->info().name))
        throw HostError("two classes named " + quoteText(loaded->info().name));
    }
    classes.push_back(std::move(loaded));
  }

  void addMethod(const REALmethodDefinition &record) {
    methods.push_back(readMethod(record.function, record.declaration, "a method of no class"));
    invokers.push_back(Invoker::forGlobalMethod(methods.back()));
  }
};

struct Object::State {
  State(std::shared_ptr<const Host::State> h, const LoadedClass &c, std::span<const Value> arguments)
      : host(std::move(h)), loaded(c), handle(c.make(arguments)) {}
  State(const State &) = delete;
  State &operator=(const State &) = delete;
  ~State() { releaseObject(handle); }

  std::shared_ptr<const Host::State> host;
  const LoadedClass &loaded;
  REALobject handle;
};

Host Host::load(const Options &options) {
  Options chosen = options;
  if (chosen.plugin.empty()) chosen.plugin = defaultPlugin();
  try {
    return Host(std::make_shared<State>(chosen));
  } catch (const std::logic_error &error) {
    throw HostError(error.what());
  }
}

std::filesystem::path Host::defaultPlugin() {
  if (const char *named = std::getenv("ZEM_PLUGIN"); named != nullptr && *named != '\0') return named;
  std::error_code failed;
  return pluginOf(std::filesystem::read_symlink("/proc/self/exe", failed));
}

std::filesystem::path Host::pluginOf(const std::filesystem::path &program) {
  std::error_code failed;
  const std::filesystem::path above = program.parent_path().parent_path();
  const std::filesystem::path places[] = {above / "plugin" / "ZemiTunesDB.so",
                                          above / "lib" / "zemitunesdb" / "ZemiTunesDB.so"};
  for (const std::filesystem::path &place : places)
    if (std::filesystem::exists(place, failed)) return place;
  throw HostError("there is no plug-in " + places[0].string() + " or " + places[1].string() +
                  "; ZEM_PLUGIN can name another");
}

const ClassInfo &Host::classInfo(std::string_view name) const { return state_->find(name).info(); }

std::vector<const ClassInfo *> Host::classes() const {
  std::vector<const ClassInfo *> all;
  for (const auto &loaded : state_->classes) all.push_back(&loaded->info());
  return all;
}

const std::vector<MethodInfo> &Host::methods() const { return state_->methods; }

Value Host::call(std::string_view name, std::initializer_list<Value> arguments) const {
  const Choice choice = chooseMethod(state_->methods, "the plug-in", name, arguments);
  return state_->invokers[choice.index].call(nullptr, choice.arguments);
}

Object Host::make(std::string_view className, std::initializer_list<Value> arguments) const {
  return Object(std::make_shared<Object::State>(state_, state_->find(className), arguments));
}

int32_t Host::announcedVersion() const { return state_->session.announcedVersion(); }

const std::filesystem::path &Host::plugin() const { return state_->plugin; }

Value Object::call(std::string_view name, std::initializer_list<Value> arguments) const {
  return state_->loaded.call(state_->handle, name, arguments);
}

Value Object::call(std::string_view name, std::span<const Value> arguments) const {
  return state_->loaded.call(state_->handle, name, arguments);
}

Value Object::get(std::string_view property) const { return state_->loaded.get(state_->handle, property); }

void Object::set(std::string_view property, const Value &value) const {
  state_->loaded.set(state_->handle, property, value);
}

Value Object::evaluate(std::string_view line) const { return state_->loaded.evaluate(state_->handle, line); }

Method Object::method(std::string_view declaration) const {
  return {state_, state_->loaded.find(declaration)};
}

const ClassInfo &Object::classInfo() const { return state_->loaded.info(); }

Value Method::call(std::span<const Value> arguments) const {
  return object_->loaded.callAt(object_->handle, index_, arguments);
}

const MethodInfo &Method::info() const { return object_->loaded.info().methods[index_]; }

}  // namespace zemhost
