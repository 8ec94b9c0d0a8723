#include "zemhost/library/InflatedCopy.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>

#include "host/Error.h"
#include "player/CompressedDatabase.h"

namespace zemhost {

namespace {

[[noreturn]] void fail(const std::string &name) {
  throw HostError(name + ": " + std::generic_category().message(errno));
}

TemporaryPath makeDirectory(const std::filesystem::path &path) {
  TemporaryPath made(path);
  if (mkdir(path.c_str(), 0700) != 0) fail(path.string());
  return made;
}

}  // namespace

InflatedCopy::InflatedCopy(const player::DatabaseLocation &location) {
  if (location.volumeRoot.empty()) {
    file_ = TemporaryPath(root_.path() / location.file.filename());
  } else {
    control_ = makeDirectory(root_.path() / "iPod_Control");
    folder_ = makeDirectory(control_.path() / "iTunes");
    file_ = TemporaryPath(folder_.path() / "iTunesDB");
  }
  const carbon::Descriptor from(open(location.file.c_str(), O_RDONLY | O_CLOEXEC));
  if (from.number() < 0) fail(location.name);
  content_ = carbon::Descriptor(open(file_.path().c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (content_.number() < 0) fail(file_.path().string());
  bytesLeft_ =
      player::inflateDatabase(from.number(), location.name, content_.number(), file_.path().string());
}

}  // namespace zemhost
