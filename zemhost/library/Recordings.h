#pragma once

// Songs of a library that are one recording: the same texts, and nearly the same length.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zemhost/library/SongGroups.h"

namespace zemhost {

struct RecordingRules {
  bool sameAlbum = false;      // besides title and artist
  bool loosely = false;        // compare looseText() of the texts
  uint32_t mostApart = 2'000;  // milliseconds
};

struct Recording {
  SongGroup group;                // of two songs or more; the texts are the first one's
  std::vector<bool> isExact;      // whether a text is the same in all its songs, beside the texts
  std::optional<uint32_t> apart;  // milliseconds between its shortest and longest song; none: not known
};

struct Recordings {
  std::vector<Recording> repeated;  // that the library has more than once, in the order of their first songs
  uint64_t toldApart = 0;           // groups of the same texts that are several recordings
};

// A text without what people write in different ways: differences of case, of Unicode form and of blanks, and
// brackets at its end with what is in them, "(Live)" or "[Remastered 2009]".
std::string looseText(std::string_view text);

// Recordings of which there are several songs. The lengths of one all lie within `mostApart`, however many
// there are: of those with the same texts the shortest is taken with the next longer ones, and so on with
// what is left. Songs of unknown length are one recording apart from the others. A song without a title is
// the same as no other. Takes some log2(songs) comparisons a song, which add to `comparisons` when that is
// given.
Recordings repeatedRecordings(const MusicLibrary &library, const RecordingRules &rules,
                              uint64_t *comparisons = nullptr);

}  // namespace zemhost
