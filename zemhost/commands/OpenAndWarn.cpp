#include "zemhost/commands/OpenAndWarn.h"

#include <string>

#include "zemhost/output/Messages.h"

namespace zemhost {

OpenDatabase openAndWarn(const std::filesystem::path &path) { return openAndWarn(Host::load(), path); }

OpenDatabase openAndWarn(const Host &host, const std::filesystem::path &path) {
  OpenDatabase database = openDatabase(host, path);
  for (const std::string &warning : database.warnings) printError(warning);
  return database;
}

void warnOfCovers(const MusicLibrary &library) {
  const std::string warning = library.covers().warning();
  if (!warning.empty()) printError(warning);
}

}  // namespace zemhost
