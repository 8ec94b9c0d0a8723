#pragma once

// Songs of a library that are the same, by the class's own comparison.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

enum class Sameness {
  Song,          // the same title, and the same album (with its artist) to CompareAlbum
  SongOfArtist,  // the same title, and the same artist to CompareArtist
  Artist,        // each the same to the Compare method of this name
  Album,
  Genre,
  Composer
};

struct SongGroup {
  // What the songs share, UTF-8, composed, in the order of textNames(). Two libraries' groups are the same
  // when these are.
  std::vector<std::string> texts;
  std::vector<int32_t> songs;  // library indices, ascending
};

// The names of a group's texts: "title", "artist", "album" for songs.
const std::vector<std::string_view> &textNames(Sameness by);

// The texts of one song, as those of a group of its own.
std::vector<std::string> songTexts(const MusicLibrary &library, Sameness by, int32_t index);

// The groups of a library in the order of their first songs, each song in one of them. A song without a title
// is the same as no other; its title is its path then, so that groups of two libraries do not meet by
// accident. Songs are looked up by their texts with some log2(songs) comparisons each, whatever the texts
// are; these add to `comparisons` when that is given.
std::vector<SongGroup> groupSongs(const MusicLibrary &library, Sameness by, uint64_t *comparisons = nullptr);

// Groups of two libraries, side by side.
struct Comparison {
  struct Pair {
    SongGroup a;
    SongGroup b;
  };
  std::vector<SongGroup> onlyA;  // in the order of the library
  std::vector<SongGroup> onlyB;
  std::vector<Pair> both;  // in the order of the first
};

// Texts are compared as such, whatever encodings the libraries store them in. Groups of one library that
// differ in bytes alone become one.
Comparison compareLibraries(const MusicLibrary &a, const MusicLibrary &b, Sameness by);
}  // namespace zemhost
