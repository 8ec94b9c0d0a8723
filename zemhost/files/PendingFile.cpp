#include "zemhost/files/PendingFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "host/Error.h"
#include "player/FileBytes.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const std::string &name, int error) {
  throw HostError(name + ": " + std::generic_category().message(error));
}

fs::path folderOf(const fs::path &target) {
  return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

// The permissions of the file that is to be replaced; 0 when there is none.
mode_t checkTarget(const fs::path &target) {
  if (target.empty()) throw HostError("an output file needs a name");
  struct stat status {};
  if (lstat(target.c_str(), &status) != 0) {
    if (errno != ENOENT) fail(target.string(), errno);
    // "songs/" names a folder that does not exist.
    if (!target.has_filename()) fail(target.string(), ENOENT);
    return 0;
  }
  if (S_ISDIR(status.st_mode)) fail(target.string(), EISDIR);
  if (S_ISLNK(status.st_mode))
    throw HostError(target.string() + ": this is a symbolic link; name the file itself");
  if (!S_ISREG(status.st_mode)) throw HostError(target.string() + ": this is not a regular file");
  return status.st_mode & 0777;
}

}  // namespace

PendingFile::PendingFile(fs::path target) : target_(std::move(target)) {
  const mode_t permissions = checkTarget(target_);
  std::random_device random;
  do {
    std::array<char, 24> last{};
    std::snprintf(last.data(), last.size(), ".zemhost-%08x.part", random());
    temporary_ = TemporaryPath(folderOf(target_) / last.data());
    descriptor_ = open(temporary_.path().c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (descriptor_ >= 0) break;
    const int error = errno;
    temporary_.keep();  // it is another's, or there is none
    if (error != EEXIST) fail(target_.string(), error);
  } while (true);
  // A file system without permissions refuses this, and has none to keep.
  if (permissions != 0 && fchmod(descriptor_, permissions) != 0) errno = 0;
}

PendingFile::~PendingFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

void PendingFile::commit() {
  if (fsync(descriptor_) != 0) fail(target_.string(), errno);
  const int descriptor = std::exchange(descriptor_, -1);
  if (close(descriptor) != 0) fail(target_.string(), errno);
  if (rename(temporary_.path().c_str(), target_.c_str()) != 0) fail(target_.string(), errno);
  temporary_.keep();
  // The new name too; the file is complete under it whether or not the folder can be synchronised.
  const int folder = open(folderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return;
  fsync(folder);
  close(folder);
}

void writeAll(int descriptor, std::string_view bytes, const std::string &name) {
  try {
    player::writeAll(descriptor, bytes);
  } catch (const std::system_error &error) {
    fail(name, error.code().value());
  }
}

}  // namespace zemhost
