#include "player/DatabaseLocation.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <system_error>

#include "player/Error.h"

namespace player {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kControlFolder = "iPod_Control";
constexpr std::string_view kDatabaseFolder = "iTunes";
constexpr std::string_view kMusicFolder = "Music";
constexpr std::string_view kDatabaseFile = "iTunesDB";
constexpr std::string_view kCompressedFile = "iTunesCDB";

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isNamed(const fs::path &path, std::string_view name) {
  const std::string last = path.filename().string();
  return std::equal(last.begin(), last.end(), name.begin(), name.end(),
                    [](char a, char b) { return lowered(a) == lowered(b); });
}

[[noreturn]] void fail(const fs::path &path, const std::error_code &error) {
  throw PlayerError(path.string() + ": " + error.message());
}

// What a directory calls `name`: exactly so, else without regard to case, else nothing.
std::optional<fs::path> childNamed(const fs::path &directory, std::string_view name) {
  std::error_code error;
  const fs::path exact = directory / name;
  if (fs::exists(fs::symlink_status(exact, error))) return exact;
  std::optional<fs::path> found;
  fs::directory_iterator entry(directory, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    // The least of several, so that the answer does not depend on the order of the directory.
    if (isNamed(entry->path(), name) && (!found || entry->path() < *found)) found = entry->path();
  }
  if (error) fail(directory, error);
  return found;
}

// 0 for what cannot be asked.
uintmax_t sizeOf(const fs::path &file) {
  std::error_code error;
  const uintmax_t size = fs::file_size(file, error);
  return error ? 0 : size;
}

fs::path databaseIn(const fs::path &control, const fs::path &named) {
  const std::optional<fs::path> folder = childNamed(control, kDatabaseFolder);
  if (!folder)
    throw PlayerError(named.string() + ": no database here: " + control.string() + " has no iTunes folder");
  const std::optional<fs::path> file = childNamed(*folder, kDatabaseFile);
  const std::optional<fs::path> compressed = childNamed(*folder, kCompressedFile);
  if (!file && !compressed)
    throw PlayerError(named.string() + ": no database here: " + folder->string() + " has no iTunesDB");
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
  if (error) fail(path, error);
  const fs::path plain = absolute.lexically_normal();
  return plain.has_filename() ? plain : plain.parent_path();  // "player/" is "player"
}

}  // namespace

DatabaseLocation locateDatabase(const fs::path &path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) {
    fail(path, error ? error : std::make_error_code(std::errc::no_such_file_or_directory));
  }
  const fs::path absolute = normalised(path);
  if (!fs::is_directory(status)) return {absolute, path.string(), volumeRootOf(absolute)};
  const std::optional<fs::path> control =
      isNamed(absolute, kControlFolder) ? absolute : childNamed(absolute, kControlFolder);
  if (!control)
    throw PlayerError(path.string() + ": no database here: the directory has no iPod_Control folder");
  const fs::path file = databaseIn(*control, path);
  return {file, file.string(), control->parent_path()};
}

fs::path musicFolder(const fs::path &root) {
  const std::optional<fs::path> control = childNamed(root, kControlFolder);
  const std::optional<fs::path> music = control ? childNamed(*control, kMusicFolder) : std::nullopt;
  std::error_code error;
  return music && fs::is_directory(*music, error) ? fs::canonical(*music, error) : fs::path();
}

std::string volumeName(const fs::path &root) {
  constexpr size_t kLongest = 63;
  std::string name = root.filename().string();
  std::replace(name.begin(), name.end(), ':', '/');
  if (name.size() <= kLongest) return name;
  size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;  // whole characters
  return name.substr(0, end == 0 ? kLongest : end);
}

}  // namespace player
