#include "zemhost/library/OpenDatabase.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/runtime/MacPaths.h"
#include "player/FileProbe.h"
#include "zemhost/files/OutOfMemory.h"
#include "zemhost/library/MemoryLimit.h"
#include "zemhost/library/PrivateCopy.h"
#include "zemhost/library/Reconciliation.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

// A directory on the way may have a name that no file specification can hold; as a volume it is shortened.
FolderItem itemOf(const std::filesystem::path &file) {
  FolderItem item = FolderItem::fromPath(file);
  if (item) return item;
  mountVolume(volumeName(file.parent_path()), file.parent_path());
  return FolderItem::fromPath(file);
}

// As a shell reads it back.
std::string shellWord(const std::string &text) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%";
  if (!text.empty() && text.find_first_not_of(kPlain) == std::string::npos) return text;
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? "'\\''" : std::string(1, c);
  return word + "'";
}

void load(const Object &object, const std::string &name, const std::filesystem::path &file) {
  const FolderItem item = itemOf(file);
  if (!item) {
    throw HostError(name + ": the file's name is longer than the " + std::to_string(kLongestMacName) +
                    " bytes that can be read");
  }
  if (!object.call("Load", {item}).boolean()) {
    throw HostError(name + ": the plug-in could not load it (Error " +
                    std::to_string(object.get("Error").integer()) + ")");
  }
}

void mount(const player::DatabaseLocation &location, const std::filesystem::path &root) {
  if (!location.volumeRoot.empty()) mountVolume(volumeName(location.volumeRoot), root);
}

void readContent(OpenDatabase &database) {
  try {
    database.account = player::walkChunks(database.content.number());
    // Those that were lost count, for what names songs by their places.
    if (database.salvage) database.account.declaredTracks = database.salvage->announced;
    database.songs = std::make_shared<const player::PlayerSongs>(database.content.number(), database.account,
                                                                 database.location);
    database.lists = std::make_shared<const player::PlayerLists>(
        database.content.number(), database.account, database.location.file, database.location.volumeRoot);
  } catch (const std::system_error &error) {
    throw HostError(database.location.name, error.code().value());
  }
}

// Into an object that has loaded nothing.
void load(OpenDatabase &database) {
  const player::DatabaseLocation &location = database.location;
  if (location.isSqlite()) {
    throw HostError(
        location.name +
        ": the newest nanos keep their library in SQLite files, and the class reads iTunesDB alone");
  }
  const player::FileProbe probe = player::probeFile(location.file);
  if (!probe.reason.empty()) throw HostError(location.name + ": " + probe.reason);

  if (probe.content == player::FileContent::Compressed) {
    PrivateCopy copy(location);
    database.bytesAfterStream = inflateInto(copy, location);
    database.compressed = true;
    const player::FileProbe inflated = player::probeFile(copy.file());
    if (inflated.content != player::FileContent::Database) {
      throw HostError(location.name + ": its compressed content: " +
                      (inflated.reason.empty() ? "a compressed database again" : inflated.reason));
    }
    loadCopy(database, copy);
    return;
  }
  mount(location, location.volumeRoot);
  load(database.object, location.name, location.file);
  database.content = carbon::Descriptor(open(location.file.c_str(), O_RDONLY | O_CLOEXEC));
  if (database.content.number() < 0) throw HostError(location.name, errno);
  readContent(database);
}

}  // namespace

std::string SalvageReport::text() const {
  const bool isShort = announced > songs;
  return (isShort ? std::to_string(songs) + " of " : "") +
         countText(isShort ? announced : songs, "song", "songs") + " and " +
         countText(playlists, "playlist", "playlists") + " were found by salvage";
}

void loadCopy(OpenDatabase &database, PrivateCopy &copy) {
  const player::DatabaseLocation &location = database.location;
  if (database.compressed && limitMemoryFor(copy.size())) {
    setMemorySubject(safeText(location.name),
                     "a compressed database may take twice its inflated size and 64 MB");
  }
  mount(location, copy.root());
  load(database.object, location.name, copy.file());
  database.content = copy.takeContent();
  mount(location, location.volumeRoot);
  readContent(database);
}

OpenDatabase loadDatabase(const Host &host, const std::filesystem::path &path) {
  setMemorySubject(safeText(path.string()));
  OpenDatabase database{
      host, player::locateDatabase(path), host.make("ZemiTunesDB"), {}, false, 0, {}, {}, {}, {}};
  setMemorySubject(safeText(database.location.name));
  load(database);
  return database;
}

std::vector<std::string> warningsOf(const OpenDatabase &database, const std::filesystem::path &path) {
  std::vector<std::string> warnings;
  const auto warn = [&](const std::string &text) {
    warnings.push_back(database.location.name + ": " + text + "; to see what is wrong run: zemhost check " +
                       shellWord(path.string()));
  };
  if (database.salvage) {
    warn("the file is damaged: " + database.salvage->text());
  } else if (const Reconciliation counts = reconcile(database.account, database.object); !counts.agrees()) {
    warn(counts.summary());
  }
  if (!database.songs->warning().empty()) warnings.push_back(database.songs->warning());
  const std::vector<std::string> &lists = database.lists->warnings();
  warnings.insert(warnings.end(), lists.begin(), lists.end());
  return warnings;
}

}  // namespace zemhost
