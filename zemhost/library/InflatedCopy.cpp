#include "zemhost/library/InflatedCopy.h"

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

InflatedCopy::InflatedCopy(const player::DatabaseLocation &location) {
  if (location.volumeRoot.empty()) {
    file_ = TemporaryPath(root_.path() / location.file.filename());
  } else {
    control_ = makeDirectory(root_.path() / player::kControlFolder);
    folder_ = makeDirectory(control_.path() / player::kDatabaseFolder);
    file_ = TemporaryPath(folder_.path() / player::kDatabaseFile);
  }
  const carbon::Descriptor from(open(location.file.c_str(), O_RDONLY | O_CLOEXEC));
  if (from.number() < 0) throw HostError(location.name, errno);
  content_ = carbon::Descriptor(open(file_.path().c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (content_.number() < 0) throw HostError(file_.path().string(), errno);
  bytesLeft_ =
      player::inflateDatabase(from.number(), location.name, content_.number(), file_.path().string());
  struct stat status {};
  if (fstat(content_.number(), &status) != 0) throw HostError(file_.path().string(), errno);
  size_ = static_cast<uint64_t>(status.st_size);
}

}  // namespace zemhost
