#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "host/Host.h"
#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/DatabaseLocation.h"

namespace zemhost {

struct OpenDatabase {
  Host host;
  player::DatabaseLocation location;
  Object object;               // has loaded the file; its properties are as the class sets them
  carbon::Descriptor content;  // what was loaded: the file, or the inflated form of a compressed one
  bool compressed;             // whether it is that
  uint64_t bytesAfterStream;   // bytes of a compressed file after its stream
  std::string warning;         // one line; empty unless openDatabase() has something to say
};

// Finds the database that the path stands for, declares its player as a mounted volume, and loads it into a
// new object of the plug-in's class; a compressed one is inflated into a temporary file first, which is gone
// when this returns. Throws HostError, naming the file and what is wrong with it.
OpenDatabase loadDatabase(const Host &host, const std::filesystem::path &path);

// The same, with a warning when the class does not answer with all that the file announces or holds.
OpenDatabase openDatabase(const Host &host, const std::filesystem::path &path);

// The account of the file that was loaded. Throws HostError, naming it, when it cannot be read any more.
player::FileAccount accountOf(const OpenDatabase &database);

}  // namespace zemhost
