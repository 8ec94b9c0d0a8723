#pragma once

// Two readers of one song, held against each other.

#include <string>
#include <vector>

#include "player/SongReader.h"
#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// What the class answers otherwise of a song than the file holds, in plain words: `the class answers 1999 as
// the year, and the file holds 1998`. Compared are the numbers and texts that both read; of the texts those
// that stand once in the song, in UTF-16. `path` is what the class answers, `texts` are the file's.
std::vector<std::string> songDifferences(const Song &song, const std::string &path,
                                         const std::vector<player::SongText> &texts, bool bigEndian);

}  // namespace zemhost
