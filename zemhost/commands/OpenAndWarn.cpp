#include "zemhost/commands/OpenAndWarn.h"

#include <string>

#include "zemhost/library/OpenLibrary.h"
#include "zemhost/output/Messages.h"

namespace zemhost {

MusicLibrary openAndWarn(const std::filesystem::path &path) { return openAndWarn(Host::load(), path); }

MusicLibrary openAndWarn(const Host &host, const std::filesystem::path &path) {
  const OpenedLibrary opened = openLibrary(host, path);
  for (const std::string &warning : opened.warnings) printError(warning);
  return opened.library;
}

void warnOfCovers(const MusicLibrary &library) {
  const std::string warning = library.covers().warning();
  if (!warning.empty()) printError(warning);
}

}  // namespace zemhost
