#include "zemhost/library/SongFiles.h"

#include <algorithm>
#include <array>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "host/runtime/FolderItem.h"
#include "host/runtime/MacPaths.h"
#include "player/Error.h"
#include "player/Folder.h"
#include "player/PlayerFolders.h"
#include "zemhost/files/Beneath.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

constexpr int kLookUpOnly = O_PATH | O_DIRECTORY;

// None of a folder that could not be opened.
std::vector<std::string> namesIn(const carbon::Descriptor &folder) {
  std::vector<std::string> names;
  const int number = dup(folder.number());  // that the stream will own
  DIR *const stream = fdopendir(number);
  if (stream == nullptr) {
    const bool isMemoryShort = errno == ENOMEM;
    if (number >= 0) close(number);
    if (isMemoryShort) throw std::bad_alloc();
    return names;
  }
  while (const dirent *entry = readdir(stream)) names.emplace_back(entry->d_name);
  closedir(stream);
  return names;
}

std::string joined(const std::string &folder, const std::string &name) {
  return folder == "." ? name : folder + "/" + name;
}

// The names of a player's path as the disk has them: "::" goes up, and a '/' in a name is a ':' on disk.
// False when one of them cannot stand on a disk.
bool splitPath(std::string_view path, std::vector<std::string> &names) {
  if (path.ends_with(':')) path.remove_suffix(1);
  while (!path.empty()) {
    const size_t end = std::min(path.find(':', 1), path.size());
    std::string name(path.substr(1, end - 1));
    path.remove_prefix(end);
    if (name == "." || name == ".." || name.find('\0') != std::string::npos) return false;
    names.push_back(name.empty() ? ".." : diskPath(name));
  }
  return !names.empty() && names.back() != "..";
}

// The path of an open folder without symbolic links, as the system says; `otherwise` when it does not.
fs::path pathOf(const carbon::Descriptor &folder, const fs::path &otherwise) {
  const std::string link = "/proc/self/fd/" + std::to_string(folder.number());
  std::array<char, PATH_MAX> path{};
  const ssize_t length = readlink(link.c_str(), path.data(), path.size());
  const bool whole = length > 0 && static_cast<size_t>(length) < path.size() && path[0] == '/';
  return whole ? fs::path(std::string_view(path.data(), static_cast<size_t>(length))) : otherwise;
}

// What is open there; the error of a kind of file that is no song's.
void lookAt(const carbon::Descriptor &open, SongFile &file) {
  struct stat status {};
  file.error = !open || fstat(open.number(), &status) != 0 ? errno : 0;
  if (file.error != 0) return;
  if (!S_ISREG(status.st_mode)) file.error = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
  file.size = static_cast<uint64_t>(status.st_size);
  file.modified = status.st_mtim;
}

std::string controlNameOn(const fs::path &root) {
  if (root.empty()) return player::kControlFolder;
  try {
    return player::controlFolderOf(root).value_or(player::kControlFolder).filename().string();
  } catch (const player::PlayerError &) {
    return player::kControlFolder;  // nothing can be found there
  }
}

}  // namespace

SongFiles::SongFiles(const player::DatabaseLocation &location, bool namesVolumes)
    : onPlayer_(!location.volumeRoot.empty()),
      namesVolumes_(namesVolumes),
      volume_(volumeName(location.volumeRoot)),
      root_(location.volumeRoot),
      controlName_(controlNameOn(root_)),
      rootFolder_(onPlayer_ ? ::open(root_.c_str(), kLookUpOnly | O_CLOEXEC) : -1) {}

SongFile SongFiles::find(const std::string &path) {
  if (onPlayer_) {
    const bool namesThisOne = namesVolumes_ && path.starts_with(volume_ + ":");
    if (namesThisOne) return findOnVolume(path.substr(volume_.size()));
    if (!namesVolumes_ && path.starts_with(':')) return findOnVolume(path);
  }
  SongFile file;
  file.name = path;
  file.place = path;
  if (path.empty()) return file;
  if (onPlayer_) {
    file.error = EXDEV;
  } else if (namesVolumes_) {
    file.path = FolderItem::fromMacPath(path).path();
    if (!file.path.empty()) file.place = file.path.string();
    if (!file.path.empty()) lookAt(carbon::Descriptor(::open(file.path.c_str(), O_PATH | O_CLOEXEC)), file);
  }
  return file;
}

SongFile SongFiles::findOnVolume(const std::string &path) {
  SongFile file;
  file.name = volume_ + path;
  file.place = file.name;
  std::vector<std::string> names;
  if (!splitPath(path, names)) return file;
  file.place = root_.string();
  for (const std::string &name : names) file.place += "/" + name;
  std::string way = ".";
  // What the database calls the player's own folder may have another name on this one.
  if (player::isControlFolder(names.front()) && folder(folderNamed(way, names.front())).error == ENOENT)
    names.front() = controlName_;
  // Nothing lies below a folder that is not there, however many names follow.
  for (size_t i = 0; i + 1 < names.size() && folder(way).error == 0; ++i) way = folderNamed(way, names[i]);
  const Folder &last = folder(way);
  file.error = last.error;
  if (last.error != 0) {
    const bool isThere = last.error != ENOENT && last.error != ENOTDIR && last.error != EXDEV;
    if (isThere) file.path = root_ / way;  // the folder that cannot be opened
    return file;
  }
  std::string name = names.back();
  const auto look = [&] {
    file.path = last.path / name;
    file.place = file.path.string();
    file.below = joined(way, name);
    lookAt(openBeneath(rootFolder_.number(), file.below, O_PATH), file);
  };
  look();
  if (file.error == ENOENT && nameIn(way, name) != name) {
    name = nameIn(way, name);
    look();
  }
  // It may be there under a name in another case.
  if (file.error == ENOENT && last.readError != 0) {
    file.path = last.path;
    file.error = last.readError;
  }
  if (file.isOutside()) file.path.clear();
  return file;
}

SongFiles::Folder &SongFiles::folder(const std::string &below) {
  const auto [known, isNew] = folders_.try_emplace(below);
  Folder &folder = known->second;
  if (isNew) {
    const carbon::Descriptor open = openBeneath(rootFolder_.number(), below, kLookUpOnly);
    folder.error = open ? 0 : errno;
    if (open) folder.path = pathOf(open, root_ / below);
  }
  return folder;
}

// The folder's name from the root; that of a folder that is not there when there is none.
std::string SongFiles::folderNamed(const std::string &parent, const std::string &name) {
  const std::string exact = joined(parent, name);
  return folder(exact).error == ENOENT && name != ".." ? joined(parent, nameIn(parent, name)) : exact;
}

// What a folder calls `name`: exactly so, else without regard to case and composition, else `name` itself.
std::string SongFiles::nameIn(const std::string &below, const std::string &name) {
  Folder &folder = this->folder(below);
  if (!folder.isRead) {
    folder.isRead = true;
    const carbon::Descriptor open = openBeneath(rootFolder_.number(), below, O_RDONLY | O_DIRECTORY);
    if (!open && errno != ENOENT) folder.readError = errno;
    for (const std::string &one : namesIn(open)) {
      ++entriesRead_;
      folder.names.insert(one);
      std::string &least = folder.byFolded.try_emplace(foldedText(one), one).first->second;
      least = std::min(least, one);
    }
  }
  if (folder.names.contains(name)) return name;
  const auto found = folder.byFolded.find(foldedText(name));
  return found == folder.byFolded.end() ? name : found->second;
}

carbon::Descriptor SongFiles::open(const SongFile &file) const {
  // Without O_NONBLOCK, opening a pipe would wait for a writer.
  constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY;
  if (onPlayer_) return openBeneath(rootFolder_.number(), file.below, kFlags);
  return carbon::Descriptor(::open(file.path.c_str(), kFlags | O_CLOEXEC));
}

}  // namespace zemhost
