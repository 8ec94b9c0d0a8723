#include "zemhost/report/Albums.h"

#include <map>

namespace zemhost {

Albums::Albums(const std::vector<AlbumSong> &songs) : albumOf_(songs.size()) {
  const AlbumLayout layout(songs);
  std::map<size_t, size_t> places;  // of the layout's albums
  for (size_t song = 0; song < songs.size(); ++song) {
    if (songs[song].album.find_first_not_of(' ') == std::string::npos) continue;
    const auto [place, isNew] = places.try_emplace(layout.albumOf(song), list_.size());
    if (isNew) list_.push_back({songs[song].album, layout.artistOf(song)});
    albumOf_[song] = place->second;
  }
}

}  // namespace zemhost
