#pragma once

// The covers of a library as files of pictures, one for each album.

#include <filesystem>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/FilesResult.h"

namespace zemhost {

// Writes the largest cover of each album into a folder, under the album's name, and under the names of artist
// and album where two albums of one name have different covers. A song without an album counts as one of its
// own title. Files that are there are left alone: one with the same content counts as the cover, any other
// makes it get a number. Shows each new file's name on standard output. Throws HostError when there are no
// covers, nothing can be written there, or nothing more can be; the same call continues from there.
FilesResult writeCovers(const MusicLibrary &library, const std::filesystem::path &destination);

}  // namespace zemhost
