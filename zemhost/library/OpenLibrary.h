#pragma once

// From a path to the library that it stands for, whatever kind of database holds it.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "player/SqliteLibrary.h"
#include "zemhost/library/MusicLibrary.h"
#include "zemhost/library/OpenDatabase.h"

namespace zemhost {

struct OpenedLibrary {
  MusicLibrary library;
  std::vector<std::string> warnings;               // a line each; none unless there is something to say
  std::shared_ptr<const SalvageReport> salvage{};  // of a damaged database; nullptr otherwise
};

// Finds the database that the path stands for and opens it: through the class, or, where it is a newest
// nano's, from its SQLite files. Throws HostError or PlayerError, naming the file and what is wrong with it.
OpenedLibrary openLibrary(const Host &host, const std::filesystem::path &path);

// Reads the SQLite files of a location that isSqlite(). Throws likewise; a symbolic link that leads from the
// player to one of the files elsewhere is wrong too.
std::shared_ptr<const player::SqliteLibrary> readSqliteLibrary(const player::DatabaseLocation &location);

}  // namespace zemhost
