#include "player/PlayerFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>

#include "platform/carbon/Descriptor.h"
#include "player/Error.h"
#include "player/FileBytes.h"
#include "player/Folder.h"

namespace player {

namespace fs = std::filesystem;

namespace {

bool liesBelow(const fs::path &file, const fs::path &root) {
  std::error_code error;
  const fs::path place = fs::canonical(file, error);
  const fs::path top = error ? fs::path() : fs::canonical(root, error);
  return !error && std::mismatch(top.begin(), top.end(), place.begin(), place.end()).first == top.end();
}

[[noreturn]] void failBy(int error) { throw PlayerError(std::generic_category().message(error)); }

}  // namespace

fs::path playerFile(const fs::path &folder, const char *name) {
  try {
    return childNamed(folder, name).value_or(fs::path());
  } catch (const PlayerError &) {
    return {};
  }
}

std::string readPlayerFile(const fs::path &root, const fs::path &file, size_t most) {
  const carbon::Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (descriptor.number() < 0 || fstat(descriptor.number(), &status) != 0) failBy(errno);
  if (!S_ISREG(status.st_mode)) throw PlayerError("it is no regular file");
  if (!liesBelow(file, root)) throw PlayerError("a symbolic link leads out of the player");
  if (static_cast<uint64_t>(status.st_size) > most)
    throw PlayerError("it is too large: " + std::to_string(status.st_size) + " bytes");
  try {
    return readAt(descriptor.number(), 0, static_cast<size_t>(status.st_size));
  } catch (const std::system_error &error) {
    failBy(error.code().value());
  }
}

}  // namespace player
