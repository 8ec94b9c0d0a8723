#include "zemhost/rescue/PartFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <system_error>
#include <unistd.h>

namespace zemhost {

namespace {

[[noreturn]] void fail() { throw std::system_error(errno, std::generic_category()); }

// 0 or the system's error; of a kind of file that cannot be synchronised 0.
int syncFile(int folder, const std::string &name) noexcept {
  const carbon::Descriptor file(openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  if (!file) return errno;
  return fsync(file.number()) == 0 || errno == EINVAL ? 0 : errno;
}

}  // namespace

Part &Part::operator=(Part &&other) noexcept {
  std::swap(folder_, other.folder_);
  name_.swap(other.name_);
  std::swap(content_, other.content_);
  return *this;
}

Part::~Part() {
  if (!name_.empty()) unlinkat(folder_, name_.c_str(), 0);
}

void Part::close() {
  if (content_ && ::close(content_.release()) != 0) fail();
}

carbon::Descriptor Part::reopen() const {
  carbon::Descriptor file(openat(folder_, name_.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  if (!file) fail();
  return file;
}

void Part::nameAs(int folder, const std::string &name) {
  giveName(folder_, name_, folder, name);
  name_.clear();
}

Part PartFolder::make() {
  if (!folder_.content) folder_ = makeTemporaryFolder(music_);
  Part part;
  part.folder_ = folder_.content.number();
  part.name_ = std::to_string(++made_) + ".part";
  part.content_ = carbon::Descriptor(
      openat(part.folder_, part.name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
  if (part.content_) return part;
  part.name_.clear();
  fail();
}

int PartFolder::sync(const std::vector<std::string> &names) const noexcept {
  const int folder = folder_.content.number();
  if (folder < 0) return 0;  // no part was ever made
  struct statfs system {};
  // A file system that a program serves is asked for single files only.
  if (fstatfs(folder, &system) != 0 || system.f_type == FUSE_SUPER_MAGIC) {
    for (const std::string &name : names) {
      if (const int error = syncFile(folder, name); error != 0) return error;
    }
    return 0;
  }
  return syncfs(folder) == 0 ? 0 : errno;
}

}  // namespace zemhost
