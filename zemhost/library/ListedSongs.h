#pragma once

#include <cstdint>
#include <vector>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// The entries of a playlist as library indices of their songs, in its order; -1 where the song is not there.
std::vector<int32_t> storedSongs(const MusicLibrary &library, int32_t playlist);

// The songs of a playlist, likewise. A folder that stores no entries has the songs of the lists and folders
// in it, in the order of the library and each once.
std::vector<int32_t> listedSongs(const MusicLibrary &library, int32_t playlist);

}  // namespace zemhost
