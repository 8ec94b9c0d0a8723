#include "player/MusicFiles.h"

#include <algorithm>
#include <new>
#include <optional>
#include <system_error>
#include <vector>

#include "player/Error.h"
#include "player/Folder.h"
#include "player/PlayerFolders.h"

namespace player {

namespace fs = std::filesystem;

namespace {

void throwWithoutMemory(const std::error_code &error) {
  if (error == std::errc::not_enough_memory) throw std::bad_alloc();
}

// Without symbolic links on its way; empty when there is none on the player.
fs::path musicFolder(const fs::path &root) {
  const std::optional<fs::path> control = controlFolderOf(root);
  const std::optional<fs::path> music = control ? childNamed(*control, kMusicFolder) : std::nullopt;
  std::error_code error;
  if (!music || !fs::is_directory(*music, error)) return {};
  const fs::path folder = fs::canonical(*music, error);
  const fs::path top = error ? fs::path() : fs::canonical(root, error);
  const bool isInside =
      !error && std::mismatch(top.begin(), top.end(), folder.begin(), folder.end()).first == top.end();
  return isInside ? folder : fs::path();
}

// The folders in it go to `folders`.
void readFolder(const fs::path &folder, const MusicFileSink &sink, std::vector<fs::path> &folders) {
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code unknown;
    const fs::file_status status = entry->symlink_status(unknown);
    throwWithoutMemory(unknown);
    if (unknown) {
      sink.onFailure(entry->path(), unknown.value());
    } else if (fs::is_directory(status)) {
      folders.push_back(entry->path());
    } else if (fs::is_regular_file(status)) {
      sink.onFile(entry->path());
    }
  }
  throwWithoutMemory(error);
  if (error) sink.onFailure(folder, error.value());
}

}  // namespace

void eachMusicFile(const fs::path &root, const MusicFileSink &sink) {
  std::vector<fs::path> folders;
  try {
    if (const fs::path music = musicFolder(root); !music.empty()) folders.push_back(music);
  } catch (const PlayerError &) {
    return;  // the folders above it cannot be searched; nor was a database found through them then
  }
  while (!folders.empty()) {
    const fs::path folder = std::move(folders.back());
    folders.pop_back();
    readFolder(folder, sink, folders);
  }
}

}  // namespace player
