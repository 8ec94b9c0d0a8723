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

[[noreturn]] void fail(const std::string &name, int error) {
  throw HostError(name + ": " + std::generic_category().message(error));
}

fs::path folderOf(const fs::path &target) {
  return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

// The permissions of the file that is to be replaced, when there is one.
std::optional<mode_t> checkTarget(const fs::path &target) {
  if (target.empty()) throw HostError("an output file needs a name");
  struct stat status {};
  if (lstat(target.c_str(), &status) != 0) {
    if (errno != ENOENT) fail(target.string(), errno);
    // "songs/" names a folder that does not exist.
    if (!target.has_filename()) fail(target.string(), ENOENT);
    return std::nullopt;
  }
  if (S_ISDIR(status.st_mode)) fail(target.string(), EISDIR);
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
    fail(target_.string(), error.code().value());
  }
  // A file system without permissions refuses this, and has none to keep.
  if (permissions && fchmod(descriptor(), *permissions) != 0) errno = 0;
}

void PendingFile::commit() {
  if (fsync(descriptor()) != 0) fail(target_.string(), errno);
  if (close(file_.content.release()) != 0) fail(target_.string(), errno);
  const carbon::Descriptor folder(open(folderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (replaces_) {
    if (rename(file_.path.path().c_str(), target_.c_str()) != 0) fail(target_.string(), errno);
    file_.path.keep();
  } else {
    try {
      file_.path.nameAs(AT_FDCWD, target_.string());
    } catch (const std::system_error &error) {
      fail(target_.string(), error.code().value());
    }
  }
  // The new name too; the file is complete under it whether or not the folder can be synchronised.
  if (folder) fsync(folder.number());
}

void writeAll(int descriptor, std::string_view bytes, const std::string &name) {
  try {
    player::writeAll(descriptor, bytes);
  } catch (const std::system_error &error) {
    fail(name, error.code().value());
  }
}

}  // namespace zemhost
