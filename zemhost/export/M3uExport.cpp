#include "zemhost/export/M3uExport.h"

#include <utility>

#include "host/runtime/MacPaths.h"
#include "zemhost/output/M3u.h"

namespace zemhost {

// Whether a path goes down from the player's root, or from a volume of a desktop library, without an empty
// name: that would go up, and would stand in a list as the "//" of an address or a network share.
bool M3uExport::isPlain(const std::string &path) const {
  if (library_.form() != LibraryForm::Desktop && !path.starts_with(':')) return false;
  return path.find("::") == std::string::npos;
}

M3uExport::M3uExport(const MusicLibrary &library, EncodedOutput &out, M3uPaths paths,
                     std::filesystem::path folder)
    : library_(library), out_(out), paths_(paths), folder_(std::move(folder)) {
  out_.write(m3uHeading());
}

void M3uExport::addSong(int32_t index) {
  const Song song = library_.song(index);
  std::string path = pathOf(song);
  if (path.empty()) {
    ++leftOut_;
    return;
  }
  ++written_;
  out_.write(m3uEntry({song.duration, out_.fit(song.artist), out_.fit(song.title), out_.fit(path)}));
}

std::string M3uExport::pathOf(const Song &song) const {
  if (paths_ == M3uPaths::Device) return isPlain(song.path) ? diskPath(song.path) : std::string();
  const std::filesystem::path file = library_.file(song.path).path;
  if (file.empty() || paths_ == M3uPaths::Host) return file.string();
  return std::filesystem::proximate(file, folder_).string();
}

}  // namespace zemhost
