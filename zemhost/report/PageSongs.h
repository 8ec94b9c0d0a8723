#pragma once

// The songs of a page: which of the library's they are, and the table of them with their albums.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/report/Privacy.h"

namespace zemhost {

// Songs of a library, in an order of their own; they go by their places in it.
class SongSelection {
 public:
  // All songs, or those of a playlist in its order, each once; -1: all.
  SongSelection(const MusicLibrary &library, int32_t playlist);

  // The library's indices.
  const std::vector<int32_t> &songs() const { return songs_; }
  // The place of a song of the library; no value when it is not among them, and for -1.
  std::optional<size_t> placeOf(int32_t song) const;

 private:
  std::vector<int32_t> songs_;
  std::vector<int32_t> places_;  // of each song of the library; -1: none
};

// Marks of a song, as bits.
constexpr uint32_t kMissingMark = 1;   // its file is not there
constexpr uint32_t kDamagedMark = 2;   // its file is too short, or cannot be read
constexpr uint32_t kRepeatedMark = 4;  // its recording is there more than once

struct PageSongs {
  std::string members;    // of the page's object, as JSON: "words", "songs", "albums", "covers"
  Totals totals;          // of the songs
  size_t unreadable = 0;  // covers
};

// Reads every song of the selection, whose marks are given beside it. With `covers` each album has the
// largest picture that the player keeps.
PageSongs pageSongs(const MusicLibrary &library, const SongSelection &selection,
                    const std::vector<uint32_t> &marks, const Privacy &privacy, bool covers);

// A date of the library as days since the start of 1970; no value for none.
std::optional<int64_t> daysOf(const std::optional<uint32_t> &secondsSince1904);

}  // namespace zemhost
