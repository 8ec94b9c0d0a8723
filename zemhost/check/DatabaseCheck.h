#pragma once

// A database opened and checked in one go, for those that go on with the library.

#include <filesystem>

#include "host/Host.h"
#include "zemhost/check/CheckReport.h"
#include "zemhost/library/OpenLibrary.h"

namespace zemhost {

struct CheckedLibrary {
  OpenedLibrary opened;
  CheckReport report;
};

// Opens the database that the path stands for, a damaged one by salvage, and checks it: its bytes, its
// counts, every song with its file (to its end with `readFiles`), every playlist entry, and the files beside
// it. Throws as openLibrary() does; whatever else is wrong is a finding.
CheckedLibrary openAndCheck(const Host &host, const std::filesystem::path &path, bool readFiles);

}  // namespace zemhost
