#include "zemhost/rescue/DestinationFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "host/Error.h"
#include "zemhost/files/Beneath.h"
#include "zemhost/files/Leftovers.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

constexpr auto kThisFile = CopyFailure::Reach::ThisFile;

constexpr int kLookUpOnly = O_PATH | O_DIRECTORY | O_CLOEXEC;

bool isSame(const struct stat &one, const struct stat &other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

struct stat statusOfOpen(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) throw CopyFailure(kThisFile, errno);
  return status;
}

// The folder itself, or the nearest above it that exists.
carbon::Descriptor openNearest(fs::path path) {
  for (;;) {
    carbon::Descriptor folder(::open(path.c_str(), kLookUpOnly));
    if (folder || !path.has_relative_path()) return folder;
    path = path.parent_path();
  }
}

std::string parentOf(const std::string &name) {
  const size_t slash = name.rfind('/');
  return slash == std::string::npos ? "." : name.substr(0, slash);
}

std::string lastOf(const std::string &name) { return name.substr(name.rfind('/') + 1); }

}  // namespace

DestinationFolder::DestinationFolder(fs::path path, const fs::path &playerRoot)
    : path_(std::move(path)), parts_(std::make_unique<PartFolder>(path_)) {
  if (!playerRoot.empty()) {
    playerRoot_ = carbon::Descriptor(::open(playerRoot.c_str(), kLookUpOnly));
    struct stat above {};
    if (!playerRoot_ || fstat(playerRoot_.number(), &player_) != 0 ||
        fstatat(playerRoot_.number(), "..", &above, 0) != 0)
      throw HostError(playerRoot.string(), errno);
    playerIsMounted_ = above.st_dev != player_.st_dev;
  }
  std::error_code error;
  const fs::path whole = fs::weakly_canonical(fs::absolute(path_, error), error);
  if (error) throw HostError(path_.string(), error.value());
  if (liesOnPlayer(openNearest(whole).number()))
    throw HostError(path_.string() + ": this lies on the player, and nothing is written there");
  folder_ = carbon::Descriptor(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

void DestinationFolder::make() {
  std::error_code error;
  fs::create_directories(path_, error);
  if (error) throw HostError(path_.string(), error.value());
  folder_ = carbon::Descriptor(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder_) throw HostError(path_.string(), errno);
  last_ = {};
  // Where a file system knows no locks, there is none.
  if (flock(folder_.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
    throw HostError(path_.string() + ": another rescue is writing here");
  leftovers_ = removeLeftovers(folder_.number());
}

std::optional<uint64_t> DestinationFolder::bytesFree() const {
  struct statvfs room {};
  if (fstatvfs(folder_.number(), &room) != 0) return std::nullopt;
  return static_cast<uint64_t>(room.f_bavail) * static_cast<uint64_t>(room.f_frsize);
}

// Decided by what the folders are, whatever names and links led there.
bool DestinationFolder::liesOnPlayer(int folder) const {
  if (!playerRoot_) return false;
  if (folder < 0) return false;
  struct stat status = statusOfOpen(folder);
  const std::pair<dev_t, ino_t> identity(status.st_dev, status.st_ino);
  if (elsewhere_.contains(identity)) return false;
  if (playerIsMounted_ && status.st_dev == player_.st_dev) return true;
  carbon::Descriptor here;
  while (!isSame(status, player_)) {
    carbon::Descriptor above(openat(here ? here.number() : folder, "..", kLookUpOnly));
    if (!above) return false;
    const struct stat next = statusOfOpen(above.number());
    if (isSame(next, status)) {  // the root of the machine
      elsewhere_.insert(identity);
      return false;
    }
    here = std::move(above);
    status = next;
  }
  return true;
}

// None when it does not exist.
carbon::Descriptor DestinationFolder::openFolder(const std::string &folder, bool make) const {
  carbon::Descriptor open = openBeneath(folder_.number(), folder, kLookUpOnly);
  if (!open && errno == ENOENT && make) {
    const carbon::Descriptor parent = openFolder(parentOf(folder), make);
    if (mkdirat(parent.number(), lastOf(folder).c_str(), 0777) != 0 && errno != EEXIST) failTarget(errno);
    open = openBeneath(folder_.number(), folder, kLookUpOnly);
  }
  const auto whole = [&] { return (path_ / folder).lexically_normal().string(); };
  if (!open && errno == EXDEV)
    throw CopyFailure(kThisFile, EXDEV, whole() + ": a symbolic link leads out of " + path_.string());
  if (!open && (make || errno != ENOENT)) failTarget(errno);
  if (open && liesOnPlayer(open.number())) {
    throw CopyFailure(kThisFile, EXDEV, whole() + ": this lies on the player, and nothing is written there");
  }
  return open;
}

// The folder that a name lies in; none when it does not exist. Valid until the next call.
const carbon::Descriptor &DestinationFolder::folderOf(const std::string &name, bool make) const {
  std::string folder = parentOf(name);
  if (folder == last_.name && (last_.open || !make)) return last_.open;
  last_ = {};
  carbon::Descriptor open = openFolder(folder, make);
  last_ = {std::move(folder), std::move(open)};
  return last_.open;
}

std::optional<struct stat> DestinationFolder::statusOf(const std::string &name) const {
  if (!folder_) return std::nullopt;
  const carbon::Descriptor &folder = folderOf(name, false);
  struct stat status {};
  if (!folder) return std::nullopt;
  if (fstatat(folder.number(), lastOf(name).c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return status;
  if (errno != ENOENT) throw CopyFailure(kThisFile, errno);
  return std::nullopt;
}

carbon::Descriptor DestinationFolder::open(const std::string &name) const {
  const carbon::Descriptor &folder = folderOf(name, false);
  carbon::Descriptor file(openat(folder.number(), lastOf(name).c_str(),
                                 O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file) throw CopyFailure(kThisFile, errno);
  return file;
}

DestinationFolder::NewCopy DestinationFolder::copy(const carbon::Descriptor &source,
                                                   const std::function<void(uint64_t)> &onBytes) const {
  last_ = {};  // another program may move it while this goes on
  try {
    NewCopy copy{parts_->make(), {}};
    copy.content = copyContent(source, copy.part.content(), onBytes);
    return copy;
  } catch (const std::system_error &error) {
    failTarget(error.code().value());
  }
}

void DestinationFolder::sync() const {
  if (const int error = parts_->sync({}); error != 0) failTarget(error);
}

void DestinationFolder::close(NewCopy &copy) {
  try {
    copy.part.close();
  } catch (const std::system_error &error) {
    failTarget(error.code().value());
  }
}

void DestinationFolder::name(NewCopy &copy, const std::string &name) const {
  try {
    const carbon::Descriptor &folder = folderOf(name, true);
    copy.part.nameAs(folder.number(), lastOf(name));
  } catch (const std::system_error &error) {
    failTarget(error.code().value());
  }
}

void DestinationFolder::add(const carbon::Descriptor &source, const std::string &name) const {
  NewCopy copy = this->copy(source, [](uint64_t) {});
  if (!copy.content.gaps.empty()) throw CopyFailure(kThisFile, EIO);
  if (fsync(copy.part.content().number()) != 0 && errno != EINVAL) failTarget(errno);
  close(copy);
  this->name(copy, name);
}

}  // namespace zemhost
