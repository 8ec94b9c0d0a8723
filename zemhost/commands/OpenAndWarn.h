#pragma once

#include <filesystem>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// As openLibrary(), with its warnings printed.
MusicLibrary openAndWarn(const std::filesystem::path &path);
// The same with a host that is loaded already: a program has one, whatever number of databases it opens.
MusicLibrary openAndWarn(const Host &host, const std::filesystem::path &path);

// Prints what is left out of the list of covers, when it was read and something is.
void warnOfCovers(const MusicLibrary &library);

}  // namespace zemhost
