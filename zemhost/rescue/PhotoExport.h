#pragma once

// The photos of a player as files, in folders that are called as its albums.

#include <filesystem>

#include "zemhost/rescue/FilesResult.h"

namespace zemhost {

// Writes the photos of a mounted player, of its iPod_Control folder's player, or of its Photo Database into a
// folder: those of an album into a folder of the album's name, each once, those of none into the folder
// itself. The photo itself is copied as it is where the player has it; else its largest smaller picture is
// written. A list that is damaged adds a problem. Names, files that are there, output and failures are as
// with writeCovers().
FilesResult writePhotos(const std::filesystem::path &player, const std::filesystem::path &destination);

}  // namespace zemhost
