#pragma once

// The albums of songs, as the folders of rescued music tell them apart.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "zemhost/rescue/AlbumLayout.h"

namespace zemhost {

struct NamedAlbum {
  std::string name;    // as its first song has it
  std::string artist;  // kCompilations for one of several artists; empty when nobody is known
};

class Albums {
 public:
  explicit Albums(const std::vector<AlbumSong> &songs);

  // In the order of their first songs.
  const std::vector<NamedAlbum> &list() const { return list_; }
  // The place in it of a song's album, by the song's position among those given; no value for a song that
  // names no album.
  std::optional<size_t> albumOf(size_t song) const { return albumOf_[song]; }

 private:
  std::vector<NamedAlbum> list_;
  std::vector<std::optional<size_t>> albumOf_;
};

}  // namespace zemhost
