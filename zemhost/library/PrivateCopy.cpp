#include "zemhost/library/PrivateCopy.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include "host/Error.h"
#include "player/CompressedDatabase.h"
#include "player/PlayerFolders.h"

namespace zemhost {

namespace {

TemporaryPath makeDirectory(const std::filesystem::path &path) {
  TemporaryPath made(path);
  if (mkdir(path.c_str(), 0700) != 0) throw HostError(path.string(), errno);
  return made;
}

}  // namespace

PrivateCopy::PrivateCopy(const player::DatabaseLocation &location) {
  if (location.volumeRoot.empty()) {
    file_ = TemporaryPath(root_.path() / location.file.filename());
  } else {
    control_ = makeDirectory(root_.path() / player::kControlFolder);
    folder_ = makeDirectory(control_.path() / player::kDatabaseFolder);
    file_ = TemporaryPath(folder_.path() / player::kDatabaseFile);
  }
  content_ = carbon::Descriptor(open(file_.path().c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (content_.number() < 0) throw HostError(file_.path().string(), errno);
}

uint64_t PrivateCopy::size() const {
  struct stat status {};
  if (fstat(content_.number(), &status) != 0) throw HostError(file_.path().string(), errno);
  return static_cast<uint64_t>(status.st_size);
}

uint64_t inflateInto(PrivateCopy &copy, const player::DatabaseLocation &location) {
  const carbon::Descriptor from(open(location.file.c_str(), O_RDONLY | O_CLOEXEC));
  if (from.number() < 0) throw HostError(location.name, errno);
  return player::inflateDatabase(from.number(), location.name, copy.content(), copy.file().string());
}

}  // namespace zemhost
