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

fs::path databaseIn(const fs::path &control, const fs::path &named) {
  const std::optional<fs::path> folder = childNamed(control, kDatabaseFolder);
  if (!folder) {
    throw PlayerError(named.string() + ": no database here: " + control.string() + " has no " +
                      kDatabaseFolder + " folder");
  }
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

// The root of the player when the file is ROOT/iPod_Control/iTunes/FILE.
fs::path volumeRootOf(const fs::path &file) {
  const fs::path folder = file.parent_path();
  const fs::path control = folder.parent_path();
  if (isNamed(folder, kDatabaseFolder) && isNamed(control, kControlFolder)) return control.parent_path();
  return {};
}

fs::path normalised(const fs::path &path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  if (error) throw PlayerError(path.string(), error.value());
  const fs::path plain = absolute.lexically_normal();
  return plain.has_filename() ? plain : plain.parent_path();  // "player/" is "player"
}

}  // namespace

DatabaseLocation locateDatabase(const fs::path &path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) throw PlayerError(path.string(), error ? error.value() : ENOENT);
  const fs::path absolute = normalised(path);
  if (!fs::is_directory(status)) return {absolute, path.string(), volumeRootOf(absolute)};
  const std::optional<fs::path> control =
      isNamed(absolute, kControlFolder) ? absolute : childNamed(absolute, kControlFolder);
  if (!control) {
    throw PlayerError(path.string() + ": no database here: the directory has no " + kControlFolder +
                      " folder");
  }
  const fs::path file = databaseIn(*control, path);
  return {file, file.string(), control->parent_path()};
}

fs::path musicFolder(const fs::path &root) {
  const std::optional<fs::path> control = childNamed(root, kControlFolder);
  const std::optional<fs::path> music = control ? childNamed(*control, kMusicFolder) : std::nullopt;
  std::error_code error;
  return music && fs::is_directory(*music, error) ? fs::canonical(*music, error) : fs::path();
}

}  // namespace player
