#include "zemhost/files/Leftovers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "platform/carbon/Descriptor.h"
#include "zemhost/files/TemporaryPath.h"

namespace zemhost {

namespace {

// Whether only programs of this machine can use what is open. Of a share of another machine, or a file
// system that a program serves, a lock may say nothing.
bool isOnThisMachine(int file) {
  struct stat status {};
  struct statfs system {};
  if (fstat(file, &status) != 0 || fstatfs(file, &system) != 0) return false;
  if (major(status.st_dev) != 0) return true;  // a disk's own number
  constexpr std::array<decltype(system.f_type), 3> kLocal = {TMPFS_MAGIC, BTRFS_SUPER_MAGIC,
                                                             OVERLAYFS_SUPER_MAGIC};
  return std::find(kLocal.begin(), kLocal.end(), system.f_type) != kLocal.end();
}

std::vector<std::string> temporaryNamesIn(int folder) {
  std::vector<std::string> names;
  const int number = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR *const stream = number < 0 ? nullptr : fdopendir(number);  // which owns it then
  if (stream == nullptr) {
    if (number >= 0) close(number);
    return names;
  }
  while (const dirent *entry = readdir(stream)) {
    if (isTemporaryName(entry->d_name)) names.emplace_back(entry->d_name);
  }
  closedir(stream);
  std::sort(names.begin(), names.end());
  return names;
}

enum class Use { Over, GoingOn, Unknown };

Use useOf(const carbon::Descriptor &file) {
  struct stat status {};
  if (!file || fstat(file.number(), &status) != 0 || status.st_uid != geteuid()) return Use::Unknown;
  if (flock(file.number(), LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK ? Use::GoingOn : Use::Unknown;
  return isOnThisMachine(file.number()) ? Use::Over : Use::Unknown;
}

}  // namespace

std::vector<std::string> removeLeftovers(int folder) {
  std::vector<std::string> left;
  for (const std::string &name : temporaryNamesIn(folder)) {
    // The lock is held until it is gone, so that nobody can begin to use it meanwhile.
    const carbon::Descriptor file(
        openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    const Use use = useOf(file);
    if (use == Use::GoingOn) continue;
    if (use == Use::Unknown || !removeTemporary(folder, name.c_str())) left.push_back(name);
  }
  return left;
}

}  // namespace zemhost
