#include "zemhost/export/M3uExport.h"

#include <utility>

#include "host/runtime/MacPaths.h"
#include "zemhost/export/Columns.h"
#include "zemhost/output/M3u.h"

namespace zemhost {

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
  out_.write(m3uEntry({song.duration, out_.fit(song.artist), out_.fit(song.title), out_.fit(path)}));
}

std::string M3uExport::pathOf(const Song &song) const {
  if (paths_ == M3uPaths::Device) return diskPath(song.path);
  const std::filesystem::path file = songFile(library_, song.path);
  if (file.empty() || paths_ == M3uPaths::Host) return file.string();
  return std::filesystem::proximate(file, folder_).string();
}

}  // namespace zemhost
