#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/Host.h"
#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/DatabaseLocation.h"
#include "player/PlayerLists.h"
#include "player/PlayerSongs.h"

namespace zemhost {

// What was found by salvage in a database that is damaged.
struct SalvageReport {
  uint64_t songs = 0;
  uint64_t announced = 0;  // songs, by what is left of the database; 0 when it does not say
  uint64_t playlists = 0;
  std::string refusal;           // why the class does not load the file itself; empty when it does
  player::FileAccount original;  // of the damaged content

  // Whether songs were lost, or may have been.
  bool isShort() const { return announced != songs; }
  // "1998 of 2006 songs and 12 playlists were found by salvage".
  std::string text() const;
};

struct OpenDatabase {
  Host host;
  player::DatabaseLocation location;
  Object object;                // has loaded the file; its properties are as the class sets them
  carbon::Descriptor content;   // what was loaded: the file, its inflated form, or a mended one
  bool compressed;              // whether the file is
  uint64_t bytesAfterStream;    // bytes of a compressed file after its stream
  player::FileAccount account;  // of the content
  std::shared_ptr<const player::PlayerSongs> songs;  // read from the content without the plug-in
  std::shared_ptr<const player::PlayerLists> lists;  // likewise
  std::shared_ptr<const SalvageReport> salvage;      // of a damaged file; nullptr otherwise
};

// Finds the database that the path stands for, declares its player as a mounted volume, and loads it into a
// new object of the plug-in's class; a compressed one is inflated into a temporary file first, which is gone
// when this returns, and from then on the memory of the program is limited (MemoryLimit.h). Walks over its
// chunks, and looks at the files beside it. Throws HostError, naming the file and what is wrong with it; a
// symbolic link that leads from the player to a database elsewhere is wrong too, and so are SQLite files,
// which the class does not read.
OpenDatabase loadDatabase(const Host &host, const std::filesystem::path &path);

// A line for each thing that is wrong: the class does not answer with all that the file announces or holds, a
// file beside it is left out, or the database was salvaged. `path` is what a person named.
std::vector<std::string> warningsOf(const OpenDatabase &database, const std::filesystem::path &path);

class PrivateCopy;

// Loads a copy that stands for the database of `database.location` into its object, which has loaded nothing,
// and reads the copy. Throws likewise.
void loadCopy(OpenDatabase &database, PrivateCopy &copy);

}  // namespace zemhost
