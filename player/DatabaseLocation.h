#pragma once

// From what a person names (a mounted player, its iPod_Control folder, a file) to the database file.

#include <filesystem>
#include <string>

namespace player {

struct DatabaseLocation {
  // Whether the file is the first of the SQLite files of a newest nano.
  bool isSqlite() const;

  std::filesystem::path file;
  std::string name;  // of the file in messages: as the person wrote it, where they named the file
  std::filesystem::path volumeRoot;  // of the player that holds the file; empty when it lies on none
};

// Finds the database of a player's root directory, of its iPod_Control folder or of a folder of SQLite files,
// or takes a file as it is; the player's own folder names match without regard to case. A folder of SQLite
// files goes before iTunesDB and iTunesCDB, of which the larger is taken: players that have such a folder
// read it alone. The two paths are absolute. Throws PlayerError, naming the path, when it does not exist,
// cannot be read, or is a directory without a database, and naming a file or folder from which a link leads
// out of the player.
DatabaseLocation locateDatabase(const std::filesystem::path &path);

// The root of the player that a path stands for as above, whether or not it has a database; empty when it
// stands for none.
std::filesystem::path playerRootOf(const std::filesystem::path &path);

}  // namespace player
