#pragma once

#include <filesystem>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/library/OpenDatabase.h"

namespace zemhost {

// As openDatabase(), with its warnings printed.
OpenDatabase openAndWarn(const std::filesystem::path &path);
// The same with a host that is loaded already: a program has one, whatever number of databases it opens.
OpenDatabase openAndWarn(const Host &host, const std::filesystem::path &path);

// Prints what is left out of the list of covers, when it was read and something is.
void warnOfCovers(const MusicLibrary &library);

}  // namespace zemhost
