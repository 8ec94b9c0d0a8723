#pragma once

// Which songs are one album, and what that means for their files: whose folder it lies in, and whether its
// discs have to be told apart.

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "zemhost/library/Song.h"

namespace zemhost {

// What decides it, of one song. Texts are UTF-8; an empty text and 0 stand for what is not known.
struct AlbumSong {
  std::string album, albumArtist, artist;
  uint32_t disc = 0, discs = 0, track = 0, trackTotal = 0, year = 0;
  bool compilation = false;  // marked as part of one
};

// The same of a song of a library, whose album artist is given beside it.
AlbumSong albumSong(const Song &song, std::string albumArtist);

// The folder of the albums of several artists.
constexpr const char *kCompilations = "Compilations";

// Songs of one album name, without regard to case, composition and blanks around it, are one album when they
// have the same album artist. Of those without one, the songs marked as parts of a compilation are one album.
// So are songs of several artists whose numbers fit together: each has a place of its own among the same
// total number of tracks, and they are of one year or of more than two artists. The others are albums by
// artist; one who appears "feat." others counts as alone.
class AlbumLayout {
 public:
  explicit AlbumLayout(const std::vector<AlbumSong> &songs);

  // Under whom the album of a song is filed, by its position in the songs given: kCompilations, its album
  // artist, or its artist; empty when none is known. A compilation is an album of several artists that is
  // marked so, or whose album artist is "Various Artists", or that has none.
  const std::string &artistOf(size_t song) const { return albums_[albumOf_[song]].artist; }

  // The album of a song, likewise: a number that all its songs have and no others. Songs that name no album
  // are one by artist.
  size_t albumOf(size_t song) const { return albumOf_[song]; }

  // The disc of a song whose album has more than one, with zeros in front so that the discs of an album sort
  // as their numbers do; empty for others.
  std::string discOf(size_t song) const;

 private:
  struct Album {
    std::string artist;
    uint32_t discs = 1;  // the highest number that a song states of itself or of the whole
  };
  using Places = std::vector<size_t>;
  using Songs = std::vector<AlbumSong>;

  void placeNamesakes(const Songs &songs, const Places &namesakes);
  void placeUncredited(const Songs &songs, const Places &uncredited, Places &compilation);
  void add(const Songs &songs, const Places &places, std::string artist);

  std::vector<Album> albums_;
  std::vector<size_t> albumOf_;  // beside the songs
  std::vector<uint32_t> discs_;  // likewise
};

}  // namespace zemhost
