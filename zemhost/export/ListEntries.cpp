#include "zemhost/export/ListEntries.h"

#include <utility>

#include "host/runtime/MacPaths.h"

namespace zemhost {

ListPaths listPathsNamed(const std::string &name) {
  if (name == "device") return ListPaths::Device;
  return name == "relative" ? ListPaths::Relative : ListPaths::Host;
}

ListEntries::ListEntries(const MusicLibrary &library, ListPaths paths, std::filesystem::path folder)
    : library_(library), paths_(paths), folder_(std::move(folder)) {}

std::optional<ListedSong> ListEntries::of(int32_t song) const {
  const Song read = library_.song(song);
  std::string path = pathOf(read);
  if (path.empty()) return std::nullopt;
  return ListedSong{read.duration, read.artist, read.title, std::move(path), read.album};
}

std::string ListEntries::whyLeftOut() const {
  return paths_ == ListPaths::Device
             ? "no path from the player's root is known"
             : "the path names no place on this machine; --paths device lists what is known";
}

// Whether a path goes down from the player's root, or from a volume of a desktop library, without an empty
// name: that would go up, and would stand in a list as the "//" of an address or a network share.
bool ListEntries::isPlain(const std::string &path) const {
  if (library_.form() != LibraryForm::Desktop && !path.starts_with(':')) return false;
  return path.find("::") == std::string::npos;
}

std::string ListEntries::pathOf(const Song &song) const {
  if (paths_ == ListPaths::Device) return isPlain(song.path) ? diskPath(song.path) : std::string();
  const std::filesystem::path file = library_.file(song.path).path;
  if (file.empty() || paths_ == ListPaths::Host) return file.string();
  return std::filesystem::proximate(file, folder_).string();
}

}  // namespace zemhost
