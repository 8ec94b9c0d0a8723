#include "host/binding/PluginFile.h"

#include <cstdint>
#include <dlfcn.h>
#include <string>
#include <sys/mman.h>
#include <system_error>

#include "host/Error.h"

namespace zemhost {
namespace {

// Whether there is no room for the file. The system's loader does not say so: it "failed to map" the file, as
// it does where programs may not run.
bool isMemoryShort(const std::filesystem::path &file) {
  constexpr size_t kForItsRecords = size_t{2} << 20;
  std::error_code failed;
  const uintmax_t size = std::filesystem::file_size(file, failed);
  if (failed) return false;
  const size_t room = static_cast<size_t>(size) + kForItsRecords;
  void *const block = mmap(nullptr, room, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (block == MAP_FAILED) return true;
  munmap(block, room);
  return false;
}

void *open(const std::filesystem::path &file) {
  std::error_code failed;
  // A bare name would be searched for in the system's library folders.
  const std::filesystem::path absolute = std::filesystem::absolute(file, failed);
  if (void *handle = failed ? nullptr : dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
  const char *reason = failed ? nullptr : dlerror();
  if (isMemoryShort(absolute)) reason = "out of memory";
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
