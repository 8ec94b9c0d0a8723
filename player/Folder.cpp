#include "player/Folder.h"

#include <algorithm>
#include <new>
#include <strings.h>
#include <system_error>

#include "player/Error.h"
#include "player/PlayerFolders.h"

namespace player {

namespace fs = std::filesystem;

bool isNamed(const fs::path &path, const char *name) {
  return strcasecmp(path.filename().c_str(), name) == 0;
}

std::optional<fs::path> childNamed(const fs::path &directory, const char *name) {
  std::error_code error;
  const fs::path exact = directory / name;
  if (fs::exists(fs::symlink_status(exact, error))) return exact;
  std::optional<fs::path> found;
  fs::directory_iterator entry(directory, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    // Of several the first by name, so that the answer does not depend on the order of the directory.
    if (isNamed(entry->path(), name) && (!found || entry->path() < *found)) found = entry->path();
  }
  if (error == std::errc::not_enough_memory) throw std::bad_alloc();
  if (error) throw PlayerError(directory.string(), error.value());
  return found;
}

bool isControlFolder(const fs::path &path) {
  return isNamed(path, kControlFolder) || isNamed(path, kOtherControlFolder);
}

std::optional<fs::path> controlFolderOf(const fs::path &root) {
  const std::optional<fs::path> usual = childNamed(root, kControlFolder);
  return usual ? usual : childNamed(root, kOtherControlFolder);
}

void expectInside(const fs::path &folder, const fs::path &path, const std::string &name) {
  std::error_code error;
  const fs::path end = fs::canonical(path, error);
  if (error) return;
  const fs::path top = fs::canonical(folder, error);
  if (!error && std::mismatch(top.begin(), top.end(), end.begin(), end.end()).first != top.end())
    throw PlayerError(name + ": a symbolic link leads out of the player");
}

}  // namespace player
