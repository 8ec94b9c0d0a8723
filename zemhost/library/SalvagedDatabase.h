#pragma once

#include <filesystem>

#include "zemhost/library/OpenDatabase.h"

namespace zemhost {

// As loadDatabase(), but a damaged database is salvaged: one that the class refuses, or of which it does not
// answer with all that is announced or there. What is found is written into a sound private copy, which the
// class loads instead, so that it answers for each record as it did before the damage. A database of which
// salvage finds no more than the class stays as it is; one of which it finds no song is refused as
// loadDatabase() does.
OpenDatabase loadOrSalvage(const Host &host, const std::filesystem::path &path);

}  // namespace zemhost
