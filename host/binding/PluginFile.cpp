#include "host/binding/PluginFile.h"

#include <dlfcn.h>
#include <string>
#include <system_error>

#include "host/Error.h"

namespace zemhost {
namespace {

void *open(const std::filesystem::path &file) {
  std::error_code failed;
  // A bare name would be searched for in the system's library folders.
  const std::filesystem::path absolute = std::filesystem::absolute(file, failed);
  if (void *handle = failed ? nullptr : dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
  const char *reason = failed ? nullptr : dlerror();
  throw HostError("cannot load the plug-in " + file.string() + ": " +
                  (reason != nullptr ? std::string(reason) : failed.message()));
}

}  // namespace

PluginFile::PluginFile(const std::filesystem::path &file)
    : handle_(open(file)), entryPoint_(reinterpret_cast<EntryPoint>(dlsym(handle_, "REALPluginMain"))) {
  if (entryPoint_ != nullptr) return;
  dlclose(handle_);
  throw HostError("cannot load the plug-in " + file.string() + ": it has no entry point REALPluginMain");
}

PluginFile::~PluginFile() { dlclose(handle_); }

}  // namespace zemhost
