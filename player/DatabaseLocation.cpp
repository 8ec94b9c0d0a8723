#include "player/DatabaseLocation.h"

#include <cerrno>
#include <optional>
#include <system_error>

#include "player/Error.h"
#include "player/Folder.h"
#include "player/PlayerFolders.h"

namespace player {

namespace fs = std::filesystem;

namespace {

// 0 for what cannot be asked.
uintmax_t sizeOf(const fs::path &file) {
  std::error_code error;
  const uintmax_t size = fs::file_size(file, error);
  return error ? 0 : size;
}

std::optional<fs::path> sqliteFileIn(const std::optional<fs::path> &folder) {
  std::error_code error;
  return folder && fs::is_directory(*folder, error) ? childNamed(*folder, kSqliteFile) : std::nullopt;
}

// No folder outside the player is searched.
fs::path databaseIn(const fs::path &control, const fs::path &named) {
  const fs::path root = control.parent_path();
  expectInside(root, control, control.string());
  const std::optional<fs::path> folder = childNamed(control, kDatabaseFolder);
  if (!folder) {
    throw PlayerError(named.string() + ": no database here: " + control.string() + " has no " +
                      kDatabaseFolder + " folder");
  }
  expectInside(root, *folder, folder->string());
  if (const auto sqlite = sqliteFileIn(childNamed(*folder, kSqliteFolder))) return *sqlite;
  const std::optional<fs::path> file = childNamed(*folder, kDatabaseFile);
  const std::optional<fs::path> compressed = childNamed(*folder, kCompressedFile);
  if (!file && !compressed && childNamed(*folder, kShuffleFile)) {
    throw PlayerError(named.string() + ": no database here, only " + kShuffleFile +
                      ", the songs of a shuffle in the order of playing: " + folder->string() + " has no " +
                      kDatabaseFile);
  }
  if (!file && !compressed) {
    throw PlayerError(named.string() + ": no database here: " + folder->string() + " has no " +
                      kDatabaseFile);
  }
  // Players with a compressed database keep an empty or tiny file, or none, under the usual name. Of two
  // with the same songs the compressed one would be the smaller.
  if (compressed && (!file || sizeOf(*file) == 0 || sizeOf(*file) < sizeOf(*compressed))) return *compressed;
  return *file;
}

// The root of the player when the file is ROOT/iPod_Control/iTunes/FILE, or a folder deeper in that of SQLite
// files.
fs::path volumeRootOf(const fs::path &file) {
  fs::path folder = file.parent_path();
  if (isNamed(folder, kSqliteFolder)) folder = folder.parent_path();
  const fs::path control = folder.parent_path();
  if (isNamed(folder, kDatabaseFolder) && isControlFolder(control)) return control.parent_path();
  return {};
}

DatabaseLocation checked(DatabaseLocation location) {
  if (!location.volumeRoot.empty()) expectInside(location.volumeRoot, location.file, location.name);
  return location;
}

fs::path normalised(const fs::path &path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  if (error) throw PlayerError(path.string(), error.value());
  const fs::path plain = absolute.lexically_normal();
  return plain.has_filename() ? plain : plain.parent_path();  // "player/" is "player"
}

}  // namespace

bool DatabaseLocation::isSqlite() const { return isNamed(file, kSqliteFile); }

DatabaseLocation locateDatabase(const fs::path &path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) throw PlayerError(path.string(), error ? error.value() : ENOENT);
  const fs::path absolute = normalised(path);
  if (!fs::is_directory(status)) return checked({absolute, path.string(), volumeRootOf(absolute)});
  if (const auto sqlite = sqliteFileIn(absolute))
    return checked({*sqlite, sqlite->string(), volumeRootOf(*sqlite)});
  if (isNamed(absolute, kSqliteFolder)) {
    throw PlayerError(path.string() + ": no database here: the folder has no " + kSqliteFile);
  }
  const std::optional<fs::path> control = isControlFolder(absolute) ? absolute : controlFolderOf(absolute);
  if (!control) {
    throw PlayerError(path.string() + ": no database here: the directory has no " + kControlFolder +
                      " folder");
  }
  const fs::path file = databaseIn(*control, path);
  return checked({file, file.string(), control->parent_path()});
}

fs::path playerRootOf(const fs::path &path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) return {};
  const fs::path absolute = normalised(path);
  if (!fs::is_directory(status)) return volumeRootOf(absolute);
  if (isControlFolder(absolute)) return absolute.parent_path();
  return controlFolderOf(absolute) ? absolute : fs::path();
}

}  // namespace player
