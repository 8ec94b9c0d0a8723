#pragma once

#include <filesystem>

#include "zemhost/library/OpenDatabase.h"

namespace zemhost {

// As openDatabase(), with its warnings printed.
OpenDatabase openAndWarn(const std::filesystem::path &path);
// The same with a host that is loaded already: a program has one, whatever number of databases it opens.
OpenDatabase openAndWarn(const Host &host, const std::filesystem::path &path);

}  // namespace zemhost
