#pragma once

#include <filesystem>

#include "host/Host.h"
#include "host/cli/library/DatabaseLocation.h"

namespace zemhost {

struct OpenDatabase {
  DatabaseLocation location;
  Object object;  // has loaded the file; its properties are as the class sets them
};

// Finds the database that the path stands for, declares its player as a mounted volume, and loads it into a
// new object of the plug-in's class. Throws HostError, naming the file and what is wrong with it.
OpenDatabase openDatabase(const std::filesystem::path &path);

}  // namespace zemhost
