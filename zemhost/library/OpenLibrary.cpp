#include "zemhost/library/OpenLibrary.h"

#include <utility>

#include "player/Folder.h"
#include "zemhost/files/OutOfMemory.h"
#include "zemhost/library/SalvagedDatabase.h"
#include "zemhost/library/SqliteSource.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {

std::shared_ptr<const player::SqliteLibrary> readSqliteLibrary(const player::DatabaseLocation &location) {
  player::SqliteFiles files = player::sqliteFilesBeside(location.file);
  files.root = location.volumeRoot;
  return std::make_shared<const player::SqliteLibrary>(files);
}

OpenedLibrary openLibrary(const Host &host, const std::filesystem::path &path) {
  const player::DatabaseLocation location = player::locateDatabase(path);
  if (!location.isSqlite()) {
    OpenDatabase database = loadOrSalvage(host, path);
    std::vector<std::string> warnings = warningsOf(database, path);
    auto salvage = database.salvage;
    return {MusicLibrary(std::move(database)), std::move(warnings), std::move(salvage)};
  }
  setMemorySubject(safeText(location.name));
  const auto library = readSqliteLibrary(location);
  return {MusicLibrary(host, std::make_shared<const SqliteSource>(location, library)), library->warnings()};
}

}  // namespace zemhost
