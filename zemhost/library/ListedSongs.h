#pragma once

#include <cstdint>
#include <vector>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// The songs of a playlist as library indices, in its order; -1 for an entry whose song is not there. A folder
// that stores no entries has the songs of the lists and folders in it, in the order of the library and each
// once.
std::vector<int32_t> listedSongs(const MusicLibrary &library, int32_t playlist);

}  // namespace zemhost
