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
#include "player/PlayerSongs.h"

namespace zemhost {

struct OpenDatabase {
  Host host;
  player::DatabaseLocation location;
  Object object;                // has loaded the file; its properties are as the class sets them
  carbon::Descriptor content;   // what was loaded: the file, or the inflated form of a compressed one
  bool compressed;              // whether it is that
  uint64_t bytesAfterStream;    // bytes of a compressed file after its stream
  player::FileAccount account;  // of the content
  std::shared_ptr<const player::PlayerSongs> songs;  // read from the content without the plug-in
  std::vector<std::string> warnings;  // a line each; none unless openDatabase() has something to say
};

// Finds the database that the path stands for, declares its player as a mounted volume, and loads it into a
// new object of the plug-in's class; a compressed one is inflated into a temporary file first, which is gone
// when this returns. Walks over its chunks, and looks at the files beside it. Throws HostError, naming the
// file and what is wrong with it; a symbolic link that leads from the player to a database elsewhere is wrong
// too, and so are SQLite files, which the class does not read.
OpenDatabase loadDatabase(const Host &host, const std::filesystem::path &path);

// The same, with warnings when the class does not answer with all that the file announces or holds, and when
// a file beside it is left out.
OpenDatabase openDatabase(const Host &host, const std::filesystem::path &path);

}  // namespace zemhost
