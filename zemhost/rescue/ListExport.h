#pragma once

// Every playlist of a library as a file, without the music.

#include <cstdint>
#include <filesystem>
#include <vector>

#include "zemhost/export/ListEntries.h"
#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/ListFormat.h"
#include "zemhost/rescue/FilesResult.h"

namespace zemhost {

// The playlists that are written where none are asked for by name: all but the one of the whole library.
std::vector<int32_t> allLists(const MusicLibrary &library);

// Writes them into a folder, which is made when it is missing, and shows the names of new files on standard
// output. A list that is there already is left alone, and no other file is replaced: a list whose name is
// taken gets a number. A list that lacks songs is a problem of the result. Throws HostError when nothing can
// be written there: the folder lies on the player, the disk is full.
FilesResult exportLists(const MusicLibrary &library, const ListFormat &format, ListPaths paths,
                        const std::filesystem::path &destination);

}  // namespace zemhost
