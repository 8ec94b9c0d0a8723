#include "zemhost/files/PendingFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "host/Error.h"
#include "player/FileBytes.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

fs::path folderOf(const fs::path &target) {
  return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

// The permissions of the file that is to be replaced, when there is one.
std::optional<mode_t> checkTarget(const fs::path &target) {
  if (target.empty()) throw HostError("an output file needs a name");
  struct stat status {};
  if (lstat(target.c_str(), &status) != 0) {
    if (errno != ENOENT) throw HostError(target.string(), errno);
    // "songs/" names a folder that does not exist.
    if (!target.has_filename()) throw HostError(target.string(), ENOENT);
    return std::nullopt;
  }
  if (S_ISDIR(status.st_mode)) throw HostError(target.string(), EISDIR);
  if (S_ISLNK(status.st_mode))
    throw HostError(target.string() + ": this is a symbolic link; name the file itself");
  if (!S_ISREG(status.st_mode)) throw HostError(target.string() + ": this is not a regular file");
  return status.st_mode & 0777;
}

}  // namespace

PendingFile::PendingFile(fs::path target) : target_(std::move(target)) {
  const std::optional<mode_t> permissions = checkTarget(target_);
  replaces_ = permissions.has_value();
  try {
    file_ = makeTemporaryFile(folderOf(target_));
  } catch (const std::system_error &error) {
    throw HostError(target_.string(), error.code().value());
  }
  // A file system without permissions refuses this, and has none to keep.
  if (permissions && fchmod(descriptor(), *permissions) != 0) errno = 0;
}

void PendingFile::commit() {
  if (fsync(descriptor()) != 0) throw HostError(target_.string(), errno);
  const carbon::Descriptor locked(dup(descriptor()));  // until it has its name
  if (close(file_.content.release()) != 0) throw HostError(target_.string(), errno);
  const carbon::Descriptor folder(open(folderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (replaces_) {
    if (rename(file_.path.path().c_str(), target_.c_str()) != 0) throw HostError(target_.string(), errno);
    file_.path.keep();
  } else {
    try {
      file_.path.nameAs(AT_FDCWD, target_.string());
    } catch (const std::system_error &error) {
      throw HostError(target_.string(), error.code().value());
    }
  }
  // The new name too; the file is complete under it whether or not the folder can be synchronised.
  if (folder) fsync(folder.number());
}

void writeAll(int descriptor, std::string_view bytes, const std::string &name) {
  try {
    player::writeAll(descriptor, bytes);
  } catch (const std::system_error &error) {
    throw HostError(name, error.code().value());
  }
}

}  // namespace zemhost
