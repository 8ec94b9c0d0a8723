#pragma once

#include <cstdint>
#include <filesystem>

#include "host/Host.h"
#include "host/cli/files/Descriptor.h"
#include "host/cli/library/DatabaseLocation.h"

namespace zemhost {

struct OpenDatabase {
  DatabaseLocation location;
  Object object;              // has loaded the file; its properties are as the class sets them
  Descriptor content;         // what was loaded: the file, or the inflated form of a compressed one
  bool compressed;            // whether it is that
  uint64_t bytesAfterStream;  // bytes of a compressed file after its stream
};

// Finds the database that the path stands for, declares its player as a mounted volume, and loads it into a
// new object of the plug-in's class; a compressed one is inflated into a temporary file first, which is gone
// when this returns. Throws HostError, naming the file and what is wrong with it.
OpenDatabase openDatabase(const std::filesystem::path &path);

}  // namespace zemhost
