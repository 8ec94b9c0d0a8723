#pragma once

// The covers of a library as files of pictures, one for each album.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// What came of writing pictures.
struct PictureResult {
  uint64_t written = 0;
  uint64_t alreadyThere = 0;
  uint64_t without = 0;               // albums and songs without one
  uint64_t evaded = 0;                // names that another file has
  std::vector<std::string> problems;  // what could not be written, and why
};

// Writes the largest cover of each album into a folder, under the album's name, and under the names of artist
// and album where two albums of one name have different covers. A song without an album counts as one of its
// own title. Files that are there are left alone: one with the same content counts as the cover, any other
// makes it get a number. Shows each new file's name on standard output. Throws HostError when there are no
// covers, nothing can be written there, or nothing more can be; the same call continues from there.
PictureResult writeCovers(const MusicLibrary &library, const std::filesystem::path &destination);

}  // namespace zemhost
