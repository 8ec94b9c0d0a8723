#include "platform/carbon/Disk.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "platform/carbon/Names.h"

namespace carbon {
namespace {

constexpr int kLookUpOnly = O_PATH | O_DIRECTORY | O_CLOEXEC;

// The kernel's own handle of a directory, generation number included; empty where there is none. Newer
// kernels give one for every file system when asked for an identifier only.
std::string kernelHandle(int directory) {
  alignas(file_handle) std::array<unsigned char, sizeof(file_handle) + MAX_HANDLE_SZ> room = {};
  auto *handle = reinterpret_cast<file_handle *>(room.data());
  constexpr int kIdentifierOnly = 0x200;  // AT_HANDLE_FID, which the C library does not name yet
  int mount = 0;
  for (const int flags : {AT_EMPTY_PATH | kIdentifierOnly, AT_EMPTY_PATH}) {
    handle->handle_bytes = MAX_HANDLE_SZ;
    if (name_to_handle_at(directory, "", handle, &mount, flags) == 0) break;
    handle->handle_bytes = 0;
  }
  return {reinterpret_cast<const char *>(room.data()) + sizeof(file_handle), handle->handle_bytes};
}

struct CloseStream {
  void operator()(DIR *stream) const { closedir(stream); }
};

}  // namespace

Descriptor openDirectory(const std::string &path) { return Descriptor(open(path.c_str(), kLookUpOnly)); }

Descriptor openDirectory(const Descriptor &parent, const std::string &name) {
  return Descriptor(openat(parent.number(), name.c_str(), kLookUpOnly));
}

Identity identify(const Descriptor &directory, const std::string &name) {
  Identity identity;
  struct statx facts = {};
  if (statx(directory.number(), "", AT_EMPTY_PATH, STATX_INO | STATX_BTIME, &facts) == 0) {
    identity.device = static_cast<uint64_t>(facts.stx_dev_major) << 32U | facts.stx_dev_minor;
    identity.inode = facts.stx_ino;
    if ((facts.stx_mask & STATX_BTIME) != 0) {
      identity.bornSeconds = facts.stx_btime.tv_sec;
      identity.bornNanoseconds = facts.stx_btime.tv_nsec;
    }
  }
  struct statfs system = {};
  if (fstatfs(directory.number(), &system) == 0 && !keepsInodeNumbers(static_cast<uint64_t>(system.f_type))) {
    identity.inode = 0;
    identity.label = name;
  } else {
    identity.label = kernelHandle(directory.number());
  }
  return identity;
}

bool keepsInodeNumbers(uint64_t fileSystemType) {
  constexpr uint64_t kFat = 0x4D44;
  constexpr uint64_t kExFat = 0x2011BAB0;
  constexpr uint64_t kUserSpace = 0x65735546;
  return fileSystemType != kFat && fileSystemType != kExFat && fileSystemType != kUserSpace;
}

bool exists(const Descriptor &directory, const std::string &name) {
  struct statx facts = {};
  return statx(directory.number(), name.c_str(), 0, STATX_TYPE, &facts) == 0;
}

void forEachEntry(const Descriptor &directory, const std::function<bool(const std::string &name)> &callback) {
  if (!directory) return;
  const int readable = openat(directory.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (readable < 0) return;
  const std::unique_ptr<DIR, CloseStream> stream(fdopendir(readable));
  if (stream == nullptr) {
    close(readable);
    return;
  }
  while (const dirent *entry = readdir(stream.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != ".." && !callback(name)) return;
  }
}

std::optional<std::string> findEntry(const Descriptor &directory, const std::string &name) {
  struct statx facts = {};
  if (statx(directory.number(), name.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &facts) == 0) return name;
  std::optional<std::string> found;
  const std::u32string wanted = folded(name);
  forEachEntry(directory, [&](const std::string &entry) {
    if (folded(entry) == wanted && (!found || entry < *found)) found = entry;
    return true;
  });
  return found;
}

std::string realPath(const std::string &path) {
  std::array<char, PATH_MAX> room;
  return realpath(path.c_str(), room.data()) == nullptr ? std::string() : std::string(room.data());
}

}  // namespace carbon
